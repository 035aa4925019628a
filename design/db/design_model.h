// The whole design held in compact arrays: what the importer builds and the database loads.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "design/db/string_pool.h"

namespace vdb {

constexpr uint32_t kNone = 0xFFFFFFFFu;
/// Objects of one kind in one block are numbered in 24 bits.
constexpr uint32_t kMaxPerBlock = 0xFFFFFFu;

/// Pins of one component, and nets of one pin, number fewer than this (they share a word with
/// flags: a design holds a few records per component, so each word counts).
constexpr uint32_t kMaxPinsOrNets = 1u << 30;

/// A pin of a component; its nets are links[netsBegin, netsBegin + netsCount).
struct PinRec {
  PinRec() : netsCount(0), connected(0) {}
  uint32_t name = 0;
  uint32_t bus = 0;  // string id of the bus label; 0 when no bus
  uint32_t width = 1;
  uint32_t netsBegin = 0;
  uint32_t netsCount : 31;
  uint32_t connected : 1;
};

/// A port of a block, seen from inside.
struct PortRec {
  uint32_t block = 0;
  uint32_t name = 0;
  uint32_t bus = 0;
  uint32_t width = 1;
  uint32_t netsBegin = 0;
  uint32_t netsCount = 0;
  uint32_t attrs = 0;  // attribute list id
  uint8_t connected = 0;
};

/// Attribute lists of a net are numbered below this (the number shares a word with flags).
constexpr uint32_t kMaxNetAttrList = 1u << 30;

struct NetRec {
  NetRec() : attrs(0), global(0), hasNumber(0) {}
  uint32_t block = 0;
  uint32_t label = 0;
  uint32_t attrs : 30;
  uint32_t global : 1;
  uint32_t hasNumber : 1;
  uint32_t group = kNone;
  int32_t number = 0;
};

struct CompRec {
  uint32_t block = 0;
  uint32_t label = 0;
  uint32_t name = 0;
  uint32_t partition = 0;
  uint32_t type = 1;
  uint32_t child = kNone;  // block index
  uint32_t instAttrs = 0;
  uint32_t defAttrs = 0;
  uint32_t group = kNone;
  int32_t number = 0;
  uint32_t pinsBegin = 0;
  uint32_t pinsCount : 30;
  uint32_t hasNumber : 1;
  uint32_t ownDefinition : 1;  // the description gave `definition` itself
  CompRec() : pinsCount(0), hasNumber(0), ownDefinition(0) {}
};

/// A block owns the contiguous ranges [begin, end) of components, nets and ports.
struct BlockRec {
  uint32_t name = 0;
  uint32_t compsBegin = 0, compsEnd = 0;
  uint32_t netsBegin = 0, netsEnd = 0;
  uint32_t portsBegin = 0, portsEnd = 0;
};

struct GroupRec {
  uint32_t name = 0;
  uint32_t internalId = 0;
  int32_t type = 2;
};

/// Name to value pairs of string ids; list 0 is the empty list.
class AttrLists {
 public:
  AttrLists() : begin_{0, 0} {}
  /// The id of a list of (key, value) pairs, shared with an equal list added before.
  uint32_t Intern(const std::vector<uint32_t>& pairs);
  /// Adds a list under the next id without sharing (loading).
  uint32_t Append(const uint32_t* pairs, size_t pairCount);
  uint32_t Count() const { return static_cast<uint32_t>(begin_.size() - 1); }
  uint32_t PairCount(uint32_t list) const { return (begin_[list + 1] - begin_[list]) / 2; }
  uint32_t Key(uint32_t list, uint32_t i) const { return data_[begin_[list] + 2 * i]; }
  uint32_t Value(uint32_t list, uint32_t i) const { return data_[begin_[list] + 2 * i + 1]; }
  const uint32_t* Pairs(uint32_t list) const { return data_.data() + begin_[list]; }
  void ReleaseIndex();

 private:
  struct Hash {
    size_t operator()(const std::vector<uint32_t>& v) const;
  };
  std::vector<uint32_t> data_;
  std::vector<uint32_t> begin_;
  std::unordered_map<std::vector<uint32_t>, uint32_t, Hash> index_;
};

// A design holds a few of these per component: keep them packed.
static_assert(sizeof(PinRec) == 20 && sizeof(NetRec) == 20 && sizeof(CompRec) == 48, "design records grew");

struct Design {
  std::string snapshot = "Qor";
  StringPool strings;
  AttrLists attrs;
  std::vector<BlockRec> blocks;
  std::vector<CompRec> comps;
  std::vector<NetRec> nets;
  std::vector<PortRec> ports;
  std::vector<PinRec> pins;
  std::vector<uint32_t> links;  // global net indexes of pins and ports
  std::vector<GroupRec> groups;
  std::vector<std::pair<uint32_t, uint32_t>> symbols;      // name, attribute list
  std::vector<std::pair<uint32_t, uint32_t>> testbenches;  // name, block index
};

/// The first attribute of `list` whose key is exactly `key`; false when there is none.
bool FindAttr(const Design& design, uint32_t list, std::string_view key, uint32_t& value);

/// Checks every index of a design read from storage; false and a reason when one is out of range
/// or the hierarchy is cyclic.
bool CheckDesign(const Design& design, std::string& reason);

/// The blocks in an order where every block comes after the blocks that it places; false when
/// a block places itself, with `cycleBlock` one block of the cycle.
bool OrderBlocks(const Design& design, std::vector<uint32_t>& order, uint32_t& cycleBlock);

}  // namespace vdb
