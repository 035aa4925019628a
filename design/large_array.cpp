// LargeBlock: zeroed memory, in large pages from two megabytes on where the system has them.
#include "design/large_array.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

constexpr size_t kLargePage = size_t{2} << 20;

#if defined(__linux__) && defined(MADV_HUGEPAGE)
// Maps `bytes` (a multiple of kLargePage) at an address aligned to kLargePage, so that every
// page of it can be a large one; null when the system gives no mapping.
void* MapAligned(size_t bytes) {
  const size_t length = bytes + kLargePage;
  void* raw = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) return nullptr;
  const uintptr_t start = reinterpret_cast<uintptr_t>(raw);
  const uintptr_t aligned = (start + kLargePage - 1) & ~(uintptr_t{kLargePage} - 1);
  if (aligned > start) munmap(raw, aligned - start);
  const uintptr_t tail = aligned + bytes, end = start + length;
  if (end > tail) munmap(reinterpret_cast<void*>(tail), end - tail);
  void* data = reinterpret_cast<void*>(aligned);
  // Only advice: without large pages the mapping works the same in small ones.
  madvise(data, bytes, MADV_HUGEPAGE);
  return data;
}
#endif

}  // namespace

LargeBlock::LargeBlock(size_t bytes) : bytes_(bytes) {
  if (bytes == 0) return;
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  if (bytes >= kLargePage) {
    const size_t rounded = (bytes + kLargePage - 1) & ~(kLargePage - 1);
    data_ = MapAligned(rounded);
    if (data_) {
      mapped_ = rounded;
      return;
    }
  }
#endif
  data_ = std::calloc(bytes, 1);
  if (!data_) throw std::bad_alloc();
}

LargeBlock::~LargeBlock() {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  if (mapped_ != 0) {
    munmap(data_, mapped_);
    return;
  }
#endif
  std::free(data_);
}

LargeBlock::LargeBlock(const LargeBlock& other) : LargeBlock(other.bytes_) {
  if (bytes_ != 0) std::memcpy(data_, other.data_, bytes_);
}

LargeBlock& LargeBlock::operator=(const LargeBlock& other) {
  if (this != &other) LargeBlock(other).Swap(*this);
  return *this;
}
