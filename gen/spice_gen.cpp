// The frame of a run shared by every flavour: options copy, deck file, blocks, component loop.
#include "gen/spice_gen.h"

#include <iostream>

#include "design/platform.h"
#include "gen/component_pipe.h"
#include "gen/probe_text.h"

void CSpiceGen::CopyOptionsFrom(const WireOptions& from) {
  std::string ownRootPath = options.rootPath;
  options = from;
  options.rootPath = ownRootPath;
}

void CSpiceGen::WriteDefinition(SpiceBlock&) {}

namespace {

// The text in front of the last "\", or "" when there is none.
std::string FolderOf(const std::string& path) {
  size_t slash = path.rfind('\\');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

std::string CSpiceGen::CircuitPathOf(SpiceProject& project) const {
  const std::string rootName = project.Root().Name();
  const std::string base = options.circuitFileName.empty() ? rootName : options.circuitFileName;
  if (!options.outputFolder.empty())
    return options.outputFolder + "\\" + base + "." + options.circuitExtension;
  if (options.dialect.genhdlFolder)
    return "genhdl\\" + rootName + "\\" + base + "." + options.circuitExtension;
  return base + "." + options.circuitExtension;
}

std::vector<std::string> MakeDeckFolders(const std::string& circuitPath) {
  // Only the two folder levels in front of the file are created, outer one first.
  const std::string inner = FolderOf(circuitPath);
  const std::string outer = FolderOf(inner);
  std::vector<std::string> made;
  for (const std::string& folder : {outer, inner})
    if (!folder.empty() && MakeFolder(folder)) made.push_back(folder);
  return made;
}

void CSpiceGen::OpenWirelist(SpiceProject& project, std::ostream& deck) {
  circuitPath = CircuitPathOf(project);
  out.Open(deck);
}

void CSpiceGen::RunFrame(SpiceProject& project, const DeckFrame& frame, std::ostream& deck) {
  SpiceBlock& root = project.Root();
  OpenWirelist(project, deck);
  WriteHeader(root);
  if (frame.hdlIncludes) WriteHdlIncludes(root.Name());
  if (!frame.definitionsBehindRoot)
    for (SpiceBlock& block : project.SubBlocks()) WriteDefinition(block);
  if (frame.rootAsDefinition) {
    WriteDefinition(root);
  } else {
    BeginBlock(root);
    WriteRootComponents(root);
  }
  if (frame.generatorStatements) WriteGeneratorStatements();
  if (options.dictionary) WriteDictionary(0);
  WriteInitialConditions(root);
  if (frame.definitionsBehindRoot)
    for (auto block = project.SubBlocks().rbegin(); block != project.SubBlocks().rend(); ++block)
      WriteDefinition(*block);
  if (frame.globals == DeckFrame::kGlobalsBeforeIncludes) WriteGlobals(project.tables.globalNets);
  WriteModelIncludes();
  WriteModelDirectives();
  if (frame.optionsLine) out << ".OPTIONS INGOLD=2 CSDF=2\n";
  if (frame.endMark) out << "*.END\n";
  if (frame.globals == DeckFrame::kGlobalsAtEnd) WriteGlobals(project.tables.globalNets);
  out.Close();
}

void CSpiceGen::BeginBlock(SpiceBlock& block) {
  // Each block is written once: its table moves here instead of being copied.
  walk.nodes = std::move(block.NodeMap());
  block.NodeMap().clear();
  // Most nets get their node while the pins are written: room for all of them at once
  // instead of a rehash at every doubling. The order of the table shows nowhere.
  walk.nodes.reserve(block.netCount);
  // Lines offered by entry need a list that holds no line of another table.
  walk.linesOffered.assign(block.netCount, 0);
  walk.linesByEntry = dictionaryLines.Empty();
  for (const auto& [key, value] : config.nameMap) {
    std::string node = walk.nodes[value];
    walk.nodes[key] = node;
  }
  // The deck's probe text of the block's probed nets; one entry for each text.
  walk.flatProbes.clear();
  for (const NetProbe& probe : block.Probes())
    walk.flatProbes.emplace(ProbeExpression(options, probe.kind, probe.node), false);
  walk.generatorComps.clear();
  walk.analysisKeywords.Clear();
  options.nextNodeNumber = block.nextNode;
  options.inventedNodes = 0;
}

void CSpiceGen::WriteComponents(SpiceBlock& block) {
  if (streamedComponents && &block == streamedBlock) {
    WriteStreamedComponents(block);
    return;
  }
  for (SpiceComp& comp : block.Comps()) WriteComponent(comp);
}

void CSpiceGen::WriteComponent(SpiceComp& comp) {
  if (comp.RefName().empty()) {
    std::string note = "*Note : Skipping Component " + comp.Label() + "\n";
    std::cout << note;
    out << note;
    return;
  }
  EmitComponent(comp);
}

void CSpiceGen::WriteStreamedComponents(SpiceBlock& root) {
  // The nets of the component a few places ahead are looked for in the node table early, so
  // that the misses of a large table overlap the writing of the lines before.
  constexpr size_t kPrefetchAhead = 4;
  std::vector<SpiceComp> batch;
  while (streamedComponents->Next(batch)) {
    for (size_t i = 0; i < batch.size(); ++i) {
      if (i + kPrefetchAhead < batch.size())
        for (const PinEntry& pin : batch[i + kPrefetchAhead].PinNets()) walk.nodes.Prefetch(pin.net.Name());
      SpiceComp& comp = batch[i];
      // A flat walk that ends before the deck is written gives these names to the table before
      // the first line; here they come with their component, which is the same deck as long as
      // no earlier line took the name for another node. A hierarchical load gives none.
      if (options.flatten)
        root.ForEachSubBlockGlobal(comp, [this](const std::string& name, const std::string& node) {
          // An empty entry is no node yet: no line has taken the name.
          std::string& slot = walk.nodes.try_emplace(name).first->second;
          if (slot.empty())
            slot = node;
          else if (slot != node)
            throw GlobalNameCameLate();
        });
      WriteComponent(comp);
    }
  }
}

void CSpiceGen::WriteDefinitionBody(SpiceBlock& block, const char* endText) {
  BeginBlock(block);
  out << "\n*Definition For Project " << block.name << "\n";
  out << ".SUBCKT " << block.name;
  for (const SpiceNet& port : block.Ports()) out << ' ' << NodeName(port.Name());
  out << "\n";
  WriteComponents(block);
  if (options.dictionary) WriteDictionary(1);
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
