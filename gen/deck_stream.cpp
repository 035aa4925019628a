// The deck's output stream: buffered appends, written to disk in large chunks.
#include "gen/deck_stream.h"

bool DeckStream::Open(const std::string& fsPath) {
  Close();
  inMemory_ = false;
  buffer_.clear();
  failed_ = !file_.Open(fsPath);
  return !failed_;
}

void DeckStream::OpenInMemory() {
  Close();
  inMemory_ = true;
  buffer_.clear();
}

void DeckStream::Flush() {
  if (!file_.IsOpen() || buffer_.empty()) return;
  file_.Write(buffer_.data(), buffer_.size());
  buffer_.clear();
}

bool DeckStream::Close() {
  if (file_.IsOpen()) {
    Flush();
    if (!file_.Commit()) failed_ = true;
  }
  // Text kept in memory stays readable after Close, for tests.
  inMemory_ = false;
  return !failed_;
}
