// The frame of a run shared by every flavour: options copy, deck file, blocks, component loop.
#include "gen/spice_gen.h"

#include <iostream>

#include "design/platform.h"

void CSpiceGen::CopyOptionsFrom(const CSpiceGen& options) {
  std::string ownRootPath = rootPath;
  static_cast<WireOptions&>(*this) = static_cast<const WireOptions&>(options);
  rootPath = ownRootPath;
}

void CSpiceGen::WriteDefinition(SpiceBlock&) {}

namespace {

// The text in front of the last "\", or "" when there is none.
std::string FolderOf(const std::string& path) {
  size_t slash = path.rfind('\\');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

void CSpiceGen::OpenWirelist(SpiceProject& project) {
  const std::string rootName = project.Root().Name();
  const std::string base = circuitFileName.empty() ? rootName : circuitFileName;
  if (!outputFolder.empty())
    circuitPath = outputFolder + "\\" + base + "." + circuitExtension;
  else if (wirelistKind == kKelpo)
    circuitPath = "genhdl\\" + rootName + "\\" + base + "." + circuitExtension;
  else
    circuitPath = base + "." + circuitExtension;

  // Only the two folder levels in front of the file are created, outer one first.
  const std::string inner = FolderOf(circuitPath);
  const std::string outer = FolderOf(inner);
  if (!outer.empty()) MakeFolder(outer);
  if (!inner.empty()) MakeFolder(inner);
  out.Open(FileSystemPath(circuitPath));
}

void CSpiceGen::BeginBlock(SpiceBlock& block) {
  // Each block is written once: its table moves here instead of being copied.
  nodes = std::move(block.NodeMap());
  block.NodeMap().clear();
  for (const auto& [key, value] : nameMap) {
    std::string node = nodes[value];
    nodes[key] = node;
  }
  flatProbes = block.Probes();
  generatorComps.clear();
  analysisKeywords.Clear();
  nextNodeNumber = block.nextNode;
  inventedNodes = 0;
}

void CSpiceGen::WriteComponents(SpiceBlock& block) {
  for (SpiceComp& comp : block.Comps()) {
    if (comp.RefName().empty()) {
      std::string note = "*Note : Skipping Component " + comp.Label() + "\n";
      std::cout << note;
      out << note;
      continue;
    }
    EmitComponent(comp);
  }
}

void CSpiceGen::WriteDefinitionBody(SpiceBlock& block, const char* endText) {
  BeginBlock(block);
  out << "\n*Definition For Project " << block.name << "\n";
  out << ".SUBCKT " << block.name;
  for (const SpiceNet& port : block.Ports()) out << ' ' << NodeName(port.Name());
  out << "\n";
  WriteComponents(block);
  if (dictionary) WriteDictionary(1);
  WriteInitialConditions(block);
  out << endText << "\n";
}

void CSpiceGen::FlushNotes() {
  for (const std::string& note : notes) {
    std::cout << note << "\n";
    out << note << "\n";
  }
  notes.clear();
}
