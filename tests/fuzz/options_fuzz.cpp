// The command line and the ini file vesk.ini: the first line of the input is the command
// line (split at blanks), the rest is the ini file in the working folder.
#include <cstdint>
#include <string>
#include <vector>

#include "gen/spice_gen.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::EnterScratchFolder();
  std::vector<std::string> parts = fuzz::Split(fuzz::Text(data, size), "\n", 2);
  fuzz::WriteFile("vesk.ini", parts[1]);
  std::vector<std::string> words = fuzz::Split(parts[0], " ", 40);
  std::vector<const char*> argv{"vesk"};
  for (const std::string& word : words)
    if (!word.empty()) argv.push_back(word.c_str());
  if (CSpiceGen::CheckHelp(static_cast<int>(argv.size()), argv.data()) == 1) return 0;
  CSpiceGen options;
  const char* group = nullptr;
  options.ParseArguments(&group, static_cast<int>(argv.size()), argv.data());
  return 0;
}
