// A buffered text sink for the deck: appends to memory and writes large chunks.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "design/platform.h"

class DeckStream {
 public:
  DeckStream() = default;
  // A file never closed (a run cut short) is dropped; the old file stays.
  ~DeckStream() = default;
  DeckStream(const DeckStream&) = delete;
  DeckStream& operator=(const DeckStream&) = delete;

  /// Opens `fsPath` for writing. The text goes to a file beside it that replaces it at
  /// Close, so a deck already there stays whole until the new one is complete. Returns
  /// false on failure; the text then goes nowhere, as a failed stream would.
  bool Open(const std::string& fsPath);
  /// Collects the text in memory only (tests).
  void OpenInMemory();
  /// Writes what is left and puts the file in its place; false when the file could not
  /// be written (the failure is reported and the old file stays).
  bool Close();
  bool IsOpen() const { return file_.IsOpen() || inMemory_; }
  /// True when the last file opened could not be written whole.
  bool Failed() const { return failed_; }
  /// The text held in memory (OpenInMemory), or what has not been flushed yet.
  const std::string& Text() const { return buffer_; }

  DeckStream& operator<<(std::string_view text) {
    if (file_.IsOpen() || inMemory_) {
      buffer_.append(text);
      if (file_.IsOpen() && buffer_.size() > kFlushSize) Flush();
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
  ReplacingFile file_;
  bool inMemory_ = false;
  bool failed_ = false;
  std::string buffer_;
};
