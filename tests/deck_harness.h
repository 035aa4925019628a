// Runs the built vesk (and vesk-db) on a design in a fresh folder, for whole-program tests.
#pragma once

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a test puts around the design: files, the configuration file, the environment.
struct VeskInput {
  /// Relative path (with "/") -> text, written into the run folder before the run.
  std::map<std::string, std::string> files;
  /// Text of galt/standard/vesk.cfg (GALT_HOME is "galt"); nullopt: no file at all.
  std::optional<std::string> config = std::string();
  /// Added to the environment (which has no WDIR, CURRENT_PROJECT_PATH; GALT_HOME=galt).
  std::map<std::string, std::string> env;
  /// The deck to read back, relative to the run folder.
  std::string deckPath = "TOP.cir";
  /// False: no database is imported even when a design is given.
  bool import = true;
};

/// The outcome of one run. The folder is removed when the object goes (unless VESK_KEEP
/// is set in the test's environment).
struct VeskRun {
  VeskRun() = default;
  VeskRun(const VeskRun&) = delete;
  VeskRun(VeskRun&& other) noexcept;
  ~VeskRun();

  int rc = -1;
  std::string output;  // standard output
  std::string errors;  // standard error
  /// The deck after both passes with the "* File created " line masked, or "<no deck>".
  std::string deck;
  /// The run folder (the working folder of vesk).
  std::string folder;

  bool Exists(const std::string& relative) const;
  /// Whole text of a file of the run folder, "" when absent.
  std::string Read(const std::string& relative) const;
};

/// Imports `designJson` with vesk-db (skipped when empty) and runs vesk with `args`, split at
/// blanks, with SOURCE_DATE_EPOCH set.
VeskRun RunVesk(const std::string& designJson, const std::string& args, const VeskInput& input = {});

/// Runs a program with arguments in `folder`; returns its exit code and fills the outputs.
int RunProgram(const std::string& program, const std::string& args, const std::string& folder,
               const std::map<std::string, std::string>& env, std::string& output, std::string& errors);

/// Starts a program like RunProgram, its output to `out` and `err` (nullptr: nowhere); returns its
/// process id for WaitProgram, which returns its exit code (128 + signal when killed).
int StartProgram(const std::string& program, const std::string& args, const std::string& folder,
                 const std::map<std::string, std::string>& env, std::FILE* out = nullptr,
                 std::FILE* err = nullptr);
int WaitProgram(int child);

/// Replaces the text behind "* File created " by "<date>".
std::string MaskDate(const std::string& deck);

/// Where the built programs lie.
std::string BinaryDir();

/// Whole text of a file, "" when absent.
std::string ReadText(const std::string& path);
/// Writes a file, creating its folders.
void WriteText(const std::string& path, const std::string& text);
/// A fresh empty folder under /tmp, removed by RemoveScratch unless VESK_KEEP is set.
std::string MakeScratch(const std::string& tag);
void RemoveScratch(const std::string& folder);
/// Whole text of a file of the source tree, by its path from the root.
std::string SourceText(const std::string& relative);

/// The cases of a table file of the source tree: each case is a text of one or more lines, then a
/// line "=> " and what it must give; a blank line ends a case; lines beginning "#" are comments.
std::vector<std::pair<std::string, std::string>> ReadCaseTable(const std::string& relative);
