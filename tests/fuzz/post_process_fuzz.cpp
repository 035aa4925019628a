// The post-process pass over a deck's text, device lines included, in each dialect.
#include <cstdint>
#include <string>
#include <unordered_map>

#include "gen/dialect_of.h"
#include "post/post_process.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  fuzz::EnterScratchFolder();
  WireOptions options;
  options.wirelistKind = 1 + data[0] % 4;
  options.dracula = (data[0] & 0x08) != 0;
  options.flatten = (data[0] & 0x10) ? 0 : 1;
  options.dialect = DialectOf(options);
  SpiceConfig config;
  config.stripUnits = (data[0] & 0x20) != 0;
  std::unordered_map<std::string, std::string> internalNames{{"x1", "$1I1"}, {"m1", "$1I2"}};
  std::string currentInstance;
  PostSettings settings{options, config, internalNames, currentInstance};
  ReadStripWords(config);
  PostProcessText(fuzz::Text(data + 1, size - 1), settings);
  return 0;
}
