// SpiceBlock: loading one block: shunts, components, ports and nets into node tables.
#include "design/spice_block.h"

#include <sys/mman.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <system_error>
#include <thread>
#include <unordered_map>

#include "expr/text.h"

namespace {

const std::string kEmpty;

// A block of a hundred thousand components fills tens of megabytes of records, each page
// touched first as a component is loaded: asked for large pages, the range faults in a few
// hundred steps instead of ten thousand. Only whole large pages inside the range are asked for.
void AdviseLargePages(const void* data, size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr uintptr_t kLargePage = uintptr_t{2} << 20;
  const uintptr_t start = reinterpret_cast<uintptr_t>(data);
  const uintptr_t begin = (start + kLargePage - 1) & ~(kLargePage - 1);
  const uintptr_t end = (start + bytes) & ~(kLargePage - 1);
  if (end > begin) ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
  (void)data;
  (void)bytes;
#endif
}

const std::string& Peek(const NodeTable& table, const std::string& key) {
  auto it = table.find(key);
  return it == table.end() ? kEmpty : it->second;
}

std::string LabelOfFirstNet(const Tessel::IteratorT<const Tessel::IPin>& pin) {
  Tessel::IteratorT<const Tessel::INet> nets;
  pin->GetIterNetsConnected(nets);
  Tessel::String label;
  nets->GetLabel(label);
  return label.str();
}

// Nets joined by shunts, as sets with one representative each. The first pin's set
// absorbs the second's, so a chain A-B, B-C names all three A.
class ShuntSets {
 public:
  void Join(const std::string& first, const std::string& second) {
    std::string a = Find(first);
    std::string b = Find(second);
    if (a != b) parent_[b] = a;
  }
  // Every net that is not its own representative, under the representative's name.
  void WriteAliases(NetAliasTable& aliases) {
    for (auto& entry : parent_) {
      std::string root = Find(entry.first);
      if (root != entry.first) aliases[entry.first] = root;
    }
  }

 private:
  std::string Find(const std::string& label) {
    std::string root = label;
    for (auto it = parent_.find(root); it != parent_.end() && it->second != root; it = parent_.find(root))
      root = it->second;
    // Point the whole chain straight at its representative.
    for (std::string at = label; at != root;) {
      std::string& up = parent_[at];
      at = up;
      up = root;
    }
    return root;
  }
  std::unordered_map<std::string, std::string> parent_;
};

// The warnings of a shunt that cannot work as placed; false when it is not two-pin.
bool CheckShunt(const Tessel::IComp& comp) {
  int count = 0;
  comp.GetPinsCount(count);
  if (count != 2) {
    std::cout << "Warning: can only place EXCLUDE-SHUNT on two-pin components \n";
    return false;
  }
  Tessel::IteratorT<const Tessel::IPin> pins;
  comp.GetIterPins(pins);
  for (; pins->IsValid(); pins++) {
    int width = 0;
    bool connected = false;
    pins->GetWidth(width);
    pins->IsConnected(connected);
    if (width > 1) {
      std::cout << "Warning: cannot place EXCLUDE=SHUNT on a component with bus pins \n";
      break;
    }
    if (!connected) {
      std::cout << "Warning:a component with EXCLUDE=SHUNT must have nets connected to its pins \n";
      break;
    }
  }
  return true;
}

void JoinShunt(const Tessel::IComp& comp, ShuntSets& sets) {
  if (!CheckShunt(comp)) return;
  Tessel::IteratorT<const Tessel::IPin> pins;
  comp.GetIterPins(pins);
  std::string first = LabelOfFirstNet(pins);
  pins++;
  std::string second = LabelOfFirstNet(pins);
  // A pin without a net has nothing to join.
  if (first.empty() || second.empty()) return;
  sets.Join(first, second);
}

// Components of the types a block load takes: hierarchical instances and primitives.
bool IsLoadedComp(const Tessel::IComp& comp) {
  Tessel::BitContainerT<Tessel::ECompType, 1> type;
  comp.GetType(type);
  return (type & Tessel::eCompHierarchical) || (type & Tessel::eCompPrimitive);
}

// From this many components on, a block's pins are read in two halves at once, the second
// half on a thread of its own: a pin reads only the design and its own component.
constexpr size_t kPinsInTwoHalves = 8192;

// Reads the pins of the `count` components of `comps` from `first` on, walking `it` from the
// first of them over the same components that the load took.
void LoadPinsOf(Tessel::IteratorT<const Tessel::IComp> it, std::vector<SpiceComp>& comps, size_t first,
                size_t count, const NetAliasTable& aliases) {
  for (size_t index = first; index < first + count && it->IsValid(); it++) {
    const Tessel::IComp& comp = *it.operator->();
    if (!IsLoadedComp(comp)) continue;
    SpiceComp& loaded = comps[index++];
    if (!loaded.excluded) loaded.LoadPins(comp, aliases);
  }
}

// LoadPinsOf on a thread of its own: what it throws is kept for the caller's thread.
void LoadPinsKeepingFailure(const Tessel::IteratorT<const Tessel::IComp>& it, std::vector<SpiceComp>& comps,
                            size_t first, size_t count, const NetAliasTable& aliases,
                            std::exception_ptr& failure) {
  try {
    LoadPinsOf(it, comps, first, count, aliases);
  } catch (...) {
    failure = std::current_exception();
  }
}

}  // namespace

SpiceBlock::SpiceBlock(const SpiceBlock& other)
    : name(other.name),
      ports(other.ports),
      comps(other.comps),
      block(other.block),
      nodeMap(other.nodeMap),
      probes(other.probes),
      nodesets(other.nodesets),
      initialConditions(other.initialConditions),
      guesses(other.guesses),
      nextNode(other.nextNode),
      netCount(other.netCount) {}

SpiceBlock& SpiceBlock::operator=(const SpiceBlock& other) {
  if (this == &other) return *this;
  name = other.name;
  ports = other.ports;
  comps = other.comps;
  block = other.block;
  nodeMap = other.nodeMap;
  probes = other.probes;
  nodesets = other.nodesets;
  initialConditions = other.initialConditions;
  guesses = other.guesses;
  nextNode = other.nextNode;
  netCount = other.netCount;
  return *this;
}

void SpiceBlock::Load(Tessel::ContainerT<const Tessel::IBlock>& blockHandle,
                      Tessel::ContainerT<const Tessel::IPath>& path, WireOptions blockOptions,
                      std::string blockInstancePath, bool byPath) {
  LoadComponents(blockHandle, path, std::move(blockOptions), std::move(blockInstancePath), byPath);
  ScanNodes();
}

void SpiceBlock::LoadComponents(Tessel::ContainerT<const Tessel::IBlock>& blockHandle,
                                Tessel::ContainerT<const Tessel::IPath>& path, WireOptions blockOptions,
                                std::string blockInstancePath, bool byPath, bool collect) {
  netAliases.clear();
  block = blockHandle;
  name.clear();
  ports.clear();
  comps.clear();
  options = std::move(blockOptions);
  nodeMap.clear();  // the built-in name map is empty; the configuration comes later
  instancePath = std::move(blockInstancePath);
  options.usedNames->Clear();
  if (block.Empty()) return;
  ScanShunts(block);
  if (!options.flatten && collect) CollectComponents(path, byPath);
  Tessel::String blockName;
  block->GetName(blockName);
  name = StripBlockPrefix(blockName.str());
}

void SpiceBlock::ScanNodes() {
  if (block.Empty()) return;
  ScanPorts();
  ScanNets();
  nextNode = options.nextNodeNumber;
}

void SpiceBlock::ScanShunts(Tessel::ContainerT<const Tessel::IBlock> shuntBlock) {
  Tessel::IteratorT<const Tessel::IComp> it;
  shuntBlock->GetIterComps(it, Tessel::eCompAll);
  ShuntSets sets;
  bool any = false;
  // The placements of a symbol share their attribute lists: a list read once answers for
  // all the components that follow with the same one.
  uint64_t lastLists = 0;
  bool lastKnown = false, lastIsShunt = false;
  for (; it->IsValid(); it++) {
    Tessel::BitContainerT<Tessel::ECompType, 1> type;
    it->GetType(type);
    if (!(type & Tessel::eCompHierarchical) && !(type & Tessel::eCompPrimitive)) continue;
    uint64_t lists = 0;
    const bool listed = it->GetAttributeListsId(lists);
    if (!listed || !lastKnown || lists != lastLists) {
      Tessel::String exclude;
      it->GetAttribute("$$NotCommonProperty_EXCLUDE", exclude, Tessel::eAttrInstance);
      lastIsShunt = EqualsIgnoringCase(exclude.str(), "shunt");
      lastKnown = listed;
      lastLists = lists;
    }
    if (!lastIsShunt) continue;
    JoinShunt(*it.operator->(), sets);
    any = true;
  }
  if (any) sets.WriteAliases(netAliases);
}

void SpiceBlock::CollectComponents(Tessel::ContainerT<const Tessel::IPath>& path, bool byPath) {
  if (byPath && !path.Empty())
    path->GetIterComps(compIter);
  else
    block->GetIterComps(compIter, Tessel::eCompAll);
  // A block can place a hundred thousand components: the list is sized once, and each
  // component is loaded where it stays.
  size_t count = 0;
  for (Tessel::IteratorT<const Tessel::IComp> counter = compIter; counter->IsValid(); counter++) ++count;
  comps.reserve(comps.size() + count);
  AdviseLargePages(comps.data() + comps.size(), (comps.capacity() - comps.size()) * sizeof(SpiceComp));
  // Names, attributes and deck names first, in order (the deck names depend on it); the pins
  // after, from the two places of the walk kept here.
  const size_t first = comps.size();
  const size_t firstHalf = count / 2;
  const Tessel::IteratorT<const Tessel::IComp> start = compIter;
  Tessel::IteratorT<const Tessel::IComp> secondHalf;
  bool halves = false;
  for (; compIter->IsValid(); compIter++) {
    if (!IsLoadedComp(*compIter.operator->())) continue;
    if (!halves && count >= kPinsInTwoHalves && comps.size() - first == firstHalf) {
      secondHalf = compIter;
      halves = true;
    }
    SpiceComp& comp = comps.emplace_back();
    comp.uidManager = uidManager;
    comp.LoadAllButPins(compIter, options, instancePath, modelMapper, *naming, &gatheredAttributes);
  }
  gatheredAttributes = GatheredAttributesCache();

  const size_t loaded = comps.size() - first;
  std::thread second;
  std::exception_ptr secondFailure;
  if (halves) {
    try {
      second = std::thread(LoadPinsKeepingFailure, std::cref(secondHalf), std::ref(comps), first + firstHalf,
                           loaded - firstHalf, std::cref(netAliases), std::ref(secondFailure));
    } catch (const std::system_error&) {
      // No second thread: all pins are read here.
    }
  }
  // The thread must end before anything leaves this function, a throw included.
  struct Joiner {
    std::thread& thread;
    ~Joiner() {
      if (thread.joinable()) thread.join();
    }
  } joiner{second};
  LoadPinsOf(start, comps, first, second.joinable() ? firstHalf : loaded, netAliases);
  if (second.joinable()) {
    second.join();
    if (secondFailure) std::rethrow_exception(secondFailure);
  }
}

bool SpiceBlock::StreamComponents(Tessel::ContainerT<const Tessel::IPath>& path, bool byPath,
                                  ComponentSink* sink) {
  Tessel::IteratorT<const Tessel::IComp> it;
  if (byPath && !path.Empty())
    path->GetIterComps(it);
  else
    block->GetIterComps(it, Tessel::eCompAll);
  for (; it->IsValid(); it++) {
    const Tessel::IComp& loaded = *it.operator->();
    if (!IsLoadedComp(loaded)) continue;
    SpiceComp& comp = sink->NewComp();
    comp.uidManager = uidManager;
    comp.LoadAllButPins(it, options, instancePath, modelMapper, *naming, &gatheredAttributes);
    if (!comp.excluded) comp.LoadPins(loaded, netAliases);
    if (!sink->Hand()) return false;
  }
  gatheredAttributes = GatheredAttributesCache();
  return true;
}

void SpiceBlock::ScanPorts() {
  Tessel::IteratorT<const Tessel::IPort> it;
  block->GetIterPorts(it);
  for (; it->IsValid(); it++) {
    SpiceNet port(it, netAliases);
    if (port.IsConnected()) {
      for (const SpiceNet& member : port.Members()) {
        // A global net on a port keeps its one name and takes no number.
        if (member.isGlobal && !IsGroundName(options, member.label))
          nodeMap[member.name] = GlobalNode(member.label);
        else
          naming->NodeName(options, member.name, nodeMap);
      }
    } else if (!port.Signal().empty()) {
      naming->NodeName(options, port.Signal(), nodeMap);
    } else {
      // An open port gets a node of its own, under the names 1, 3, 5, ...
      ++nextNode;
      std::string own = std::to_string(nextNode);
      ++nextNode;
      naming->NodeName(options, own, nodeMap);
    }
  }
}

void SpiceBlock::ScanNets() {
  Tessel::String rawName;
  block->GetName(rawName);
  Tessel::IteratorT<const Tessel::INet> it;
  block->GetIterNets(it);
  netCount = 0;
  // A net without attributes, not global and not named GND..., gives the tables nothing unless
  // the dialect names every net at load or keeps internal names: most nets are passed over
  // after a look at those three.
  const bool everyNetCounts = options.dialect.namesNetsAtLoad || (tables && options.dialect.netUidMap);
  for (; it->IsValid(); it++) {
    if (!everyNetCounts && !it->HasAttributes()) {
      bool global = false;
      it->IsGlobal(global);
      Tessel::String label;
      if (!global) it->GetLabel(label);
      if (!global && label.str().compare(0, 3, "GND") != 0) {
        ++netCount;
        continue;
      }
    }
    SpiceNet net(it, netAliases, false);
    net.uidManager = uidManager;
    net.FormInternalName(it);
    ScanNet(net, rawName.str());
    ++netCount;
  }
}

void SpiceBlock::ScanNet(const SpiceNet& net, const std::string& rawBlockName) {
  const std::string& n = net.name;
  const std::string& lb = net.label;
  const auto& attributes = net.NetAttributes();
  auto attribute = [&attributes](const char* key) -> const std::string& {
    auto it = attributes.find(key);
    return it == attributes.end() ? kEmpty : it->second;
  };
  const std::string& node = attribute("NODE");
  if (lb.compare(0, 3, "GND") == 0) nodeMap[lb] = "0";
  if (!node.empty() && std::atoi(node.c_str()) > 0 && Peek(nodeMap, node).empty())
    nodeMap[n] = naming->LegalName(options, node);
  if (net.isGlobal && !IsGroundName(options, lb)) {
    nodeMap[n] = GlobalNode(lb);
  } else if (options.dialect.namesNetsAtLoad) {
    if (Peek(nodeMap, n).empty()) nodeMap[n] = naming->LegalName(options, n);
  }
  if (tables && options.dialect.netUidMap)
    tables->netDictionary[rawBlockName + "/" + LowerText(Peek(nodeMap, n))] = net.InternalName();

  const std::string& probe = attribute("PROBE");
  if (!probe.empty()) probes.push_back(NetProbe{probe, naming->NodeName(options, n, nodeMap)});
  auto keepFirst = [&n](std::map<std::string, std::string>& table, const std::string& value) {
    if (value.empty()) return;
    std::string& slot = table[n];
    if (slot.empty()) slot = value;
  };
  keepFirst(nodesets, attribute("NODESET"));
  keepFirst(initialConditions, attribute("IC"));
  keepFirst(guesses, attribute("GUESS"));
  if (net.isGlobal && tables) {
    std::string& global = tables->globalNets[lb];
    if (global.empty()) global = Peek(nodeMap, n);
  }
}

const std::string& SpiceBlock::GlobalNode(const std::string& label) {
  std::string& global = tables->globalNets[label];
  if (global.empty()) global = naming->GlobalNodeName(options, label);
  return global;
}

void SpiceBlock::AddFlatInstance(const Tessel::IteratorT<const Tessel::IComp>& comp) {
  const Tessel::IComp& instance = *comp.operator->();
  FlatScope scope = FlatScopeOf(instance);
  std::string pinsText;
  Tessel::IteratorT<const Tessel::IPin> pins;
  instance.GetIterPins(pins);
  for (; pins->IsValid(); pins++) {
    bool connected = false;
    Tessel::String pinName;
    pins->IsConnected(connected);
    pins->GetName(pinName);
    pinsText += pinName.str();
    pinsText += ',';
    if (connected) {
      Tessel::IteratorT<const Tessel::INet> nets;
      Tessel::IteratorT<const Tessel::IBus> buses;
      pins->GetIterNetsConnected(nets);
      pins->GetIterBusesConnected(buses);
      pinsText += FlatNetNameIn(scope, nets, buses, *pinNodes);
    }
    pinsText += ';';
  }
  (*pinNodes)[PinNodeKey(instance)] += pinsText;
}

bool SpiceBlock::AddFlatComp(const Tessel::IteratorT<const Tessel::IComp>& comp, ComponentSink* sink) {
  // A sink's taker places the global names itself, in its own node table.
  if (sink) {
    sink->NewComp().LoadFlat(comp, options, *naming, *pinNodes, &gatheredAttributes);
    return sink->Hand();
  }
  SpiceComp flat;
  flat.LoadFlat(comp, options, *naming, *pinNodes, &gatheredAttributes);
  ForEachSubBlockGlobal(flat,
                        [this](const std::string& name, const std::string& node) { nodeMap[name] = node; });
  comps.push_back(std::move(flat));
  return true;
}
