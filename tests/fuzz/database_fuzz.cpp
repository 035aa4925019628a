// A damaged database file opened by the loader and described back.
#include <cstdint>
#include <string>

#include "design/db/design_import.h"
#include "design/db/design_store.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::EnterScratchFolder();
  fuzz::WriteFile("project/database/" + std::string(vdb::kDatabaseFile), fuzz::Text(data, size));
  std::string json, error;
  ExportDesign("project", json, error);
  return 0;
}
