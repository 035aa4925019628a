// Attribute values as the component lines get them: which texts are evaluated, engineering
// form with the unit of the parameter, and quotes around references.
#include <gtest/gtest.h>

#include <string>

#include "gen/spice_gen.h"

namespace {

class AttributeValueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    comp_.hasAttributes = true;
    gen_.options.wirelistKind = kPspice;
  }
  std::string Value(const std::string& param, const std::string& value) {
    return gen_.EvaluateAttributeValue(comp_, param, value);
  }
  CSpiceGen gen_;
  SpiceComp comp_;
};

TEST_F(AttributeValueTest, NumbersComeOutInEngineeringNotationWithTheUnitOfTheParameter) {
  const char* const cases[][3] = {{"VALUE", "1000", "1000.000000"},
                                  {"VALUE", "1000.5", "1.000500K"},
                                  {"VALUE", "1", "1.000000"},
                                  {"VALUE", "0.5", "500.000000M"},
                                  {"VALUE", ".5", "500.000000M"},
                                  {"VALUE", "1U", "1000.000000N"},
                                  {"VALUE", "0", "0.000000"},
                                  {"VALUE", "-5", "-5.000000"},
                                  {"VALUE", "-2.5K", "-2.500000K"},
                                  {"VALUE", "10K", "10.000000K"},
                                  {"VALUE", "2MEG", "2.000000MEG"},
                                  {"VALUE", "2*1K", "2.000000K"},
                                  {"VALUE", "1K*2", "1K*2"},  // a suffix works only in the last operand
                                  // Text that is no number stays; only a number-like start is evaluated.
                                  {"VALUE", "ABC", "ABC"},
                                  {"VALUE", "1K + 2", "1K + 2"},
                                  {"VALUE", "(1+2)", "(1+2)"},
                                  {"VALUE", "1E3", "1E3"},
                                  {"VALUE", "", ""},
                                  {"VALUE", " ", " "},
                                  {"MODEL", "NMOS", "NMOS"},
                                  {"L", "10", "10.000000U"},
                                  {"W", "2U", "2.000000U"},
                                  {"AS", "3", "3.000000P"},
                                  {"R", "10", "10.000000"}};
  // Asked again, in the other order, a value gives the same text (the last few are kept).
  for (int round = 0; round < 2; ++round)
    for (size_t i = 0; i < std::size(cases); ++i) {
      const auto& [param, value, expected] = cases[round == 0 ? i : std::size(cases) - 1 - i];
      EXPECT_EQ(Value(param, value), expected) << param << value;
    }
  EXPECT_EQ(Value("L", "10U"), "10.000000U");
  gen_.config.stripUnits = true;  // other rules, another text for the same value
  EXPECT_EQ(Value("L", "10U"), "10.000000");
}

// A quote sticks to its word: the quotes go only after the references are replaced, and a word
// or already braced text is not braced. Whole decks pin the references of each dialect.
TEST_F(AttributeValueTest, QuotesAroundReferences) {
  comp_.attrs.Set("@A", "3");
  comp_.attrs.Set("@Q", "{X}");
  const std::pair<const char*, const char*> cases[] = {
      {"@a*2", "6.000000"}, {"'@A'*2", "@A'*2"}, {"'@A*2'", "{@A*2}"}, {"@B", "@B"},  {"'@B'", "@B"},
      {"''@''", "@"},       {"@Q*2", "{X}*2"},   {"'@'", "@"},         {"@ '", "@ "},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(Value("VALUE", value), expected) << value;
  EXPECT_EQ(Value("L", "@A"), "3.000000U");
}

}  // namespace
