// The non-abstract parts of the database interface: invalid objects, the UID manager's
// forwarding, the view factory and the root object that opens the project.
#include "design/tessel.h"

#include "design/db/tessel_impl.h"
#include "design/db/tessel_objects.h"

namespace Tessel {

template <>
const IComp* InvalidObject<const IComp>() {
  static const vdb::CompObj invalid;
  return &invalid;
}
template <>
const INet* InvalidObject<const INet>() {
  static const vdb::NetObj invalid;
  return &invalid;
}
template <>
const IPin* InvalidObject<const IPin>() {
  static const vdb::PinObj invalid;
  return &invalid;
}
template <>
const IPort* InvalidObject<const IPort>() {
  static const vdb::PortObj invalid;
  return &invalid;
}
template <>
const IBus* InvalidObject<const IBus>() {
  static const vdb::BusObj invalid;
  return &invalid;
}
template <>
const IPath* InvalidObject<const IPath>() {
  static const vdb::PathObj invalid;
  return &invalid;
}
template <>
const IBlock* InvalidObject<const IBlock>() {
  static const vdb::BlockObj invalid;
  return &invalid;
}
template <>
const INetQor* InvalidObject<const INetQor>() {
  static const vdb::NetQorObj invalid;
  return &invalid;
}

Result IUIDManager::GetConfig(ContainerT<const IConfig>& config, const Index& index) const {
  if (impl) return impl->GetConfig(config, index);
  config = ContainerT<const IConfig>(vdb::InvalidShared<vdb::ConfigObj>());
  return Result::Fail("no database behind this manager");
}

Result IUIDManager::GetGroup(ContainerT<const IGroup>& group, const Index& index) const {
  if (impl) return impl->GetGroup(group, index);
  group = ContainerT<const IGroup>(vdb::InvalidShared<vdb::GroupObj>());
  return Result::Fail("no database behind this manager");
}

Result IBlockViewQor::Init(ContainerT<const IBlockViewQor>& view, const IBlock& block, const IGroup& group) {
  return vdb::MakeView(view, block, group);
}

TesselPI::TesselPI() : impl_(std::make_shared<TesselImpl>()) {}

TesselPI::~TesselPI() = default;

Result TesselPI::OpenTessel(ProjectData& data) { return impl_->Open(data.location.str()); }

Result TesselPI::GetSnapshotByName(ContainerT<const ISnapshot>& snapshot, const String& name) {
  return impl_->GetSnapshot(snapshot, name.str());
}

void TesselPI::Release() { impl_ = std::make_shared<TesselImpl>(); }

}  // namespace Tessel
