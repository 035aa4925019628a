// LargeArray: a zero-filled array of trivially copyable records for the big hash indexes.
//
// The index of a million names is tens of megabytes read at random, one slot a lookup. In
// small pages nearly every lookup also misses the address cache and walks the page tables;
// an array of two megabytes or more is therefore asked for in large pages where the system
// offers them. Memory fresh from the system is zero already, so nothing is written up front.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

class LargeBlock {
 public:
  LargeBlock() = default;
  /// `bytes` zero bytes.
  explicit LargeBlock(size_t bytes);
  ~LargeBlock();
  LargeBlock(const LargeBlock& other);
  LargeBlock& operator=(const LargeBlock& other);
  LargeBlock(LargeBlock&& other) noexcept { Swap(other); }
  LargeBlock& operator=(LargeBlock&& other) noexcept {
    LargeBlock(std::move(other)).Swap(*this);
    return *this;
  }
  void Swap(LargeBlock& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(bytes_, other.bytes_);
    std::swap(mapped_, other.mapped_);
  }
  void* Data() const { return data_; }
  size_t Bytes() const { return bytes_; }

 private:
  void* data_ = nullptr;
  size_t bytes_ = 0;
  size_t mapped_ = 0;  // the length mapped from the system; 0 for heap memory
};

template <class T>
class LargeArray {
  static_assert(std::is_trivially_copyable<T>::value, "records are copied and zero-filled as bytes");

 public:
  LargeArray() = default;
  /// `count` records, every byte zero.
  explicit LargeArray(size_t count) : block_(count * sizeof(T)), size_(count) {}
  T& operator[](size_t i) { return static_cast<T*>(block_.Data())[i]; }
  const T& operator[](size_t i) const { return static_cast<const T*>(block_.Data())[i]; }
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  T* begin() { return static_cast<T*>(block_.Data()); }
  T* end() { return begin() + size_; }
  const T* begin() const { return static_cast<const T*>(block_.Data()); }
  const T* end() const { return begin() + size_; }
  void swap(LargeArray& other) noexcept {
    block_.Swap(other.block_);
    std::swap(size_, other.size_);
  }

 private:
  LargeBlock block_;
  size_t size_ = 0;
};
