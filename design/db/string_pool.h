// Interned strings of the design database: every text is stored once and named by a 32-bit id.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vdb {

/// Texts in large chunks, addressed by id. Id 0 is always the empty text.
class StringPool {
 public:
  StringPool();
  StringPool(const StringPool&) = delete;
  StringPool& operator=(const StringPool&) = delete;
  StringPool(StringPool&&) = default;
  StringPool& operator=(StringPool&&) = default;

  /// The id of `text`, adding it when it is new.
  uint32_t Intern(std::string_view text);
  /// Adds `text` under the next id without looking for an equal one (loading).
  uint32_t Append(std::string_view text);
  /// The id of `text`, or false when the pool does not hold it (needs interning mode).
  bool Find(std::string_view text, uint32_t& id) const;

  std::string_view View(uint32_t id) const { return {texts_[id], lengths_[id]}; }
  const char* CStr(uint32_t id) const { return texts_[id]; }
  uint32_t Size() const { return static_cast<uint32_t>(texts_.size()); }
  bool Valid(uint32_t id) const { return id < texts_.size(); }
  /// Drops the lookup index once no more interning is needed.
  void ReleaseIndex();

 private:
  const char* Store(std::string_view text);

  std::vector<std::unique_ptr<char[]>> chunks_;
  size_t chunkUsed_ = 0;
  size_t chunkSize_ = 0;
  std::vector<const char*> texts_;
  std::vector<uint32_t> lengths_;
  std::unordered_map<std::string_view, uint32_t> index_;
};

}  // namespace vdb
