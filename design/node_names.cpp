// The node names of a flat deck and the keys of hierarchical instance occurrences.
#include "design/node_names.h"

bool IsGroundName(const WireOptions& options, const std::string& name) {
  if (name.compare(0, 3, "GND") == 0) return true;
  // A flat name "X1\GND": the net of a sub-block is ground there as in its definition.
  if (!options.flatten) return false;
  size_t slash = name.rfind('\\');
  return slash != std::string::npos && name.compare(slash + 1, 3, "GND") == 0;
}

std::string PinNodeKey(const Tessel::IComp& instance) {
  Tessel::Index index;
  instance.GetInstanceIndex(index);
  Tessel::ContainerT<const Tessel::IPath> path;
  instance.GetPath(path);
  Tessel::String hier;
  if (!path.Empty()) path->GetHierarchicalName(hier, '\\');
  return std::to_string(static_cast<int32_t>(index.word0)) +
         std::to_string(static_cast<int32_t>(index.Low24())) +
         std::to_string(static_cast<int32_t>(index.Top8())) + hier.str();
}

FlatScope FlatScopeOf(const Tessel::IComp& comp) {
  FlatScope scope;
  Tessel::ContainerT<const Tessel::IPath> path;
  comp.GetPath(path);
  if (path.Empty()) return scope;
  Tessel::String hier;
  path->GetHierarchicalName(hier, '\\');
  scope.hier = hier.str();
  if (scope.hier.empty()) return scope;
  Tessel::ContainerT<const Tessel::IComp> parent;
  path->GetParentComp(parent);
  if (parent.Empty()) return scope;
  scope.parentKey = PinNodeKey(*parent);
  scope.hasParent = true;
  return scope;
}

std::string FlatNetNameOf(const FlatScope& scope, const std::string& label,
                          const Tessel::IteratorT<const Tessel::INet>& net, const PinNodeTable& table) {
  if (scope.hier.empty()) return label;
  // A sub-block's ground stays its own, as in its definition, even where a pin reaches it.
  const bool ground = label.compare(0, 3, "GND") == 0;
  if (scope.hasParent && !ground) {
    auto entry = table.find(scope.parentKey);
    if (entry != table.end()) {
      // A search for "label," at the start of an entry of "pin,node;pin,node;": the whole
      // pin name, never the tail of a longer one ("X1," inside "RX1,").
      const std::string& pins = entry->second;
      const std::string head = label + ",";
      size_t at = pins.find(head);
      while (at != std::string::npos && at != 0 && pins[at - 1] != ';') at = pins.find(head, at + 1);
      if (at != std::string::npos) {
        size_t begin = at + label.size() + 1;
        size_t end = pins.find(';', begin);
        return pins.substr(begin, end == std::string::npos ? std::string::npos : end - begin);
      }
    }
  }
  bool global = false;
  net->IsGlobal(global);
  if (global) return label;
  return scope.hier + "\\" + label;
}

std::string FlatNetNameIn(const FlatScope& scope, const Tessel::IteratorT<const Tessel::INet>& net,
                          const Tessel::IteratorT<const Tessel::IBus>& bus, const PinNodeTable& table) {
  Tessel::String label;
  if (bus->IsValid())
    bus->GetLabel(label);
  else
    net->GetLabel(label);
  return FlatNetNameOf(scope, label.str(), net, table);
}

std::string FlatNetName(const Tessel::IComp& comp, const Tessel::IteratorT<const Tessel::INet>& net,
                        const Tessel::IteratorT<const Tessel::IBus>& bus, const PinNodeTable& table) {
  return FlatNetNameIn(FlatScopeOf(comp), net, bus, table);
}
