// Interned strings of the design database.
#include "design/db/string_pool.h"

#include <cstring>

namespace vdb {

namespace {
constexpr size_t kChunk = 1 << 20;
}

StringPool::StringPool() {
  Append("");
  index_.emplace(View(0), 0);
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
  auto found = index_.find(text);
  if (found != index_.end()) return found->second;
  uint32_t id = Append(text);
  index_.emplace(View(id), id);
  return id;
}

bool StringPool::Find(std::string_view text, uint32_t& id) const {
  auto found = index_.find(text);
  if (found == index_.end()) return false;
  id = found->second;
  return true;
}

void StringPool::ReleaseIndex() { std::unordered_map<std::string_view, uint32_t>().swap(index_); }

}  // namespace vdb
