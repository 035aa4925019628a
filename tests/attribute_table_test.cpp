// AttributeTable: reading by key answers as a map does, in short lists (scanned) and long
// ones (searched).
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "design/spice_comp.h"

namespace {

TEST(AttributeTable, GetAnswersAsAMapInShortAndLongLists) {
  // Keys of one length with different letters, keys that begin other keys, an empty key.
  const char* const keys[] = {"VALUE", "VALUF", "VAL",  "V",     "",    "MODEL", "ORDER",    "PREFIX",
                              "L",     "W",     "AD",   "AS",    "PD",  "PS",    "NRD",      "NRS",
                              "M",     "IC",    "TEMP", "DTEMP", "TC1", "TC2",   "PIN ORDER"};
  const char* const absent[] = {"VALUEX", "VALU", "X", "ORDEr", "PIN", "Z"};
  for (size_t count = 0; count <= sizeof keys / sizeof keys[0]; ++count) {
    AttributeTable::List list;
    std::map<std::string, std::string> expected;
    for (size_t i = 0; i < count; ++i) {
      const std::string value = "v" + std::to_string(i);
      AttributeTable::SetIn(list, keys[i], value);
      expected[keys[i]] = value;
    }
    AttributeTable table;
    table.Assign(list);
    for (const auto& [key, value] : expected) EXPECT_EQ(table.Get(key), value) << count << " " << key;
    for (size_t i = count; i < sizeof keys / sizeof keys[0]; ++i) EXPECT_EQ(table.Get(keys[i]), "") << count;
    for (const char* key : absent) EXPECT_EQ(table.Get(key), "") << count << " " << key;
  }
}

}  // namespace
