// The node names of a flat deck and the keys of hierarchical instance occurrences.
#include "design/node_names.h"

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
  if (scope.hasParent) {
    auto entry = table.find(scope.parentKey);
    if (entry != table.end()) {
      // A plain text search for "label," in "pin,node;pin,node;".
      const std::string& pins = entry->second;
      size_t at = pins.find(label + ",");
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
