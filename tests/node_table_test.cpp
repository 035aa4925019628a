// NodeTable: net name to node text, and the LargeArray under its index.
#include "design/node_table.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "design/large_array.h"

namespace {

// Each step reads or writes one key; the table must answer as an ordered map does.
TEST(NodeTable, AnswersAsAMapThroughRecentKeysGrowthCopyMoveAndClear) {
  struct Step {
    const char* key;
    const char* write;  // null: only read through find
  };
  const Step steps[] = {
      {"N1", "1"},   {"N1", nullptr}, {"N2", "2"}, {"n2", "3"},  {"N2", nullptr}, {"", "4"},
      {"", nullptr}, {"N3", nullptr}, {"N1", "5"}, {"GND", "0"}, {"N1", nullptr}, {"N3", "6"},
  };
  NodeTable table;
  std::map<std::string, std::string> expected;
  for (const Step& step : steps) {
    if (step.write) {
      auto [at, added] = table.try_emplace(step.key);
      EXPECT_EQ(added, expected.count(step.key) == 0) << step.key;
      at->second = step.write;
      expected[step.key] = step.write;
    }
    auto found = table.find(step.key);
    ASSERT_EQ(found == table.end(), expected.count(step.key) == 0) << step.key;
    if (found != table.end()) {
      EXPECT_EQ(found->second, expected[step.key]) << step.key;
    }
  }
  // Far more keys than the cache of recent ones: each read right away and again later.
  for (int i = 0; i < 20000; ++i) {
    const std::string key = "X" + std::to_string(i);
    table[key] = std::to_string(i);
    expected[key] = std::to_string(i);
    ASSERT_EQ(table[key], std::to_string(i));
  }
  const NodeTable copy = table;
  NodeTable moved = std::move(table);
  EXPECT_TRUE(table.empty());
  EXPECT_EQ(table.find("N1"), table.end());
  for (const NodeTable* each : {&copy, static_cast<const NodeTable*>(&moved)}) {
    ASSERT_EQ(each->size(), expected.size());
    for (const auto& [key, value] : expected) {
      auto found = each->find(key);
      ASSERT_NE(found, each->end()) << key;
      EXPECT_EQ(found->second, value) << key;
    }
    std::map<std::string, std::string> seen(each->begin(), each->end());
    EXPECT_EQ(seen, expected);
  }
  // Entries come in the order they were added.
  EXPECT_EQ(copy.begin()->first, "N1");
  EXPECT_EQ((copy.begin() + 2)->first, "n2");
  moved.clear();
  EXPECT_EQ(moved.count("N1"), 0u);
  moved["N1"];
  EXPECT_EQ(moved.size(), 1u);
  EXPECT_EQ(moved.find("N1")->second, "");
}

TEST(NodeTable, FirstEntryOfAKeyWinsInAListAndReserveKeepsEntries) {
  NodeTable table{{"A", "1"}, {"B", "2"}, {"A", "3"}};
  EXPECT_EQ(table.size(), 2u);
  EXPECT_EQ(table["A"], "1");
  table.reserve(100000);
  EXPECT_EQ(table["B"], "2");
  EXPECT_EQ(table.count("C"), 0u);
}

TEST(LargeArray, StartsZeroedAndCopiesInSmallAndLargeSizes) {
  struct Record {
    uint64_t a;
    uint32_t b;
  };
  // Below and above the size from which large pages are asked for.
  for (size_t count : {size_t{0}, size_t{1}, size_t{1000}, size_t{1} << 18}) {
    LargeArray<Record> array(count);
    ASSERT_EQ(array.size(), count);
    bool zero = true;
    for (const Record& r : array) zero = zero && r.a == 0 && r.b == 0;
    EXPECT_TRUE(zero) << count;
    if (count == 0) continue;
    array[count - 1] = Record{7, 8};
    LargeArray<Record> copy = array;
    LargeArray<Record> other;
    other.swap(copy);
    EXPECT_EQ(other[count - 1].a, 7u) << count;
    EXPECT_TRUE(copy.empty());
  }
}

}  // namespace
