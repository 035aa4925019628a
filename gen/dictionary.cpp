// The dictionary of each block (net name to node text) and the -x side file.
#include <algorithm>
#include <cctype>
#include <iostream>
#include <string_view>

#include "design/platform.h"
#include "gen/spice_gen.h"

namespace {

// Nets with internal names ("$...") show only in a verbose dictionary.
bool ShownInDictionary(const WireOptions& options, std::string_view line) {
  return options.probeAll || options.verbose || line.size() <= 2 || line[2] != '$' || line[0] == '$' ||
         line[1] == '$';
}

bool HasOuterBlank(const std::string& text) {
  return !text.empty() && (std::isspace(static_cast<unsigned char>(text.front())) ||
                           std::isspace(static_cast<unsigned char>(text.back())));
}

}  // namespace

void CSpiceGen::AddDictionaryLine(std::string_view line) {
  if (ShownInDictionary(options, line)) dictionaryLines.Add(line);
}

void CSpiceGen::OfferNetLine(const std::string& net, const std::string& node, size_t position) {
  dictionaryLine_.assign("* ").append(net).append(" = ").append(node);
  // A net without blanks and a node without outer blanks give a line that no other entry can
  // give, and the same line every time (an entry's node does not change once named). So the
  // line is new exactly when its entry has not offered it this round, and goes into the list
  // without the text index.
  const bool byEntry =
      walk.linesByEntry && position != SIZE_MAX && net.find(' ') == std::string::npos && !HasOuterBlank(node);
  if (!byEntry) {
    AddDictionaryLine(dictionaryLine_);
    return;
  }
  if (position >= walk.linesOffered.size())
    walk.linesOffered.resize(std::max(position + 1, walk.nodes.size()), 0);
  if (walk.linesOffered[position] == dictionaryRound) return;
  walk.linesOffered[position] = dictionaryRound;
  if (ShownInDictionary(options, dictionaryLine_)) dictionaryLines.AddKnownNew(dictionaryLine_);
}

void CSpiceGen::WriteDictionary(int flag) {
  if (!options.flatten) out << "\n";
  out << (flag == 0 ? "* Dictionary " : "* CROSS-REFERENCE ") << std::to_string(dictionaryLines.Size())
      << "\n";
  // The lines are searched for a ground name only while the warning below may still be due.
  bool groundNamed = flag != 0 || groundSeen;
  dictionaryLines.ForEachNewestFirst([&](std::string_view entry) {
    out << entry << "\n";
    if (!groundNamed && entry.find("GND") != std::string::npos) groundNamed = true;
  });
  dictionaryLines.Clear();
  ++dictionaryRound;
  if (options.flatten) WriteFlatProbes();
  if (flag != 0 || groundSeen || groundNamed) return;
  static const char kWarning[] = "*Warning : No ground node (Label a net GND)";
  std::cout << kWarning << "\n";
  // No line end in the deck: the next output continues this line.
  out << kWarning;
}

void CSpiceGen::OpenCrossReference(std::string group) {
  if (!options.crossReference) return;
  const std::string path = group + ".xrf";
  size_t slash = path.find_last_of("\\/");
  if (slash != std::string::npos) MakeFolder(path.substr(0, slash));
  xrefOut.Open(FileSystemPath(path));
  xrefOut << "V 2 0 0\n";
  // Nothing else is ever written to it, so it is complete now.
  xrefOut.Commit();
}
