// A set of texts for the indexes beside large name lists: the texts are packed into big
// blocks and found through an open-addressed table, so that a million names cost a few
// allocations instead of one per name, and a lookup touches few cache lines.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "design/large_array.h"

class StringSet {
 public:
  /// Adds `text`; false when it was there already.
  bool Insert(std::string_view text) { return Add(text).second; }
  /// The stored copy of `text`, added if need be, and whether it was added now.
  std::pair<std::string_view, bool> Add(std::string_view text);
  bool Contains(std::string_view text) const;
  size_t Size() const { return texts_.size(); }
  /// The texts in the order they were added; views stay valid until Clear.
  const std::vector<std::string_view>& Texts() const { return texts_; }
  void Clear();
  /// The hash of a text as the set uses it; its low half picks the slot.
  static uint64_t Hash(std::string_view text);

 private:
  // A slot names its text by number: eight bytes, so that the index of a million texts
  // takes half the memory and lookups miss the caches less; the tag settles most probes
  // without reading the text.
  struct Slot {
    uint32_t text = 0;  // the text's number plus one; 0: the slot is free
    uint32_t tag = 0;   // the low half of the hash: picks the slot, skips most comparisons
  };
  /// The entry of the small cache of texts met lately that `hash` picks.
  static size_t RecentIndex(uint64_t hash) { return (hash >> 32) & (kRecent - 1); }
  /// The slot that holds `text`, or the empty slot where it would go.
  size_t Find(std::string_view text, uint64_t hash) const;
  std::string_view Store(std::string_view text);
  void Grow();

  // Texts come back soon after they are added (a net's line at its next pin): a hit in
  // this small table, a copy of their slots, spares a probe into the large one, which
  // at a million texts is a cache miss.
  static constexpr size_t kRecent = 64;
  std::array<Slot, kRecent> recent_{};

  LargeArray<Slot> slots_;  // a power of two in size, at most half full
  std::vector<std::string_view> texts_;
  std::vector<std::unique_ptr<char[]>> blocks_;
  size_t blockUsed_ = 0, blockSize_ = 0;
};
