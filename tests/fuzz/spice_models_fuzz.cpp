// SPICE model files: the sub-circuit reader and the called names of X lines.
#include <cstdint>
#include <string>
#include <vector>

#include "model/spice_reader.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = fuzz::Text(data, size);
  SpiceReader reader;
  reader.ParseText(text);
  // Every called name is looked up, as the include walk does.
  for (const std::string& name : {std::string("A"), std::string("amp"), text.substr(0, 8)}) {
    if (const SpiceSubckt* found = reader.FindSubcktByName(name))
      for (const std::string& called : found->calledNames) reader.FindSubcktByName(called);
  }
  CalledSubcktName(fuzz::Split(text, " ", 12));
  return 0;
}
