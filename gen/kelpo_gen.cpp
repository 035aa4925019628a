// CKelpoSpiceGen: the Kelpo deck frame, HDL instance lines, model directives and netUidMap.
#include "gen/kelpo_gen.h"

#include <iostream>

#include "design/platform.h"
#include "design/spice_project.h"
#include "expr/text.h"
#include "model/model_files.h"

namespace {

// A VERILOG FILE path as the deck wants it: "/" made "\", the extension in lower case.
std::string VerilogFileText(std::string file) {
  for (char& c : file)
    if (c == '/') c = '\\';
  size_t dot = file.find('.');
  if (dot == std::string::npos) return LowerText(file);
  return file.substr(0, dot) + LowerText(file.substr(dot));
}

// The mapping's record of a generic by its lower-case name, or nullptr.
const ModelGeneric* FindGeneric(const SpiceComp& comp, const std::string& name) {
  const auto& generics = comp.Model().modelGenerics;
  auto found = generics.find(LowerText(name));
  return found == generics.end() ? nullptr : found->second.get();
}

// The overriding attribute's value of a generic, or "" when nothing overrides it.
std::string OverridingValue(const SpiceComp& comp, const std::string& name) {
  const ModelGeneric* generic = FindGeneric(comp, name);
  return generic ? generic->attributeValue : "";
}

}  // namespace

void CKelpoSpiceGen::Run(SpiceProject& project, std::ostream& deck) {
  RunFrame(project, options.dialect.frame, deck);
  WriteNetUidMap(project.Root().Name(), project.tables.netDictionary);
}

void CKelpoSpiceGen::WriteRootComponents(SpiceBlock& root) {
  for (SpiceComp& comp : root.Comps()) {
    MapComponentName(comp, root.Name());
    if (comp.excluded) {
      WriteExcludedNote(comp);
      continue;
    }
    Dispatch(comp, true);
  }
}

void CKelpoSpiceGen::WriteDefinition(SpiceBlock& block) {
  BeginBlock(block);
  out << "\n*Definition For Project " << block.Name() << "\n";
  out << ".SUBCKT " << block.Name();
  for (const SpiceNet& port : block.Ports()) out << " " << NodeName(port.Name());
  out << "\n";
  // Unlike the root's loop, a component without attributes does not end this one.
  for (SpiceComp& comp : block.Comps()) {
    if (comp.excluded) {
      WriteExcludedNote(comp);
      continue;
    }
    MapComponentName(comp, block.Name());
    Dispatch(comp, false);
  }
  if (options.dictionary) WriteDictionary(1);
  WriteInitialConditions(block);
  out << ".ENDS\n"
      << "\n";
}

void CKelpoSpiceGen::WriteExcludedNote(const SpiceComp& comp) {
  const std::string note = "*Note : Excluding Component " + comp.Label() + "\n";
  std::cout << note;
  out << note;
}

void CKelpoSpiceGen::MapComponentName(const SpiceComp& comp, const std::string& blockName) {
  const std::string instance = LowerText(comp.RefName());
  if (!instance.empty() && instance[0] == 'x')
    netUidMap[instance] = comp.ChildBlockName();
  else
    netUidMap[blockName + "/" + instance] = comp.InternalName();
}

void CKelpoSpiceGen::Dispatch(SpiceComp& comp, bool inRun) {
  const std::string simulationModel = comp.Attribute("SIMULATION MODEL");
  const std::string simModel = comp.Attribute("SIMMODEL");
  auto either = [&](const char* word) {
    return EqualsIgnoringCase(simulationModel, word) || EqualsIgnoringCase(simModel, word);
  };
  if (either("verilog") || either("veriloga")) {
    WriteVerilogInstance(comp);
  } else if (either("VHDL") || either("VHDL-AMS")) {
    WriteVhdlInstance(comp);
  } else if (either("Spice") || either("") || (inRun && either("SCH"))) {
    EmitComponent(comp);
  } else {
    out << "*" << comp.RefName() << (inRun ? "" : " ") << "Unrecognized Simulation Model type"
        << "\n";
  }
}

void CKelpoSpiceGen::AddModelDirective(const std::string& line) {
  if (directivesLower_.insert(LowerText(line)).second) modelDirectives.push_back(line);
}

void CKelpoSpiceGen::WriteVerilogInstance(const SpiceComp& comp) {
  std::string useVerilog = comp.Attribute("USE_VERILOG");
  if (useVerilog.empty()) useVerilog = comp.Attribute("USE VERILOG");
  if (!useVerilog.empty())
    out << ".use_verilog " << useVerilog << "\n";
  else
    out << ".verilog "
        << SimulatorPath(VerilogFileText(ExpandEnvironmentInPath(comp.Attribute("VERILOG FILE"))), "")
        << "\n";

  const std::string model = comp.Attribute("MODEL");
  out << comp.RefName() << " " << model << " ";
  AddModelDirective(".model " + model + " macro lang=veriloga");
  out << "PORT:";
  WritePins(comp, true);
  WriteVerilogParameters(comp);
  out << "\n";
  FlushNotes();
}

void CKelpoSpiceGen::WriteVerilogParameters(const SpiceComp& comp) {
  bool first = true;
  for (const auto& [key, value] : comp.Attributes().Entries()) {
    if (!StartsWith(key, "VERILOG_PARAM") && !StartsWith(key, "VERILOG PARAM")) continue;
    if (first) out << " GENERIC: ";
    first = false;
    // The name stands behind the word and the one separator that follows it.
    const std::string name = key.size() > 14 ? key.substr(14) : "";
    out << " " << name << "=" << TextBehindEquals(value) << "\n";
  }
}

void CKelpoSpiceGen::WriteVhdlInstance(const SpiceComp& comp) {
  std::string text = comp.Attribute("VHDL");
  if (text.empty()) text = comp.Attribute("VHDL MODEL");
  size_t dot = text.rfind('.');
  const std::string entity = dot == std::string::npos ? text : text.substr(dot + 1);
  std::string library = dot == std::string::npos ? "" : text.substr(0, dot);
  if (library.empty()) library = "WORK";

  out << comp.RefName() << " " << entity << " ";
  if (!comp.Model().modelParameters.empty())
    WriteModelGenerics(comp);
  else
    WriteVhdlGenerics(comp);
  out << " PORT:";
  WritePins(comp, true);
  out << "\n";
  FlushNotes();
  AddModelDirective(".model " + entity + " macro lang=vhdlams LIB=" + library);
}

void CKelpoSpiceGen::WriteVhdlGenerics(const SpiceComp& comp) {
  bool first = true;
  for (const auto& [key, attributeValue] : comp.Attributes().Entries()) {
    if (!StartsWith(key, "VHDL_GENERIC_")) continue;
    if (first) out << " GENERIC: ";
    first = false;
    const std::string name = key.substr(13);
    std::string value = OverridingValue(comp, name);
    if (value.empty()) value = TextBehindEquals(attributeValue);
    out << name << "=\"" << value << "\" ";
  }
}

void CKelpoSpiceGen::WriteModelGenerics(const SpiceComp& comp) {
  bool first = true;
  for (const auto& parameter : comp.Model().modelParameters) {
    if (first) out << " GENERIC: ";
    first = false;
    // Precedence: the overriding attribute, the instance file, the mapping's content, the default.
    std::string text = parameter->instanceText;
    const ModelGeneric* generic = FindGeneric(comp, parameter->name);
    if (text.empty() && generic) text = generic->content;
    if (text.empty()) text = parameter->declaredText;
    std::string value = generic ? generic->attributeValue : "";
    if (value.empty()) value = TextBehindEquals(text);
    out << parameter->name << "=\"" << value << "\" ";
  }
}

void CKelpoSpiceGen::WriteModelDirectives() {
  for (const std::string& line : modelDirectives) out << line << "\n";
}

void CKelpoSpiceGen::WriteNetUidMap(const std::string& rootName,
                                    const std::unordered_map<std::string, std::string>& netDictionary) {
  // The table of net names is complete before the deck is written, and each block's
  // copy of it is the last word on its keys, so one copy at the end gives the same map.
  for (const auto& [key, value] : netDictionary) netUidMap[key] = value;

  MakeFolder("genhdl");
  MakeFolder("genhdl\\" + rootName);
  std::string text;
  for (const auto& [key, value] : netUidMap) text += key + " " + value + "\n";
  ReplaceFile("genhdl\\" + rootName + "\\netUidMap", text);
}
