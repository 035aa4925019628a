// The parameter files of a model: sym/<model>-param.txt and (behind a line "%%") sym/<model>.par,
// read for an instance line, and the -param.txt sections replaced and filtered.
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/model_files.h"
#include "model/parameter_file.h"
#include "post/instance_parameters.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::EnterScratchFolder();
  std::vector<std::string> parts = fuzz::Split(fuzz::Text(data, size), "\n%%\n", 2);
  fuzz::WriteFile("sym/nmod-param.txt", parts[0]);
  fuzz::WriteFile("sym/nmod.par", parts[1]);
  std::unordered_map<std::string, std::string> internalNames{{"x1", "$1I1"}};
  std::string line = "X1 A B nmod PARAMS: W=1", currentInstance;
  // A fresh cache, so that every input is read from the files just written.
  ParameterFileCache cache;
  LoadInstanceParameters("X1", "nmod", line, internalNames, currentInstance, cache);

  ParameterFile file;
  file.Assign(parts[0]);
  file.ReplaceSection("nmod", "$1I1", "*nmod $1I1\n+ W=2\n*end\n");
  std::string kept;
  FilterOtherSections(file.Text(), "nmod", "$1I1", kept);
  return 0;
}
