// The class of a value's text (number, word, expression, quoted) and the unit letter
// that parameters of length and area carry.
#pragma once

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

/// Adds the unit letter of `key` to the end of `word` when `value` is a plain number
/// ending in a digit, or takes it off with stripUnits. `value` may be `word` itself.
void AdjustUnit(std::string& word, const std::string& value, const std::string& key, const UnitRules& rules);

/// AdjustUnit on a KEY=VALUE word; a word without "=" stays.
void AdjustWordUnit(std::string& word, const UnitRules& rules);
