// Node texts for nets, and legal and unique instance names, by the rules of the deck's dialect.
#include "gen/node_text.h"

#include <cctype>
#include <cstring>

#include "expr/text.h"
#include "gen/dialect_of.h"

namespace {

bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

bool HasValue(const NodeTable& table, const std::string& key) {
  auto it = table.find(key);
  return it != table.end() && !it->second.empty();
}

// A node for a pin without a net: N<n>, skipping every text the table already uses.
std::string InventNode(int32_t& inventedNodes, const NodeTable& table) {
  for (;;) {
    int32_t n = inventedNodes++;
    std::string number = std::to_string(n);
    std::string text = "N" + number;
    if (!HasValue(table, text) && !HasValue(table, LowerText(text)) && !HasValue(table, number)) return text;
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
    const std::string_view rest = std::string_view(name).substr(pos);
    if (EqualsIgnoringCase(rest, "$G_") || EqualsIgnoringCase(rest, "$D_")) {
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
    switch (options.dialect.nameRule) {
      case NameRule::kPspice:
        return PspiceRule(c);
      case NameRule::kDracula:
        return DraculaRule(c);
      case NameRule::kAnalog:
        if (c == '+' || c == '-') {
          result += c == '+' ? 'P' : 'N';
          ++pos;
          return;
        }
        return WideRule(c);
      case NameRule::kWide:
        return WideRule(c);
      case NameRule::kAlnum:
        return TakeIf(c, IsLetterOrDigit(c));
    }
  }
};

}  // namespace

std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table) {
  size_t position = 0;
  return NodeName(options, name, table, position);
}

std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table, size_t& position) {
  position = SIZE_MAX;
  if (name.empty()) return InventNode(options.inventedNodes, table);
  // One lookup finds the entry or makes its place.
  const auto entry = table.try_emplace(name).first;
  position = static_cast<size_t>(entry - table.begin());
  std::string& node = entry->second;
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
  named.dialect = DialectOf(named);  // the legal-name rule of Berkeley decks changes with -n
  std::string legal = LegalizeName(named, label);
  return options.dialect.globalNetMark ? "$G_" + legal : legal;
}

std::string UniqueName(UsedNames& used, std::string name) {
  // An empty name is no name: it is not written, so it takes no place in the list.
  if (name.empty()) return name;
  // Most names are new: one insert both tests and records them.
  if (used.Insert(name)) return name;
  // The search always runs <first>0, <first>1, ... in this order, and names are only
  // ever added, so every suffix below the remembered one is taken for good.
  char first = name[0];
  int32_t& next = used.nextFreeSuffix[first];
  for (;; ++next) {
    name = std::string(1, first) + std::to_string(next);
    if (used.Insert(name)) return name;
  }
}

std::string UniqueName(WireOptions& options, std::string name) {
  return UniqueName(*options.usedNames, std::move(name));
}
