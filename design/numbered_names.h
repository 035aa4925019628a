// NumberedNames: a set of names of the form <text><number>, "R1" to "R10000000", kept as bits.
//
// The deck names of a design are nearly all a letter and a number, given out in order. In a hash
// set each new one costs a cache miss in a table that, at ten million names, is far larger than
// the caches; here a name is one bit in a page of 512 consecutive numbers of its text, and the
// page in hand serves the next names without a lookup.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class NumberedNames {
 public:
  /// Whether `name` is one this set keeps: a text that does not end in a digit (at most
  /// kMaxTextSize characters, possibly none) and a number of one to seven digits without a
  /// leading zero. Every name is always kept by one set or the other: this one, or a set of
  /// whole texts.
  static bool Keeps(std::string_view name);
  /// Adds a name that Keeps; false when it was there already.
  bool Insert(std::string_view name);
  void Clear();

  static constexpr size_t kMaxTextSize = 32;

 private:
  static constexpr uint32_t kPageBits = 512;
  using Page = std::array<uint64_t, kPageBits / 64>;

  /// The number of `text`, given the first time it is met.
  uint32_t TextNumber(std::string_view text);

  std::unordered_map<std::string, uint32_t> texts_;
  // Pages by (text number, number / kPageBits); each lives until Clear.
  std::unordered_map<uint64_t, std::unique_ptr<Page>> pages_;
  // The text and page of the last name: the next one is most often its neighbour.
  std::string lastText_;
  uint32_t lastTextNumber_ = 0;
  bool lastTextKnown_ = false;
  uint64_t lastPageKey_ = 0;
  Page* lastPage_ = nullptr;
};
