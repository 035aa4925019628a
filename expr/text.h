// ASCII text helpers shared by every folder: case, comparison ignoring case, trimming, prefixes.
//
// Case and white space are ASCII only, whatever the locale: deck texts are ASCII, and the
// locale-aware Boost forms would cost a facet lookup per character on the hot paths.
#pragma once

#include <boost/algorithm/string/predicate.hpp>
#include <cctype>
#include <string>
#include <string_view>

inline char LowerChar(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
inline char UpperChar(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

inline std::string LowerText(std::string text) {
  for (char& c : text) c = LowerChar(c);
  return text;
}

inline std::string UpperText(std::string text) {
  for (char& c : text) c = UpperChar(c);
  return text;
}

inline bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (UpperChar(a[i]) != UpperChar(b[i])) return false;
  return true;
}

inline bool StartsWith(std::string_view text, std::string_view prefix) {
  return boost::algorithm::starts_with(text, prefix);
}

inline bool EndsWith(std::string_view text, std::string_view suffix) {
  return boost::algorithm::ends_with(text, suffix);
}

/// The white space that trimming takes off: blank, tab, CR, LF, VT, FF.
constexpr const char* kWhiteSpace = " \t\r\n\v\f";

/// `text` without white space at either end.
inline std::string_view TrimView(std::string_view text) {
  const size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

inline std::string Trim(std::string_view text) { return std::string(TrimView(text)); }

/// Trims in place; a text of white space alone becomes empty.
inline void TrimInPlace(std::string& text) {
  text.erase(text.find_last_not_of(kWhiteSpace) + 1);
  text.erase(0, text.find_first_not_of(kWhiteSpace));
}

inline std::string_view TrimRight(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kWhiteSpace) + 1);
}

/// True when every character is a digit; the empty text counts as true.
inline bool IsAllDigits(std::string_view text) {
  for (char c : text)
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  return true;
}

/// The text behind the first "=", or the whole text when it holds none.
inline std::string TextBehindEquals(const std::string& text) {
  size_t equals = text.find('=');
  return equals == std::string::npos ? text : text.substr(equals + 1);
}
