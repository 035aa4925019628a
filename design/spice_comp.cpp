// SpiceComp: loading one placed component: attributes, kind, deck name and pins.
#include "design/spice_comp.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_set>

#include "expr/text.h"

namespace {

const std::string kEmpty;
const ModelData kNoModel;

// Beyond this many bits a bus pin's range is taken as bad input and cut.
constexpr int kMaxBusBits = 65536;
// From this many pins on, FindPin uses a hash index instead of a scan.
constexpr size_t kIndexedPins = 16;
// Up to this many attributes, Get scans the list instead of searching it.
constexpr size_t kScannedAttributes = 12;

// The text between two positions, empty when they are out of order.
std::string Between(const std::string& text, size_t from, size_t to) {
  return to > from ? text.substr(from, to - from) : std::string();
}

bool IsBareExempt(const std::string& key) {
  return key == "PART NUMBER" || key == "REF DESIGNATOR" || key == "GENERATOR";
}

}  // namespace

// ---- AttributeTable ----

// Components of two blocks may load at once (a hierarchical deck's root beside its
// sub-blocks): the two tables of interned texts and lists take one at a time.
namespace {

std::mutex& InternLock() {
  static std::mutex lock;
  return lock;
}

}  // namespace

const std::string* InternText(const std::string& text) {
  // Node-based, so the texts never move; they live until the process ends.
  static std::unordered_set<std::string>* texts = new std::unordered_set<std::string>();
  std::lock_guard<std::mutex> hold(InternLock());
  return &*texts->insert(text).first;
}

namespace {

using AttributePair = AttributeTable::Pair;
using AttributeList = AttributeTable::List;

bool KeyBefore(const AttributePair& entry, std::string_view key) {
  return std::string_view(*entry.first) < key;
}

// Texts are interned, so a list is known by the addresses it holds.
struct ListHash {
  size_t operator()(const AttributeList& list) const {
    size_t hash = list.size();
    for (const AttributePair& pair : list) {
      hash = hash * 31 + std::hash<const void*>()(pair.first);
      hash = hash * 31 + std::hash<const void*>()(pair.second);
    }
    return hash;
  }
};

const AttributeList* InternList(AttributeList list) {
  // Node-based, so the lists never move; they live until the process ends.
  using ListSet = std::unordered_set<AttributeList, ListHash>;
  static ListSet* lists = new ListSet();
  std::lock_guard<std::mutex> hold(InternLock());
  return &*lists->insert(std::move(list)).first;
}

}  // namespace

AttributeTable::AttributeTable() {
  // Every component starts with the empty list: it is looked up once.
  static const AttributeList* const kEmptyList = InternList(AttributeList());
  list_ = kEmptyList;
}

const std::string& AttributeTable::Get(std::string_view upperKey) const {
  // Keys are unique, so in a short list a scan that compares lengths first finds the same
  // entry as the binary search, with fewer text comparisons.
  if (list_->size() <= kScannedAttributes) {
    for (const AttributePair& pair : *list_) {
      const std::string& key = *pair.first;
      if (key.size() == upperKey.size() && std::memcmp(key.data(), upperKey.data(), key.size()) == 0)
        return *pair.second;
    }
    return kEmpty;
  }
  auto it = std::lower_bound(list_->begin(), list_->end(), upperKey, KeyBefore);
  return it != list_->end() && *it->first == upperKey ? *it->second : kEmpty;
}

void AttributeTable::SetIn(List& list, const std::string& upperKey, const std::string& value) {
  auto it = std::lower_bound(list.begin(), list.end(), upperKey, KeyBefore);
  if (it != list.end() && *it->first == upperKey)
    it->second = InternText(value);
  else
    list.emplace(it, InternText(upperKey), InternText(value));
}

void AttributeTable::SetIfEmptyIn(List& list, const std::string& upperKey, const std::string& value) {
  auto it = std::lower_bound(list.begin(), list.end(), upperKey, KeyBefore);
  if (it != list.end() && *it->first == upperKey && !it->second->empty()) return;
  SetIn(list, upperKey, value);
}

void AttributeTable::Assign(List list) { list_ = InternList(std::move(list)); }

void AttributeTable::Set(const std::string& upperKey, const std::string& value) {
  List list = Copy();
  SetIn(list, upperKey, value);
  Assign(std::move(list));
}

void AttributeTable::SetIfEmpty(const std::string& upperKey, const std::string& value) {
  List list = Copy();
  SetIfEmptyIn(list, upperKey, value);
  Assign(std::move(list));
}

// ---- small readers ----

std::string StripBlockPrefix(const std::string& name) {
  if (name.empty() || name[0] != '(') return name;
  size_t close = name.find(')');
  if (close == std::string::npos || close + 1 >= name.size() || name[close + 1] != '_') return name;
  return name.substr(close + 2);
}

std::string SpiceComp::Attribute(const std::string& key) const { return attrs.Get(UpperText(key)); }

std::vector<std::string> SpiceComp::BareAttributes() const {
  std::vector<std::string> keys = bareKeys;
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  return keys;
}

std::string SpiceComp::QualifiedName() const {
  return partitionName.empty() ? name : partitionName + ":" + name;
}

bool SpiceComp::IsHdlModel() const {
  const std::string* model = &attrs.Get("SIMULATION MODEL");
  if (model->empty()) model = &attrs.Get("SIMMODEL");
  const std::string& prefix = attrs.Get("PREFIX");
  if (EqualsIgnoringCase(prefix, "Y") || EqualsIgnoringCase(prefix, "Y?")) return true;
  return EqualsIgnoringCase(*model, "VHDL") || EqualsIgnoringCase(*model, "VHDL-AMS") ||
         EqualsIgnoringCase(*model, "verilog") || EqualsIgnoringCase(*model, "veriloga");
}

const ModelData& SpiceComp::Model() const { return model ? *model : kNoModel; }

ModelData& SpiceComp::MutableModel() {
  if (!model) model = std::make_shared<ModelData>();
  return *model;
}

const std::string& SpiceComp::ModelPinList() const { return model ? model->modelPinList : kEmpty; }

const SpiceNet* SpiceComp::FindPin(std::string_view key) const {
  if (pinNets.size() < kIndexedPins) {
    for (auto it = pinNets.rbegin(); it != pinNets.rend(); ++it)
      if (it->key == key) return &it->net;
    return nullptr;
  }
  if (!pinIndex_ || pinIndexCount_ != pinNets.size()) {
    auto index = std::make_shared<std::unordered_map<std::string, size_t>>();
    for (size_t i = 0; i < pinNets.size(); ++i) (*index)[pinNets[i].key] = i;  // the last one wins
    pinIndex_ = index;
    pinIndexCount_ = pinNets.size();
  }
  auto found = pinIndex_->find(std::string(key));
  return found == pinIndex_->end() ? nullptr : &pinNets[found->second].net;
}

// ---- attributes ----

void SpiceComp::GatherAttributes(const Tessel::IComp& comp) {
  Tessel::ListAttribute list;
  comp.GetAttributes(list);
  AttributeTable::List table = attrs.Copy();
  for (const Tessel::Attribute& entry : list.items) {
    hasAttributes = true;
    std::string key = entry.name.str();
    if (StartsWith(key, "$$NotCommonProperty")) key = key.size() > 20 ? key.substr(20) : std::string();
    key = UpperText(std::move(key));
    const std::string& value = entry.value.str();
    if (entry.level == Tessel::eAttrDefinition) {
      AttributeTable::SetIfEmptyIn(table, key, value);
      continue;
    }
    AttributeTable::SetIn(table, key, value);
    if (value.empty() && !IsBareExempt(key)) bareKeys.push_back(key);
  }
  attrs.Assign(std::move(table));
}

void SpiceComp::GatherAttributesOnce(const Tessel::IComp& comp, GatheredAttributesCache* gathered) {
  uint64_t id = 0;
  if (!gathered || !comp.GetAttributeListsId(id)) return GatherAttributes(comp);
  auto [entry, added] = gathered->try_emplace(id);
  GatheredAttributes& known = entry->second;
  if (added) {
    GatherAttributes(comp);
    known.attrs = attrs;
    known.bareKeys = bareKeys;
    known.hasAttributes = hasAttributes;
    return;
  }
  attrs = known.attrs;
  bareKeys = known.bareKeys;
  hasAttributes = known.hasAttributes;
}

std::string ComponentInternalName(const Tessel::IComp& comp, Tessel::IUIDManager* uidManager) {
  Tessel::ListT<Tessel::GroupInfo> groups;
  comp.GetListGroups(groups, Tessel::eGroupInternal);
  if (groups.IsEmpty() || !uidManager) return "";
  Tessel::ContainerT<const Tessel::IGroup> group;
  uidManager->GetGroup(group, *groups.GetIterator().operator->());
  Tessel::ContainerT<const Tessel::IBlock> parent;
  comp.GetParentBlock(parent);
  if (group.Empty() || parent.Empty()) return "";
  Tessel::ContainerT<const Tessel::IBlockViewQor> view;
  Tessel::IBlockViewQor::Init(view, *parent, *group);
  Tessel::Index index;
  comp.GetInstanceIndex(index);
  Tessel::ContainerT<const Tessel::IComp> again;
  parent->GetComp(again, index);
  Tessel::CompDataQor data;
  if (!view.Empty() && !again.Empty()) view->GetCompData(*again, data);
  Tessel::String id;
  group->GetAttribute("$$Internal_ID", id);
  return "$" + id.str() + "I" + std::to_string(data.number);
}

// ---- kind and deck name ----

void SpiceComp::DecideKind(const Tessel::IComp& comp, const WireOptions& options) {
  Tessel::BitContainerT<Tessel::ECompType, 1> type;
  comp.GetType(type);
  if (type & Tessel::eCompHierarchical) {
    if (options.HasLevel(attrs.Get("LEVEL"))) {
      kind = kStoppedInstance;
      return;
    }
    kind = kInstance;
    Tessel::ContainerT<const Tessel::IBlock> child;
    comp.GetChildBlock(child);
    Tessel::String childName;
    if (!child.Empty()) child->GetName(childName);
    childBlockName = StripBlockPrefix(childName.str());
    return;
  }
  kind = (type & Tessel::eCompPrimitive) ? kPrimitive : kOtherComp;
}

void SpiceComp::FormDeckName(const WireOptions& options, const DeckNaming& naming) {
  refName = naming.DeckName(*this, options);
}

// ---- pins ----

void SpiceComp::AddPin(std::string key, SpiceNet&& net) {
  pinNets.push_back(PinEntry{std::move(key), std::move(net)});
}

void SpiceComp::ExpandBusPin(const std::string& pinName, Tessel::IteratorT<const Tessel::INet> nets,
                             const NetAliasTable& aliases) {
  size_t open = pinName.find('[');
  size_t close = pinName.find(']');
  size_t colon = pinName.find(':');
  if (open == std::string::npos || close == std::string::npos || close == 0 || colon == std::string::npos ||
      colon == 0)
    return;
  std::string base = pinName.substr(0, open);
  int firstBitNumber = std::atoi(Between(pinName, open + 1, colon).c_str());
  int lastBitNumber = std::atoi(Between(pinName, colon + 1, close).c_str());
  int step = lastBitNumber > firstBitNumber ? 1 : -1;
  for (int bit = firstBitNumber, count = 0; count < kMaxBusBits; bit += step, ++count) {
    SpiceNet entry(nets, aliases, false, false);
    entry.busBit = true;
    entry.firstBit = bit == firstBitNumber;
    entry.lastBit = bit == lastBitNumber && bit != firstBitNumber;
    AddPin(base + "[" + std::to_string(bit) + "]", std::move(entry));
    nets++;
    if (bit == lastBitNumber) break;
  }
}

void SpiceComp::LoadPins(const Tessel::IComp& comp, const NetAliasTable& aliases) {
  comp.GetPinsCount(pinCount);
  if (pinCount > 0) pinNets.reserve(static_cast<size_t>(pinCount));
  bool hdl = IsHdlModel();
  const std::string& modelPins = ModelPinList();
  Tessel::IteratorT<const Tessel::IPin> pins;
  comp.GetIterPins(pins);
  for (; pins->IsValid(); pins++) {
    int width = 0;
    bool isConnected = false;
    Tessel::String pinName;
    pins->GetWidth(width);
    pins->IsConnected(isConnected);
    pins->GetName(pinName);
    const std::string& key = pinName.str();
    if (!isConnected) {
      SpiceNet open;
      open.connected = false;
      AddPin(key, std::move(open));
      continue;
    }
    Tessel::IteratorT<const Tessel::INet> nets;
    pins->GetIterNetsConnected(nets);
    // Only a pin of more than one bit may stand for a bus.
    Tessel::IteratorT<const Tessel::IBus> buses;
    if (width > 1) pins->GetIterBusesConnected(buses);
    if (width > 1 && !modelPins.empty() && modelPins.find(key) == std::string::npos)
      ExpandBusPin(key, nets, aliases);
    else if (hdl)
      AddPin(key, SpiceNet(nets, aliases, true, false));
    else if (width > 1 && buses.IsValid())
      AddPin(key, SpiceNet(buses));
    else
      AddPin(key, SpiceNet(nets, aliases, false, false));
  }
}

void SpiceComp::LoadPinsFlat(const Tessel::IComp& comp, const PinNodeTable& pinNodes) {
  LoadPinsFlat(comp, pinNodes, FlatScopeOf(comp));
}

void SpiceComp::LoadPinsFlat(const Tessel::IComp& comp, const PinNodeTable& pinNodes,
                             const FlatScope& scope) {
  // One entry a pin: room for all of them at once, and no more.
  int count = 0;
  comp.GetPinsCount(count);
  if (count > 0) pinNets.reserve(static_cast<size_t>(count));
  Tessel::IteratorT<const Tessel::IPin> pins;
  comp.GetIterPins(pins);
  for (; pins->IsValid(); pins++) {
    bool isConnected = false;
    Tessel::String pinName;
    pins->IsConnected(isConnected);
    pins->GetName(pinName);
    // Filled where it stays, instead of built aside and moved in.
    PinEntry& pin = pinNets.emplace_back();
    pin.key = std::move(pinName.str());
    SpiceNet& entry = pin.net;
    if (!isConnected) {
      entry.connected = false;
      continue;
    }
    Tessel::IteratorT<const Tessel::INet> nets;
    Tessel::IteratorT<const Tessel::IBus> buses;
    pins->GetIterNetsConnected(nets);
    pins->GetIterBusesConnected(buses);
    // The entry keeps the net's label and flag; its name is the flat name of the pin's label.
    Tessel::String label;
    if (buses->IsValid()) {
      buses->GetLabel(label);
    } else {
      nets->GetLabel(label);
      entry.label = label.str();
      nets->IsGlobal(entry.isGlobal);
    }
    entry.name = FlatNetNameOf(scope, label.str(), nets, pinNodes);
  }
}

// ---- the two loads ----

void SpiceComp::Load(const Tessel::IteratorT<const Tessel::IComp>& compIter, const WireOptions& options,
                     const std::string& blockPath, const NetAliasTable& aliases, ModelMapper mapper,
                     const DeckNaming& naming, GatheredAttributesCache* gathered) {
  if (LoadAllButPins(compIter, options, blockPath, mapper, naming, gathered))
    LoadPins(*compIter.operator->(), aliases);
}

bool SpiceComp::LoadAllButPins(const Tessel::IteratorT<const Tessel::IComp>& compIter,
                               const WireOptions& options, const std::string& blockPath, ModelMapper mapper,
                               const DeckNaming& naming, GatheredAttributesCache* gathered) {
  const Tessel::IComp& comp = *compIter.operator->();
  attrs = AttributeTable();
  pinNets.clear();
  Tessel::String text;
  comp.GetName(text);
  name = text.str();
  text = "";
  comp.GetPartitionName(text);
  partitionName = text.str();
  internalName = ComponentInternalName(comp, uidManager);
  instancePath = blockPath.empty() ? internalName : blockPath + "\\" + internalName;
  text = "";
  comp.GetLabel(text);
  label = text.str();
  GatherAttributesOnce(comp, gathered);

  const std::string& exclude = attrs.Get("EXCLUDE");
  if (EqualsIgnoringCase(exclude, "yes") || EqualsIgnoringCase(exclude, "shunt")) {
    excluded = true;
    return false;
  }
  // The model mapping comes first: the pins read the model's pin list.
  if (options.dialect.hdlModels && mapper) mapper(*this);
  DecideKind(comp, options);
  FormDeckName(options, naming);
  return true;
}

void SpiceComp::LoadFlat(const Tessel::IteratorT<const Tessel::IComp>& compIter, const WireOptions& options,
                         const DeckNaming& naming, const PinNodeTable& pinNodes,
                         GatheredAttributesCache* gathered) {
  const Tessel::IComp& comp = *compIter.operator->();
  attrs = AttributeTable();
  pinNets.clear();
  FlatScope scope = FlatScopeOf(comp);
  hierName = scope.hier;
  // The name, as in a hierarchical load: an X line calls its model part, and the
  // default model of a device is read from it.
  Tessel::String text;
  comp.GetName(text);
  name = text.str();
  text = "";
  comp.GetPartitionName(text);
  partitionName = text.str();
  text = "";
  comp.GetLabel(text);
  label = text.str();
  bareKeys.clear();
  hasAttributes = false;
  GatherAttributesOnce(comp, gathered);
  LoadPinsFlat(comp, pinNodes, scope);
  DecideKind(comp, options);
  FormDeckName(options, naming);
}
