// The post-process pass: rewrites every line of a written deck for the dialect and the
// configuration (filters, parameters, quoting, stripped characters, folding).
#include "post/post_process.h"

#include <cctype>
#include <iostream>
#include <string_view>

#include "design/platform.h"
#include "expr/attribute_text.h"
#include "expr/value_class.h"
#include "post/device_lines.h"
#include "post/instance_parameters.h"
#include "post/line_words.h"
#include "post/probe_pass.h"

bool KeepsEveryParameterWord(const std::string& line, const PostSettings& settings);

namespace {

// Under -__ a line is folded once it reaches this many characters.
constexpr size_t kFoldWidth = 77;

// The statement letters of element lines whose values are quoted.
bool IsElementLetter(const std::string& letter) {
  static const std::string_view kLetters = "RCLKITVDQJMGEFHXUNO";
  return letter.size() == 1 && kLetters.find(letter[0]) != std::string_view::npos;
}

// Closes up the blanks around "=" in one pass: none stays in front of "=", behind "=",
// or behind "={", however many there are.
void CloseUpEquals(std::string& line) {
  // Most lines have no blank beside an "=" (a blank behind "={" is one behind "=" or
  // ahead of "{" behind it): those stay as they are without a copy.
  size_t equals = line.find('=');
  if (equals == std::string::npos) return;
  bool blankBeside = false;
  for (; equals != std::string::npos && !blankBeside; equals = line.find('=', equals + 1)) {
    blankBeside = (equals > 0 && line[equals - 1] == ' ') || (equals + 1 < line.size() && line[equals + 1] == ' ') ||
                  (equals + 2 < line.size() && line[equals + 1] == '{' && line[equals + 2] == ' ');
  }
  if (!blankBeside) return;
  std::string result;
  result.reserve(line.size());
  for (char c : line) {
    size_t size = result.size();
    if (c == ' ' && size >= 1 && result[size - 1] == '=') continue;
    if (c == ' ' && size >= 2 && result[size - 2] == '=' && result[size - 1] == '{') continue;
    if (c == '=') {
      while (!result.empty() && result.back() == ' ') result.pop_back();
    }
    result += c;
  }
  line.swap(result);
}

// Runs of blanks become one blank, in place.
void ReduceBlanks(std::string& line) {
  size_t run = line.find("  ");
  if (run == std::string::npos) return;
  size_t kept = run + 1;
  for (size_t at = run + 1; at < line.size(); ++at) {
    if (line[at] == ' ' && line[kept - 1] == ' ') continue;
    line[kept++] = line[at];
  }
  line.resize(kept);
}

// Where a folded line is cut: at a blank in column 77, else behind the last blank ahead
// of it; a short line, a comment, or a long word without blanks is not cut (its size).
size_t FoldCut(std::string_view line) {
  if (line.size() < kFoldWidth || line[0] == '*') return line.size();
  if (line.size() > kFoldWidth && line[kFoldWidth] == ' ') return kFoldWidth;
  size_t blank = line.substr(0, kFoldWidth).rfind(' ');
  return blank == std::string_view::npos ? line.size() : blank + 1;
}

void RemoveStripChars(std::string& line, const std::string& stripChars) { ReplaceAll(line, stripChars, ""); }

// WlX=W/L becomes LX=L WX=W with their units; WlX=WL... names the sizes by letter;
// any other value is lost.
void AppendSplitWidthLength(std::string& result, const KeyValue& word, const PostSettings& settings) {
  const std::string& value = word.value;
  size_t divider = value.find('/');
  if (divider == std::string::npos) divider = value.find('\\');
  if (divider != std::string::npos && divider > 0 && divider + 1 < value.size()) {
    std::string suffix = word.key.substr(2);
    std::string length = "L" + suffix + "=" + value.substr(divider + 1);
    std::string width = "W" + suffix + "=" + value.substr(0, divider);
    AdjustWordUnit(length, settings.Units());
    AdjustWordUnit(width, settings.Units());
    result += length + " " + width + " ";
    return;
  }
  if (StartsWith(value, "WL") || StartsWith(value, "wl")) {
    std::string suffix = value.substr(2);
    result += "L" + suffix + "=L" + suffix + " W" + suffix + "=W" + suffix + " ";
  }
}

// One word of RewriteParameterWords, appended to `result` with its blank unless dropped.
void AppendParameterWord(std::string& result, std::string_view word, bool& needsParams,
                         const PostSettings& settings) {
  const Dialect& dialect = settings.options.dialect;
  const SpiceConfig& config = settings.config;
  if (dialect.dracula && config.noSlash && StartsWith(word, "/")) return;
  if (word == "PARAMS:" || word == "OPTIONAL:") {
    needsParams = false;
    if (dialect.dropsParamsKeyword) return;
  }
  if (word.find('=') == std::string_view::npos) {
    result += word;
    result += ' ';
    return;
  }
  KeyValue split = SplitKeyValue(std::string(word));
  if (split.value.empty()) {
    result += word;
    result += ' ';
    return;
  }
  if (config.stripTransSize) return;
  if (dialect.paramsKeyword && needsParams) {
    result += "PARAMS: ";
    needsParams = false;
  }
  if (config.wlSplit != 0 && (StartsWith(word, "Wl") || StartsWith(word, "wl"))) {
    AppendSplitWidthLength(result, split, settings);
    return;
  }
  result += word;
  result += ' ';
}


// The parameter files of a model lie in sym under its name: a line that names no other folder
// can take parameters only when sym holds such a file at all, which is asked once.
bool InstanceMayTakeParameters(const std::string& line, PostSettings& settings) {
  if (line.find_first_of("\\/") != std::string::npos) return true;
  if (!settings.symHoldsParameterFiles) settings.symHoldsParameterFiles = SymHoldsParameterFiles();
  return *settings.symHoldsParameterFiles;
}

}  // namespace

PostPass::PostPass(PostSettings& settings, size_t sizeHint) : settings_(settings) {
  output_.reserve(sizeHint + sizeHint / 8 + 64);
  elements_ = UpperText(settings.config.elements);
}

void PostPass::Read(std::string_view rawLine) {
  std::string_view read = TrimView(rawLine);
  if (read.empty()) {
    FoldLine(output_, pending_, true, settings_);
    pending_.clear();
    return;
  }
  RewritePending();
  pending_.assign(read.data(), read.size());
}

std::string PostPass::Finish() {
  FoldLine(output_, pending_, true, settings_);
  pending_.clear();
  return std::move(output_);
}

void PostPass::BeginStatement() {
  letter_.assign(pending_, 0, 1);
  widthAndLength_.clear();
  needsParams_ = true;
  settings_.currentInstance.clear();
}

// COMMANDS keeps the dot commands it names (a plain text search), ELEMENTS the element
// letters it names; a list beginning with "ALL" keeps everything.
bool PostPass::IsDropped(std::string_view firstWord) const {
  const std::string& commands = settings_.config.commands;
  if (letter_ == ".") return !StartsWith(commands, "ALL") && commands.find(firstWord) == std::string::npos;
  bool elementLetter = letter_.size() == 1 && std::isupper(static_cast<unsigned char>(letter_[0]));
  return elementLetter && !StartsWith(elements_, "ALL") && elements_.find(letter_[0]) == std::string::npos;
}

// Most lines of a deck come through the rewrite as they stand: a comment without a blank beside
// an "=", an element line (not a device card) or a plain instance line, without "=", without
// two blanks in a row and without the stripped text. Such a line is written as it is, and its
// statement begins as RewritePending begins it; the rest of its steps would change nothing.
// False, with nothing done, for any other line.
bool PostPass::WritePlainPending() {
  const SpiceConfig& config = settings_.config;
  const Dialect& dialect = settings_.options.dialect;
  if (pending_.empty() || dialect.dracula) return false;
  if (pending_.size() >= kFoldWidth && dialect.hdlSources) return false;
  const char letter = UpperChar(pending_[0]);
  const bool comment = letter == '*';
  const bool instance = letter == 'X';
  const bool element = letter >= 'A' && letter <= 'Z' && letter != 'M' && letter != 'B' && !instance;
  if (!comment && !element && !instance) return false;
  // One look at the line: an "=" (a comment's only if a blank or "{ " stands beside it), two
  // blanks in a row.
  for (size_t i = 0; i < pending_.size(); ++i) {
    const char c = pending_[i];
    const char next = i + 1 < pending_.size() ? pending_[i + 1] : '\0';
    if (c == '=' && (!comment || next == ' ' || (next == '{' && i + 2 < pending_.size() && pending_[i + 2] == ' ')))
      return false;
    if (c == ' ' && (next == ' ' || next == '=')) return false;
  }
  // A stripped text that holds a blank could also meet the blanks the rewrite adds behind.
  if (!config.stripChars.empty() && (pending_.find(config.stripChars) != std::string::npos ||
                                     config.stripChars.find_first_of(kWhiteSpace) != std::string::npos))
    return false;
  const std::string_view firstWord(pending_.data(), std::min(pending_.find(' '), pending_.size()));
  if (firstWord == config.stripComs) {
    // The comment mark of the configuration: the line is dropped or written as it stands.
    if (!comment) return false;
    BeginStatement();
    if (!config.stripComments) {
      output_ += pending_;
      output_ += '\n';
    }
    return true;
  }
  if (instance && (!KeepsEveryParameterWord(pending_, settings_) || InstanceMayTakeParameters(pending_, settings_)))
    return false;
  BeginStatement();
  letter_[0] = UpperChar(letter_[0]);
  if (!comment) {
    if (IsDropped(firstWord)) return true;
    if (instance) settings_.currentInstance.assign(firstWord);
    if (IsElementLetter(letter_) && !dialect.hdlSources && dialect.pspiceQuotesAlways)
      SetPspiceQuotes(settings_.config);
  }
  output_ += pending_;
  output_ += '\n';
  return true;
}

void PostPass::RewritePending() {
  if (plainLinesAsTheyStand_ && WritePlainPending()) return;
  CloseUpEquals(pending_);
  const std::string firstWord = FirstWord(pending_);
  if (!StartsWith(pending_, "+")) BeginStatement();
  if (firstWord == settings_.config.stripComs) {
    if (!settings_.config.stripComments) FoldLine(output_, pending_, true, settings_);
    return;
  }
  for (char& c : letter_) c = UpperChar(c);
  // The values whose blanks are closed up stand behind "='" or "={": a line without "=" has
  // none, and is not copied to find that out.
  if (pending_.find('=') != std::string::npos) pending_ = CollapseQuotedBlanks(std::move(pending_));
  if (IsDropped(firstWord)) return;
  RewriteStatement(firstWord);
}

void PostPass::RewriteStatement(std::string_view firstWord) {
  std::string tail;
  const char letter = letter_.size() == 1 ? letter_[0] : '\0';
  if (letter == 'M' || letter == 'B' || (letter == 'Q' && settings_.options.dialect.dracula)) {
    RewriteDeviceCard(pending_, widthAndLength_, settings_);
  }
  if (letter == 'X' || StartsWith(firstWord, ".MACRO")) {
    tail = RewriteParameterWords(pending_, needsParams_, settings_);
  }
  if (StartsWith(firstWord, ".SUBCKT")) RewriteParameterWords(pending_, needsParams_, settings_);
  if (StartsWith(firstWord, ".EOM")) FoldLine(output_, "\n", true, settings_);
  if (StartsWith(firstWord, ".ENDS")) {
    output_ += pending_;
    output_ += "\n\n";
    return;
  }
  if (pending_.empty()) {
    FoldLine(output_, "\n", true, settings_);
  } else {
    RewriteElementWords(pending_, letter_, settings_);
    RemoveStripChars(pending_, settings_.config.stripChars);
    FoldLine(output_, pending_, true, settings_);
  }
  output_ += tail;
}

void ReadStripWords(SpiceConfig& config) {
  for (const std::string& word : WordsWithEnd(config.stripWords)) {
    if (word == "TRANS_SIZE") config.stripTransSize = true;
    if (word == "UNITS") config.stripUnits = true;
    if (word == "COMMENTS") config.stripComments = true;
  }
}

// True when every word of `line` goes through AppendParameterWord unchanged: no parameter,
// no keyword (any ":" counts as one), no word that a Dracula deck drops; and the words stand
// one blank apart with none at either end, so the rewrite only adds the blanks behind.
bool KeepsEveryParameterWord(const std::string& line, const PostSettings& settings) {
  if (line.empty() || line.front() == ' ' || line.back() == ' ') return false;
  const bool slashDropped = settings.options.dialect.dracula && settings.config.noSlash;
  // One look at each character; the last is no blank, so a blank has a successor.
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '=' || c == ':' || (c == ' ' && line[i + 1] == ' ') || (c == '/' && slashDropped)) return false;
  }
  return true;
}


std::string RewriteParameterWords(std::string& line, bool& needsParams, PostSettings& settings) {
  if (KeepsEveryParameterWord(line, settings)) {
    if (settings.currentInstance.empty()) settings.currentInstance = line.substr(0, line.find(' '));
    // Each word with its blank, then the blank of the end word: the line as it is, in place.
    line.append("  ");
  } else {
    std::string result;
    result.reserve(line.size() + 16);
    bool first = true;
    ForEachWordWithEnd(line, [&](std::string_view word) {
      if (first && settings.currentInstance.empty()) settings.currentInstance = word;
      first = false;
      AppendParameterWord(result, word, needsParams, settings);
    });
    line.swap(result);
  }
  const std::string& instance = settings.currentInstance;
  if (!StartsWith(instance, "X") && !StartsWith(instance, "x")) return std::string();
  if (!InstanceMayTakeParameters(line, settings)) return std::string();
  // The model of an instance is the sub-circuit it calls, ahead of any parameters.
  return LoadInstanceParameters(instance, CalledSubckt(line), line, settings.internalNames,
                                settings.currentInstance, settings.parameterFiles);
}

void RewriteElementWords(std::string& line, const std::string& letter, PostSettings& settings) {
  ReduceBlanks(line);
  if (!IsElementLetter(letter)) return;
  const bool dracula = settings.options.dialect.dracula;
  if (dracula && line.find("NOT4ECAD") != std::string::npos) {
    line.clear();
    return;
  }
  std::string result;
  result.reserve(line.size() + 16);
  const bool quoting = !settings.options.dialect.hdlSources;
  // Quoting sets the dialect's quotes first, whatever the word; a word without "=" is then
  // left as it is, so only the others are copied and rewritten. Dracula words take the
  // whole way, in the order of rewrite then quoting.
  if (quoting && !dracula && settings.options.dialect.pspiceQuotesAlways) SetPspiceQuotes(settings.config);
  if (!dracula && (!quoting || line.find('=') == std::string::npos)) {
    // Every word stays as it is: the words, one blank behind each, and one more for the
    // end of the line. Blanks are single here, so only the ends change.
    size_t begin = !line.empty() && line[0] == ' ' ? 1 : 0;
    size_t end = line.size();
    if (end > begin && line[end - 1] == ' ') --end;
    if (begin == end) {
      line = " ";
      return;
    }
    line.erase(end);
    line.erase(0, begin);
    line += "  ";
    return;
  }
  ForEachWordWithEnd(line, [&](std::string_view view) {
    if (dracula || (quoting && view.find('=') != std::string_view::npos)) {
      std::string word(view);
      if (dracula) DraculaWord(word, settings);
      if (quoting) QuoteValue(word, settings);
      result += word;
    } else {
      result += view;
    }
    result += ' ';
  });
  line.swap(result);
}

void FoldLine(std::string& output, const std::string& line, bool first, const PostSettings& settings) {
  std::string_view rest = TrimRight(line);
  if (!settings.options.dialect.hdlSources) {
    output.append(rest);
    output += '\n';
    return;
  }
  for (bool firstPart = first;; firstPart = false) {
    rest = TrimRight(rest);
    size_t cut = FoldCut(rest);
    if (!firstPart) output += '+';
    output.append(rest.substr(0, cut));
    output += '\n';
    if (cut >= rest.size()) return;
    rest = rest.substr(cut);
  }
}

std::string PostProcessText(const std::string& text, PostSettings& settings) {
  PostPass pass(settings, text.size());
  const std::string_view view(text);
  size_t pos = 0;
  while (pos < view.size()) {
    size_t end = view.find('\n', pos);
    if (end == std::string_view::npos) end = view.size();
    pass.Read(view.substr(pos, end - pos));
    pos = end + 1;
  }
  return pass.Finish();
}

void PostProcessFile(const std::string& path, PostSettings& settings) {
  if (path.empty()) {
    std::cout << "No Project found to PostProcess... \n";
    return;
  }
  ReadStripWords(settings.config);
  std::string text;
  if (!ReadWholeFile(path, text)) {
    std::cout << "Error: Could not open data file " << path << "\n";
    return;
  }
  // Written beside the deck and renamed over it: a failure leaves the old deck whole.
  ReplaceFile(path, PostProcessText(text, settings));
}
