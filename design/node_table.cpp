// NodeTable: chunked entries in arrival order beside an open-addressed index.
#include "design/node_table.h"

#include "design/string_set.h"

NodeTable::NodeTable(std::initializer_list<value_type> entries) {
  for (const value_type& entry : entries) {
    auto [at, added] = try_emplace(entry.first);
    if (added) at->second = entry.second;
  }
}

NodeTable::NodeTable(NodeTable&& other) noexcept
    : entries_(std::move(other.entries_)), recent_(other.recent_) {
  slots_.swap(other.slots_);
  other.clear();
}

NodeTable& NodeTable::operator=(NodeTable&& other) noexcept {
  if (this == &other) return *this;
  entries_ = std::move(other.entries_);
  slots_.swap(other.slots_);
  recent_ = other.recent_;
  other.clear();
  return *this;
}

int64_t NodeTable::Locate(std::string_view key, uint64_t hash, size_t& slot) const {
  const uint32_t tag = static_cast<uint32_t>(hash);
  const Slot& recent = recent_[RecentIndex(hash)];
  if (recent.entry != 0 && recent.tag == tag && entries_[recent.entry - 1].first == key) {
    slot = SIZE_MAX;  // not read: the entry is there
    return recent.entry - 1;
  }
  if (slots_.empty()) {
    slot = SIZE_MAX;
    return -1;
  }
  const size_t mask = slots_.size() - 1;
  for (size_t i = tag & mask;; i = (i + 1) & mask) {
    const Slot& candidate = slots_[i];
    slot = i;
    if (candidate.entry == 0) return -1;
    if (candidate.tag == tag && entries_[candidate.entry - 1].first == key) return candidate.entry - 1;
  }
}

std::pair<NodeTable::iterator, bool> NodeTable::try_emplace(const std::string& key) {
  const uint64_t hash = StringSet::Hash(key);
  Slot& recent = recent_[RecentIndex(hash)];
  size_t slot = 0;
  int64_t at = Locate(key, hash, slot);
  if (at >= 0) {
    recent = Slot{static_cast<uint32_t>(at + 1), static_cast<uint32_t>(hash)};
    return {entries_.begin() + at, false};
  }
  if (!HasRoomFor(entries_.size() + 1, slots_.size())) {
    Rehash(slots_.empty() ? 16 : slots_.size() * 2);
    Locate(key, hash, slot);
  }
  entries_.emplace_back(key, std::string());
  const Slot added{static_cast<uint32_t>(entries_.size()), static_cast<uint32_t>(hash)};
  slots_[slot] = added;
  recent = added;
  return {entries_.end() - 1, true};
}

NodeTable::iterator NodeTable::find(std::string_view key) {
  size_t slot = 0;
  int64_t at = Locate(key, StringSet::Hash(key), slot);
  return at < 0 ? entries_.end() : entries_.begin() + at;
}

NodeTable::const_iterator NodeTable::find(std::string_view key) const {
  size_t slot = 0;
  int64_t at = Locate(key, StringSet::Hash(key), slot);
  return at < 0 ? entries_.end() : entries_.begin() + at;
}

void NodeTable::Prefetch(std::string_view key) const {
  if (slots_.empty()) return;
  __builtin_prefetch(&slots_[StringSet::Hash(key) & (slots_.size() - 1)]);
}

void NodeTable::reserve(size_t count) {
  size_t wanted = 16;
  while (!HasRoomFor(count, wanted)) wanted *= 2;
  if (wanted > slots_.size()) Rehash(wanted);
}

void NodeTable::Rehash(size_t slotCount) {
  LargeArray<Slot> old(slotCount);
  old.swap(slots_);
  const size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.entry == 0) continue;
    size_t i = slot.tag & mask;
    while (slots_[i].entry != 0) i = (i + 1) & mask;
    slots_[i] = slot;
  }
}

void NodeTable::clear() {
  entries_.clear();
  slots_ = LargeArray<Slot>();
  recent_.fill(Slot());
}
