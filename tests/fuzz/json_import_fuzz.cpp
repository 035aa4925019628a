// A JSON design description through the import into a scratch project, then read back.
#include <cstdint>
#include <string>

#include "design/db/design_import.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::EnterScratchFolder();
  std::string error;
  if (ImportDesign(fuzz::Text(data, size), "project", error, "")) {
    std::string json;
    ExportDesign("project", json, error);
  }
  return 0;
}
