// Value classes, engineering suffixes behind numbers, and unit letters of parameters.
#include "expr/value_class.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(ClassifyValueTest, PlainNumbers) {
  EXPECT_EQ(ClassifyValue(""), 1);
  EXPECT_EQ(ClassifyValue("10"), 1);
  EXPECT_EQ(ClassifyValue("1.5"), 1);
  EXPECT_EQ(ClassifyValue("10K"), 1);
  EXPECT_EQ(ClassifyValue("10meg"), 1);
  EXPECT_EQ(ClassifyValue("1.K"), 1);
  EXPECT_EQ(ClassifyValue("1E-5"), 1);
  EXPECT_EQ(ClassifyValue("1E5"), 1);
  EXPECT_EQ(ClassifyValue("1,5"), 1);
}

TEST(ClassifyValueTest, Words) {
  EXPECT_EQ(ClassifyValue("K10"), 3);
  EXPECT_EQ(ClassifyValue("2UF"), 3);
  EXPECT_EQ(ClassifyValue("10MEGA"), 3);
  EXPECT_EQ(ClassifyValue("ABC"), 3);
  EXPECT_EQ(ClassifyValue("E"), 3);
  EXPECT_EQ(ClassifyValue("1T"), 3);    // tera is no suffix here
  EXPECT_EQ(ClassifyValue("1MIL"), 3);  // nor is the mil
}

TEST(ClassifyValueTest, ArithmeticComesBeforeWords) {
  EXPECT_EQ(ClassifyValue("2*K"), 4);
  EXPECT_EQ(ClassifyValue("2*3"), 4);
  EXPECT_EQ(ClassifyValue("-1"), 4);
  EXPECT_EQ(ClassifyValue("5U*2"), 4);
  EXPECT_EQ(ClassifyValue("@A/2"), 4);
  EXPECT_EQ(ClassifyValue("1e-5"), 4);  // only an upper-case E reads as an exponent
}

TEST(ClassifyValueTest, QuotedOrEscapedStopsAtOnce) {
  EXPECT_EQ(ClassifyValue("'1+2'"), 0);
  EXPECT_EQ(ClassifyValue("1+{X}"), 0);
  EXPECT_EQ(ClassifyValue("A}"), 0);
  EXPECT_EQ(ClassifyValue("A\\B"), 0);
}

TEST(SuffixLengthTest, RecognisedSuffixes) {
  EXPECT_EQ(SuffixLength("MEG", "0MEG"), 3);
  EXPECT_EQ(SuffixLength("meg*2", "0meg*2"), 3);
  EXPECT_EQ(SuffixLength("M", "1M"), 1);
  EXPECT_EQ(SuffixLength("U*2", "5U*2"), 1);
  EXPECT_EQ(SuffixLength("K", ".K"), 1);
  EXPECT_EQ(SuffixLength("f)", "1f)"), 1);
  EXPECT_EQ(SuffixLength("p", "1p"), 1);
  EXPECT_EQ(SuffixLength("n", "1n"), 1);
  EXPECT_EQ(SuffixLength("G", "1G"), 1);
}

TEST(SuffixLengthTest, RejectedSuffixes) {
  EXPECT_EQ(SuffixLength("UF", "2UF"), 0);
  EXPECT_EQ(SuffixLength("MEGA", "0MEGA"), 0);
  EXPECT_EQ(SuffixLength("T", "1T"), 0);
  EXPECT_EQ(SuffixLength("K", "AK"), 0);
  EXPECT_EQ(SuffixLength("", "1"), 0);
}

class AdjustUnitTest : public ::testing::Test {
 protected:
  std::string Adjusted(std::string word, bool strip = false) {
    UnitRules rules{&uNames_, &pNames_, strip};
    AdjustWordUnit(word, rules);
    return word;
  }
  std::set<std::string> uNames_{"W", "L", "L1", "W1"};
  std::set<std::string> pNames_{"AS", "AD"};
};

TEST_F(AdjustUnitTest, AddsTheUnitLetter) {
  EXPECT_EQ(Adjusted("W=2"), "W=2U");
  EXPECT_EQ(Adjusted("AS=4"), "AS=4P");
  EXPECT_EQ(Adjusted("W=2.5"), "W=2.5U");
  EXPECT_EQ(Adjusted("W=2U"), "W=2U");
  EXPECT_EQ(Adjusted("W=2u"), "W=2u");
  EXPECT_EQ(Adjusted("W=2K"), "W=2K");
}

TEST_F(AdjustUnitTest, LeavesOthersAlone) {
  EXPECT_EQ(Adjusted("X=2"), "X=2");
  EXPECT_EQ(Adjusted("w=2"), "w=2");  // the name lookup is exact
  EXPECT_EQ(Adjusted("W=1E-6"), "W=1E-6");
  EXPECT_EQ(Adjusted("W=2*3"), "W=2*3");
  EXPECT_EQ(Adjusted("W=ABC"), "W=ABC");
  EXPECT_EQ(Adjusted("W2"), "W2");
  EXPECT_EQ(Adjusted("W="), "W=");
}

TEST_F(AdjustUnitTest, StripsTheUnitLetterCaseSensitively) {
  EXPECT_EQ(Adjusted("W=2U", true), "W=2");
  EXPECT_EQ(Adjusted("W=2u", true), "W=2u");
  EXPECT_EQ(Adjusted("AS=2P", true), "AS=2");
  EXPECT_EQ(Adjusted("W=2", true), "W=2");
}

TEST_F(AdjustUnitTest, WordAndValueMayBeTheSameText) {
  UnitRules rules{&uNames_, &pNames_, false};
  std::string text = "10";
  AdjustUnit(text, text, "L", rules);
  EXPECT_EQ(text, "10U");
  std::string empty;
  AdjustUnit(empty, empty, "L", rules);
  EXPECT_EQ(empty, "");
}

TEST(AdjustUnitNullSetsTest, MissingSetsMeanNoUnit) {
  UnitRules rules{nullptr, nullptr, false};
  std::string word = "W=2";
  AdjustWordUnit(word, rules);
  EXPECT_EQ(word, "W=2");
}

}  // namespace
