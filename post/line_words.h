// Word-level string helpers shared by the line rewrites of the post-process pass.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "expr/text.h"

/// A deck word split at its first "=". A word without "=" has an empty key and is all value.
struct KeyValue {
  std::string key;
  std::string value;
  bool hasEquals = false;
};
KeyValue SplitKeyValue(const std::string& word);

/// The blank-separated words of `line` (a run of blanks separates once), followed by one
/// empty word that stands for the end of the line.
std::vector<std::string> WordsWithEnd(const std::string& line);

/// Calls f(word) with views of the words WordsWithEnd gives, in order, the empty end word
/// included: a rewrite that leaves most words alone copies none of them.
template <class F>
void ForEachWordWithEnd(std::string_view line, F f) {
  size_t pos = 0;
  while (pos < line.size()) {
    size_t start = line.find_first_not_of(' ', pos);
    if (start == std::string_view::npos) break;
    size_t end = line.find(' ', start);
    if (end == std::string_view::npos) end = line.size();
    f(line.substr(start, end - start));
    pos = end;
  }
  f(std::string_view());
}

/// The first blank-separated word of `line`.
std::string FirstWord(const std::string& line);

/// Replaces every occurrence of `from` (not empty) in one left-to-right pass.
void ReplaceAll(std::string& text, std::string_view from, std::string_view to);
