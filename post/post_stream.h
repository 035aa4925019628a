// PostProcessStream: the post-process pass run on the deck's text while it is written, so the
// deck is written once instead of written, read back and written again.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

#include "post/post_process.h"

/// An ostream that cuts the text written to it into lines, runs them through the pass and hands
/// the rewritten text on to `target` in large pieces. The text that reaches the target is the
/// text PostProcessText would make of the whole deck.
class PostProcessStream : private std::streambuf, public std::ostream {
 public:
  PostProcessStream(PostSettings& settings, std::ostream& target);
  /// The last line (with or without its line end) and everything held go to the target.
  void Finish();

 private:
  static constexpr size_t kHandOnSize = 1 << 20;
  std::streambuf::int_type overflow(std::streambuf::int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  void Feed(std::string_view text);
  void HandOn();

  PostPass pass_;
  std::ostream& target_;
  std::string partial_;  // the start of a line whose end has not come yet
};
