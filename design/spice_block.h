// SpiceBlock: one block as the generators walk it, with its node tables.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "design/deck_naming.h"
#include "design/node_names.h"
#include "design/spice_comp.h"
#include "design/spice_net.h"
#include "design/tessel.h"
#include "design/wire_options.h"

/// What the walk of a design gathers over all of its blocks, for the generator.
struct WalkTables {
  /// Global net label to its node text, for the .global lines.
  std::map<std::string, std::string> globalNets;
  /// Block name "/" lower-case node text to the net's internal name.
  std::unordered_map<std::string, std::string> netDictionary;
};

/// A probe on a net (its PROBE attribute): the kind ("V", "DB", ...) and the net's node.
struct NetProbe {
  std::string kind;
  std::string node;
};

/// Takes the components of a walk one at a time, as the walk loads them, instead of the
/// root block's list: a generator can write each one while the walk goes on.
class ComponentSink {
 public:
  virtual ~ComponentSink() = default;
  /// A new, empty component held by the sink, for the walk to load where it stays (a component
  /// is large: moving each one costs as much as some of its load). Hand gives it over; one that
  /// is not handed (its load failed) is dropped at the next NewComp.
  virtual SpiceComp& NewComp() = 0;
  /// Gives over the component NewComp gave; false ends the walk early (the taker has stopped).
  virtual bool Hand() = 0;
  /// Takes a component loaded elsewhere.
  bool Take(SpiceComp&& comp) {
    NewComp() = std::move(comp);
    return Hand();
  }
};

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
  /// Load in two steps, for a flat walk that starts before the nodes are scanned: the
  /// shunts and (hierarchical) components, then the ports and nets into the node tables.
  /// The second step writes nothing the flat walk reads.
  /// Without `collect` the components of a hierarchical block are left for StreamComponents.
  void LoadComponents(Tessel::ContainerT<const Tessel::IBlock>& block,
                      Tessel::ContainerT<const Tessel::IPath>& path, WireOptions options,
                      std::string instancePath, bool byPath, bool collect = true);
  /// The components of a hierarchical block handed to `sink` one at a time as they load, in
  /// the order of the list; false when the sink has stopped taking them.
  bool StreamComponents(Tessel::ContainerT<const Tessel::IPath>& path, bool byPath, ComponentSink* sink);
  void ScanNodes();
  void AddFlatInstance(const Tessel::IteratorT<const Tessel::IComp>& comp);
  /// Loads one component of the flat walk into the list, or hands it to `sink` when there is
  /// one (false when the sink has stopped).
  bool AddFlatComp(const Tessel::IteratorT<const Tessel::IComp>& comp, ComponentSink* sink = nullptr);
  /// A global net that only sub-blocks hold has its one name in the flat deck too: calls
  /// `place(flatName, node)` for each pin of `comp` on such a net.
  template <class Place>
  void ForEachSubBlockGlobal(const SpiceComp& comp, Place place) {
    for (const PinEntry& pin : comp.PinNets())
      if (pin.net.IsGlobal() && pin.net.Name() == pin.net.Label() && !IsGroundName(options, pin.net.Label()))
        place(pin.net.Name(), GlobalNode(pin.net.Label()));
  }

  std::string Name() const { return name; }
  std::vector<SpiceComp>& Comps() { return comps; }
  const std::vector<SpiceComp>& Comps() const { return comps; }
  std::vector<SpiceNet>& Ports() { return ports; }
  const std::vector<SpiceNet>& Ports() const { return ports; }
  NodeTable& NodeMap() { return nodeMap; }
  const std::vector<NetProbe>& Probes() const { return probes; }
  std::map<std::string, std::string>& Nodesets() { return nodesets; }
  std::map<std::string, std::string>& InitialConditions() { return initialConditions; }
  std::map<std::string, std::string>& Guesses() { return guesses; }

  std::string name;
  std::vector<SpiceNet> ports;
  std::vector<SpiceComp> comps;
  Tessel::ContainerT<const Tessel::IBlock> block;
  NodeTable nodeMap;
  std::vector<NetProbe> probes;
  std::map<std::string, std::string> nodesets;
  std::map<std::string, std::string> initialConditions;
  std::map<std::string, std::string> guesses;
  int32_t nextNode = 0;
  size_t netCount = 0;  // nets of the block: the generator sizes its node table from it

  // Load-only state, not carried by copies.
  WireOptions options;
  std::string instancePath;
  Tessel::IUIDManager* uidManager = nullptr;
  WalkTables* tables = nullptr;        // the project's, filled while the nets are scanned
  ModelMapper modelMapper = nullptr;   // handed to each component's load
  const DeckNaming* naming = nullptr;  // the deck's names of nodes and components
  NetAliasTable netAliases;            // the shunt aliases of this block
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
