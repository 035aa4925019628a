// Node texts for nets, legal and unique instance names, and the node names of a flat deck.
#include "design/node_names.h"

#include <cctype>
#include <cstring>

int32_t inventedNodes = 0;

namespace {

bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

bool HasValue(const NodeTable& table, const std::string& key) {
  auto it = table.find(key);
  return it != table.end() && !it->second.empty();
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

bool EqualsIgnoringCase(const std::string& text, size_t pos, const char* word) {
  size_t length = std::strlen(word);
  if (text.size() - pos != length) return false;
  for (size_t i = 0; i < length; ++i)
    if (std::toupper(static_cast<unsigned char>(text[pos + i])) != word[i]) return false;
  return true;
}

// A node for a pin without a net: N<n>, skipping every text the table already uses.
std::string InventNode(const NodeTable& table) {
  for (;;) {
    int32_t n = inventedNodes++;
    std::string number = std::to_string(n);
    std::string text = "N" + number;
    if (!HasValue(table, text) && !HasValue(table, Lower(text)) && !HasValue(table, number)) return text;
  }
}

// The state of one LegalizeName run over `name`.
struct Filter {
  Filter(const WireOptions& o, const std::string& n) : options(o), name(n) {}

  const WireOptions& options;
  const std::string& name;
  size_t pos = 0;
  bool first = true;
  std::string result;

  void Take(char c) {
    result += c;
    ++pos;
  }
  void Drop() { ++pos; }
  void TakeIf(char c, bool keep) { keep ? Take(c) : Drop(); }

  // "$12N3": the "$" of an internal number goes. Returns true to start over.
  bool SkipInternalNumberMark() {
    if (name[pos] != '$') return false;
    size_t q = pos + 1;
    while (q < name.size() && IsDigit(name[q])) ++q;
    if (q >= name.size() || (name[q] != 'N' && name[q] != 'I' && name[q] != 'T')) return false;
    bool digits = q > pos + 1;
    ++pos;
    return digits;
  }

  void PspiceRule(char c) {
    if (!first) return TakeIf(c, IsLetterOrDigit(c) || c == '_');
    first = false;
    if (EqualsIgnoringCase(name, pos, "$G_") || EqualsIgnoringCase(name, pos, "$D_")) {
      result += name.substr(pos, 3);
      pos += 3;
      return;
    }
    TakeIf(c, IsLetterOrDigit(c));
  }

  void DraculaRule(char c) {
    if (!first) return TakeIf(c, IsLetterOrDigit(c) || c == '_' || c == ' ' || c == '-');
    first = false;
    Take(c);
    if (options.useNodeNames && !IsLetter(c)) result.insert(0, "N");
  }

  void WideRule(char c) {
    if (!first) return TakeIf(c, IsLetterOrDigit(c) || (c != '\0' && std::strchr("*+-/:;#.[]!_% ", c)));
    first = false;
    bool io = name.compare(pos, 4, "_IO_") == 0;
    Take(c);
    if (c != '/' && !IsLetter(c) && !io && options.useNodeNames) result.insert(0, "N");
  }

  void Step(char c) {
    const WireOptions& o = options;
    if (o.wirelistKind == kPspice && !o.analogDeps) return PspiceRule(c);
    if (o.dracula) return DraculaRule(c);
    if (o.analogDeps && (c == '+' || c == '-')) {
      result += c == '+' ? 'P' : 'N';
      ++pos;
      return;
    }
    bool wide = o.wirelistKind == kHspice || o.wirelistKind == kKelpo || o.analogDeps ||
                (o.wirelistKind == kBerkeley && o.useNodeNames);
    if (wide) return WideRule(c);
    TakeIf(c, IsLetterOrDigit(c));
  }
};

}  // namespace

bool IsGroundName(const WireOptions& options, const std::string& name) {
  if (name.compare(0, 3, "GND") == 0) return true;
  // A flat name "X1\GND": the net of a sub-block is ground there as in its definition.
  if (!options.flatten) return false;
  size_t slash = name.rfind('\\');
  return slash != std::string::npos && name.compare(slash + 1, 3, "GND") == 0;
}

std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table) {
  if (name.empty()) return InventNode(table);
  // One lookup finds the entry or makes its place.
  std::string& node = table.try_emplace(name).first->second;
  if (IsGroundName(options, name)) node = "0";
  if (node.empty())
    node = options.useNodeNames ? LegalizeName(options, name) : std::to_string(++options.nextNodeNumber);
  return node;
}

std::string LegalizeName(const WireOptions& options, const std::string& name) {
  if (name.empty()) return "";
  Filter filter(options, name);
  while (filter.pos < name.size()) {
    char c = name[filter.pos];
    if (filter.SkipInternalNumberMark()) continue;
    filter.Step(c);
  }
  if (options.maxNameChars <= 0) return "";
  if (filter.result.size() > static_cast<size_t>(options.maxNameChars))
    filter.result.resize(options.maxNameChars);
  return filter.result;
}

std::string GlobalNodeName(const WireOptions& options, const std::string& label) {
  // Named as under -n whatever the deck's own choice, so that every definition, and every
  // model that names the net, meets the same node.
  // Pspice reads "$G_" in front of a node as global.
  WireOptions named = options;
  named.useNodeNames = true;
  std::string legal = LegalizeName(named, label);
  return options.wirelistKind == kPspice ? "$G_" + legal : legal;
}

std::string UniqueName(UsedNames& used, std::string name) {
  // An empty name is no name: it is not written, so it takes no place in the list.
  if (name.empty()) return name;
  // Most names are new: one insert both tests and records them.
  if (used.names.Insert(name)) return name;
  // The search always runs <first>0, <first>1, ... in this order, and names are only
  // ever added, so every suffix below the remembered one is taken for good.
  char first = name[0];
  int32_t& next = used.nextFreeSuffix[first];
  for (;; ++next) {
    name = std::string(1, first) + std::to_string(next);
    if (used.names.Insert(name)) return name;
  }
}

std::string UniqueName(WireOptions& options, std::string name) {
  return UniqueName(*options.usedNames, std::move(name));
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
