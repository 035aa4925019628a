// ConsoleCapture: holds back what the run prints on standard output, so that a run which
// does its steps in another order can print their messages in the classic one.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

class ConsoleCapture {
 public:
  ConsoleCapture() : saved_(std::cout.rdbuf(held_.rdbuf())) {}
  ~ConsoleCapture() { std::cout.rdbuf(saved_); }
  ConsoleCapture(const ConsoleCapture&) = delete;
  ConsoleCapture& operator=(const ConsoleCapture&) = delete;

  /// What was printed since the last Take.
  std::string Take() {
    std::string text = held_.str();
    held_.str(std::string());
    return text;
  }
  /// Prints `text` on the real standard output, past the capture.
  void Print(const std::string& text) {
    saved_->sputn(text.data(), static_cast<std::streamsize>(text.size()));
  }

 private:
  std::ostringstream held_;
  std::streambuf* saved_;
};
