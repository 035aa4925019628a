// The deck's output stream: buffered appends, written to disk in large chunks.
#include "gen/deck_stream.h"

bool DeckStream::Open(const std::string& fsPath) {
  Close();
  file_ = std::fopen(fsPath.c_str(), "wb");
  inMemory_ = false;
  buffer_.clear();
  return file_ != nullptr;
}

void DeckStream::OpenInMemory() {
  Close();
  inMemory_ = true;
  buffer_.clear();
}

void DeckStream::Flush() {
  if (!file_ || buffer_.empty()) return;
  std::fwrite(buffer_.data(), 1, buffer_.size(), file_);
  buffer_.clear();
}

void DeckStream::Close() {
  if (file_) {
    Flush();
    std::fclose(file_);
    file_ = nullptr;
  }
  // Text kept in memory stays readable after Close, for tests.
  inMemory_ = false;
}
