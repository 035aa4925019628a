// NodeTable: net name to node text for one block, as the walk and the generator share it.
//
// A flat deck of a million components looks each net up at every pin. The entries are kept
// in arrival order in large chunks and found through an open-addressed index of small
// slots, so that a lookup touches one slot and one entry; a net met again soon after it
// was entered (its next pin) is found through a small cache of recent entries without
// touching the index at all.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "design/large_array.h"

class NodeTable {
 public:
  using value_type = std::pair<std::string, std::string>;
  using iterator = std::deque<value_type>::iterator;
  using const_iterator = std::deque<value_type>::const_iterator;

  NodeTable() = default;
  /// The first entry of a key wins, as with a map.
  NodeTable(std::initializer_list<value_type> entries);
  NodeTable(const NodeTable&) = default;
  NodeTable& operator=(const NodeTable&) = default;
  /// A table moved from is left empty.
  NodeTable(NodeTable&& other) noexcept;
  NodeTable& operator=(NodeTable&& other) noexcept;

  /// The entry of `key`, added with an empty value if need be, and whether it was added.
  std::pair<iterator, bool> try_emplace(const std::string& key);
  std::string& operator[](const std::string& key) { return try_emplace(key).first->second; }
  iterator find(std::string_view key);
  const_iterator find(std::string_view key) const;
  size_t count(std::string_view key) const { return find(key) == end() ? 0 : 1; }

  /// Entries in the order they were added.
  iterator begin() { return entries_.begin(); }
  iterator end() { return entries_.end(); }
  const_iterator begin() const { return entries_.begin(); }
  const_iterator end() const { return entries_.end(); }
  size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  /// Starts loading the index slot where `key` is found or would go, for a lookup a little
  /// later: in a large table most new keys cost a cache miss there, which can then overlap
  /// other work.
  void Prefetch(std::string_view key) const;
  /// Room for `count` entries without growing the index.
  void reserve(size_t count);
  void clear();

 private:
  struct Slot {
    uint32_t entry = 0;  // the entry's position plus one; 0: the slot is free
    uint32_t tag = 0;    // the low half of the key's hash: picks the slot, skips most comparisons
  };
  static constexpr size_t kRecent = 64;
  static size_t RecentIndex(uint64_t hash) { return (hash >> 32) & (kRecent - 1); }

  /// The position of the entry of `key`, or -1; `slot` is where it is or would go.
  int64_t Locate(std::string_view key, uint64_t hash, size_t& slot) const;
  void Rehash(size_t slotCount);

  std::deque<value_type> entries_;
  /// Whether the index holds `entries` at most three in five full: at ten million nets a table
  /// kept half empty would be twice the size, and every new net's slot a miss in it.
  static bool HasRoomFor(size_t entries, size_t slots) { return entries * 5 <= slots * 3; }

  LargeArray<Slot> slots_;  // a power of two in size, at most three in five full
  std::array<Slot, kRecent> recent_{};
};
