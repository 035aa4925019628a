// The word splitting of the post-process rewrites: views and copies give the same words.
#include "post/line_words.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(LineWords, ForEachWordWithEndGivesTheWordsOfWordsWithEnd) {
  const std::vector<std::string> lines = {
      "",
      " ",
      "R1",
      "R1 1 2 1K",
      "  R1  1   2 ",
      "X1 1 2 SUB PARAMS: A=1 B = 2",
      "+ C={A + 1} ",
      "* a comment",
  };
  for (const std::string& line : lines) {
    std::vector<std::string> viewed;
    ForEachWordWithEnd(line, [&](std::string_view word) { viewed.emplace_back(word); });
    EXPECT_EQ(viewed, WordsWithEnd(line)) << '"' << line << '"';
    ASSERT_FALSE(viewed.empty());
    EXPECT_EQ(viewed.back(), "");  // the end word
  }
}

}  // namespace
