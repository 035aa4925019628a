// The probe pass: rereads a hierarchical deck, drops its probe markers, learns its
// subcircuits, models and analyses, and puts the print statements ahead of "*.END".
#include "post/probe_pass.h"

#include <cctype>
#include <string_view>
#include <vector>

#include "expr/text.h"

namespace {

const char kVoltageMarker[] = "* voltage probe on node : ";
const char kCurrentMarker[] = "* next line is a current sense";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// True when the line begins with `prefix` once its leading blanks are skipped.
bool StartsWithAfterBlanks(std::string_view line, std::string_view prefix) {
  size_t start = 0;
  while (start < line.size() && IsBlank(line[start])) ++start;
  return StartsWith(line.substr(start), prefix);
}

// The first blank-separated word at or behind `column`.
std::string FirstWordFrom(const std::string& line, size_t column) {
  size_t start = column;
  while (start < line.size() && IsBlank(line[start])) ++start;
  size_t end = start;
  while (end < line.size() && !IsBlank(line[end])) ++end;
  return start < line.size() ? line.substr(start, end - start) : std::string();
}

std::vector<std::string> SplitWords(const std::string& line) {
  std::vector<std::string> words;
  size_t pos = 0;
  while (pos < line.size()) {
    while (pos < line.size() && IsBlank(line[pos])) ++pos;
    size_t end = pos;
    while (end < line.size() && !IsBlank(line[end])) ++end;
    if (end > pos) words.push_back(line.substr(pos, end - pos));
    pos = end;
  }
  return words;
}

// Cuts a line at its first "*", or, when it has none, at its first ";".
void CutAtComment(std::string& line) {
  size_t cut = line.find('*');
  if (cut == std::string::npos) cut = line.find(';');
  if (cut != std::string::npos) line.erase(cut);
}

bool IsParamsWord(std::string_view word) {
  if (word.size() != 7) return false;
  static const char kParams[] = "PARAMS:";
  for (size_t i = 0; i < 7; ++i)
    if (std::toupper(static_cast<unsigned char>(word[i])) != kParams[i]) return false;
  return true;
}

// The name of a .model line: behind column 6, leading blanks trimmed, up to the first
// blank; a name with no blank behind it reads as empty.
std::string ModelName(const std::string& line) {
  size_t start = 6;
  while (start < line.size() && IsBlank(line[start])) ++start;
  size_t end = start;
  while (end < line.size() && !IsBlank(line[end])) ++end;
  return end < line.size() ? line.substr(start, end - start) : std::string();
}

// Reads a text line by line, as a text-mode file would: "\r\n" reads as an end of line.
class LineReader : public ProbeLineSource {
 public:
  explicit LineReader(const std::string& text) : text_(text) {}
  std::string_view Ahead() const override {
    return pos_ < text_.size() ? std::string_view(text_).substr(pos_) : std::string_view();
  }
  void Skip(size_t size) override { pos_ += size; }
  bool Read(std::string& line) override {
    if (pos_ >= text_.size()) return false;
    size_t end = text_.find('\n', pos_);
    if (end == std::string::npos) end = text_.size();
    line.assign(text_, pos_, end - pos_);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    pos_ = end + 1;
    return true;
  }

 private:
  const std::string& text_;
  size_t pos_ = 0;
};

}  // namespace

std::string CalledSubckt(const std::string& line) {
  // Walks the words as views (every X line of a deck comes here, in both passes), keeping
  // the two words behind the one in hand. The name is the last word ahead of the first
  // parameter; the first word, the instance, is never one.
  std::string_view older, previous;
  size_t index = 0, pos = 0;
  while (true) {
    while (pos < line.size() && IsBlank(line[pos])) ++pos;
    if (pos >= line.size()) break;
    size_t end = pos;
    while (end < line.size() && !IsBlank(line[end])) ++end;
    const std::string_view word(line.data() + pos, end - pos);
    pos = end;
    if (index >= 1) {
      // "name =value": the word ahead of "=value" is the parameter's name.
      if (word[0] == '=') return index >= 3 ? std::string(older) : std::string();
      if (word.find('=') != std::string_view::npos || IsParamsWord(word))
        return index >= 2 ? std::string(previous) : std::string();
    }
    older = previous;
    previous = word;
    ++index;
  }
  return index >= 2 ? std::string(previous) : std::string();
}

namespace {

// A new scope of `subcircuit` at the end of the chain, behind `scope`.
ProbeScope* OpenScope(ProbePassState& state, ProbeScope* scope, const std::string& subcircuit) {
  ProbeScope* next = state.NewProbeScope();
  scope->next = next;
  next->prev = scope;
  next->name = subcircuit;
  return next;
}

ProbeScope* EnterInstance(ProbePassState& state, const std::string& line, const std::string& subcircuit,
                          ProbeScope* scope) {
  if (scope->name.empty() || scope->name != subcircuit) scope = OpenScope(state, scope, subcircuit);
  scope->instances[FirstWordFrom(line, 0)] = CalledSubckt(line);
  return scope;
}

// Holds an instance line met before the first probe: its subcircuit and its line, each ended by
// "\n" (the replay in AddScopeProbe reads them back).
void HoldInstance(ProbePassState& state, std::string_view line, const std::string& subcircuit) {
  state.heldInstances.append(subcircuit).append(1, '\n').append(line).append(1, '\n');
}

}  // namespace

ProbeScope* AddScopeProbe(ProbePassState& state, const std::string& kind, const std::string& node,
                          const std::string& subcircuit, ProbeScope* scope) {
  if (!state.probeSeen) {
    // The instances held so far go into the chain as they came, ahead of this probe.
    state.probeSeen = true;
    std::string held, subcircuit, line;
    held.swap(state.heldInstances);
    for (size_t pos = 0; pos < held.size();) {
      const size_t subcircuitEnd = held.find('\n', pos);
      const size_t lineEnd = held.find('\n', subcircuitEnd + 1);
      subcircuit.assign(held, pos, subcircuitEnd - pos);
      line.assign(held, subcircuitEnd + 1, lineEnd - subcircuitEnd - 1);
      scope = EnterInstance(state, line, subcircuit, scope);
      pos = lineEnd + 1;
    }
  }
  if (scope->name.empty())
    scope->name = subcircuit;
  else if (scope->name != subcircuit)
    scope = OpenScope(state, scope, subcircuit);
  scope->probes[node] = kind;
  return scope;
}

ProbeScope* AddScopeInstance(ProbePassState& state, const std::string& line, const std::string& subcircuit,
                             ProbeScope* scope) {
  if (!state.probeSeen) {
    HoldInstance(state, line, subcircuit);
    return scope;
  }
  return EnterInstance(state, line, subcircuit, scope);
}

void NoteModel(ProbePassState& state, const std::string& name) {
  if (!state.modelNames.Add(name)) state.duplicateModels.Add("Duplicate model definition: " + name, false);
}

void NoteSubckt(ProbePassState& state, const std::string& path) {
  if (!state.subcktNames.Add(path))
    state.duplicateSubckts.Add("Duplicate sub-circuit definition: " + path, false);
}

void NoteProbeItem(ProbePassState& state, const std::string& text) { state.probeItems.Add(text); }

void ReportDuplicates(ProbePassState& state, std::ostream& console) {
  state.duplicateSubckts.ForEachNewestFirst([&](std::string_view m) { console << m << "\n"; });
  state.duplicateModels.ForEachNewestFirst([&](std::string_view m) { console << m << "\n"; });
  state.duplicateSubckts.Clear();
  state.duplicateModels.Clear();
}

namespace {

// One run of the line loop: take a line, copy it, look ahead and join, act on it.
// The text made goes to `sink` in large pieces as it grows when there is one; Run returns
// the rest. Output is only ever appended, so a piece cut at any line is final.
class ProbePass {
 public:
  ProbePass(ProbeLineSource& reader, ProbePassState& state, const PrintSettings& settings, size_t sizeHint,
            std::ostream* sink)
      : reader_(reader), state_(state), settings_(settings), sink_(sink) {
    output_.reserve(sizeHint);
  }

  std::string Run() {
    std::string line;
    while (true) {
      PassInertLines();
      if (!Take(line)) break;
      if (!IsWrittenByAct(line)) output_.append(line).append("\n");
      Join(line);
      Act(line);
      if (sink_ && output_.size() >= kHandOnSize) {
        sink_->write(output_.data(), static_cast<std::streamsize>(output_.size()));
        output_.clear();
      }
    }
    return std::move(output_);
  }

 private:
  bool Take(std::string& line) { return Next(line); }

  // Most lines of a deck ask nothing of the pass but to be copied: element lines, comments, and
  // instance lines while they are only held. Those at hand are taken here as they stand, each
  // as the loop would take it: a line whose successor is at hand and is neither blank nor a "+"
  // line (Join would take it), and that does not end in "\r" (the loop drops that). The line
  // handed back by the last Join comes first.
  void PassInertLines() {
    if (queuedCount_ > 1 || pendingCurrent_) return;
    const std::string_view ahead = reader_.Ahead();
    if (ahead.empty() || !IsQuietSuccessor(ahead[0])) return;
    if (queuedCount_ == 1) {
      if (!IsInert(queued_[0])) return;
      TakeInert(queued_[0]);
      queuedCount_ = 0;
    }
    size_t pos = 0;
    while (true) {
      const size_t end = ahead.find('\n', pos);
      if (end == std::string_view::npos || end + 1 >= ahead.size() || !IsQuietSuccessor(ahead[end + 1])) break;
      const std::string_view line = ahead.substr(pos, end - pos);
      if (line.back() == '\r' || !IsInert(line)) break;
      if (line[0] == 'x' || line[0] == 'X') HoldInstance(state_, line, subcircuit_);
      pos = end + 1;
    }
    if (pos == 0) return;
    output_.append(ahead.substr(0, pos));
    reader_.Skip(pos);
  }

  // A line that Join hands back rather than takes: one neither blank nor a "+" line.
  static bool IsQuietSuccessor(char first) { return first != '\n' && first != '\r' && first != '+'; }

  // A line the loop would copy and Act pass over, or an instance only to be held.
  bool IsInert(std::string_view line) const {
    if (line.empty()) return false;
    const char first = line[0];
    if (first == 'x' || first == 'X') return !state_.probeSeen;
    if (first == '*') return !IsWrittenByAct(line);
    return !MayBeSpecial(first) && first != '+' && first != ';';
  }

  void TakeInert(const std::string& line) {
    output_.append(line).append(1, '\n');
    if (line[0] == 'x' || line[0] == 'X') HoldInstance(state_, line, subcircuit_);
  }

  // The next line of the file: lines read ahead and handed back come first.
  bool Next(std::string& line) {
    if (queuedCount_ == 0) return reader_.Read(line);
    line.swap(queued_[--queuedCount_]);
    return true;
  }

  // Lines that are dropped here: markers and items, or written by Act.
  static bool IsWrittenByAct(std::string_view line) {
    // Each begins with "*", "." or a blank: most lines are told apart by their first character.
    if (line.empty() || !MayBeSpecial(line[0])) return false;
    return StartsWith(line, kVoltageMarker) || StartsWithAfterBlanks(line, kCurrentMarker) ||
           StartsWith(line, ".probe/csdf") || StartsWith(line, "*.END") || StartsWith(line, "*.end") ||
           StartsWith(line, ".ENDS") || StartsWith(line, ".ends");
  }

  // Whether a line beginning with `first` may be a marker, a dot command or an end line.
  static bool MayBeSpecial(char first) { return first == '*' || first == '.' || IsBlank(first); }

  // Joins continuation lines onto `line`; they stay in the file as they were. A blank
  // line read here is dropped, and so is a comment line inside a model card.
  void Join(std::string& line) {
    std::string& ahead = ahead_;
    while (true) {
      if (!Next(ahead) || ahead.empty()) return;
      const bool model = StartsWith(line, ".model");
      if (model) CutAtComment(line);
      if (ahead[0] == '+') {
        output_.append(ahead).append("\n");
        CutAtComment(ahead);
        line.append(" ").append(ahead, 1, std::string::npos);
        continue;
      }
      if (model && IsCommentLine(ahead) && CommentsInsideCard()) continue;
      HandBack(ahead);
      return;
    }
  }

  static bool IsCommentLine(const std::string& line) {
    return !line.empty() && (line[0] == '*' || line[0] == ';');
  }

  // Called with a comment line read behind a model card: the comment lines from there are
  // inside the card when a continuation line follows them, and then they are dropped. Otherwise
  // they stand behind the card (the "*.END" line of a deck whose last lines are model cards)
  // and are handed back, with the line that ended them, to be read as lines of their own.
  bool CommentsInsideCard() {
    std::vector<std::string> held;
    std::string after;
    bool more = Next(after);
    while (more && IsCommentLine(after)) {
      held.push_back(std::move(after));
      more = Next(after);
    }
    if (more && !after.empty() && after[0] == '+') {
      HandBack(after);
      return true;
    }
    if (more) HandBack(after);
    for (auto it = held.rbegin(); it != held.rend(); ++it) HandBack(*it);
    return false;
  }

  // A line read ahead goes back to be read next, ahead of any handed back before it. The
  // texts are swapped, not moved, so that no line's room is freed and found again.
  void HandBack(std::string& line) {
    if (queuedCount_ == queued_.size()) queued_.emplace_back();
    queued_[queuedCount_++].swap(line);
  }

  void Act(const std::string& line) {
    // An element line other than an instance, behind no current marker, says nothing here.
    if (!pendingCurrent_ && !line.empty() && !MayBeSpecial(line[0]) && line[0] != 'x' && line[0] != 'X') return;
    if (pendingCurrent_) {
      pendingCurrent_ = false;
      Tail() = AddScopeProbe(state_, "c", FirstWordFrom(line, 0), subcircuit_, Tail());
    } else if (StartsWith(line, kVoltageMarker)) {
      Tail() = AddScopeProbe(state_, "v", FirstWordFrom(line, 26), subcircuit_, Tail());
    } else if (StartsWith(line, ".probe/csdf")) {
      NoteProbeItem(state_, line.substr(11));
    } else if (StartsWithAfterBlanks(line, kCurrentMarker)) {
      pendingCurrent_ = true;
    } else if (StartsWith(line, ".subckt") || StartsWith(line, ".SUBCKT")) {
      OpenSubckt(FirstWordFrom(line, 7));
    } else if (StartsWith(line, "x") || StartsWith(line, "X")) {
      Tail() = AddScopeInstance(state_, line, subcircuit_, Tail());
    } else if (StartsWith(line, ".model") || StartsWith(line, ".MODEL")) {
      NoteModel(state_, subcktPath_.empty() ? ModelName(line) : subcktPath_ + "." + ModelName(line));
    } else if (StartsWith(line, ".ENDS") || StartsWith(line, ".ends")) {
      CloseSubckt(line);
    } else if (ActOnAnalysis(line)) {
      return;
    } else if (StartsWith(line, "*.end") || StartsWith(line, "*.END")) {
      WriteStatements(line);
    }
  }

  // The print statements go ahead of the end line.
  void WriteStatements(const std::string& endLine) {
    // Only probes make statements: without one the walk would find nothing to write.
    if (state_.probeSeen) WalkProbeScopes(analysisScope_, "", "", state_, settings_, output_);
    ItemStatements(state_, settings_, output_);
    output_.append(endLine).append("\n");
  }

  // .tran, .dc, .ac (lower case only), and .mc lines naming one of them.
  bool ActOnAnalysis(const std::string& line) {
    bool* flag = nullptr;
    if (StartsWith(line, ".tran")) flag = &state_.hasTranAnalysis;
    if (StartsWith(line, ".dc")) flag = &state_.hasDcAnalysis;
    if (StartsWith(line, ".ac")) flag = &state_.hasAcAnalysis;
    if (StartsWith(line, ".mc") && (line.size() == 3 || IsBlank(line[3]))) flag = MonteCarloFlag(line);
    if (!flag) return false;
    *flag = true;
    analysisScope_ = Tail();
    return true;
  }

  // The analysis of ".mc <runs> <analysis> ...", written with or without its point.
  bool* MonteCarloFlag(const std::string& line) {
    std::vector<std::string> words = SplitWords(line);
    if (words.size() < 3) return nullptr;
    std::string analysis = words[2][0] == '.' ? words[2].substr(1) : words[2];
    analysis = LowerText(analysis);
    if (analysis == "tran") return &state_.hasTranAnalysis;
    if (analysis == "dc") return &state_.hasDcAnalysis;
    if (analysis == "ac") return &state_.hasAcAnalysis;
    return nullptr;
  }

  void OpenSubckt(const std::string& name) {
    subcircuit_ = name;
    subcktPath_ = subcktPath_.empty() ? name : subcktPath_ + "." + name;
    NoteSubckt(state_, subcktPath_);
  }

  void CloseSubckt(const std::string& line) {
    subcircuit_.clear();
    output_.append(line).append("\n\n");
    size_t dot = subcktPath_.rfind('.');
    subcktPath_.erase(dot == std::string::npos ? 0 : dot);
  }

  ProbeScope*& Tail() { return state_.probeScopeTail; }

  // Small pieces: the pass behind this one (the post pass, on the same thread) starts on
  // them at once, so little of their work is left when the last line comes.
  static constexpr size_t kHandOnSize = 64 << 10;
  ProbeLineSource& reader_;
  ProbePassState& state_;
  const PrintSettings& settings_;
  std::ostream* sink_;
  std::string output_;
  // Lines read ahead, to be taken before the file's next: the first queuedCount_ entries,
  // the last one first. Nearly every line goes through here once, so the entries stay and
  // keep their room.
  std::vector<std::string> queued_;
  size_t queuedCount_ = 0;
  std::string ahead_;  // the look-ahead line of Join
  bool pendingCurrent_ = false;
  std::string subcircuit_;
  std::string subcktPath_;
  ProbeScope* analysisScope_ = nullptr;
};

}  // namespace

std::string ProbeProcessText(const std::string& text, ProbePassState& state, const PrintSettings& settings,
                             std::ostream& console) {
  if (!state.probeScopeTail) state.probeScopeTail = state.NewProbeScope();
  LineReader reader(text);
  std::string output = ProbePass(reader, state, settings, text.size() + text.size() / 8 + 64, nullptr).Run();
  ReportDuplicates(state, console);
  output += " \n";
  return output;
}

void ProbeProcessLines(ProbeLineSource& source, ProbePassState& state, const PrintSettings& settings,
                       std::ostream& target, std::ostream& console) {
  if (!state.probeScopeTail) state.probeScopeTail = state.NewProbeScope();
  std::string rest = ProbePass(source, state, settings, 0, &target).Run();
  ReportDuplicates(state, console);
  rest += " \n";
  target.write(rest.data(), static_cast<std::streamsize>(rest.size()));
}
