// Interned strings of the design database.
#include "design/db/string_pool.h"

#include <cstring>
#include <functional>

namespace vdb {

namespace {
constexpr size_t kChunk = 1 << 20;
constexpr size_t kFirstIndexSize = 1024;

uint32_t HashOf(std::string_view text) { return static_cast<uint32_t>(std::hash<std::string_view>()(text)); }
}  // namespace

StringPool::StringPool() {
  Append("");
  index_.assign(kFirstIndexSize, Slot{0, 0});
  AddToIndex(0, HashOf(View(0)));
}

size_t StringPool::SlotOf(std::string_view text, uint32_t hash) const {
  const size_t mask = index_.size() - 1;
  for (size_t at = hash & mask;; at = (at + 1) & mask) {
    const Slot& slot = index_[at];
    if (slot.idPlusOne == 0) return at;
    if (slot.hash == hash && View(slot.idPlusOne - 1) == text) return at;
  }
}

void StringPool::AddToIndex(uint32_t id, uint32_t hash) {
  if ((indexed_ + 1) * 2 > index_.size()) GrowIndex();
  const size_t mask = index_.size() - 1;
  size_t at = hash & mask;
  while (index_[at].idPlusOne != 0) at = (at + 1) & mask;
  index_[at] = Slot{id + 1, hash};
  ++indexed_;
}

void StringPool::GrowIndex() {
  std::vector<Slot> old(index_.size() * 2, Slot{0, 0});
  old.swap(index_);
  const size_t mask = index_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.idPlusOne == 0) continue;
    size_t at = slot.hash & mask;
    while (index_[at].idPlusOne != 0) at = (at + 1) & mask;
    index_[at] = slot;
  }
}

const char* StringPool::Store(std::string_view text) {
  size_t need = text.size() + 1;
  if (chunks_.empty() || chunkUsed_ + need > chunkSize_) {
    chunkSize_ = need > kChunk ? need : kChunk;
    chunks_.emplace_back(new char[chunkSize_]);
    chunkUsed_ = 0;
  }
  char* at = chunks_.back().get() + chunkUsed_;
  if (!text.empty()) std::memcpy(at, text.data(), text.size());
  at[text.size()] = '\0';
  chunkUsed_ += need;
  return at;
}

uint32_t StringPool::Append(std::string_view text) {
  texts_.push_back(Store(text));
  lengths_.push_back(static_cast<uint32_t>(text.size()));
  return static_cast<uint32_t>(texts_.size() - 1);
}

uint32_t StringPool::Intern(std::string_view text) {
  const uint32_t hash = HashOf(text);
  // After ReleaseIndex the index starts again with the texts interned from then on.
  if (index_.empty()) index_.assign(kFirstIndexSize, Slot{0, 0});
  const Slot& slot = index_[SlotOf(text, hash)];
  if (slot.idPlusOne != 0) return slot.idPlusOne - 1;
  uint32_t id = Append(text);
  AddToIndex(id, hash);
  return id;
}

bool StringPool::Find(std::string_view text, uint32_t& id) const {
  if (index_.empty()) return false;
  const Slot& slot = index_[SlotOf(text, HashOf(text))];
  if (slot.idPlusOne == 0) return false;
  id = slot.idPlusOne - 1;
  return true;
}

void StringPool::Prefetch(std::string_view text) const {
  if (!index_.empty()) __builtin_prefetch(&index_[HashOf(text) & (index_.size() - 1)]);
}

void StringPool::ReleaseIndex() {
  std::vector<Slot>().swap(index_);
  indexed_ = 0;
}

}  // namespace vdb
