// PostProcessStream: lines in, rewritten text out.
#include "post/post_stream.h"

PostProcessStream::PostProcessStream(PostSettings& settings, std::ostream& target)
    : std::ostream(static_cast<std::streambuf*>(this)), pass_(settings, kHandOnSize), target_(target) {}

std::streambuf::int_type PostProcessStream::overflow(std::streambuf::int_type c) {
  if (std::streambuf::traits_type::eq_int_type(c, std::streambuf::traits_type::eof()))
    return std::streambuf::traits_type::not_eof(c);
  const char one = std::streambuf::traits_type::to_char_type(c);
  Feed(std::string_view(&one, 1));
  return c;
}

std::streamsize PostProcessStream::xsputn(const char* text, std::streamsize size) {
  Feed(std::string_view(text, static_cast<size_t>(size)));
  return size;
}

void PostProcessStream::Feed(std::string_view text) {
  while (!text.empty()) {
    const size_t end = text.find('\n');
    if (end == std::string_view::npos) {
      partial_.append(text);
      break;
    }
    if (partial_.empty()) {
      pass_.Read(text.substr(0, end));
    } else {
      partial_.append(text.substr(0, end));
      pass_.Read(partial_);
      partial_.clear();
    }
    text.remove_prefix(end + 1);
  }
  if (pass_.Output().size() >= kHandOnSize) HandOn();
}

void PostProcessStream::HandOn() {
  std::string& output = pass_.Output();
  target_.write(output.data(), static_cast<std::streamsize>(output.size()));
  output.clear();
}

void PostProcessStream::Finish() {
  if (!partial_.empty()) {
    pass_.Read(partial_);
    partial_.clear();
  }
  HandOn();
  const std::string rest = pass_.Finish();
  target_.write(rest.data(), static_cast<std::streamsize>(rest.size()));
}
