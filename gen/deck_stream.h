// DeckStream: a buffered text sink for the deck in front of the std::ostream it is opened on;
// DeckFile: a file as such a stream, which replaces the file there only once it is complete.
#pragma once

#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

#include "design/platform.h"

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

/// A file written through a std::ostream. The text goes to a file beside the path that
/// replaces it at Commit, so a file already there stays whole until the new one is complete;
/// a DeckFile never committed (a run cut short) is dropped.
class DeckFile : private std::streambuf, public std::ostream {
 public:
  DeckFile() : std::ostream(static_cast<std::streambuf*>(this)) {}
  /// Starts the file that will replace `fsPath`; false (reported) when it cannot be written,
  /// and the text then goes nowhere.
  bool Open(const std::string& fsPath);
  /// Puts the file in its place; false when it could not be written whole (reported; the
  /// file that was there stays).
  bool Commit();

 private:
  std::streambuf::int_type overflow(std::streambuf::int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  ReplacingFile file_;
  bool failed_ = false;
};
