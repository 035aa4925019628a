// SPICE netlists for `vesk-db import-spice`: the reader and the conversion into a design. The
// first line that reads "*FILE name" starts a second file that .include and .lib can reach.
#include <cstdint>
#include <string>
#include <vector>

#include "design/db/spice_to_design.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = fuzz::Text(data, size);
  std::string included;
  size_t split = text.find("\n*FILE ");
  if (split != std::string::npos) {
    included = text.substr(split + 1);
    text.resize(split);
  }
  auto load = [&](const std::string&, std::string& contents) {
    contents = included;
    return !included.empty();
  };
  vdb::Design design;
  std::vector<vdb::SpiceSideFile> files;
  std::string error;
  vdb::DesignFromSpiceText(text, "netlist.cir", load, "TOP", design, files, error);
  return 0;
}
