// "@" references, quoted blanks, ORDER template layout and escapes.
#include "expr/attribute_text.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

std::string Expand(const std::string& text, const std::map<std::string, std::string>& attributes) {
  return ExpandAttributeReferences(text, [&attributes](const std::string& key) {
    auto found = attributes.find(key);
    return found == attributes.end() ? std::string() : found->second;
  });
}

TEST(ExpandAttributeReferencesTest, ReplacesReferencesAndKeepsDelimiters) {
  std::map<std::string, std::string> attrs{{"@A", "3"}, {"@B", " 4 "}, {"@LONG", "1K"}};
  EXPECT_EQ(Expand("@A*2", attrs), "3*2");
  EXPECT_EQ(Expand("@a*2", attrs), "3*2");
  EXPECT_EQ(Expand("@A + @B", attrs), "3 +4");
  EXPECT_EQ(Expand("(@A+@B)/2", attrs), "(3+4)/2");
  EXPECT_EQ(Expand("  @LONG  ", attrs), "1K");
  EXPECT_EQ(Expand("2*@A", attrs), "2*3");
}

TEST(ExpandAttributeReferencesTest, UnknownReferenceStays) {
  std::map<std::string, std::string> attrs{{"@A", "3"}};
  EXPECT_EQ(Expand("@X*2", attrs), "@X*2");
  EXPECT_EQ(Expand("@x+@A", attrs), "@x+3");
}

TEST(ExpandAttributeReferencesTest, RestWithoutReferenceIsKeptWhole) {
  std::map<std::string, std::string> attrs{{"@A", "3"}};
  EXPECT_EQ(Expand("@A + 5  +  6", attrs), "3 + 5  +  6");
  EXPECT_EQ(Expand("  1 + 2  ", attrs), "1 + 2");
  EXPECT_EQ(Expand("", attrs), "");
}

TEST(ExpandAttributeReferencesTest, ReplacementIsNotExpandedAgain) {
  std::map<std::string, std::string> attrs{{"@A", "@B"}, {"@B", "2"}};
  EXPECT_EQ(Expand("@A", attrs), "@B");
}

TEST(ExpandAttributeReferencesTest, ManyDelimitersDoNotRecurseDeeply) {
  std::map<std::string, std::string> attrs{{"@A", "1"}};
  std::string text;
  for (int i = 0; i < 200000; ++i) text += "@A+";
  text += "@A";
  std::string expected;
  for (int i = 0; i < 200000; ++i) expected += "1+";
  expected += "1";
  EXPECT_EQ(Expand(text, attrs), expected);
}

TEST(CollapseQuotedBlanksTest, PacksQuotedAndBracedValues) {
  EXPECT_EQ(CollapseQuotedBlanks("R1 A B W='1 + 2'"), "R1 A B W='1+2'");
  EXPECT_EQ(CollapseQuotedBlanks("R1 A B W={1 + 2} L='3 * 4'"), "R1 A B W={1+2} L='3*4'");
  EXPECT_EQ(CollapseQuotedBlanks("X1 A P='a b' Q='c d'"), "X1 A P='ab' Q='cd'");
}

TEST(CollapseQuotedBlanksTest, EveryOccurrenceInTheLineIsPacked) {
  EXPECT_EQ(CollapseQuotedBlanks("R1 1 + 2 W='1 + 2'"), "R1 1+2 W='1+2'");
}

TEST(CollapseQuotedBlanksTest, LeavesOthersAlone) {
  EXPECT_EQ(CollapseQuotedBlanks("* W='1 + 2'"), "* W='1 + 2'");
  EXPECT_EQ(CollapseQuotedBlanks("='1 + 2'"), "='1 + 2'");  // opener at position 0
  EXPECT_EQ(CollapseQuotedBlanks("R1 W='1 + 2"), "R1 W='1 + 2");
  EXPECT_EQ(CollapseQuotedBlanks("R1 W={1 + 2"), "R1 W={1 + 2");
  EXPECT_EQ(CollapseQuotedBlanks(""), "");
  EXPECT_EQ(CollapseQuotedBlanks("R1 A B 1K"), "R1 A B 1K");
}

TEST(NormalizeOrderTemplateTest, MovesLengthAndWidthBehindModel) {
  EXPECT_EQ(NormalizeOrderTemplate("MODEL$ W$ L$"), "MODEL$ L$ W$");
  EXPECT_EQ(NormalizeOrderTemplate("model$ w$ l$"), "MODEL$ L$ W$");
  EXPECT_EQ(NormalizeOrderTemplate("L$ W$ MODEL$"), "L$ W$ MODEL$");
  EXPECT_EQ(NormalizeOrderTemplate("W$ L$"), "L$ W$");
  EXPECT_EQ(NormalizeOrderTemplate("W$ MODEL$"), "MODEL$ W$");
  EXPECT_EQ(NormalizeOrderTemplate("MODEL$ W$"), "MODEL$ W$");
  EXPECT_EQ(NormalizeOrderTemplate("AD$ MODEL$ L$ W$"), "AD$ MODEL$ L$ W$");
}

// The positions are taken before the words are removed, as the deck format has always
// had it; a word in front of MODEL$ therefore shifts where the other lands.
TEST(NormalizeOrderTemplateTest, PositionsAreTakenBeforeRemoval) {
  EXPECT_EQ(NormalizeOrderTemplate("W$ MODEL$ AD$"), "MODEL$ A W$D$");
  EXPECT_EQ(NormalizeOrderTemplate("W$ X$"), "W$  X$");
  EXPECT_EQ(NormalizeOrderTemplate("X$ L$ MODEL$"), "X$ MODEL$ L$");  // past the end: at the end
}

TEST(NormalizeOrderTemplateTest, OtherTemplatesAreOnlyUpperCasedAndTrimmed) {
  EXPECT_EQ(NormalizeOrderTemplate("  value$ \"ic=\" "), "VALUE$ \"IC=\"");
  EXPECT_EQ(NormalizeOrderTemplate(""), "");
  EXPECT_EQ(NormalizeOrderTemplate("MODEL$"), "MODEL$");
}

TEST(EscapeCharacterTest, ControlLettersAndOthers) {
  EXPECT_EQ(EscapeCharacter('b'), '\b');
  EXPECT_EQ(EscapeCharacter('N'), '\n');
  EXPECT_EQ(EscapeCharacter('r'), '\r');
  EXPECT_EQ(EscapeCharacter('T'), '\t');
  EXPECT_EQ(EscapeCharacter('"'), '"');
  EXPECT_EQ(EscapeCharacter('x'), 'x');
}

}  // namespace
