// "@" references, quoted blanks and the ORDER template layout. Escapes and the references of
// whole component lines are pinned by the deck line tests.
#include "expr/attribute_text.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

std::string Expand(const std::string& text) {
  static const std::map<std::string, std::string> attributes{
      {"@A", "3"}, {"@B", " 4 "}, {"@LONG", "1K"}, {"@R", "@B"}};
  return ExpandAttributeReferences(text, [](const std::string& key) {
    auto found = attributes.find(key);
    return found == attributes.end() ? std::string() : found->second;
  });
}

TEST(ExpandAttributeReferencesTest, ReplacesReferencesAndKeepsDelimiters) {
  const std::pair<const char*, const char*> cases[] = {
      {"@A*2", "3*2"},
      {"@a*2", "3*2"},
      {"@A + @B", "3 +4"},
      {"(@A+@B)/2", "(3+4)/2"},
      {"  @LONG  ", "1K"},
      {"2*@A", "2*3"},
      // An unknown reference stays; a rest without reference is kept whole.
      {"@X*2", "@X*2"},
      {"@x+@A", "@x+3"},
      {"@A + 5  +  6", "3 + 5  +  6"},
      {"  1 + 2  ", "1 + 2"},
      {"", ""},
      {"@R", "@B"},  // a replacement is not expanded again
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Expand(text), expected) << text;
  // Many delimiters do not recurse deeply.
  std::string text, expected;
  for (int i = 0; i < 200000; ++i) {
    text += "@A+";
    expected += "3+";
  }
  EXPECT_EQ(Expand(text + "@A"), expected + "3");
}

TEST(CollapseQuotedBlanksTest, PacksQuotedAndBracedValuesOfStatements) {
  const std::pair<const char*, const char*> cases[] = {
      {"R1 A B W='1 + 2'", "R1 A B W='1+2'"},
      {"R1 A B W={1 + 2} L='3 * 4'", "R1 A B W={1+2} L='3*4'"},
      {"X1 A P='a b' Q='c d'", "X1 A P='ab' Q='cd'"},
      {"R1 1 + 2 W='1 + 2'", "R1 1+2 W='1+2'"},  // every occurrence in the line
      {"* W='1 + 2'", "* W='1 + 2'"},
      {"='1 + 2'", "='1 + 2'"},  // opener at position 0
      {"R1 W='1 + 2", "R1 W='1 + 2"},
      {"R1 W={1 + 2", "R1 W={1 + 2"},
      {"", ""},
      {"R1 A B 1K", "R1 A B 1K"},
  };
  for (const auto& [line, expected] : cases) EXPECT_EQ(CollapseQuotedBlanks(line), expected) << line;
}

// The positions are taken before the words are removed, as the deck format has always had it;
// a word in front of MODEL$ therefore shifts where the other lands.
TEST(NormalizeOrderTemplateTest, MovesLengthAndWidthBehindModel) {
  const std::pair<const char*, const char*> cases[] = {
      {"MODEL$ W$ L$", "MODEL$ L$ W$"},
      {"model$ w$ l$", "MODEL$ L$ W$"},
      {"L$ W$ MODEL$", "L$ W$ MODEL$"},
      {"W$ L$", "L$ W$"},
      {"W$ MODEL$", "MODEL$ W$"},
      {"MODEL$ W$", "MODEL$ W$"},
      {"AD$ MODEL$ L$ W$", "AD$ MODEL$ L$ W$"},
      {"W$ MODEL$ AD$", "MODEL$ A W$D$"},
      {"W$ X$", "W$  X$"},
      {"X$ L$ MODEL$", "X$ MODEL$ L$"},  // past the end: at the end
      {"  value$ \"ic=\" ", "VALUE$ \"IC=\""},
      {"", ""},
  };
  for (const auto& [order, expected] : cases) EXPECT_EQ(NormalizeOrderTemplate(order), expected) << order;
}

}  // namespace
