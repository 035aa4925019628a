// A list of strings read newest first, with a hash index beside it so that "is it
// there already?" costs constant time.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

class NewestFirstList {
 public:
  /// Inserts at the head. Returns false (and changes nothing) when `unique` is set
  /// and the text is there already.
  bool Add(const std::string& text, bool unique = true) {
    if (unique && !index_.insert(text).second) return false;
    if (!unique) index_.insert(text);
    items_.push_back(text);
    return true;
  }
  bool Contains(const std::string& text) const { return index_.count(text) != 0; }
  size_t Size() const { return items_.size(); }
  bool Empty() const { return items_.empty(); }
  void Clear() {
    items_.clear();
    index_.clear();
  }
  /// Calls f(text) from the newest entry to the oldest.
  template <class F>
  void ForEachNewestFirst(F f) const {
    for (auto it = items_.rbegin(); it != items_.rend(); ++it) f(*it);
  }

 private:
  std::vector<std::string> items_;  // oldest first
  std::unordered_set<std::string> index_;
};
