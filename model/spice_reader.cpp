// SPICE model text reader: definitions, their nesting, and the sub-circuits they call.
#include "model/spice_reader.h"

#include "design/platform.h"
#include "expr/text.h"

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v' || c == ','; }

std::vector<std::string> SplitWords(const std::string& line) {
  std::vector<std::string> words;
  size_t pos = 0;
  while (pos < line.size()) {
    while (pos < line.size() && IsSpace(line[pos])) ++pos;
    size_t end = pos;
    while (end < line.size() && !IsSpace(line[end])) ++end;
    if (end > pos) words.push_back(line.substr(pos, end - pos));
    pos = end;
  }
  return words;
}

// A line without its inline comment (";" to the end) and surrounding white space.
std::string CleanLine(const std::string& raw) {
  std::string line = raw.substr(0, raw.find(';'));
  size_t first = line.find_first_not_of(" \t\r\f\v");
  if (first == std::string::npos) return "";
  size_t last = line.find_last_not_of(" \t\r\f\v");
  return line.substr(first, last - first + 1);
}

// Joins "+" continuation lines to the line they continue; drops comment and empty lines.
std::vector<std::string> LogicalLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t pos = 0;
  while (pos <= text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    std::string line = CleanLine(text.substr(pos, end - pos));
    pos = end + 1;
    if (line.empty() || line[0] == '*') continue;
    if (line[0] == '+') {
      if (!lines.empty()) lines.back() += " " + line.substr(1);
      continue;
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace

std::string CalledSubcktName(const std::vector<std::string>& words) {
  std::vector<const std::string*> candidates;
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (LowerText(word.substr(0, 7)) == "params:") break;
    if (word.find('=') != std::string::npos) {
      // "W = 1": the word ahead of a lone "=" is the parameter's name.
      if (word[0] == '=' && !candidates.empty()) candidates.pop_back();
      break;
    }
    candidates.push_back(&word);
  }
  return candidates.empty() ? std::string() : *candidates.back();
}

void SpiceReader::Clear() {
  subckts_.clear();
  byLower_.clear();
}

bool SpiceReader::MorvaFile(const std::string& path, int /*flags*/) {
  Clear();
  std::string text;
  if (!ReadWholeFile(path, text)) return false;
  return ParseText(text);
}

bool SpiceReader::ParseText(const std::string& text) {
  Clear();
  // A NUL byte means this is no SPICE text at all.
  if (text.find('\0') != std::string::npos) return false;
  std::vector<SpiceSubckt*> open;
  for (const std::string& line : LogicalLines(text)) HandleLine(line, open);
  return true;
}

void SpiceReader::HandleLine(const std::string& line, std::vector<SpiceSubckt*>& open) {
  std::vector<std::string> words = SplitWords(line);
  if (words.empty()) return;
  const std::string keyword = LowerText(words[0]);
  if (keyword == ".subckt") {
    subckts_.emplace_back();
    SpiceSubckt& subckt = subckts_.back();
    if (words.size() > 1) {
      subckt.name = words[1];
      byLower_.emplace(LowerText(subckt.name), subckts_.size() - 1);
    }
    open.push_back(&subckt);
    return;
  }
  if (keyword == ".ends") {
    if (!open.empty()) open.pop_back();
    return;
  }
  if (keyword[0] != 'x' || open.empty()) return;
  std::string called = CalledSubcktName(words);
  if (called.empty()) return;
  SpiceSubckt& caller = *open.back();
  if (caller.calledIndex.insert(called).second) caller.calledNames.push_back(called);
}

const SpiceSubckt* SpiceReader::FindSubcktByName(const std::string& name) const {
  auto found = byLower_.find(LowerText(name));
  return found == byLower_.end() ? nullptr : &subckts_[found->second];
}
