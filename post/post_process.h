// The post-process pass: rewrites every line of a written deck for the dialect and the
// configuration (filters, parameters, quoting, stripped characters, folding).
#pragma once

#include <string>
#include <string_view>

#include "post/post_settings.h"

/// Sets stripComments, stripTransSize and stripUnits from the words of stripWords.
void ReadStripWords(SpiceConfig& config);

/// Rewrites the parameter words of an X, .MACRO or .SUBCKT line in place: PARAMS: added
/// or dropped for the dialect, WL words split. Returns the text to write behind the line
/// (parameter file lines of an X instance), or "".
std::string RewriteParameterWords(std::string& line, bool& needsParams, PostSettings& settings);

/// Reduces runs of blanks; for element letters also drops NOT4ECAD lines of Dracula
/// decks and quotes the words' values.
void RewriteElementWords(std::string& line, const std::string& letter, PostSettings& settings);

/// Appends `line` to `output`; under -__ a long line is folded at blanks into "+" lines.
void FoldLine(std::string& output, const std::string& line, bool first, const PostSettings& settings);

/// The line loop of the pass. It works one line behind its reading: a line is rewritten once
/// the next one is known, so that a line ahead of an empty line, and the last line, go through
/// as they stand. Lines may come from a whole deck or one at a time as a generator writes them.
class PostPass {
 public:
  PostPass(PostSettings& settings, size_t sizeHint);
  /// One line of the deck, without its line end.
  void Read(std::string_view rawLine);
  /// The text rewritten so far; a caller that streams it on may take it out and empty it.
  std::string& Output() { return output_; }
  /// Rewrites the line held back and returns the rest of the text.
  std::string Finish();
  /// Sends every line through the whole rewrite, also those it would give back unchanged (the
  /// check of that shortcut).
  void RewriteEveryLine() { plainLinesAsTheyStand_ = false; }

 private:
  void BeginStatement();
  bool IsDropped(std::string_view firstWord) const;
  void RewritePending();
  bool WritePlainPending();
  void RewriteStatement(std::string_view firstWord);

  PostSettings& settings_;
  std::string output_;
  std::string pending_;
  std::string letter_;
  std::string widthAndLength_;
  std::string elements_;  // upper case
  bool needsParams_ = false;
  bool plainLinesAsTheyStand_ = true;
};

/// Runs the pass over the text of a deck and returns the new text.
std::string PostProcessText(const std::string& text, PostSettings& settings);

/// Reads the deck at `path` (backslashes allowed), runs the pass and replaces the file.
/// The old deck stays whole when the new one can't be written.
void PostProcessFile(const std::string& path, PostSettings& settings);
