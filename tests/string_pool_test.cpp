// StringPool: the interned texts of the design database and their lookup index.
#include "design/db/string_pool.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StringPool, InternsEachTextOnceThroughGrowth) {
  vdb::StringPool pool;
  EXPECT_EQ(pool.Intern(""), 0u);  // id 0 is the empty text from the start
  const uint32_t r1 = pool.Intern("R1");
  EXPECT_EQ(pool.Intern("R1"), r1);
  EXPECT_NE(pool.Intern("r1"), r1);
  // Far past the first index size, so that the index doubles several times.
  for (int i = 0; i < 50000; ++i) ASSERT_EQ(pool.Intern("N" + std::to_string(i)), r1 + 2 + i);
  for (int i = 0; i < 50000; i += 331) EXPECT_EQ(pool.Intern("N" + std::to_string(i)), r1 + 2 + i);
  EXPECT_EQ(pool.Intern("R1"), r1);
  EXPECT_EQ(pool.View(r1 + 2 + 4999), "N4999");
  EXPECT_STREQ(pool.CStr(r1), "R1");
  uint32_t id = 99;
  EXPECT_TRUE(pool.Find("N777", id));
  EXPECT_EQ(id, r1 + 2 + 777);
  EXPECT_FALSE(pool.Find("N50000", id));
  EXPECT_EQ(id, r1 + 2 + 777);  // untouched when not found
}

TEST(StringPool, AppendAddsWithoutLookingAndReleaseForgetsTheIndex) {
  vdb::StringPool pool;
  const uint32_t a = pool.Append("A");
  EXPECT_EQ(pool.Append("A"), a + 1);  // loading keeps the stored ids as they are
  const uint32_t b = pool.Intern("B");
  pool.ReleaseIndex();
  uint32_t id = 0;
  EXPECT_FALSE(pool.Find("B", id));
  EXPECT_EQ(pool.View(b), "B");  // the texts stay
  // Interning goes on after a release, with the texts interned from then on.
  const uint32_t c = pool.Intern("C");
  EXPECT_EQ(pool.Intern("C"), c);
  EXPECT_NE(pool.Intern("B"), b);
  EXPECT_EQ(pool.Size(), c + 2);
}

}  // namespace
