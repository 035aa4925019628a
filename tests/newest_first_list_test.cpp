// NewestFirstList: texts read newest first; those added as known new keep their place in the
// order beside those looked up, and survive the growth of their blocks.
#include "post/newest_first_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Read(const NewestFirstList& list) {
  std::vector<std::string> texts;
  list.ForEachNewestFirst([&](std::string_view text) { texts.emplace_back(text); });
  return texts;
}

TEST(NewestFirstList, KnownNewTextsTakeTheirPlaceBesideLookedUpOnes) {
  NewestFirstList list;
  EXPECT_TRUE(list.Add("* A = 1"));
  list.AddKnownNew("* B = 2");
  EXPECT_FALSE(list.Add("* A = 1"));  // looked up: there already
  list.AddKnownNew("* C = 3");
  EXPECT_TRUE(list.Add("* D E = 4 5"));
  EXPECT_EQ(Read(list), (std::vector<std::string>{"* D E = 4 5", "* C = 3", "* B = 2", "* A = 1"}));
  EXPECT_EQ(list.Size(), 4u);
  list.Clear();
  EXPECT_TRUE(list.Empty());
  list.AddKnownNew("* B = 2");
  EXPECT_EQ(Read(list), (std::vector<std::string>{"* B = 2"}));
}

TEST(NewestFirstList, ManyKnownNewTextsStayWholeAcrossBlocks) {
  NewestFirstList list;
  std::vector<std::string> expected;
  for (int i = 0; i < 50000; ++i) {
    std::string text = "* N" + std::to_string(i) + " = " + std::to_string(i + 1);
    if (i == 777) text.assign(70000, 'x');  // longer than a block
    list.AddKnownNew(text);
    expected.push_back(text);
  }
  std::reverse(expected.begin(), expected.end());
  EXPECT_EQ(Read(list), expected);
}

}  // namespace
