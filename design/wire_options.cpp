// The option fields: defaults, and the two lists that every copy shares.
#include "design/wire_options.h"

#include <algorithm>

WireOptions::WireOptions()
    : levels(std::make_shared<LevelList>()), usedNames(std::make_shared<UsedNames>()) {}

void WireOptions::SetDefaults() {
  flatten = 1;
  useNodeNames = false;
  noParamWarning = false;
  dereplicate = false;
  probeAll = false;
  dracula = false;
  attWirelist = false;
  dictionary = true;
  crossReference = false;
  ratings = false;
  ignorePrints = false;
  noSort = false;
  alien = false;
  verbose = false;
  analogDeps = false;
  maxNameChars = 256;
  wirelistKind = kPspice;
  readModFiles = 1;
  printWord = ".PROBE";
  firstOrder.clear();
  firstPrefix.clear();
  configFile.clear();
  headerFile.clear();
  rootPath.clear();
  circuitFileName.clear();
  loadAttribute = "LOAD";
  circuitExtension = "cir";
  optionsString.clear();
  paramFile.clear();
  outputFolder.clear();
  includeSources = 0;
  hdlSpiceSources = 0;
  dialect = Dialect();
}

bool WireOptions::HasLevel(const std::string& level) const {
  if (!levels) return false;
  return std::find(levels->begin(), levels->end(), level) != levels->end();
}
