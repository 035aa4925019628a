// NumberedNames: names split into text and number, one bit for each.
#include "design/numbered_names.h"

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Where the trailing digits of `name` begin.
size_t NumberStart(std::string_view name) {
  size_t start = name.size();
  while (start > 0 && IsDigit(name[start - 1])) --start;
  return start;
}

}  // namespace

bool NumberedNames::Keeps(std::string_view name) {
  const size_t start = NumberStart(name);
  const size_t digits = name.size() - start;
  return start <= kMaxTextSize && digits >= 1 && digits <= 7 && name[start] != '0';
}

uint32_t NumberedNames::TextNumber(std::string_view text) {
  if (lastTextKnown_ && text == lastText_) return lastTextNumber_;
  const auto [entry, added] = texts_.try_emplace(std::string(text), static_cast<uint32_t>(texts_.size()));
  lastText_.assign(text);
  lastTextNumber_ = entry->second;
  lastTextKnown_ = true;
  return lastTextNumber_;
}

bool NumberedNames::Insert(std::string_view name) {
  const size_t start = NumberStart(name);
  uint32_t number = 0;
  for (size_t i = start; i < name.size(); ++i) number = number * 10 + static_cast<uint32_t>(name[i] - '0');
  const uint64_t key = static_cast<uint64_t>(TextNumber(name.substr(0, start))) << 32 | number / kPageBits;
  if (!lastPage_ || key != lastPageKey_) {
    std::unique_ptr<Page>& page = pages_[key];
    if (!page) page = std::make_unique<Page>(Page{});
    lastPage_ = page.get();
    lastPageKey_ = key;
  }
  uint64_t& word = (*lastPage_)[(number % kPageBits) / 64];
  const uint64_t bit = uint64_t{1} << (number % 64);
  if (word & bit) return false;
  word |= bit;
  return true;
}

void NumberedNames::Clear() {
  texts_.clear();
  pages_.clear();
  lastText_.clear();
  lastTextKnown_ = false;
  lastPage_ = nullptr;
}
