// Shared attribute lists, attribute lookup and the consistency checks of a loaded design.
#include "design/db/design_model.h"

#include <cstdint>

namespace vdb {

size_t AttrLists::Hash::operator()(const std::vector<uint32_t>& v) const {
  size_t h = v.size();
  for (uint32_t x : v) h = h * 1000003u ^ x;
  return h;
}

uint32_t AttrLists::Intern(const std::vector<uint32_t>& pairs) {
  if (pairs.empty()) return 0;
  auto found = index_.find(pairs);
  if (found != index_.end()) return found->second;
  uint32_t id = Append(pairs.data(), pairs.size() / 2);
  index_.emplace(pairs, id);
  return id;
}

uint32_t AttrLists::Append(const uint32_t* pairs, size_t pairCount) {
  data_.insert(data_.end(), pairs, pairs + 2 * pairCount);
  begin_.push_back(static_cast<uint32_t>(data_.size()));
  return Count() - 1;
}

void AttrLists::ReleaseIndex() { decltype(index_)().swap(index_); }

bool FindAttr(const Design& design, uint32_t list, std::string_view key, uint32_t& value) {
  const AttrLists& lists = design.attrs;
  uint32_t n = lists.PairCount(list);
  for (uint32_t i = 0; i < n; ++i) {
    if (design.strings.View(lists.Key(list, i)) != key) continue;
    value = lists.Value(list, i);
    return true;
  }
  return false;
}

bool OrderBlocks(const Design& design, std::vector<uint32_t>& order, uint32_t& cycleBlock) {
  // Iterative depth-first search; state 1 = on the stack, 2 = done.
  std::vector<uint8_t> state(design.blocks.size(), 0);
  std::vector<std::pair<uint32_t, uint32_t>> stack;  // block, next component
  order.clear();
  for (uint32_t start = 0; start < design.blocks.size(); ++start) {
    if (state[start]) continue;
    stack.emplace_back(start, design.blocks[start].compsBegin);
    state[start] = 1;
    while (!stack.empty()) {
      auto& [block, pos] = stack.back();
      if (pos == design.blocks[block].compsEnd) {
        state[block] = 2;
        order.push_back(block);
        stack.pop_back();
        continue;
      }
      uint32_t child = design.comps[pos++].child;
      if (child == kNone || state[child] == 2) continue;
      if (state[child] == 1) {
        cycleBlock = child;
        return false;
      }
      state[child] = 1;
      stack.emplace_back(child, design.blocks[child].compsBegin);
    }
  }
  return true;
}

namespace {

bool CheckRanges(const Design& d, std::string& reason) {
  uint32_t comps = 0, nets = 0, ports = 0;
  for (const BlockRec& b : d.blocks) {
    bool ok = b.compsBegin == comps && b.compsEnd >= comps && b.netsBegin == nets && b.netsEnd >= nets &&
              b.portsBegin == ports && b.portsEnd >= ports && d.strings.Valid(b.name);
    if (!ok) {
      reason = "block ranges out of order";
      return false;
    }
    comps = b.compsEnd, nets = b.netsEnd, ports = b.portsEnd;
  }
  if (comps != d.comps.size() || nets != d.nets.size() || ports != d.ports.size()) {
    reason = "block ranges do not cover the tables";
    return false;
  }
  return true;
}

bool CheckLinks(const Design& d, uint32_t block, uint32_t begin, uint32_t count) {
  if (begin > d.links.size() || count > d.links.size() - begin) return false;
  for (uint32_t i = begin; i < begin + count; ++i) {
    uint32_t net = d.links[i];
    if (net < d.blocks[block].netsBegin || net >= d.blocks[block].netsEnd) return false;
  }
  return true;
}

bool CheckGroup(const Design& d, uint32_t group) { return group == kNone || group < d.groups.size(); }

bool CheckComps(const Design& d) {
  const StringPool& s = d.strings;
  for (const CompRec& c : d.comps) {
    if (c.block >= d.blocks.size() || !s.Valid(c.label) || !s.Valid(c.name) || !s.Valid(c.partition))
      return false;
    if ((c.child != kNone && c.child >= d.blocks.size()) || !CheckGroup(d, c.group)) return false;
    if (c.instAttrs >= d.attrs.Count() || c.defAttrs >= d.attrs.Count()) return false;
    if (c.pinsBegin > d.pins.size() || c.pinsCount > d.pins.size() - c.pinsBegin) return false;
    for (uint32_t p = c.pinsBegin; p < c.pinsBegin + c.pinsCount; ++p) {
      const PinRec& pin = d.pins[p];
      if (!s.Valid(pin.name) || !s.Valid(pin.bus) || pin.width > INT32_MAX ||
          !CheckLinks(d, c.block, pin.netsBegin, pin.netsCount))
        return false;
    }
  }
  return true;
}

bool CheckNetsAndPorts(const Design& d) {
  const StringPool& s = d.strings;
  for (const NetRec& n : d.nets) {
    if (n.block >= d.blocks.size() || !s.Valid(n.label) || n.attrs >= d.attrs.Count() ||
        !CheckGroup(d, n.group))
      return false;
  }
  for (const PortRec& p : d.ports) {
    if (p.block >= d.blocks.size() || !s.Valid(p.name) || !s.Valid(p.bus) || p.width > INT32_MAX ||
        p.attrs >= d.attrs.Count())
      return false;
    if (!CheckLinks(d, p.block, p.netsBegin, p.netsCount)) return false;
  }
  return true;
}

bool CheckAttrLists(const Design& d) {
  for (uint32_t list = 0; list < d.attrs.Count(); ++list) {
    for (uint32_t i = 0; i < d.attrs.PairCount(list); ++i) {
      if (!d.strings.Valid(d.attrs.Key(list, i)) || !d.strings.Valid(d.attrs.Value(list, i))) return false;
    }
  }
  return true;
}

bool CheckTables(const Design& d) {
  for (const GroupRec& g : d.groups) {
    if (!d.strings.Valid(g.name) || !d.strings.Valid(g.internalId)) return false;
  }
  for (auto& [name, list] : d.symbols) {
    if (!d.strings.Valid(name) || list >= d.attrs.Count()) return false;
  }
  for (auto& [name, block] : d.testbenches) {
    if (!d.strings.Valid(name) || block >= d.blocks.size()) return false;
  }
  return true;
}

}  // namespace

bool CheckDesign(const Design& design, std::string& reason) {
  if (!CheckRanges(design, reason)) return false;
  if (!CheckAttrLists(design) || !CheckComps(design) || !CheckNetsAndPorts(design) || !CheckTables(design)) {
    reason = "an index is out of range";
    return false;
  }
  std::vector<uint32_t> order;
  uint32_t cycle = 0;
  if (!OrderBlocks(design, order, cycle)) {
    reason = "a block places itself";
    return false;
  }
  return true;
}

}  // namespace vdb
