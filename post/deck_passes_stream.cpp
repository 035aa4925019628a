// DeckPassesStream: deck text in, text of both passes out, each pass on a thread of its own.
#include "post/deck_passes_stream.h"

#include <utility>

#include "design/stage_thread.h"
#include "post/post_stream.h"

DeckPassesStream::DeckPassesStream(ProbePassState* probeState, const PrintSettings& printSettings,
                                   PostSettings& postSettings, std::ostream& target)
    : std::ostream(static_cast<std::streambuf*>(this)),
      probeState_(probeState),
      printSettings_(printSettings),
      postSettings_(postSettings),
      target_(target) {
  // Where the threads begin: the writer's thread takes about as much as the stage that feeds it
  // (the walk, started away from it), the probe pass about as much as the post pass. The post
  // pass behind a probe pass begins beside the writer, and each of the others away from it.
  if (probeState_) {
    probeWorker_ = StartStage([this] { ProbeWork(); });
    postWorker_ = std::thread([this] { PostWork(toPost_); });
  } else {
    postWorker_ = StartStage([this] { PostWork(toPasses_); });
  }
}

DeckPassesStream::~DeckPassesStream() {
  toPasses_.Stop();
  toPost_.Stop();
  if (probeWorker_.joinable()) probeWorker_.join();
  if (postWorker_.joinable()) postWorker_.join();
}

std::streambuf::int_type DeckPassesStream::overflow(std::streambuf::int_type c) {
  using Traits = std::streambuf::traits_type;
  if (Traits::eq_int_type(c, Traits::eof())) return Traits::not_eof(c);
  input_ += Traits::to_char_type(c);
  if (input_.size() >= kPieceSize) Send();
  return c;
}

std::streamsize DeckPassesStream::xsputn(const char* text, std::streamsize size) {
  input_.append(text, static_cast<size_t>(size));
  if (input_.size() >= kPieceSize) Send();
  return size;
}

void DeckPassesStream::Send() {
  // After a failure of the passes nothing reads the text any more; Finish reports it.
  toPasses_.Push(std::move(input_));
  input_.clear();
  WriteDone();
}

void DeckPassesStream::WriteDone() {
  std::deque<std::string> done;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    done.swap(done_);
  }
  for (const std::string& piece : done) target_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
}

std::streambuf::int_type DeckPassesStream::PieceForwarder::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char one = traits_type::to_char_type(c);
  return xsputn(&one, 1) == 1 ? c : traits_type::eof();
}

std::streamsize DeckPassesStream::PieceForwarder::xsputn(const char* text, std::streamsize size) {
  if (size > 0) take_(std::string(text, static_cast<size_t>(size)));
  return size;
}

void DeckPassesStream::ProbeWork() {
  try {
    QueuedLineReader lines(toPasses_);
    std::ostream toPost(&toPostBuffer_);
    ProbeProcessLines(lines, *probeState_, printSettings_, toPost, messages_);
    toPost_.Close();
  } catch (...) {
    Fail();
  }
}

void DeckPassesStream::PostWork(TextQueue& input) {
  try {
    PostProcessStream post(postSettings_, made_);
    std::string piece;
    while (input.Pop(piece)) post.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    post.Finish();
  } catch (...) {
    Fail();
  }
}

void DeckPassesStream::Fail() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!failure_) failure_ = std::current_exception();
  }
  toPasses_.Stop();
  toPost_.Stop();
}

void DeckPassesStream::Finish() {
  if (!input_.empty()) Send();
  toPasses_.Close();
  if (probeWorker_.joinable()) probeWorker_.join();
  postWorker_.join();
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (failure_) std::rethrow_exception(failure_);
  }
  WriteDone();
}
