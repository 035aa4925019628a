// The place and reason that an import names for each kind of bad field, exactly, from the table
// tests/import_errors.txt.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "design/db/design_import.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace {

TEST(ImportErrors, EachFaultIsNamedByItsPathAndReason) {
  std::ifstream table(std::string(VESK_SOURCE_DIR) + "/tests/import_errors.txt", std::ios::binary);
  ASSERT_TRUE(table) << "no tests/import_errors.txt";
  const std::string folder = ::testing::TempDir() + "/vesk-import-errors";
  std::string json, line;
  int cases = 0;
  while (std::getline(table, line)) {
    if (line.rfind("#", 0) == 0 || (line.empty() && json.empty())) continue;
    if (line.rfind("=> ", 0) != 0) {
      json += (json.empty() ? "" : "\n") + line;
      continue;
    }
    std::string error;
    EXPECT_FALSE(ImportDesign(json, folder, error)) << json;
    EXPECT_EQ(error, line.substr(3)) << json;
    json.clear();
    ++cases;
  }
  EXPECT_GT(cases, 50);
}

}  // namespace
