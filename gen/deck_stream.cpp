// The deck's output stream: buffered appends, handed to the sink in large chunks; and the
// file that replaces the old one whole.
#include "gen/deck_stream.h"

void DeckStream::Open(std::ostream& sink) {
  Close();
  sink_ = &sink;
  buffer_.clear();
}

void DeckStream::Flush() {
  if (!sink_ || buffer_.empty()) return;
  sink_->write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

void DeckStream::Close() {
  Flush();
  sink_ = nullptr;
}

bool DeckFile::Open(const std::string& fsPath) {
  failed_ = !file_.Open(fsPath);
  return !failed_;
}

bool DeckFile::Commit() {
  if (file_.IsOpen() && !file_.Commit()) failed_ = true;
  return !failed_;
}

std::streambuf::int_type DeckFile::overflow(std::streambuf::int_type c) {
  using Traits = std::streambuf::traits_type;
  if (Traits::eq_int_type(c, Traits::eof())) return Traits::not_eof(c);
  const char one = Traits::to_char_type(c);
  file_.Write(&one, 1);
  return c;
}

std::streamsize DeckFile::xsputn(const char* text, std::streamsize size) {
  file_.Write(text, static_cast<size_t>(size));
  return size;
}
