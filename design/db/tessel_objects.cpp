// Blocks, components, nets, pins, ports and buses of the opened design.
#include "design/db/tessel_objects.h"

#include "design/db/tessel_cursors.h"

namespace vdb {

using Tessel::ContainerT;
using Tessel::Index;
using Tessel::IteratorT;

namespace {

// Sets `out` to a stored text in place: a caller that reads a field of every component or pin into
// the same String keeps its buffer instead of a new string each time.
void SetText(String& out, const Database* db, uint32_t id) {
  out.str().assign(db->design().strings.View(id));
}

// Looks `key` up in an attribute list; the value is empty when it is absent.
Result ReadAttr(const Database* db, uint32_t list, const String& key, String& value) {
  uint32_t found = 0;
  if (!FindAttr(db->design(), list, key.str(), found)) {
    value.str().clear();
    return Result::Fail("not found");
  }
  SetText(value, db, found);
  return Result::Ok();
}

void ListGroup(Tessel::ListT<Tessel::GroupInfo>& groups, const Database* db, uint32_t group,
               Tessel::EGroupType type) {
  groups.items.clear();
  if (group == kNone || db->design().groups[group].type != static_cast<int32_t>(type)) return;
  Tessel::GroupInfo info;
  info.index = MakeIndex(group + 1, kTagGroup, 0);
  groups.items.push_back(info);
}

Result BusIterator(const Database* db, uint32_t bus, IteratorT<const Tessel::IBus>& it) {
  it = MakeIterator<Tessel::IBus>(BusPolicy{db, bus}, 0, bus != 0 ? 1 : 0);
  return bus != 0 ? Result::Ok() : Result::Fail("no bus");  // short enough to need no allocation
}

}  // namespace

// ---- BlockObj

Result BlockObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

Result BlockObj::GetName(String& name) const {
  if (!db_) return kInvalid;
  SetText(name, db_, db_->design().blocks[block_].name);
  return Result::Ok();
}

Result BlockObj::GetIndex(Index& index) const {
  if (!db_) return kInvalid;
  index = MakeIndex(block_ + 1, kTagComp, 0);
  return Result::Ok();
}

Result BlockObj::GetIterComps(IteratorT<const Tessel::IComp>& it,
                              const Tessel::BitContainerT<Tessel::ECompType, 1>& filter) const {
  if (!db_) {
    it = IteratorT<const Tessel::IComp>();
    return kInvalid;
  }
  const BlockRec& b = db_->design().blocks[block_];
  it = MakeIterator<Tessel::IComp>(CompsPolicy{db_, nullptr, 0, filter.Bits()}, b.compsBegin, b.compsEnd);
  return Result::Ok();
}

Result BlockObj::GetIterNets(IteratorT<const Tessel::INet>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::INet>();
    return kInvalid;
  }
  const BlockRec& b = db_->design().blocks[block_];
  it = MakeIterator<Tessel::INet>(NetsPolicy{db_}, b.netsBegin, b.netsEnd);
  return Result::Ok();
}

Result BlockObj::GetIterPorts(IteratorT<const Tessel::IPort>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IPort>();
    return kInvalid;
  }
  const BlockRec& b = db_->design().blocks[block_];
  it = MakeIterator<Tessel::IPort>(PortsPolicy{db_}, b.portsBegin, b.portsEnd);
  return Result::Ok();
}

Result BlockObj::GetComp(ContainerT<const Tessel::IComp>& comp, const Index& index) const {
  comp = ContainerT<const Tessel::IComp>(InvalidShared<CompObj>());
  if (!db_) return kInvalid;
  const BlockRec& b = db_->design().blocks[block_];
  if (index.word0 != block_ + 1 || index.Top8() != kTagComp || index.Low24() >= b.compsEnd - b.compsBegin)
    return Result::Fail("no component with that index in this block");
  comp = ContainerT<const Tessel::IComp>(
      std::make_shared<CompObj>(db_, b.compsBegin + index.Low24(), nullptr, 0));
  return Result::Ok();
}

Result BlockObj::GetNet(ContainerT<const Tessel::INet>& net, const Index& index) const {
  net = ContainerT<const Tessel::INet>(InvalidShared<NetObj>());
  if (!db_) return kInvalid;
  const BlockRec& b = db_->design().blocks[block_];
  if (index.word0 != block_ + 1 || index.Top8() != kTagNet || index.Low24() >= b.netsEnd - b.netsBegin)
    return Result::Fail("no net with that index in this block");
  net = ContainerT<const Tessel::INet>(std::make_shared<NetObj>(db_, b.netsBegin + index.Low24()));
  return Result::Ok();
}

Result BlockObj::GetDefaultConfigIndex(Index& index) const {
  if (!db_) return kInvalid;
  index = MakeIndex(block_ + 1, kTagConfig, 0);
  return Result::Ok();
}

// ---- CompObj

Result CompObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

Result CompObj::GetName(String& name) const {
  if (!db_) return kInvalid;
  SetText(name, db_, Record()->name);
  return Result::Ok();
}

Result CompObj::GetIndex(Index& index) const { return GetInstanceIndex(index); }

Result CompObj::GetInstanceIndex(Index& index) const {
  if (!db_) return kInvalid;
  const CompRec* c = Record();
  index = MakeIndex(c->block + 1, kTagComp, comp_ - db_->design().blocks[c->block].compsBegin);
  return Result::Ok();
}

Result CompObj::GetType(Tessel::BitContainerT<Tessel::ECompType, 1>& type) const {
  if (!db_) return kInvalid;
  type = Tessel::BitContainerT<Tessel::ECompType, 1>::FromBits(Record()->type);
  return Result::Ok();
}

Result CompObj::GetLabel(String& label) const {
  if (!db_) return kInvalid;
  SetText(label, db_, Record()->label);
  return Result::Ok();
}

Result CompObj::GetPartitionName(String& partition) const {
  if (!db_) return kInvalid;
  SetText(partition, db_, Record()->partition);
  return Result::Ok();
}

Result CompObj::GetPath(ContainerT<const Tessel::IPath>& path) const {
  if (!db_ || !config_) {
    path = ContainerT<const Tessel::IPath>(InvalidShared<PathObj>());
    return db_ ? Result::Fail("component reached through its block has no path") : kInvalid;
  }
  path = ContainerT<const Tessel::IPath>(std::make_shared<PathObj>(db_, config_, occ_));
  return Result::Ok();
}

Result CompObj::GetParentBlock(ContainerT<const Tessel::IBlock>& block) const {
  if (!db_) {
    block = ContainerT<const Tessel::IBlock>(InvalidShared<BlockObj>());
    return kInvalid;
  }
  block = ContainerT<const Tessel::IBlock>(std::make_shared<BlockObj>(db_, Record()->block));
  return Result::Ok();
}

Result CompObj::GetChildBlock(ContainerT<const Tessel::IBlock>& block) const {
  if (!db_ || Record()->child == kNone) {
    block = ContainerT<const Tessel::IBlock>(InvalidShared<BlockObj>());
    return db_ ? Result::Fail("component has no child block") : kInvalid;
  }
  block = ContainerT<const Tessel::IBlock>(std::make_shared<BlockObj>(db_, Record()->child));
  return Result::Ok();
}

Result CompObj::GetAttribute(const String& key, String& value, Tessel::EAttributeType level) const {
  value = "";
  if (!db_) return kInvalid;
  if (level == Tessel::eAttrInstance) return ReadAttr(db_, Record()->instAttrs, key, value);
  if (level == Tessel::eAttrDefinition) return ReadAttr(db_, Record()->defAttrs, key, value);
  return Result::Fail("no such attribute level");
}

Result CompObj::GetAttributes(Tessel::ListAttribute& attributes) const {
  attributes.items.clear();
  if (!db_) return kInvalid;
  const AttrLists& lists = db_->design().attrs;
  const CompRec* c = Record();
  attributes.items.reserve(lists.PairCount(c->instAttrs) + lists.PairCount(c->defAttrs));
  for (auto [list, level] : {std::pair<uint32_t, int32_t>{c->instAttrs, 2}, {c->defAttrs, 1}}) {
    for (uint32_t i = 0; i < lists.PairCount(list); ++i) {
      Tessel::Attribute a;
      SetText(a.name, db_, lists.Key(list, i));
      SetText(a.value, db_, lists.Value(list, i));
      a.level = level;
      attributes.items.push_back(std::move(a));
    }
  }
  return Result::Ok();
}

bool CompObj::GetAttributeListsId(uint64_t& id) const {
  if (!db_) return false;
  // Equal lists are stored once, so the two list numbers name the attributes.
  const CompRec* c = Record();
  id = static_cast<uint64_t>(c->instAttrs) << 32 | c->defAttrs;
  return true;
}

Result CompObj::GetPinsCount(int& count) const {
  if (!db_) return kInvalid;
  count = static_cast<int>(Record()->pinsCount);
  return Result::Ok();
}

Result CompObj::GetIterPins(IteratorT<const Tessel::IPin>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IPin>();
    return kInvalid;
  }
  const CompRec* c = Record();
  it = MakeIterator<Tessel::IPin>(PinsPolicy{db_, comp_}, c->pinsBegin, c->pinsBegin + c->pinsCount);
  return Result::Ok();
}

Result CompObj::GetListGroups(Tessel::ListT<Tessel::GroupInfo>& groups, Tessel::EGroupType type) const {
  groups.items.clear();
  if (!db_) return kInvalid;
  ListGroup(groups, db_, Record()->group, type);
  return Result::Ok();
}

// ---- NetObj

Result NetObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

Result NetObj::GetName(String& name) const { return GetLabel(name); }

Result NetObj::GetIndex(Index& index) const { return GetInstanceIndex(index); }

Result NetObj::GetInstanceIndex(Index& index) const {
  if (!db_) return kInvalid;
  const NetRec* n = Record();
  index = MakeIndex(n->block + 1, kTagNet, net_ - db_->design().blocks[n->block].netsBegin);
  return Result::Ok();
}

Result NetObj::GetLabel(String& label) const {
  if (!db_) return kInvalid;
  SetText(label, db_, Record()->label);
  return Result::Ok();
}

Result NetObj::IsGlobal(bool& global) const {
  if (!db_) return kInvalid;
  global = Record()->global != 0;
  return Result::Ok();
}

// Net attributes have one level; any level asked for reads it.
Result NetObj::GetAttribute(const String& key, String& value, Tessel::EAttributeType) const {
  if (!db_) {
    value = "";
    return kInvalid;
  }
  return ReadAttr(db_, Record()->attrs, key, value);
}

bool NetObj::HasAttributes() const { return db_ && db_->design().attrs.PairCount(Record()->attrs) != 0; }

Result NetObj::GetParentBlock(ContainerT<const Tessel::IBlock>& block) const {
  if (!db_) {
    block = ContainerT<const Tessel::IBlock>(InvalidShared<BlockObj>());
    return kInvalid;
  }
  block = ContainerT<const Tessel::IBlock>(std::make_shared<BlockObj>(db_, Record()->block));
  return Result::Ok();
}

Result NetObj::GetListGroups(Tessel::ListT<Tessel::GroupInfo>& groups, Tessel::EGroupType type) const {
  groups.items.clear();
  if (!db_) return kInvalid;
  ListGroup(groups, db_, Record()->group, type);
  return Result::Ok();
}

// ---- PinObj

Result PinObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

Result PinObj::GetName(String& name) const {
  if (!db_) return kInvalid;
  SetText(name, db_, db_->design().pins[pin_].name);
  return Result::Ok();
}

Result PinObj::GetIndex(Index& index) const {
  if (!db_) return kInvalid;
  const Design& d = db_->design();
  const CompRec& c = d.comps[comp_];
  index = MakeIndex(comp_ - d.blocks[c.block].compsBegin, kTagPin, pin_ - c.pinsBegin);
  return Result::Ok();
}

Result PinObj::GetWidth(int& width) const {
  if (!db_) return kInvalid;
  width = static_cast<int>(db_->design().pins[pin_].width);
  return Result::Ok();
}

Result PinObj::IsConnected(bool& connected) const {
  if (!db_) return kInvalid;
  connected = db_->design().pins[pin_].connected != 0;
  return Result::Ok();
}

Result PinObj::GetIterNetsConnected(IteratorT<const Tessel::INet>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::INet>();
    return kInvalid;
  }
  const PinRec& p = db_->design().pins[pin_];
  it = MakeIterator<Tessel::INet>(LinkedNetsPolicy{db_}, p.netsBegin, p.netsBegin + p.netsCount);
  return Result::Ok();
}

Result PinObj::GetIterBusesConnected(IteratorT<const Tessel::IBus>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IBus>();
    return kInvalid;
  }
  return BusIterator(db_, db_->design().pins[pin_].bus, it);
}

// ---- PortObj

Result PortObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

Result PortObj::GetName(String& name) const {
  if (!db_) return kInvalid;
  SetText(name, db_, db_->design().ports[port_].name);
  return Result::Ok();
}

Result PortObj::GetIndex(Index& index) const {
  if (!db_) return kInvalid;
  const PortRec& p = db_->design().ports[port_];
  index = MakeIndex(p.block + 1, kTagPort, port_ - db_->design().blocks[p.block].portsBegin);
  return Result::Ok();
}

Result PortObj::IsConnected(bool& connected) const {
  if (!db_) return kInvalid;
  connected = db_->design().ports[port_].connected != 0;
  return Result::Ok();
}

// Port attributes have one level; any level asked for reads it.
Result PortObj::GetAttribute(const String& key, String& value, int) const {
  value = "";
  if (!db_) return kInvalid;
  return ReadAttr(db_, db_->design().ports[port_].attrs, key, value);
}

Result PortObj::GetIterNetsConnected(IteratorT<const Tessel::INet>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::INet>();
    return kInvalid;
  }
  const PortRec& p = db_->design().ports[port_];
  it = MakeIterator<Tessel::INet>(LinkedNetsPolicy{db_}, p.netsBegin, p.netsBegin + p.netsCount);
  return Result::Ok();
}

Result PortObj::GetIterBusesConnected(IteratorT<const Tessel::IBus>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IBus>();
    return kInvalid;
  }
  return BusIterator(db_, db_->design().ports[port_].bus, it);
}

// ---- BusObj

Result BusObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

Result BusObj::GetLabel(String& label) const {
  if (!db_) return kInvalid;
  SetText(label, db_, label_);
  return Result::Ok();
}

}  // namespace vdb
