// SpiceBlock: one block as the generators walk it, with its node tables.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "design/node_names.h"
#include "design/spice_comp.h"
#include "design/spice_net.h"
#include "design/tessel.h"
#include "design/wire_options.h"

/// Global net label to its node text, for the .global lines.
extern std::map<std::string, std::string> globalNets;
/// Block name "/" lower-case node text to the net's internal name.
extern std::unordered_map<std::string, std::string> netDictionary;

class SpiceBlock {
 public:
  SpiceBlock() = default;
  /// A copy carries the tables and components; the load-only fields stay default.
  SpiceBlock(const SpiceBlock& other);
  SpiceBlock& operator=(const SpiceBlock& other);
  SpiceBlock(SpiceBlock&&) noexcept = default;
  SpiceBlock& operator=(SpiceBlock&&) noexcept = default;

  void Load(Tessel::ContainerT<const Tessel::IBlock>& block, Tessel::ContainerT<const Tessel::IPath>& path,
            WireOptions options, std::string instancePath, bool byPath);
  void AddFlatInstance(const Tessel::IteratorT<const Tessel::IComp>& comp);
  void AddFlatComp(const Tessel::IteratorT<const Tessel::IComp>& comp);

  std::string Name() const { return name; }
  std::vector<SpiceComp>& Comps() { return comps; }
  const std::vector<SpiceComp>& Comps() const { return comps; }
  std::vector<SpiceNet>& Ports() { return ports; }
  const std::vector<SpiceNet>& Ports() const { return ports; }
  NodeTable& NodeMap() { return nodeMap; }
  std::map<std::string, bool>& Probes() { return probes; }
  std::map<std::string, std::string>& Nodesets() { return nodesets; }
  std::map<std::string, std::string>& InitialConditions() { return initialConditions; }
  std::map<std::string, std::string>& Guesses() { return guesses; }

  std::string name;
  std::vector<SpiceNet> ports;
  std::vector<SpiceComp> comps;
  Tessel::ContainerT<const Tessel::IBlock> block;
  NodeTable nodeMap;
  std::map<std::string, bool> probes;
  std::map<std::string, std::string> nodesets;
  std::map<std::string, std::string> initialConditions;
  std::map<std::string, std::string> guesses;
  int32_t nextNode = 0;

  // Load-only state, not carried by copies.
  WireOptions options;
  std::string instancePath;
  Tessel::IUIDManager* uidManager = nullptr;
  std::shared_ptr<PinNodeTable> pinNodes = std::make_shared<PinNodeTable>();
  GatheredAttributesCache gatheredAttributes;  // by attribute lists, for the flat walk
  Tessel::IteratorT<const Tessel::IComp> compIter;

  void ScanShunts(Tessel::ContainerT<const Tessel::IBlock> block);
  void ScanPorts();
  void ScanNets();
  void ScanNet(const SpiceNet& net, const std::string& rawBlockName);
  /// The node text of a global net other than ground, the same in every block.
  const std::string& GlobalNode(const std::string& label);
  void CollectComponents(Tessel::ContainerT<const Tessel::IPath>& path, bool byPath);
};

