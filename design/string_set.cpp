// StringSet: packed texts and an open-addressed index with linear probing.
#include "design/string_set.h"

#include <cstring>

namespace {

constexpr size_t kMinBlock = 64 * 1024;

}  // namespace

uint64_t StringSet::Hash(std::string_view text) {
  // FNV-1a, then mixed so that the low bits, which pick the slot, depend on every byte.
  uint64_t hash = 1469598103934665603ULL;
  for (unsigned char c : text) hash = (hash ^ c) * 1099511628211ULL;
  hash ^= hash >> 29;
  hash *= 0xBF58476D1CE4E5B9ULL;
  return hash ^ (hash >> 32);
}

size_t StringSet::Find(std::string_view text, uint64_t hash) const {
  const size_t mask = slots_.size() - 1;
  const uint32_t tag = static_cast<uint32_t>(hash);
  for (size_t i = tag & mask;; i = (i + 1) & mask) {
    const Slot& slot = slots_[i];
    if (slot.text == 0) return i;
    if (slot.tag == tag && texts_[slot.text - 1] == text) return i;
  }
}

bool StringSet::Contains(std::string_view text) const {
  if (slots_.empty()) return false;
  return slots_[Find(text, Hash(text))].text != 0;
}

std::pair<std::string_view, bool> StringSet::Add(std::string_view text) {
  const uint64_t hash = Hash(text);
  const uint32_t tag = static_cast<uint32_t>(hash);
  // Stored texts never move and are only dropped by Clear, which empties this cache too.
  Slot& recent = recent_[RecentIndex(hash)];
  if (recent.text != 0 && recent.tag == tag && texts_[recent.text - 1] == text)
    return {texts_[recent.text - 1], false};
  if ((texts_.size() + 1) * 2 > slots_.size()) Grow();
  Slot& slot = slots_[Find(text, hash)];
  if (slot.text == 0) {
    std::string_view stored = Store(text);
    texts_.push_back(stored);
    slot.text = static_cast<uint32_t>(texts_.size());
    slot.tag = tag;
    recent = slot;
    return {stored, true};
  }
  recent = slot;
  return {texts_[slot.text - 1], false};
}

std::string_view StringSet::Store(std::string_view text) {
  if (text.empty()) return std::string_view("", 0);
  if (blockUsed_ + text.size() > blockSize_) {
    blockSize_ = text.size() > kMinBlock ? text.size() : kMinBlock;
    blocks_.push_back(std::make_unique<char[]>(blockSize_));
    blockUsed_ = 0;
  }
  char* at = blocks_.back().get() + blockUsed_;
  std::memcpy(at, text.data(), text.size());
  blockUsed_ += text.size();
  return std::string_view(at, text.size());
}

void StringSet::Grow() {
  LargeArray<Slot> old(slots_.empty() ? 16 : slots_.size() * 2);
  old.swap(slots_);
  const size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.text == 0) continue;
    size_t i = slot.tag & mask;
    while (slots_[i].text != 0) i = (i + 1) & mask;
    slots_[i] = slot;
  }
}

void StringSet::Clear() {
  // Gives the memory back: a cleared set of a large design is rarely filled again.
  slots_ = LargeArray<Slot>();
  texts_ = std::vector<std::string_view>();
  blocks_.clear();
  blockUsed_ = blockSize_ = 0;
  recent_.fill(Slot());
}
