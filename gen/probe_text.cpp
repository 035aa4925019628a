// Probe expressions: "V(node)", "VDB([OUT])", "V([A],B)".
#include "gen/probe_text.h"

#include "expr/text.h"

std::string ProbeExpression(const WireOptions& options, const std::string& kind, const std::string& node) {
  std::string shown = node;
  // Pspice wants named nodes in brackets; numbers and bracketed names stay as they are.
  if (options.dialect.bracketedProbeNodes && (shown.empty() || shown[0] != '[') && !IsAllDigits(shown))
    shown = "[" + shown + "]";
  std::string prefix;
  if (kind.empty())
    prefix = "V";
  else if (kind[0] == 'V')
    prefix = kind;
  else
    prefix = "V" + kind;
  return prefix + "(" + shown + ")";
}

std::string ProbeDifferenceExpression(const WireOptions& options, const std::string& kind,
                                      const std::string& node1, const std::string& node2) {
  std::string text = ProbeExpression(options, kind, node1);
  for (char& c : text)
    if (c == ')') c = ',';
  return text + node2 + ")";
}
