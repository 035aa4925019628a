// Paths, configs, groups, views, the UID manager and the snapshot of the opened design.
#include "design/db/tessel_cursors.h"
#include "design/db/tessel_objects.h"

namespace vdb {

using Tessel::ContainerT;
using Tessel::Index;
using Tessel::IteratorT;

// ---- PathObj

Result PathObj::IsValid() const { return db_ ? Result::Ok() : kInvalid; }

// A path is named after the block of its occurrence.
Result PathObj::GetName(String& name) const {
  if (!db_) return kInvalid;
  uint32_t block = config_->Occurrences()[occ_].block;
  name = String(std::string(db_->design().strings.View(db_->design().blocks[block].name)));
  return Result::Ok();
}

Result PathObj::GetIndex(Index& index) const {
  if (!db_) return kInvalid;
  index = MakeIndex(occ_, kTagPath, config_->Root());
  return Result::Ok();
}

Result PathObj::GetBlock(ContainerT<const Tessel::IBlock>& block) const {
  if (!db_) {
    block = ContainerT<const Tessel::IBlock>(InvalidShared<BlockObj>());
    return kInvalid;
  }
  block =
      ContainerT<const Tessel::IBlock>(std::make_shared<BlockObj>(db_, config_->Occurrences()[occ_].block));
  return Result::Ok();
}

Result PathObj::GetIterComps(IteratorT<const Tessel::IComp>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IComp>();
    return kInvalid;
  }
  const BlockRec& b = db_->design().blocks[config_->Occurrences()[occ_].block];
  it = MakeIterator<Tessel::IComp>(CompsPolicy{db_, config_, occ_, 0}, b.compsBegin, b.compsEnd);
  return Result::Ok();
}

Result PathObj::GetParentComp(ContainerT<const Tessel::IComp>& comp) const {
  if (!db_ || occ_ == 0) {
    comp = ContainerT<const Tessel::IComp>(InvalidShared<CompObj>());
    return db_ ? Result::Fail("the root path has no parent") : kInvalid;
  }
  const Occurrence& o = config_->Occurrences()[occ_];
  comp = ContainerT<const Tessel::IComp>(std::make_shared<CompObj>(db_, o.viaComp, config_, o.parent));
  return Result::Ok();
}

Result PathObj::GetHierarchicalName(String& name, char separator) const {
  if (!db_) {
    name = "";
    return kInvalid;
  }
  name = String(config_->HierarchicalName(occ_, separator));
  return Result::Ok();
}

// ---- ConfigObj

Result ConfigObj::GetIterPaths(IteratorT<const Tessel::IPath>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IPath>();
    return kInvalid;
  }
  uint32_t count = static_cast<uint32_t>(config_->Occurrences().size());
  it = MakeIterator<Tessel::IPath>(PathsPolicy{db_, config_}, 0, count);
  return Result::Ok();
}

Result ConfigObj::GetPath(ContainerT<const Tessel::IPath>& path, const Index& index) const {
  path = ContainerT<const Tessel::IPath>(InvalidShared<PathObj>());
  if (!db_) return kInvalid;
  if (index.Top8() != kTagPath || index.Low24() != config_->Root() ||
      index.word0 >= config_->Occurrences().size())
    return Result::Fail("no path with that index in this config");
  path = ContainerT<const Tessel::IPath>(std::make_shared<PathObj>(db_, config_, index.word0));
  return Result::Ok();
}

Result ConfigObj::GetIterComps(IteratorT<const Tessel::IComp>& it) const {
  if (!db_) {
    it = IteratorT<const Tessel::IComp>();
    return kInvalid;
  }
  it = IteratorT<const Tessel::IComp>(std::make_unique<ConfigCompCursor>(db_, config_));
  return Result::Ok();
}

// ---- ConfigCompCursor

ConfigCompCursor::ConfigCompCursor(const Database* db, const ConfigData* config) : db_(db), config_(config) {
  const BlockRec& root = db->design().blocks[config->Root()];
  stack_.push_back({0, root.compsBegin, root.compsEnd});
  Settle();
}

const Tessel::IComp* ConfigCompCursor::Current() const {
  return stack_.empty() ? Tessel::InvalidObject<const Tessel::IComp>() : &current_;
}

void ConfigCompCursor::Advance() {
  if (stack_.empty()) return;
  Frame& top = stack_.back();
  const CompRec& comp = db_->design().comps[top.pos];
  if (Descends(comp) && nextOcc_ < config_->Occurrences().size()) {
    const BlockRec& child = db_->design().blocks[comp.child];
    stack_.push_back({nextOcc_++, child.compsBegin, child.compsEnd});
  } else {
    ++top.pos;
  }
  Settle();
}

// Leaves finished blocks, stepping past the instance that entered them.
void ConfigCompCursor::Settle() {
  while (!stack_.empty() && stack_.back().pos == stack_.back().end) {
    stack_.pop_back();
    if (!stack_.empty()) ++stack_.back().pos;
  }
  if (!stack_.empty()) current_ = CompObj(db_, stack_.back().pos, config_, stack_.back().occ);
}

// ---- GroupObj, NetQorObj, ViewObj

Result GroupObj::GetAttribute(const String& key, String& value) const {
  value = "";
  if (!db_) return kInvalid;
  if (key.str() != "$$Internal_ID") return Result::Fail("not found");
  value = String(std::string(db_->design().strings.View(db_->design().groups[group_].internalId)));
  return Result::Ok();
}

Result NetQorObj::IsValid() const { return valid_ ? Result::Ok() : kInvalid; }

Result NetQorObj::GetData(Tessel::NetDataQor& data) const {
  if (!valid_) return kInvalid;
  data.number = number_;
  return Result::Ok();
}

Result ViewObj::GetCompData(const Tessel::IComp& comp, Tessel::CompDataQor& data) const {
  const auto* obj = dynamic_cast<const CompObj*>(&comp);
  const CompRec* rec = obj ? obj->Record() : nullptr;
  if (!db_ || !rec || rec->block != block_ || rec->group != group_) return Result::Fail("not in this view");
  data.number = rec->hasNumber ? rec->number : 0;
  return Result::Ok();
}

Result ViewObj::GetIterNetsQor(const Tessel::INet& net, IteratorT<const Tessel::INetQor>& it) const {
  it = IteratorT<const Tessel::INetQor>();
  const auto* obj = dynamic_cast<const NetObj*>(&net);
  const NetRec* rec = obj ? obj->Record() : nullptr;
  if (!db_ || !rec || rec->block != block_ || rec->group != group_ || !rec->hasNumber)
    return Result::Fail("not in this view");
  it = MakeIterator<Tessel::INetQor>(NetQorPolicy{rec->number}, 0, 1);
  return Result::Ok();
}

Result MakeView(ContainerT<const Tessel::IBlockViewQor>& view, const Tessel::IBlock& block,
                const Tessel::IGroup& group) {
  const auto* b = dynamic_cast<const BlockObj*>(&block);
  const auto* g = dynamic_cast<const GroupObj*>(&group);
  if (!b || !g || !b->db() || b->db() != g->db()) {
    view = ContainerT<const Tessel::IBlockViewQor>(InvalidShared<ViewObj>());
    return Result::Fail("no view of an invalid block or group");
  }
  view = ContainerT<const Tessel::IBlockViewQor>(std::make_shared<ViewObj>(b->db(), b->block(), g->group()));
  return Result::Ok();
}

// ---- UidManagerObj

Result UidManagerObj::GetConfig(ContainerT<const Tessel::IConfig>& config, const Index& index) const {
  config = ContainerT<const Tessel::IConfig>(InvalidShared<ConfigObj>());
  if (index.Top8() != kTagConfig || index.Low24() != 0 || index.word0 == 0 ||
      index.word0 > db_->design().blocks.size())
    return Result::Fail("no config with that index");
  const ConfigData& data = db_->Config(index.word0 - 1);
  config = ContainerT<const Tessel::IConfig>(std::make_shared<ConfigObj>(db_.get(), &data));
  return Result::Ok();
}

Result UidManagerObj::GetGroup(ContainerT<const Tessel::IGroup>& group, const Index& index) const {
  group = ContainerT<const Tessel::IGroup>(InvalidShared<GroupObj>());
  if (index.Top8() != kTagGroup || index.word0 == 0 || index.word0 > db_->design().groups.size())
    return Result::Fail("no group with that index");
  group = ContainerT<const Tessel::IGroup>(std::make_shared<GroupObj>(db_.get(), index.word0 - 1));
  return Result::Ok();
}

// ---- SnapshotObj

Result SnapshotObj::GetUIDManager(Tessel::IUIDManager& manager) const {
  manager.impl = std::make_shared<UidManagerObj>(db_);
  return Result::Ok();
}

Result SnapshotObj::FindBlock(Tessel::ListT<Tessel::BlockInfo>& hits, const String& name,
                              const Tessel::BitContainerT<Tessel::ESearchParams, 1>&) const {
  hits.items.clear();
  uint32_t block = 0;
  if (!db_->FindBlock(name.str(), block)) return Result::Fail("no block or test bench named " + name.str());
  Tessel::BlockInfo info;
  info.index = MakeIndex(block + 1, kTagComp, 0);
  hits.items.push_back(info);
  return Result::Ok();
}

// An unknown index leaves the handle empty, which is how the caller tells a missing block.
Result SnapshotObj::GetBlock(ContainerT<const Tessel::IBlock>& block, const Index& index) const {
  if (index.word1 != 0 || index.word0 == 0 || index.word0 > db_->design().blocks.size()) {
    block = ContainerT<const Tessel::IBlock>();
    return Result::Fail("no block with that index");
  }
  block = ContainerT<const Tessel::IBlock>(std::make_shared<BlockObj>(db_.get(), index.word0 - 1));
  return Result::Ok();
}

Result SnapshotObj::GetDefaultConfig(ContainerT<const Tessel::IConfig>& config,
                                     const String& blockName) const {
  uint32_t block = 0;
  if (!db_->FindBlock(blockName.str(), block)) {
    config = ContainerT<const Tessel::IConfig>(InvalidShared<ConfigObj>());
    return Result::Fail("no block or test bench named " + blockName.str());
  }
  config = ContainerT<const Tessel::IConfig>(std::make_shared<ConfigObj>(db_.get(), &db_->Config(block)));
  return Result::Ok();
}

}  // namespace vdb
