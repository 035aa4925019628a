// The set of deck names given out: numbered names kept as bits, the others as texts, and each
// name answered the same way as a plain set of texts would.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "design/wire_options.h"

namespace {

TEST(UsedNames, EachNameHasOnePlace) {
  EXPECT_TRUE(NumberedNames::Keeps("R1"));
  EXPECT_TRUE(NumberedNames::Keeps("X9999999"));
  EXPECT_TRUE(NumberedNames::Keeps("A1B2"));  // text "A1B", number 2
  EXPECT_TRUE(NumberedNames::Keeps("7"));     // no text
  EXPECT_FALSE(NumberedNames::Keeps("R"));
  EXPECT_FALSE(NumberedNames::Keeps("R0"));   // a leading zero: "R0" and "R00" are other names
  EXPECT_FALSE(NumberedNames::Keeps("R01"));
  EXPECT_FALSE(NumberedNames::Keeps("X10000000"));  // eight digits
  EXPECT_FALSE(NumberedNames::Keeps(std::string(33, 'Q') + "1"));
  EXPECT_FALSE(NumberedNames::Keeps(""));
}

// Random names of few letters and numbers, some far apart, some repeated, some with zeros in
// front, against a set of texts; then again after Clear.
TEST(UsedNames, AnswersAsASetOfTexts) {
  std::mt19937 random(3);
  const std::string texts[] = {"R", "X", "V", "r", "", "AB1C", "Q_", "X1", std::string(32, 'L'), std::string(33, 'L')};
  UsedNames used;
  for (int round = 0; round < 2; ++round) {
    std::set<std::string> oracle;
    for (int i = 0; i < 200000; ++i) {
      std::string name = texts[random() % std::size(texts)];
      const int kind = random() % 10;
      if (kind < 6)
        name += std::to_string(1 + random() % 3000);
      else if (kind < 8)
        name += std::to_string(random() % 20000000);
      else if (kind == 8)
        name += "0" + std::to_string(random() % 50);
      ASSERT_EQ(used.Insert(name), oracle.insert(name).second) << name;
    }
    used.Clear();
  }
}

}  // namespace
