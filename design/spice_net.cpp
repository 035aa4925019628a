// SpiceNet: building connection records from nets, buses, ports and pins, and naming nets.
#include "design/spice_net.h"

namespace {

const std::string kEmpty;
const std::vector<SpiceNet> kNoMembers;
const std::map<std::string, std::string> kNoAttributes;

const char* const kNetAttributeKeys[] = {"NODE", "PROBE", "IC", "NODESET", "GUESS"};

}  // namespace

namespace {

// The name of `net`, whose label has been read already.
std::string NetNameOfLabel(const Tessel::INet& net, const std::string& label, const NetAliasTable& aliases) {
  if (!aliases.empty()) {
    auto alias = aliases.find(label);
    if (alias != aliases.end() && !alias->second.empty()) return alias->second;
  }
  if (net.HasAttributes()) {
    Tessel::String value;
    net.GetAttribute("NET_ALIAS", value, Tessel::eAttrInstance);
    if (!value.IsEmpty()) return value.str();
  }
  return label;
}

}  // namespace

std::string NetName(const Tessel::INet& net, const NetAliasTable& aliases) {
  Tessel::String label;
  net.GetLabel(label);
  return NetNameOfLabel(net, label.str(), aliases);
}

SpiceNet::SpiceNet(const Tessel::IteratorT<const Tessel::IPin>& pin) {
  Tessel::String pinName;
  pin->GetName(pinName);
  name = pinName.str();
}

SpiceNet::SpiceNet(const Tessel::IteratorT<const Tessel::IBus>& bus) {
  Tessel::String busLabel;
  bus->GetLabel(busLabel);
  name = busLabel.str();
}

SpiceNet::SpiceNet(const Tessel::IteratorT<const Tessel::IPort>& port, const NetAliasTable& aliases) {
  isPort = true;
  Tessel::String value;
  Tessel::Result read = port->GetAttribute("SIGNAL", value, Tessel::eAttrInstance);
  if (read.success || !value.IsEmpty()) Detail().signal = value.str();
  bool isConnected = false;
  port->IsConnected(isConnected);
  connected = isConnected;

  Tessel::IteratorT<const Tessel::IBus> buses;
  port->GetIterBusesConnected(buses);
  if (buses.IsValid()) {
    Detail().members.emplace_back(buses);
  } else {
    Tessel::IteratorT<const Tessel::INet> nets;
    port->GetIterNetsConnected(nets);
    for (; nets->IsValid(); nets++) Detail().members.emplace_back(nets, aliases, false);
  }
  Tessel::String portName;
  port->GetName(portName);
  name += portName.str();
}

SpiceNet::SpiceNet(const Tessel::IteratorT<const Tessel::INet>& net, const NetAliasTable& aliases, bool walk,
                   bool readAttributes) {
  bool global = false;
  net->IsGlobal(global);
  Tessel::String netLabel;
  net->GetLabel(netLabel);
  label = netLabel.str();
  if (readAttributes && net->HasAttributes()) {
    for (const char* key : kNetAttributeKeys) {
      Tessel::String value;
      Tessel::Result read = net->GetAttribute(key, value, Tessel::eAttrInstance);
      if (read.success || !value.IsEmpty()) Detail().netAttributes[key] = value.str();
    }
  }
  name = NetNameOfLabel(*net.operator->(), label, aliases);
  if (walk) {
    Tessel::IteratorT<const Tessel::INet> next = net;
    for (next++; next->IsValid(); next++) name += " " + NetName(*next.operator->(), aliases);
  }
  if (global) isGlobal = true;
}

SpiceNet::SpiceNet(const SpiceNet& other)
    : name(other.name),
      label(other.label),
      isPort(other.isPort),
      isGlobal(other.isGlobal),
      connected(other.connected),
      firstBit(other.firstBit),
      lastBit(other.lastBit),
      busBit(other.busBit) {
  if (other.details_ && !other.details_->netAttributes.empty())
    Detail().netAttributes = other.details_->netAttributes;
}

SpiceNet& SpiceNet::operator=(const SpiceNet& other) {
  if (this == &other) return *this;
  name = other.name;
  label = other.label;
  isPort = other.isPort;
  isGlobal = other.isGlobal;
  connected = other.connected;
  firstBit = other.firstBit;
  lastBit = other.lastBit;
  busBit = other.busBit;
  uidManager = other.uidManager;
  details_ = other.details_ ? std::make_unique<Details>(*other.details_) : nullptr;
  return *this;
}

SpiceNet::Details& SpiceNet::Detail() {
  if (!details_) details_ = std::make_unique<Details>();
  return *details_;
}

const std::string& SpiceNet::Signal() const { return details_ ? details_->signal : kEmpty; }
const std::string& SpiceNet::InternalName() const { return details_ ? details_->internalName : kEmpty; }
const std::vector<SpiceNet>& SpiceNet::Members() const { return details_ ? details_->members : kNoMembers; }
const std::map<std::string, std::string>& SpiceNet::NetAttributes() const {
  return details_ ? details_->netAttributes : kNoAttributes;
}

void SpiceNet::FormInternalName(const Tessel::IteratorT<const Tessel::INet>& net) {
  // Most nets are in no group: that is asked first, before the block and index are read.
  Tessel::ListT<Tessel::GroupInfo> groups;
  net->GetListGroups(groups, Tessel::eGroupInternal);
  if (groups.IsEmpty() || !uidManager) return;
  Tessel::ContainerT<const Tessel::IBlock> parent;
  net->GetParentBlock(parent);
  if (parent.Empty()) return;
  Tessel::Index index;
  net->GetInstanceIndex(index);

  Tessel::ContainerT<const Tessel::IGroup> group;
  uidManager->GetGroup(group, *groups.GetIterator().operator->());
  if (group.Empty()) return;
  Tessel::ContainerT<const Tessel::IBlockViewQor> view;
  Tessel::IBlockViewQor::Init(view, *parent, *group);
  Tessel::ContainerT<const Tessel::INet> again;
  parent->GetNet(again, index);
  Tessel::NetDataQor data;
  if (!view.Empty() && !again.Empty()) {
    Tessel::IteratorT<const Tessel::INetQor> viewNets;
    view->GetIterNetsQor(*again, viewNets);
    if (viewNets) viewNets->GetData(data);
  }
  Tessel::String id;
  group->GetAttribute("$$Internal_ID", id);
  Detail().internalName = "$" + id.str() + "N" + std::to_string(data.number);
}
