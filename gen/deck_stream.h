// A buffered text sink for the deck: appends to memory and writes large chunks.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

class DeckStream {
 public:
  DeckStream() = default;
  ~DeckStream() { Close(); }
  DeckStream(const DeckStream&) = delete;
  DeckStream& operator=(const DeckStream&) = delete;

  /// Opens `fsPath` for writing, replacing a file there. Returns false on failure; the
  /// text then goes nowhere, as a failed stream would.
  bool Open(const std::string& fsPath);
  /// Collects the text in memory only (tests).
  void OpenInMemory();
  void Close();
  bool IsOpen() const { return file_ != nullptr || inMemory_; }
  /// The text held in memory (OpenInMemory), or what has not been flushed yet.
  const std::string& Text() const { return buffer_; }

  DeckStream& operator<<(std::string_view text) {
    if (file_ || inMemory_) {
      buffer_.append(text);
      if (file_ && buffer_.size() > kFlushSize) Flush();
    }
    return *this;
  }
  DeckStream& operator<<(const std::string& text) { return *this << std::string_view(text); }
  DeckStream& operator<<(const char* text) { return *this << std::string_view(text); }
  DeckStream& operator<<(char c) { return *this << std::string_view(&c, 1); }
  DeckStream& operator<<(int64_t number) { return *this << std::to_string(number); }
  DeckStream& operator<<(int32_t number) { return *this << std::to_string(number); }
  DeckStream& operator<<(size_t number) { return *this << std::to_string(number); }

 private:
  static constexpr size_t kFlushSize = 1 << 20;
  void Flush();
  std::FILE* file_ = nullptr;
  bool inMemory_ = false;
  std::string buffer_;
};
