// The place and reason that an import names for each kind of bad field, exactly, from the table
// tests/import_errors.txt.
#include <gtest/gtest.h>

#include <string>

#include "design/db/design_import.h"
#include "tests/deck_harness.h"

namespace {

TEST(ImportErrors, EachFaultIsNamedByItsPathAndReason) {
  const std::string folder = ::testing::TempDir() + "/vesk-import-errors";
  const auto cases = ReadCaseTable("tests/import_errors.txt");
  EXPECT_GT(cases.size(), 50u) << "tests/import_errors.txt";
  for (const auto& [json, message] : cases) {
    std::string error;
    EXPECT_FALSE(ImportDesign(json, folder, error)) << json;
    EXPECT_EQ(error, message) << json;
  }
}

}  // namespace
