// Iterator cursors over the opened design: runs of positions, and the depth-first walk of a config.
#pragma once

#include <memory>
#include <vector>

#include "design/db/tessel_objects.h"

namespace vdb {

/// Walks positions [pos, end) of a table; Policy says which positions count and makes the object.
template <class Iface, class Policy>
class SeqCursor : public Tessel::CursorT<const Iface> {
 public:
  SeqCursor(Policy policy, uint32_t pos, uint32_t end) : policy_(policy), pos_(pos), end_(end) { Settle(); }
  const Iface* Current() const override {
    return pos_ < end_ ? &current_ : Tessel::InvalidObject<const Iface>();
  }
  bool AtEnd() const override { return pos_ >= end_; }
  void Advance() override {
    ++pos_;
    Settle();
  }
  std::unique_ptr<Tessel::CursorT<const Iface>> Clone() const override {
    return std::make_unique<SeqCursor>(*this);
  }

 private:
  void Settle() {
    while (pos_ < end_ && !policy_.Accept(pos_)) ++pos_;
    if (pos_ < end_) current_ = policy_.At(pos_);
  }
  Policy policy_;
  uint32_t pos_, end_;
  typename Policy::Object current_;
};

template <class Iface, class Policy>
Tessel::IteratorT<const Iface> MakeIterator(Policy policy, uint32_t pos, uint32_t end) {
  // An iterator without a cursor reads exactly as one over an empty range (finished, invalid
  // object), and most pins have no bus: no allocation for those.
  if (pos >= end) return Tessel::IteratorT<const Iface>();
  return Tessel::IteratorT<const Iface>(std::make_unique<SeqCursor<Iface, Policy>>(policy, pos, end));
}

/// Components of one block, filtered by type bits; they know their path when `config` is set.
struct CompsPolicy {
  using Object = CompObj;
  const Database* db;
  const ConfigData* config;
  uint32_t occ;
  uint32_t filter;
  bool Accept(uint32_t pos) const { return filter == 0 || (db->design().comps[pos].type & filter) != 0; }
  CompObj At(uint32_t pos) const { return CompObj(db, pos, config, occ); }
};

/// Nets by their position in the net table.
struct NetsPolicy {
  using Object = NetObj;
  const Database* db;
  bool Accept(uint32_t) const { return true; }
  NetObj At(uint32_t pos) const { return NetObj(db, pos); }
};

/// Nets through the link table of a pin or port.
struct LinkedNetsPolicy {
  using Object = NetObj;
  const Database* db;
  bool Accept(uint32_t) const { return true; }
  NetObj At(uint32_t pos) const { return NetObj(db, db->design().links[pos]); }
};

struct PortsPolicy {
  using Object = PortObj;
  const Database* db;
  bool Accept(uint32_t) const { return true; }
  PortObj At(uint32_t pos) const { return PortObj(db, pos); }
};

struct PinsPolicy {
  using Object = PinObj;
  const Database* db;
  uint32_t comp;
  bool Accept(uint32_t) const { return true; }
  PinObj At(uint32_t pos) const { return PinObj(db, pos, comp); }
};

/// The one bus of a pin or port.
struct BusPolicy {
  using Object = BusObj;
  const Database* db;
  uint32_t label;
  bool Accept(uint32_t) const { return true; }
  BusObj At(uint32_t) const { return BusObj(db, label); }
};

struct PathsPolicy {
  using Object = PathObj;
  const Database* db;
  const ConfigData* config;
  bool Accept(uint32_t) const { return true; }
  PathObj At(uint32_t pos) const { return PathObj(db, config, pos); }
};

struct NetQorPolicy {
  using Object = NetQorObj;
  int32_t number;
  bool Accept(uint32_t) const { return true; }
  NetQorObj At(uint32_t) const { return NetQorObj(number); }
};

/// Every component occurrence under the root of a config, depth first: each component of a block
/// in order, and right behind a hierarchical instance the occurrences inside its child.
class ConfigCompCursor : public Tessel::CursorT<const Tessel::IComp> {
 public:
  ConfigCompCursor(const Database* db, const ConfigData* config);
  const Tessel::IComp* Current() const override;
  bool AtEnd() const override { return stack_.empty(); }
  void Advance() override;
  std::unique_ptr<Tessel::CursorT<const Tessel::IComp>> Clone() const override {
    return std::make_unique<ConfigCompCursor>(*this);
  }

 private:
  struct Frame {
    uint32_t occ, pos, end;
  };
  void Settle();

  const Database* db_;
  const ConfigData* config_;
  std::vector<Frame> stack_;
  uint32_t nextOcc_ = 1;  // occurrences are numbered in the order that this walk enters them
  CompObj current_;
};

}  // namespace vdb
