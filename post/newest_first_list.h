// A list of strings read newest first, with a hash index beside it so that "is it
// there already?" costs constant time.
#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "design/string_set.h"

class NewestFirstList {
 public:
  /// Inserts at the head. Returns false (and changes nothing) when `unique` is set
  /// and the text is there already.
  bool Add(std::string_view text, bool unique = true) {
    auto [stored, added] = index_.Add(text);
    if (unique && !added) return false;
    items_.push_back(stored);
    return true;
  }
  /// Inserts at the head a text the caller knows is not there, without entering it in the
  /// index: Contains does not see it, and Add does not find it.
  void AddKnownNew(std::string_view text) {
    if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < text.size()) {
      blocks_.emplace_back();
      blocks_.back().reserve(std::max(kBlockSize, text.size()));
    }
    std::string& block = blocks_.back();
    const size_t at = block.size();
    block.append(text);  // within the reserved room: earlier views stay valid
    items_.emplace_back(block.data() + at, text.size());
  }
  bool Contains(std::string_view text) const { return index_.Contains(text); }
  size_t Size() const { return items_.size(); }
  bool Empty() const { return items_.empty(); }
  void Clear() {
    items_.clear();
    index_.Clear();
    blocks_.clear();
  }
  /// Calls f(text) from the newest entry to the oldest, with views of the texts: a long list
  /// is read without copies.
  template <class F>
  void ForEachNewestFirst(F f) const {
    for (auto it = items_.rbegin(); it != items_.rend(); ++it) f(*it);
  }

 private:
  std::vector<std::string_view> items_;  // oldest first, viewing the texts held by the index
  StringSet index_;
  static constexpr size_t kBlockSize = 1 << 16;
  std::deque<std::string> blocks_;  // the texts of AddKnownNew, in blocks that never grow
};
