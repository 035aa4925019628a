// StringSet: the packed index behind the large name lists.
#include "design/string_set.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringSet, TellsNewFromKnownInOrderThroughGrowthAndClear) {
  StringSet set;
  EXPECT_TRUE(set.Insert("R1"));
  EXPECT_TRUE(set.Insert(""));
  EXPECT_FALSE(set.Insert(""));
  EXPECT_TRUE(set.Insert("r1"));
  EXPECT_FALSE(set.Contains("R"));
  const std::string longText(100000, 'x');  // larger than one storage block
  EXPECT_TRUE(set.Insert(longText));
  for (int i = 0; i < 100000; ++i) ASSERT_TRUE(set.Insert("N" + std::to_string(i)));
  for (int i = 0; i < 100000; i += 997) EXPECT_FALSE(set.Insert("N" + std::to_string(i)));
  EXPECT_FALSE(set.Insert("R1"));
  EXPECT_TRUE(set.Contains(longText));
  EXPECT_EQ(set.Texts()[2], "r1");
  EXPECT_EQ(set.Texts()[4], "N0");
  EXPECT_FALSE(set.Add("N5").second);
  set.Clear();
  EXPECT_EQ(set.Size(), 0u);
  EXPECT_FALSE(set.Contains("N0"));
  EXPECT_TRUE(set.Insert("N0"));
}

// Texts met again soon after they were added (found through the small cache of recent
// texts) and long after (found through the index) answer alike, across growth and Clear.
TEST(StringSet, TextsMetAgainSoonOrLateAreKnownOnce) {
  struct Step {
    const char* text;
    bool added;
  };
  const Step steps[] = {
      {"* N1 = 1", true}, {"* N1 = 1", false}, {"* N1 = 2", true},  {"* N1 = 1", false},
      {"* N2 = 2", true}, {"* n2 = 2", true},  {"* N2 = 2", false}, {"", true},
      {"", false},        {"* N1 = 2", false}, {"* N1 = 1 ", true}, {"* N1 = 1", false},
  };
  StringSet set;
  for (int round = 0; round < 2; ++round) {
    for (const Step& step : steps) {
      auto [stored, added] = set.Add(step.text);
      EXPECT_EQ(added, step.added) << round << " '" << step.text << "'";
      EXPECT_EQ(stored, step.text);
    }
    // Far more texts than the small cache holds, each met again right away and at the end.
    for (int i = 0; i < 5000; ++i) {
      const std::string text = "* M" + std::to_string(i) + " = " + std::to_string(i + 1);
      ASSERT_TRUE(set.Insert(text)) << text;
      ASSERT_FALSE(set.Insert(text)) << text;
    }
    for (int i = 0; i < 5000; i += 7)
      EXPECT_FALSE(set.Insert("* M" + std::to_string(i) + " = " + std::to_string(i + 1)));
    EXPECT_EQ(set.Size(), 5006u);
    for (const Step& step : steps) EXPECT_TRUE(set.Contains(step.text)) << step.text;
    set.Clear();
    EXPECT_FALSE(set.Contains("* N1 = 1"));
  }
}

}  // namespace
