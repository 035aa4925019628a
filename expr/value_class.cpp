// Value classes and the unit letters of parameters.
#include "expr/value_class.h"

#include <cctype>

namespace {

bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// What may stand right behind an engineering suffix.
bool EndsSuffix(std::string_view rest, size_t length) {
  if (rest.size() == length) return true;
  char next = rest[length];
  return next == '*' || next == '/' || next == '-' || next == '+' || next == ')' || next == ' ';
}

bool StartsWithUpper(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (std::toupper(static_cast<unsigned char>(text[i])) != prefix[i]) return false;
  }
  return true;
}

bool Contains(const std::set<std::string>* names, const std::string& key) {
  return names && names->count(key) != 0;
}

char UnitOf(const std::string& key, const UnitRules& rules) {
  if (Contains(rules.uParNames, key)) return 'U';
  if (Contains(rules.pParNames, key)) return 'P';
  return '\0';
}

}  // namespace

int SuffixLength(std::string_view rest, std::string_view before) {
  if (rest.empty() || before.empty()) return 0;
  if (!IsDigit(before[0]) && before[0] != '.') return 0;
  size_t length = 0;
  switch (std::toupper(static_cast<unsigned char>(rest[0]))) {
    case 'F':
    case 'P':
    case 'N':
    case 'U':
    case 'K':
    case 'G':
      length = 1;
      break;
    case 'M':
      length = StartsWithUpper(rest, "MEG") ? 3 : 1;
      break;
    default:
      return 0;
  }
  return EndsSuffix(rest, length) ? static_cast<int>(length) : 0;
}

int ClassifyValue(std::string_view text) {
  bool arithmetic = false, word = false;
  bool plain = ScanValue(text, [&](char c, ValueChar kind) {
    if (c == '\'' || c == '{' || c == '}' || c == '\\') return false;
    arithmetic |= kind == ValueChar::kOperator;
    word |= kind == ValueChar::kWordLetter;
    return true;
  });
  if (!plain) return kQuotedValue;
  if (arithmetic) return kArithmeticValue;
  return word ? kWordValue : kPlainNumber;
}

void AdjustUnit(std::string& word, const std::string& value, const std::string& key, const UnitRules& rules) {
  if (word.empty()) return;
  if (ClassifyValue(value) != kPlainNumber) return;
  if (value.find_first_of("eE") != std::string::npos) return;
  char unit = UnitOf(key, rules);
  if (unit == '\0') return;
  if (rules.stripUnits) {
    if (word.back() == unit) word.pop_back();
    return;
  }
  if (IsDigit(word.back())) word += unit;
}

void AdjustWordUnit(std::string& word, const UnitRules& rules) {
  size_t equals = word.find('=');
  if (equals == std::string::npos) return;
  AdjustUnit(word, word.substr(equals + 1), word.substr(0, equals), rules);
}
