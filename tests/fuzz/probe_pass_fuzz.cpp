// The probe pass over a deck's text, in each dialect's print form.
#include <cstdint>
#include <sstream>
#include <string>

#include "post/probe_pass.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  PrintSettings settings;
  static const PrintStyle kStyles[] = {PrintStyle::kPspice, PrintStyle::kAnalysis, PrintStyle::kBerkeley};
  settings.style = kStyles[data[0] % 3];
  settings.analogDeps = (data[0] & 0x10) != 0;
  if (data[0] & 0x20) settings.printWord = ".PRINT";
  ProbePassState state;
  std::ostringstream console;
  ProbeProcessText(fuzz::Text(data + 1, size - 1), state, settings, console);
  return 0;
}
