// Interned strings of the design database: every text is stored once and named by a 32-bit id.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
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
  /// Starts loading the index slot where `text` would be found, for an Intern() a little later:
  /// in a large pool most new texts cost a cache miss there, which can then overlap other work.
  void Prefetch(std::string_view text) const;

  std::string_view View(uint32_t id) const { return {texts_[id], lengths_[id]}; }
  const char* CStr(uint32_t id) const { return texts_[id]; }
  uint32_t Size() const { return static_cast<uint32_t>(texts_.size()); }
  bool Valid(uint32_t id) const { return id < texts_.size(); }
  /// Makes room for `count` texts in all, so that growing does not leave up to half the lists unused.
  void Reserve(size_t count) {
    texts_.reserve(count);
    lengths_.reserve(count);
  }
  /// Drops the lookup index once no more interning is needed.
  void ReleaseIndex();

 private:
  const char* Store(std::string_view text);
  /// The slot of `text` in the index: the one that holds it, or the empty one where it goes.
  size_t SlotOf(std::string_view text, uint32_t hash) const;
  void AddToIndex(uint32_t id, uint32_t hash);
  void GrowIndex();

  // The index is open-addressed (linear probing, at most half full): a slot holds the id
  // plus one (0 for empty) and the text's hash, so most probes compare no text. A million
  // texts cost two 8-byte slots each instead of a node of a chained hash map.
  struct Slot {
    uint32_t idPlusOne;
    uint32_t hash;
  };

  std::vector<std::unique_ptr<char[]>> chunks_;
  size_t chunkUsed_ = 0;
  size_t chunkSize_ = 0;
  std::vector<const char*> texts_;
  std::vector<uint32_t> lengths_;
  std::vector<Slot> index_;
  size_t indexed_ = 0;
};

}  // namespace vdb
