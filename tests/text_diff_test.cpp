// The diff that the deck cases print on failure: marks, hunks and the context around them.
#include "tests/text_diff.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct DiffCase {
  const char* want;
  const char* got;
  const char* diff;
};

TEST(UnifiedDiffTest, MarksHunksAndContext) {
  const DiffCase cases[] = {
      {"a\nb\n", "a\nb\n", "(texts are equal)\n"},
      // A changed line: the expected one first, then the actual one.
      {"a\nb\nc\n", "a\nx\nc\n", "@@ -1 +1 @@\n a\n-b\n+x\n c\n"},
      // Lines only on one side; a missing last line end and a carriage return are shown.
      {"a\n", "a\nb", "@@ -1 +1 @@\n a\n+b\n\\ No newline at end of text\n"},
      {"a\r\nb\n", "a\nb\n", "@@ -1 +1 @@\n-a\\r\n+a\n b\n"},
      // Changes more than six lines apart make two hunks with three lines of context each.
      {"1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n", "0\n2\n3\n4\n5\n6\n7\n8\n9\n0\n",
       "@@ -1 +1 @@\n-1\n+0\n 2\n 3\n 4\n@@ -7 +7 @@\n 7\n 8\n 9\n-10\n+0\n"},
      {"1\n2\n3\n4\n5\n", "0\n2\n3\n4\n0\n", "@@ -1 +1 @@\n-1\n+0\n 2\n 3\n 4\n-5\n+0\n"},
  };
  for (const DiffCase& c : cases) EXPECT_EQ(UnifiedDiff(c.want, c.got), c.diff) << c.want << "|" << c.got;
}

}  // namespace
