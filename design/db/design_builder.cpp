// Builds the compact design from the checked fields of a JSON description.
#include "design/db/design_builder.h"

#include <optional>

namespace vdb {

namespace {

const char* KindList(ItemKind kind) {
  switch (kind) {
    case ItemKind::kComponent:
      return "components";
    case ItemKind::kNet:
      return "nets";
    default:
      return "ports";
  }
}

std::string Indexed(const std::string& at, const char* list, size_t index) {
  return at + "." + list + "[" + std::to_string(index) + "]";
}

std::string Field(const std::string& at, const std::string& key) { return at.empty() ? key : at + "." + key; }

std::string Field(const DesignBuilder::Where& at, const std::string& key) { return at.Text() + "." + key; }

// The member `key` of an object, or null. Descriptions give keys at most once (the reader refuses a
// repeated one), and an item has a handful of them: comparing lengths first skips most at once.
const Json* Member(const Json& obj, std::string_view key) {
  for (const auto& member : obj.get_ref<const Json::object_t&>()) {
    if (member.first.size() == key.size() && std::string_view(member.first) == key) return &member.second;
  }
  return nullptr;
}

std::optional<Item> Member(const Item& obj, std::string_view key) {
  Item member = obj;
  if (obj.Member(key, member)) return member;
  return std::nullopt;
}

std::string_view TextOf(const Json& value) { return value.get_ref<const std::string&>(); }
std::string_view TextOf(const Item& value) { return value.Text(); }
int64_t IntOf(const Json& value) { return value.get<int64_t>(); }
int64_t IntOf(const Item& value) { return value.Int(); }
bool BoolOf(const Item& value) { return value.Bool(); }

// Calls visit(name, value) for each member of an object, in order, until it returns false.
template <class Visit>
bool ForEachMember(const Json& obj, Visit visit) {
  for (auto& [name, value] : obj.items()) {
    if (!visit(std::string_view(name), value)) return false;
  }
  return true;
}
template <class Visit>
bool ForEachMember(const Item& obj, Visit visit) {
  for (Item member = obj.First(); member.Valid(); member = member.Next()) {
    if (!visit(member.Key(), member)) return false;
  }
  return true;
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

}  // namespace

std::string DesignBuilder::Where::Text() const {
  std::string text = outer ? outer->Text() + "." + list : list;
  if (index != kNoIndex) text += "[" + std::to_string(index) + "]";
  return text;
}

bool DesignBuilder::Fail(const std::string& where, const std::string& what) {
  error_ = where + ": " + what;
  return false;
}

// Field readers: each returns false with the error set when the field has the wrong type.
// `present` tells whether the field was there at all.
namespace {

template <class Value>
bool ReadTextField(const Value& obj, const char* key, std::string_view& out, bool& present,
                   std::string& what) {
  auto it = Member(obj, key);
  present = static_cast<bool>(it);
  if (!present) return true;
  if (!it->is_string()) {
    what = "expected text";
    return false;
  }
  out = TextOf(*it);
  return true;
}

template <class Value>
bool ReadIntField(const Value& obj, const char* key, int64_t& out, bool& present, std::string& what) {
  auto it = Member(obj, key);
  present = static_cast<bool>(it);
  if (!present) return true;
  if (!it->is_number_integer()) {
    what = "expected a whole number";
    return false;
  }
  out = IntOf(*it);
  return true;
}

template <class Value>
bool ReadBoolField(const Value& obj, const char* key, bool& out, bool& present, std::string& what) {
  auto it = Member(obj, key);
  present = static_cast<bool>(it);
  if (!present) return true;
  if (!it->is_boolean()) {
    what = "expected true or false";
    return false;
  }
  out = BoolOf(*it);
  return true;
}

}  // namespace

// Reads a text field into the string pool; `required` makes its absence an error.
#define VDB_TEXT(obj, key, at, target, required)                                              \
  do {                                                                                        \
    std::string_view text_;                                                                   \
    bool present_ = false;                                                                    \
    std::string what_;                                                                        \
    if (!ReadTextField(obj, key, text_, present_, what_)) return Fail(Field(at, key), what_); \
    if (!present_ && (required)) return Fail(Field(at, key), "missing required field");       \
    if (present_) target = d_.strings.Intern(text_);                                          \
  } while (0)

void DesignBuilder::OpenBlock(size_t block) {
  while (d_.blocks.size() <= block) {
    BlockRec rec;
    rec.compsBegin = rec.compsEnd = static_cast<uint32_t>(d_.comps.size());
    rec.netsBegin = rec.netsEnd = static_cast<uint32_t>(d_.nets.size());
    rec.portsBegin = rec.portsEnd = static_cast<uint32_t>(d_.ports.size());
    d_.blocks.push_back(rec);
    declaredNets_.push_back(0);
  }
}

// Copies a document value into `tree` under `parent`.
void AddToTree(ItemTree& tree, uint32_t parent, std::string_view key, const Json& value) {
  using Kind = ItemTree::Kind;
  Kind kind = value.is_object()            ? Kind::kObject
              : value.is_array()           ? Kind::kArray
              : value.is_string()          ? Kind::kText
              : value.is_boolean()         ? Kind::kBool
              : value.is_number_unsigned() ? Kind::kUnsigned
              : value.is_number_integer()  ? Kind::kInt
              : value.is_number_float()    ? Kind::kFloat
                                           : Kind::kNull;
  uint32_t node = tree.Add(parent, kind, key);
  if (kind == Kind::kText) {
    const std::string& text = value.get_ref<const std::string&>();
    uint32_t begin = tree.Keep(text);
    tree.At(node).textBegin = begin;
    tree.At(node).textLength = static_cast<uint32_t>(text.size());
  } else if (kind == Kind::kBool) {
    tree.At(node).boolean = value.get<bool>();
  } else if (kind == Kind::kInt || kind == Kind::kUnsigned) {
    tree.At(node).bits = static_cast<uint64_t>(value.get<int64_t>());
  } else if (kind == Kind::kObject) {
    for (auto& [name, member] : value.items()) AddToTree(tree, node, name, member);
  } else if (kind == Kind::kArray) {
    for (const Json& member : value) AddToTree(tree, node, {}, member);
  }
}

bool DesignBuilder::AddItem(size_t block, ItemKind kind, size_t index, const Json& item) {
  jsonItem_.Clear();
  AddToTree(jsonItem_, ItemTree::kNoNode, {}, item);
  return AddItem(block, kind, index, jsonItem_.Root());
}

bool DesignBuilder::AddItem(size_t block, ItemKind kind, size_t index, const Item& item) {
  OpenBlock(block);
  const Where blockAt{nullptr, "blocks", block};
  const Where at{&blockAt, KindList(kind), index};
  if (index >= kMaxPerBlock) return Fail(at.Text(), "too many objects of one kind in one block");
  if (!item.is_object()) return Fail(at.Text(), "expected an object");
  if (kind == ItemKind::kComponent) return AddComponent(at, item);
  if (kind == ItemKind::kNet) return AddNet(at, item);
  return AddPort(at, item);
}

template <class Value>
bool DesignBuilder::ReadAttributes(const Where& at, const Value& item, const char* key, uint32_t& list) {
  auto it = Member(item, key);
  if (!it) return true;
  if (!it->is_object()) return Fail(Field(at, key), "expected an object");
  pairs_.clear();
  bool ok = ForEachMember(*it, [&](std::string_view name, const auto& value) {
    if (!value.is_string()) return Fail(Field(Field(at, key), std::string(name)), "expected text");
    pairs_.push_back(d_.strings.Intern(name));
    pairs_.push_back(d_.strings.Intern(TextOf(value)));
    return true;
  });
  if (!ok) return false;
  list = d_.attrs.Intern(pairs_);
  return true;
}

bool DesignBuilder::ReadGroupAndNumber(const Where& at, const Item& item, uint32_t& groupName,
                                       int32_t& number, uint8_t& hasNumber) {
  VDB_TEXT(item, "group", at, groupName, false);
  int64_t value = 0;
  bool present = false;
  std::string what;
  if (!ReadIntField(item, "number", value, present, what)) return Fail(Field(at, "number"), what);
  if (present && (value < INT32_MIN || value > INT32_MAX))
    return Fail(Field(at, "number"), "number out of range");
  number = present ? static_cast<int32_t>(value) : 0;
  hasNumber = present ? 1 : 0;
  return true;
}

bool DesignBuilder::AddComponent(const Where& at, const Item& item) {
  CompRec c;
  c.block = static_cast<uint32_t>(d_.blocks.size() - 1);
  VDB_TEXT(item, "label", at, c.label, true);
  VDB_TEXT(item, "name", at, c.name, false);
  VDB_TEXT(item, "partition", at, c.partition, false);
  int64_t type = 1;
  bool present = false;
  std::string what;
  if (!ReadIntField(item, "type", type, present, what)) return Fail(Field(at, "type"), what);
  if (type < 0 || type > UINT32_MAX) return Fail(Field(at, "type"), "number out of range");
  c.type = static_cast<uint32_t>(type);
  uint32_t child = kNone, group = kNone;
  VDB_TEXT(item, "child", at, child, false);
  if (!ReadAttributes(at, item, "attributes", c.instAttrs)) return false;
  c.ownDefinition = Member(item, "definition").has_value() ? 1 : 0;
  if (!ReadAttributes(at, item, "definition", c.defAttrs)) return false;
  uint8_t hasNumber = 0;
  if (!ReadGroupAndNumber(at, item, group, c.number, hasNumber)) return false;
  c.hasNumber = hasNumber;
  auto pins = Member(item, "pins");
  c.pinsBegin = static_cast<uint32_t>(d_.pins.size());
  if (pins) {
    if (!pins->is_array()) return Fail(Field(at, "pins"), "expected a list");
    size_t i = 0;
    for (Item pin = pins->First(); pin.Valid(); pin = pin.Next(), ++i) {
      if (!AddPin(Where{&at, "pins", i}, pin)) return false;
    }
  }
  if (d_.pins.size() - c.pinsBegin >= kMaxPinsOrNets) return Fail(Field(at, "pins"), "too many pins");
  c.pinsCount = static_cast<uint32_t>(d_.pins.size() - c.pinsBegin);
  d_.comps.push_back(c);
  d_.blocks.back().compsEnd = static_cast<uint32_t>(d_.comps.size());
  compChild_.push_back(child);
  compGroup_.push_back(group);
  return true;
}

uint32_t DesignBuilder::InternPairs(const TextPairs& pairs) {
  std::vector<uint32_t> ids;
  ids.reserve(2 * pairs.size());
  for (const auto& [key, value] : pairs) {
    ids.push_back(d_.strings.Intern(key));
    ids.push_back(d_.strings.Intern(value));
  }
  return d_.attrs.Intern(ids);
}

bool DesignBuilder::AddComponentFields(size_t block, size_t index, const ComponentFields& fields) {
  OpenBlock(block);
  if (index >= kMaxPerBlock)
    return Fail(Indexed("blocks[" + std::to_string(block) + "]", "components", index),
                "too many objects of one kind in one block");
  CompRec c;
  c.block = static_cast<uint32_t>(d_.blocks.size() - 1);
  c.label = d_.strings.Intern(fields.label);
  c.name = d_.strings.Intern(fields.name);
  c.type = fields.type;
  c.instAttrs = InternPairs(fields.attributes);
  c.ownDefinition = 1;
  c.defAttrs = InternPairs(fields.definition);
  c.pinsBegin = static_cast<uint32_t>(d_.pins.size());
  for (const auto& [name, net] : fields.pins) {
    PinRec pin;
    pin.name = d_.strings.Intern(name);
    pin.netsBegin = static_cast<uint32_t>(d_.links.size());
    pin.netsCount = 1;
    pin.connected = 1;
    d_.links.push_back(d_.strings.Intern(net));
    d_.pins.push_back(pin);
  }
  c.pinsCount = static_cast<uint32_t>(d_.pins.size() - c.pinsBegin);
  d_.comps.push_back(c);
  d_.blocks.back().compsEnd = static_cast<uint32_t>(d_.comps.size());
  compChild_.push_back(fields.child.empty() ? kNone : d_.strings.Intern(fields.child));
  compGroup_.push_back(kNone);
  return true;
}

bool DesignBuilder::ReadLinks(const Where& at, const Item& item, uint32_t& bus, uint32_t& width,
                              uint32_t& begin, uint32_t& count, uint8_t& connected) {
  uint32_t net = kNone;
  VDB_TEXT(item, "net", at, net, false);
  VDB_TEXT(item, "bus", at, bus, false);
  bool hasBus = Member(item, "bus").has_value();
  begin = static_cast<uint32_t>(d_.links.size());
  auto nets = Member(item, "nets");
  if (nets) {
    if (net != kNone) return Fail(Field(at, "nets"), "give either net or nets, not both");
    if (!nets->is_array()) return Fail(Field(at, "nets"), "expected a list");
    size_t i = 0;
    for (Item label = nets->First(); label.Valid(); label = label.Next(), ++i) {
      if (!label.is_string()) return Fail(Field(at, "nets[" + std::to_string(i) + "]"), "expected text");
      d_.links.push_back(d_.strings.Intern(label.Text()));
    }
  } else if (net != kNone) {
    d_.links.push_back(net);
  }
  count = static_cast<uint32_t>(d_.links.size() - begin);
  int64_t w = nets ? static_cast<int64_t>(count) : 1;
  bool present = false, conn = false;
  std::string what;
  if (!ReadIntField(item, "width", w, present, what)) return Fail(Field(at, "width"), what);
  if (w < 0 || w > INT32_MAX) return Fail(Field(at, "width"), "number out of range");
  width = static_cast<uint32_t>(w);
  conn = count > 0 || hasBus;
  if (!ReadBoolField(item, "connected", conn, present, what)) return Fail(Field(at, "connected"), what);
  connected = conn ? 1 : 0;
  return true;
}

bool DesignBuilder::AddPin(const Where& at, const Item& item) {
  if (!item.is_object()) return Fail(at.Text(), "expected an object");
  PinRec pin;
  VDB_TEXT(item, "name", at, pin.name, true);
  uint32_t count = 0;
  uint8_t connected = 0;
  if (!ReadLinks(at, item, pin.bus, pin.width, pin.netsBegin, count, connected)) return false;
  if (count >= kMaxPinsOrNets) return Fail(Field(at, "nets"), "too many nets");
  pin.netsCount = count;
  pin.connected = connected;
  d_.pins.push_back(pin);
  return true;
}

bool DesignBuilder::AddPort(const Where& at, const Item& item) {
  PortRec port;
  port.block = static_cast<uint32_t>(d_.blocks.size() - 1);
  VDB_TEXT(item, "name", at, port.name, true);
  if (!ReadLinks(at, item, port.bus, port.width, port.netsBegin, port.netsCount, port.connected))
    return false;
  if (!ReadAttributes(at, item, "attributes", port.attrs)) return false;
  d_.ports.push_back(port);
  d_.blocks.back().portsEnd = static_cast<uint32_t>(d_.ports.size());
  return true;
}

bool DesignBuilder::AddNet(const Where& at, const Item& item) {
  NetRec net;
  net.block = static_cast<uint32_t>(d_.blocks.size() - 1);
  VDB_TEXT(item, "label", at, net.label, true);
  bool global = false, present = false;
  std::string what;
  if (!ReadBoolField(item, "global", global, present, what)) return Fail(Field(at, "global"), what);
  net.global = global ? 1 : 0;
  uint32_t attrs = 0;
  if (!ReadAttributes(at, item, "attributes", attrs)) return false;
  if (attrs >= kMaxNetAttrList) return Fail(Field(at, "attributes"), "too many different attribute lists");
  net.attrs = attrs;
  uint32_t group = kNone;
  uint8_t hasNumber = 0;
  if (!ReadGroupAndNumber(at, item, group, net.number, hasNumber)) return false;
  net.hasNumber = hasNumber;
  d_.nets.push_back(net);
  d_.blocks.back().netsEnd = static_cast<uint32_t>(d_.nets.size());
  declaredNets_.back()++;
  netGroup_.push_back(group);
  return true;
}

uint32_t DesignBuilder::NetOfLabel(size_t block, uint32_t label) {
  auto found = netOfLabel_.find(label);
  if (found != netOfLabel_.end()) return found->second;
  NetRec net;
  net.block = static_cast<uint32_t>(block);
  net.label = label;
  uint32_t id = static_cast<uint32_t>(d_.nets.size());
  d_.nets.push_back(net);
  netGroup_.push_back(kNone);
  netOfLabel_.emplace(label, id);
  return id;
}

void DesignBuilder::ResolveBlockLinks(size_t block) {
  BlockRec& b = d_.blocks[block];
  // Clearing costs the map's bucket count: after a large block, start from a fresh map so that
  // many small blocks behind it do not each pay for the large one.
  if (netOfLabel_.bucket_count() > 64 + 4 * static_cast<size_t>(b.netsEnd - b.netsBegin)) {
    decltype(netOfLabel_)().swap(netOfLabel_);
  } else {
    netOfLabel_.clear();
  }
  for (uint32_t n = b.netsBegin; n < b.netsEnd; ++n) netOfLabel_.emplace(d_.nets[n].label, n);
  for (uint32_t p = b.portsBegin; p < b.portsEnd; ++p) {
    const PortRec& port = d_.ports[p];
    for (uint32_t i = port.netsBegin; i < port.netsBegin + port.netsCount; ++i)
      d_.links[i] = NetOfLabel(block, d_.links[i]);
  }
  for (uint32_t c = b.compsBegin; c < b.compsEnd; ++c) {
    const CompRec& comp = d_.comps[c];
    for (uint32_t p = comp.pinsBegin; p < comp.pinsBegin + comp.pinsCount; ++p) {
      const PinRec& pin = d_.pins[p];
      for (uint32_t i = pin.netsBegin; i < pin.netsBegin + pin.netsCount; ++i)
        d_.links[i] = NetOfLabel(block, d_.links[i]);
    }
  }
  b.netsEnd = static_cast<uint32_t>(d_.nets.size());
}

bool DesignBuilder::EndBlock(size_t block, const Json& value) {
  OpenBlock(block);
  std::string at = "blocks[" + std::to_string(block) + "]";
  if (!value.is_object()) return Fail(at, "expected an object");
  VDB_TEXT(value, "name", at, d_.blocks[block].name, true);
  for (const char* list : {"components", "nets", "ports"}) {
    const Json* it = Member(value, list);
    if (it && !it->is_array()) return Fail(Field(at, list), "expected a list");
  }
  ResolveBlockLinks(block);
  BlockRec& b = d_.blocks[block];
  if (b.netsEnd - b.netsBegin > kMaxPerBlock) return Fail(Field(at, "nets"), "too many nets in one block");
  return true;
}

bool DesignBuilder::ReadGroups(const Json& root) {
  auto groups = root.find("groups");
  if (groups == root.end()) return true;
  if (!groups->is_object()) return Fail("groups", "expected an object");
  for (auto& [name, value] : groups->items()) {
    std::string at = "groups." + name;
    if (!value.is_object()) return Fail(at, "expected an object");
    GroupRec g;
    g.name = d_.strings.Intern(name);
    VDB_TEXT(value, "internal_id", at, g.internalId, false);
    int64_t type = 2;
    bool present = false;
    std::string what;
    if (!ReadIntField(value, "type", type, present, what)) return Fail(Field(at, "type"), what);
    if (type < INT32_MIN || type > INT32_MAX) return Fail(Field(at, "type"), "number out of range");
    g.type = static_cast<int32_t>(type);
    groupOfName_.emplace(g.name, static_cast<uint32_t>(d_.groups.size()));
    d_.groups.push_back(g);
  }
  return true;
}

bool DesignBuilder::ReadSymbols(const Json& root) {
  auto symbols = root.find("symbols");
  if (symbols == root.end()) return true;
  if (!symbols->is_object()) return Fail("symbols", "expected an object");
  for (auto& [name, value] : symbols->items()) {
    Json wrapper = Json::object();
    wrapper[name] = value;
    uint32_t list = 0;
    if (!ReadAttributes(Where{nullptr, "symbols", Where::kNoIndex}, wrapper, name.c_str(), list))
      return false;
    uint32_t id = d_.strings.Intern(name);
    symbolOfName_.emplace(id, list);
    d_.symbols.emplace_back(id, list);
  }
  return true;
}

bool DesignBuilder::EndRoot(const Json& root) {
  if (!root.is_object()) return Fail("(document)", "expected an object");
  auto blocks = root.find("blocks");
  if (blocks == root.end()) return Fail("blocks", "missing required field");
  if (!blocks->is_array()) return Fail("blocks", "expected a list");
  std::string_view snapshot;
  bool present = false;
  std::string what;
  if (!ReadTextField(root, "snapshot", snapshot, present, what)) return Fail("snapshot", what);
  if (present) snapshot_ = std::string(snapshot);
  if (!ReadGroups(root) || !ReadSymbols(root)) return false;
  auto benches = root.find("testbenches");
  if (benches == root.end()) return true;
  if (!benches->is_object()) return Fail("testbenches", "expected an object");
  for (auto& [name, value] : benches->items()) {
    if (!value.is_string()) return Fail("testbenches." + name, "expected text");
    testbenchTargets_.emplace_back(d_.strings.Intern(name), value.get<std::string>());
  }
  return true;
}

std::string DesignBuilder::CompWhere(uint32_t comp) const {
  uint32_t block = d_.comps[comp].block;
  return Indexed("blocks[" + std::to_string(block) + "]", "components", comp - d_.blocks[block].compsBegin);
}

std::string DesignBuilder::NetWhere(uint32_t net) const {
  uint32_t block = d_.nets[net].block;
  return Indexed("blocks[" + std::to_string(block) + "]", "nets", net - d_.blocks[block].netsBegin);
}

bool DesignBuilder::ResolveBlockNames() {
  for (uint32_t b = 0; b < d_.blocks.size(); ++b) {
    auto [it, added] = blockOfName_.emplace(d_.blocks[b].name, b);
    if (added) continue;
    return Fail("blocks[" + std::to_string(b) + "].name",
                "a block named " + Quoted(d_.strings.View(d_.blocks[b].name)) + " already exists (blocks[" +
                    std::to_string(it->second) + "])");
  }
  return true;
}

bool DesignBuilder::ResolveComponents() {
  for (uint32_t c = 0; c < d_.comps.size(); ++c) {
    CompRec& comp = d_.comps[c];
    if (compChild_[c] != kNone) {
      auto block = blockOfName_.find(compChild_[c]);
      if (block == blockOfName_.end())
        return Fail(CompWhere(c) + ".child", "no block named " + Quoted(d_.strings.View(compChild_[c])));
      comp.child = block->second;
    }
    if (compGroup_[c] != kNone) {
      auto group = groupOfName_.find(compGroup_[c]);
      if (group == groupOfName_.end())
        return Fail(CompWhere(c) + ".group", "no group named " + Quoted(d_.strings.View(compGroup_[c])));
      comp.group = group->second;
    }
    if (comp.ownDefinition) continue;
    auto symbol = symbolOfName_.find(comp.name);
    if (symbol != symbolOfName_.end()) comp.defAttrs = symbol->second;
  }
  return true;
}

bool DesignBuilder::ResolveNets() {
  for (uint32_t n = 0; n < d_.nets.size(); ++n) {
    if (netGroup_[n] == kNone) continue;
    auto group = groupOfName_.find(netGroup_[n]);
    if (group == groupOfName_.end())
      return Fail(NetWhere(n) + ".group", "no group named " + Quoted(d_.strings.View(netGroup_[n])));
    d_.nets[n].group = group->second;
  }
  return true;
}

bool DesignBuilder::ResolveTestbenches() {
  for (auto& [name, target] : testbenchTargets_) {
    uint32_t id = 0;
    auto block = d_.strings.Find(target, id) ? blockOfName_.find(id) : blockOfName_.end();
    if (block == blockOfName_.end())
      return Fail("testbenches." + std::string(d_.strings.View(name)), "no block named " + Quoted(target));
    d_.testbenches.emplace_back(name, block->second);
  }
  return true;
}

bool DesignBuilder::CheckHierarchy() {
  std::vector<uint32_t> order;
  uint32_t start = 0;
  if (OrderBlocks(d_, order, start)) return true;
  // Find the way from `start` back to itself, breadth first, remembering the placing component.
  std::vector<uint32_t> via(d_.blocks.size(), kNone);
  std::vector<uint32_t> queue{start};
  for (size_t q = 0; q < queue.size() && via[start] == kNone; ++q) {
    const BlockRec& b = d_.blocks[queue[q]];
    for (uint32_t c = b.compsBegin; c < b.compsEnd; ++c) {
      uint32_t child = d_.comps[c].child;
      if (child == kNone || via[child] != kNone) continue;
      via[child] = c;
      queue.push_back(child);
    }
  }
  std::string chain = std::string(d_.strings.View(d_.blocks[start].name));
  uint32_t comp = via[start];
  for (uint32_t block = start;;) {
    comp = via[block];
    block = d_.comps[comp].block;
    chain = std::string(d_.strings.View(d_.blocks[block].name)) + " > " + chain;
    if (block == start) break;
  }
  return Fail(CompWhere(comp) + ".child",
              "block " + Quoted(d_.strings.View(d_.blocks[start].name)) + " places itself (" + chain + ")");
}

bool DesignBuilder::Finish(const std::string& snapshot) {
  if (!ResolveBlockNames() || !ResolveComponents() || !ResolveNets() || !ResolveTestbenches()) return false;
  if (!CheckHierarchy()) return false;
  d_.snapshot = !snapshot.empty() ? snapshot : !snapshot_.empty() ? snapshot_ : "Qor";
  return true;
}

}  // namespace vdb
