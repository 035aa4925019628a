// The class of a value's text (number, word, expression, quoted) and the unit letter
// that parameters of length and area carry.
#pragma once

#include <cctype>
#include <set>
#include <string>
#include <string_view>

/// Results of ClassifyValue.
enum ValueClass : int { kQuotedValue = 0, kPlainNumber = 1, kWordValue = 3, kArithmeticValue = 4 };

/// Which parameters take the unit "U" and which "P", and whether units are taken off
/// instead of added. Null sets count as empty.
struct UnitRules {
  const std::set<std::string>* uParNames;
  const std::set<std::string>* pParNames;
  bool stripUnits;
};

/// 0 quoted or escaped, 1 a plain number (suffix and exponent allowed), 3 a word,
/// 4 arithmetic.
int ClassifyValue(std::string_view text);

/// Length of the engineering suffix at the start of `rest`, the letter behind a digit
/// or point (`before` starts with that character); 0 when there is none.
int SuffixLength(std::string_view rest, std::string_view before);

/// What a character of a value is to the scan of ScanValue.
enum class ValueChar { kOperator, kWordLetter, kOther };

/// Reads `text` the way ClassifyValue does: an engineering suffix or an exponent behind a
/// number is passed over; every other character goes to `visit(c, kind)`, which returns
/// false to stop the scan. The result is false when `visit` stopped it.
template <class Visit>
bool ScanValue(std::string_view text, Visit visit) {
  enum { kNothing, kInNumber, kInWord } state = kNothing;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const unsigned char u = static_cast<unsigned char>(c);
    if (c == '/' || c == '*' || c == '+' || c == '-') {
      state = kNothing;
      if (!visit(c, ValueChar::kOperator)) return false;
      continue;
    }
    if (std::isalpha(u)) {
      if (state == kInNumber) {
        int length = SuffixLength(text.substr(i), text.substr(i - 1));
        if (length >= 1) {
          i += length - 1;
          continue;
        }
        if (c == 'E') {  // exponent: the letter and its sign or first digit
          ++i;
          continue;
        }
      }
      state = kInWord;
      if (!visit(c, ValueChar::kWordLetter)) return false;
      continue;
    }
    // A digit opens a number only after an operator or at the start; a point or anything
    // else is passed over.
    if (std::isdigit(u) && state == kNothing) state = kInNumber;
    if (!visit(c, ValueChar::kOther)) return false;
  }
  return true;
}

/// Adds the unit letter of `key` to the end of `word` when `value` is a plain number
/// ending in a digit, or takes it off with stripUnits. `value` may be `word` itself.
void AdjustUnit(std::string& word, const std::string& value, const std::string& key, const UnitRules& rules);

/// AdjustUnit on a KEY=VALUE word; a word without "=" stays.
void AdjustWordUnit(std::string& word, const UnitRules& rules);
