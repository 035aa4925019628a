// The mapping XML files: sym/Models_Info.xml, then (behind a line "%%") sym/Instances_Info.xml,
// read for a bipolar part and a VHDL part and mapped to models and parameter files.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "design/spice_comp.h"
#include "model/model_files.h"
#include "model/model_mapping.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

SpiceComp Comp(const std::string& name, const std::vector<std::pair<std::string, std::string>>& attrs) {
  SpiceComp comp;
  comp.name = comp.label = comp.refName = name;
  comp.hasAttributes = true;
  comp.internalName = comp.instancePath = "$1I1";
  for (const auto& [key, value] : attrs) comp.attrs.Set(key, value);
  return comp;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::EnterScratchFolder();
  std::vector<std::string> parts = fuzz::Split(fuzz::Text(data, size), "\n%%\n", 2);
  fuzz::WriteFile("sym/Models_Info.xml", parts[0]);
  fuzz::WriteFile("sym/Instances_Info.xml", parts[1]);
  ClearModelMappingCache();
  ResetParameterFiles();
  SpiceComp bipolar = Comp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
  ReadModelMapping(bipolar);
  ReadInstanceMapping(bipolar);
  SpiceComp counter =
      Comp("U1", {{"SIMULATION MODEL", "VHDL"}, {"VHDL MODEL", "mylib.counter"}, {"PART NUMBER", "PN2"}});
  MapComponentModel(counter);
  SpiceComp mos = Comp("M1", {{"MODEL", "NMOS"}, {"PART NUMBER", "PN3"}, {"W", "1u"}});
  MapComponentModel(mos);
  ResetParameterFiles();
  ClearModelMappingCache();
  return 0;
}
