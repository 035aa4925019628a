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

ThreadedPostStream::ThreadedPostStream(PostSettings& settings, std::ostream& target)
    : std::ostream(static_cast<std::streambuf*>(this)), target_(target), pass_(settings, made_) {
  worker_ = std::thread([this] { Work(); });
}

ThreadedPostStream::~ThreadedPostStream() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    toPass_.clear();
    changed_.notify_all();
  }
  if (worker_.joinable()) worker_.join();
}

std::streambuf::int_type ThreadedPostStream::overflow(std::streambuf::int_type c) {
  if (std::streambuf::traits_type::eq_int_type(c, std::streambuf::traits_type::eof()))
    return std::streambuf::traits_type::not_eof(c);
  input_ += std::streambuf::traits_type::to_char_type(c);
  if (input_.size() >= kPieceSize) Send();
  return c;
}

std::streamsize ThreadedPostStream::xsputn(const char* text, std::streamsize size) {
  input_.append(text, static_cast<size_t>(size));
  if (input_.size() >= kPieceSize) Send();
  return size;
}

void ThreadedPostStream::Send() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return toPass_.size() < kPiecesAhead || failure_; });
  // After a failure of the pass nothing reads the text any more; Finish reports it.
  if (!failure_) toPass_.push_back(std::move(input_));
  input_.clear();
  changed_.notify_all();
  WriteDone(lock);
}

void ThreadedPostStream::WriteDone(std::unique_lock<std::mutex>& lock) {
  std::deque<std::string> done;
  done.swap(done_);
  lock.unlock();
  for (const std::string& piece : done)
    target_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
  lock.lock();
}

void ThreadedPostStream::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return !toPass_.empty() || closed_; });
    if (toPass_.empty()) break;
    std::string piece = std::move(toPass_.front());
    toPass_.pop_front();
    changed_.notify_all();
    lock.unlock();
    try {
      pass_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    } catch (...) {
      lock.lock();
      failure_ = std::current_exception();
      changed_.notify_all();
      return;
    }
    std::string made = made_.str();
    made_.str(std::string());
    lock.lock();
    if (!made.empty()) done_.push_back(std::move(made));
  }
  // Closed and nothing left: the held line goes out too, unless the stream was dropped.
  if (!finished_) return;
  lock.unlock();
  try {
    pass_.Finish();
  } catch (...) {
    lock.lock();
    failure_ = std::current_exception();
    return;
  }
  std::string made = made_.str();
  lock.lock();
  done_.push_back(std::move(made));
}

void ThreadedPostStream::Finish() {
  {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!input_.empty()) {
      changed_.wait(lock, [this] { return toPass_.size() < kPiecesAhead || failure_; });
      toPass_.push_back(std::move(input_));
      input_.clear();
    }
    closed_ = true;
    finished_ = true;
    changed_.notify_all();
  }
  worker_.join();
  std::unique_lock<std::mutex> lock(mutex_);
  if (failure_) std::rethrow_exception(failure_);
  WriteDone(lock);
}
