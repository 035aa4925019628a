// Value classes, engineering suffixes behind numbers, and unit letters of parameters.
#include "expr/value_class.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(ClassifyValueTest, NumbersWordsArithmeticAndQuoted) {
  const std::pair<const char*, int> cases[] = {
      {"", 1},
      {"10", 1},
      {"1.5", 1},
      {"10K", 1},
      {"10meg", 1},
      {"1.K", 1},
      {"1E-5", 1},
      {"1E5", 1},
      {"1,5", 1},
      {"K10", 3},
      {"2UF", 3},
      {"10MEGA", 3},
      {"ABC", 3},
      {"E", 3},
      {"1T", 3},    // tera is no suffix here
      {"1MIL", 3},  // nor is the mil
      // Arithmetic comes before words.
      {"2*K", 4},
      {"2*3", 4},
      {"-1", 4},
      {"5U*2", 4},
      {"@A/2", 4},
      {"1e-5", 4},  // only an upper-case E reads as an exponent
      // Quoted or escaped stops at once.
      {"'1+2'", 0},
      {"1+{X}", 0},
      {"A}", 0},
      {"A\\B", 0},
  };
  for (const auto& [text, valueClass] : cases) EXPECT_EQ(ClassifyValue(text), valueClass) << text;
}

TEST(SuffixLengthTest, RecognisedAndRejectedSuffixes) {
  const std::tuple<const char*, const char*, int> cases[] = {
      {"MEG", "0MEG", 3},   {"meg*2", "0meg*2", 3}, {"M", "1M", 1}, {"U*2", "5U*2", 1}, {"K", ".K", 1},
      {"f)", "1f)", 1},     {"p", "1p", 1},         {"n", "1n", 1}, {"G", "1G", 1},     {"UF", "2UF", 0},
      {"MEGA", "0MEGA", 0}, {"T", "1T", 0},         {"K", "AK", 0}, {"", "1", 0},
  };
  for (const auto& [suffix, text, length] : cases) EXPECT_EQ(SuffixLength(suffix, text), length) << text;
}

TEST(AdjustUnitTest, AddsOrStripsTheUnitLetterOfListedNames) {
  std::set<std::string> uNames{"W", "L", "L1", "W1"}, pNames{"AS", "AD"};
  const std::tuple<const char*, bool, const char*> cases[] = {
      {"W=2", false, "W=2U"},
      {"AS=4", false, "AS=4P"},
      {"W=2.5", false, "W=2.5U"},
      {"W=2U", false, "W=2U"},
      {"W=2u", false, "W=2u"},
      {"W=2K", false, "W=2K"},
      {"X=2", false, "X=2"},
      {"w=2", false, "w=2"},  // the name lookup is exact
      {"W=1E-6", false, "W=1E-6"},
      {"W=2*3", false, "W=2*3"},
      {"W=ABC", false, "W=ABC"},
      {"W2", false, "W2"},
      {"W=", false, "W="},
      // Stripping is case-sensitive.
      {"W=2U", true, "W=2"},
      {"W=2u", true, "W=2u"},
      {"AS=2P", true, "AS=2"},
      {"W=2", true, "W=2"},
  };
  for (const auto& [word, strip, expected] : cases) {
    std::string text = word;
    AdjustWordUnit(text, UnitRules{&uNames, &pNames, strip});
    EXPECT_EQ(text, expected) << word << strip;
  }
  // The word and the value may be the same text; missing sets mean no unit.
  UnitRules rules{&uNames, &pNames, false};
  std::string text = "10";
  AdjustUnit(text, text, "L", rules);
  EXPECT_EQ(text, "10U");
  std::string word = "W=2";
  AdjustWordUnit(word, UnitRules{nullptr, nullptr, false});
  EXPECT_EQ(word, "W=2");
}

}  // namespace
