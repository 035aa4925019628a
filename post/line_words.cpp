// Word-level string helpers shared by the line rewrites of the post-process pass.
#include "post/line_words.h"

KeyValue SplitKeyValue(const std::string& word) {
  KeyValue result;
  size_t equals = word.find('=');
  if (equals == std::string::npos) {
    result.value = word;
    return result;
  }
  result.key = word.substr(0, equals);
  result.value = word.substr(equals + 1);
  result.hasEquals = true;
  return result;
}

std::vector<std::string> WordsWithEnd(const std::string& line) {
  std::vector<std::string> words;
  size_t pos = 0;
  while (pos < line.size()) {
    size_t start = line.find_first_not_of(' ', pos);
    if (start == std::string::npos) break;
    size_t end = line.find(' ', start);
    if (end == std::string::npos) end = line.size();
    words.emplace_back(line, start, end - start);
    pos = end;
  }
  words.emplace_back();
  return words;
}

std::string FirstWord(const std::string& line) {
  size_t start = line.find_first_not_of(' ');
  if (start == std::string::npos) return "";
  size_t end = line.find(' ', start);
  return line.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  if (from.empty()) return;
  size_t found = text.find(from);
  if (found == std::string::npos) return;
  std::string result;
  result.reserve(text.size());
  size_t pos = 0;
  while (found != std::string::npos) {
    result.append(text, pos, found - pos);
    result.append(to);
    pos = found + from.size();
    found = text.find(from, pos);
  }
  result.append(text, pos, std::string::npos);
  text.swap(result);
}
