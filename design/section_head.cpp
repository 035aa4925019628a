// Section heads of parameter files, matched on whole names.
#include "design/section_head.h"

#include <string_view>

namespace {

bool IsSeparator(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '*'; }

// Whether `word` stands in `line` with a separator or the line's end on either side.
bool HoldsWord(std::string_view line, std::string_view word) {
  if (word.empty()) return true;
  for (size_t pos = line.find(word); pos != std::string_view::npos; pos = line.find(word, pos + 1)) {
    const size_t end = pos + word.size();
    const bool before = pos == 0 || IsSeparator(line[pos - 1]);
    const bool after = end == line.size() || IsSeparator(line[end]);
    if (before && after) return true;
  }
  return false;
}

}  // namespace

bool IsSectionHead(const std::string& line, const std::string& model, const std::string& instance) {
  return !line.empty() && line[0] == '*' && HoldsWord(line, model) && HoldsWord(line, instance);
}
