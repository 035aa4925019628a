// The configuration file given by -k.
#include <cstdint>
#include <string>

#include "gen/spice_gen.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::EnterScratchFolder();
  fuzz::WriteFile("fuzz.cfg", fuzz::Text(data, size));
  CSpiceGen gen;
  gen.options.configFile = "fuzz.cfg";
  gen.ReadConfigFile();
  return 0;
}
