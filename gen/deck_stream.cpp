// The deck's output stream: buffered appends, handed to the sink in large chunks.
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
