// ASCII case helpers of the model subsystem: lower, upper, and comparison ignoring case.
#pragma once

#include <cctype>
#include <string>

inline std::string LowerText(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

inline std::string UpperText(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

inline bool EqualsIgnoringCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  }
  return true;
}

/// The text behind the first "=", or the whole text when it holds none.
inline std::string TextBehindEquals(const std::string& text) {
  size_t equals = text.find('=');
  return equals == std::string::npos ? text : text.substr(equals + 1);
}
