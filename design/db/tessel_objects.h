// The objects that answer the database interface from the opened design. Each is a small value
// (the database, a position, and for components and paths the config occurrence) that stays valid
// while the database lives; a default-constructed object is the invalid one that fails everything.
#pragma once

#include "design/db/database.h"
#include "design/tessel.h"

namespace vdb {

using Tessel::Result;
using Tessel::String;

/// What every question to an object that is no object answers.
inline const Result kInvalid = Result::Fail("invalid object");

/// Index tags in the top 8 bits of the second word, so that objects of different kinds differ.
enum IndexTag : uint32_t {
  kTagComp = 0,
  kTagNet = 1,
  kTagPort = 2,
  kTagPin = 3,
  kTagConfig = 4,
  kTagPath = 5,
  kTagGroup = 6
};
inline Tessel::Index MakeIndex(uint32_t word0, uint32_t tag, uint32_t low24) {
  Tessel::Index index;
  index.word0 = word0;
  index.word1 = (tag << 24) | (low24 & 0xFFFFFFu);
  return index;
}

/// A handle to the shared invalid object of type Obj.
template <class Obj>
std::shared_ptr<const Obj> InvalidShared() {
  static const std::shared_ptr<const Obj> invalid = std::make_shared<const Obj>();
  return invalid;
}

class BlockObj : public Tessel::IBlock {
 public:
  BlockObj() = default;
  BlockObj(const Database* db, uint32_t block) : db_(db), block_(block) {}
  Result IsValid() const override;
  Result GetName(String& name) const override;
  Result GetIndex(Tessel::Index& index) const override;
  Result GetIterComps(Tessel::IteratorT<const Tessel::IComp>& it,
                      const Tessel::BitContainerT<Tessel::ECompType, 1>& filter) const override;
  Result GetIterNets(Tessel::IteratorT<const Tessel::INet>& it) const override;
  Result GetIterPorts(Tessel::IteratorT<const Tessel::IPort>& it) const override;
  Result GetComp(Tessel::ContainerT<const Tessel::IComp>& comp, const Tessel::Index& index) const override;
  Result GetNet(Tessel::ContainerT<const Tessel::INet>& net, const Tessel::Index& index) const override;
  Result GetDefaultConfigIndex(Tessel::Index& index) const override;

  const Database* db() const { return db_; }
  uint32_t block() const { return block_; }

 private:
  const Database* db_ = nullptr;
  uint32_t block_ = 0;
};

class CompObj : public Tessel::IComp {
 public:
  CompObj() = default;
  /// `config` is null for a component reached through its block rather than a path.
  CompObj(const Database* db, uint32_t comp, const ConfigData* config, uint32_t occ)
      : db_(db), config_(config), comp_(comp), occ_(occ) {}
  Result IsValid() const override;
  Result GetName(String& name) const override;
  Result GetIndex(Tessel::Index& index) const override;
  Result GetType(Tessel::BitContainerT<Tessel::ECompType, 1>& type) const override;
  Result GetLabel(String& label) const override;
  Result GetPartitionName(String& partition) const override;
  Result GetInstanceIndex(Tessel::Index& index) const override;
  Result GetPath(Tessel::ContainerT<const Tessel::IPath>& path) const override;
  Result GetParentBlock(Tessel::ContainerT<const Tessel::IBlock>& block) const override;
  Result GetChildBlock(Tessel::ContainerT<const Tessel::IBlock>& block) const override;
  Result GetAttribute(const String& key, String& value, Tessel::EAttributeType level) const override;
  Result GetAttributes(Tessel::ListAttribute& attributes) const override;
  bool GetAttributeListsId(uint64_t& id) const override;
  Result GetPinsCount(int& count) const override;
  Result GetIterPins(Tessel::IteratorT<const Tessel::IPin>& it) const override;
  Result GetListGroups(Tessel::ListT<Tessel::GroupInfo>& groups, Tessel::EGroupType type) const override;

  const CompRec* Record() const { return db_ ? &db_->design().comps[comp_] : nullptr; }

 private:
  const Database* db_ = nullptr;
  const ConfigData* config_ = nullptr;
  uint32_t comp_ = 0;
  uint32_t occ_ = 0;
};

class NetObj : public Tessel::INet {
 public:
  NetObj() = default;
  NetObj(const Database* db, uint32_t net) : db_(db), net_(net) {}
  Result IsValid() const override;
  Result GetName(String& name) const override;
  Result GetIndex(Tessel::Index& index) const override;
  Result GetLabel(String& label) const override;
  Result IsGlobal(bool& global) const override;
  Result GetAttribute(const String& key, String& value, Tessel::EAttributeType level) const override;
  bool HasAttributes() const override;
  Result GetInstanceIndex(Tessel::Index& index) const override;
  Result GetParentBlock(Tessel::ContainerT<const Tessel::IBlock>& block) const override;
  Result GetListGroups(Tessel::ListT<Tessel::GroupInfo>& groups, Tessel::EGroupType type) const override;

  const NetRec* Record() const { return db_ ? &db_->design().nets[net_] : nullptr; }

 private:
  const Database* db_ = nullptr;
  uint32_t net_ = 0;
};

class PinObj : public Tessel::IPin {
 public:
  PinObj() = default;
  PinObj(const Database* db, uint32_t pin, uint32_t comp) : db_(db), pin_(pin), comp_(comp) {}
  Result IsValid() const override;
  Result GetName(String& name) const override;
  Result GetIndex(Tessel::Index& index) const override;
  Result GetWidth(int& width) const override;
  Result IsConnected(bool& connected) const override;
  Result GetIterNetsConnected(Tessel::IteratorT<const Tessel::INet>& it) const override;
  Result GetIterBusesConnected(Tessel::IteratorT<const Tessel::IBus>& it) const override;

 private:
  const Database* db_ = nullptr;
  uint32_t pin_ = 0;
  uint32_t comp_ = 0;
};

class PortObj : public Tessel::IPort {
 public:
  PortObj() = default;
  PortObj(const Database* db, uint32_t port) : db_(db), port_(port) {}
  Result IsValid() const override;
  Result GetName(String& name) const override;
  Result GetIndex(Tessel::Index& index) const override;
  Result IsConnected(bool& connected) const override;
  Result GetAttribute(const String& key, String& value, int level) const override;
  Result GetIterNetsConnected(Tessel::IteratorT<const Tessel::INet>& it) const override;
  Result GetIterBusesConnected(Tessel::IteratorT<const Tessel::IBus>& it) const override;

 private:
  const Database* db_ = nullptr;
  uint32_t port_ = 0;
};

class BusObj : public Tessel::IBus {
 public:
  BusObj() = default;
  BusObj(const Database* db, uint32_t label) : db_(db), label_(label) {}
  Result IsValid() const override;
  Result GetLabel(String& label) const override;

 private:
  const Database* db_ = nullptr;
  uint32_t label_ = 0;
};

class PathObj : public Tessel::IPath {
 public:
  PathObj() = default;
  PathObj(const Database* db, const ConfigData* config, uint32_t occ) : db_(db), config_(config), occ_(occ) {}
  Result IsValid() const override;
  Result GetName(String& name) const override;
  Result GetIndex(Tessel::Index& index) const override;
  Result GetBlock(Tessel::ContainerT<const Tessel::IBlock>& block) const override;
  Result GetIterComps(Tessel::IteratorT<const Tessel::IComp>& it) const override;
  Result GetParentComp(Tessel::ContainerT<const Tessel::IComp>& comp) const override;
  Result GetHierarchicalName(String& name, char separator) const override;

 private:
  const Database* db_ = nullptr;
  const ConfigData* config_ = nullptr;
  uint32_t occ_ = 0;
};

class ConfigObj : public Tessel::IConfig {
 public:
  ConfigObj() = default;
  ConfigObj(const Database* db, const ConfigData* config) : db_(db), config_(config) {}
  Result GetIterPaths(Tessel::IteratorT<const Tessel::IPath>& it) const override;
  Result GetPath(Tessel::ContainerT<const Tessel::IPath>& path, const Tessel::Index& index) const override;
  Result GetIterComps(Tessel::IteratorT<const Tessel::IComp>& it) const override;

 private:
  const Database* db_ = nullptr;
  const ConfigData* config_ = nullptr;
};

class GroupObj : public Tessel::IGroup {
 public:
  GroupObj() = default;
  GroupObj(const Database* db, uint32_t group) : db_(db), group_(group) {}
  Result GetAttribute(const String& key, String& value) const override;
  const Database* db() const { return db_; }
  uint32_t group() const { return group_; }

 private:
  const Database* db_ = nullptr;
  uint32_t group_ = 0;
};

class NetQorObj : public Tessel::INetQor {
 public:
  NetQorObj() = default;
  explicit NetQorObj(int32_t number) : valid_(true), number_(number) {}
  Result IsValid() const override;
  Result GetData(Tessel::NetDataQor& data) const override;

 private:
  bool valid_ = false;
  int32_t number_ = 0;
};

/// A block seen through a group: the numbers of the block's objects in that group.
class ViewObj : public Tessel::IBlockViewQor {
 public:
  ViewObj() = default;
  ViewObj(const Database* db, uint32_t block, uint32_t group) : db_(db), block_(block), group_(group) {}
  Result GetCompData(const Tessel::IComp& comp, Tessel::CompDataQor& data) const override;
  Result GetIterNetsQor(const Tessel::INet& net, Tessel::IteratorT<const Tessel::INetQor>& it) const override;

 private:
  const Database* db_ = nullptr;
  uint32_t block_ = 0;
  uint32_t group_ = 0;
};

class UidManagerObj : public Tessel::IUIDManager {
 public:
  explicit UidManagerObj(std::shared_ptr<const Database> db) : db_(std::move(db)) {}
  Result GetConfig(Tessel::ContainerT<const Tessel::IConfig>& config,
                   const Tessel::Index& index) const override;
  Result GetGroup(Tessel::ContainerT<const Tessel::IGroup>& group, const Tessel::Index& index) const override;

 private:
  std::shared_ptr<const Database> db_;
};

class SnapshotObj : public Tessel::ISnapshot {
 public:
  explicit SnapshotObj(std::shared_ptr<const Database> db) : db_(std::move(db)) {}
  Result GetUIDManager(Tessel::IUIDManager& manager) const override;
  Result FindBlock(Tessel::ListT<Tessel::BlockInfo>& hits, const String& name,
                   const Tessel::BitContainerT<Tessel::ESearchParams, 1>& params) const override;
  Result GetBlock(Tessel::ContainerT<const Tessel::IBlock>& block, const Tessel::Index& index) const override;
  Result GetDefaultConfig(Tessel::ContainerT<const Tessel::IConfig>& config,
                          const String& blockName) const override;

 private:
  std::shared_ptr<const Database> db_;
};

/// Makes the view of `block` through `group`; an invalid view when either is not ours.
Result MakeView(Tessel::ContainerT<const Tessel::IBlockViewQor>& view, const Tessel::IBlock& block,
                const Tessel::IGroup& group);

}  // namespace vdb
