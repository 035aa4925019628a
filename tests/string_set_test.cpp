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

}  // namespace
