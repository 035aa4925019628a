// A buffered text sink for the deck: appends to memory and hands large chunks to the
// std::ostream it is opened on.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

class DeckStream {
 public:
  DeckStream() = default;
  DeckStream(const DeckStream&) = delete;
  DeckStream& operator=(const DeckStream&) = delete;

  /// Sends the text from now on to `sink`, which must outlive the Close. While no sink is
  /// open the text goes nowhere.
  void Open(std::ostream& sink);
  /// Writes what is held to the sink and lets go of it.
  void Close();
  bool IsOpen() const { return sink_ != nullptr; }

  DeckStream& operator<<(std::string_view text) {
    if (sink_) {
      buffer_.append(text);
      if (buffer_.size() > kFlushSize) Flush();
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
  std::ostream* sink_ = nullptr;
  std::string buffer_;
};
