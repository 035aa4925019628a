// Runs every whole-deck case under tests/decks/<subject>/<case>/ as one test named
// <subject>_<case>. A case folder holds:
//   design.json      imported with vesk-db (absent: no database)
//   args             the command line of vesk, one line, words split at blanks
//   env              optional KEY=VALUE lines added to the environment
//   files/           files copied into the run folder first
//   vesk.cfg         the configuration file at galt/standard/vesk.cfg (GALT_HOME is "galt");
//                    absent: an empty file; with a file no-cfg beside it: no file at all
//   expect/rc        the exit status (default 0)
//   expect/deck      the deck; the line that begins "* File created " is compared by that prefix
//   expect/deck.path where the deck lies in the run folder (default TOP.cir)
//   expect/stdout    the standard output, when given
//   expect/files/    other files of the run folder, compared whole
//   expect/absent    paths, one a line, that must not exist after the run
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/deck_harness.h"
#include "tests/text_diff.h"

namespace fs = std::filesystem;

namespace {

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

std::optional<std::string> ReadFile(const fs::path& path) {
  if (!fs::is_regular_file(path)) return std::nullopt;
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find_first_of("\r\n")); }

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Every file below `root`, by its path relative to it with "/".
std::map<std::string, std::string> FilesBelow(const fs::path& root) {
  std::map<std::string, std::string> files;
  if (!fs::is_directory(root)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(root))
    if (entry.is_regular_file())
      files[fs::relative(entry.path(), root).generic_string()] = *ReadFile(entry.path());
  return files;
}

struct DeckCase {
  std::string subject, name;
  fs::path folder;
};

// Printed by gtest for a failing case.
void PrintTo(const DeckCase& c, std::ostream* out) { *out << c.subject << "/" << c.name; }

std::vector<DeckCase> FindCases() {
  std::vector<DeckCase> cases;
  const fs::path decks = fs::path(VESK_SOURCE_DIR) / "tests" / "decks";
  if (!fs::is_directory(decks)) return cases;
  for (const auto& subject : fs::directory_iterator(decks)) {
    if (!subject.is_directory()) continue;
    for (const auto& folder : fs::directory_iterator(subject.path()))
      if (folder.is_directory())
        cases.push_back(
            {subject.path().filename().string(), folder.path().filename().string(), folder.path()});
  }
  std::sort(cases.begin(), cases.end(),
            [](const DeckCase& a, const DeckCase& b) { return a.folder < b.folder; });
  return cases;
}

// A test name of letters, digits and underscores.
std::string TestName(const DeckCase& c) {
  std::string name = c.subject + "_" + c.name;
  for (char& ch : name)
    if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
  return name;
}

// What the case puts around the design.
VeskInput CaseInput(const fs::path& folder) {
  VeskInput input;
  input.files = FilesBelow(folder / "files");
  if (fs::exists(folder / "no-cfg"))
    input.config.reset();
  else
    input.config = ReadFile(folder / "vesk.cfg").value_or("");
  std::istringstream env(ReadFile(folder / "env").value_or(""));
  for (std::string line; std::getline(env, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const size_t equals = line.find('=');
    if (equals != std::string::npos) input.env[Trimmed(line.substr(0, equals))] = line.substr(equals + 1);
  }
  input.deckPath = Trimmed(ReadFile(folder / "expect" / "deck.path").value_or("TOP.cir"));
  return input;
}

// Fails with a diff when a text of the run is not the expected one.
void ExpectText(const std::string& what, const std::string& want, const std::string& got) {
  if (want != got) ADD_FAILURE() << what << " differs (-expected +actual):\n" << UnifiedDiff(want, got);
}

class DeckCaseTest : public ::testing::TestWithParam<DeckCase> {};

TEST_P(DeckCaseTest, Run) {
  const fs::path& folder = GetParam().folder;
  const fs::path expect = folder / "expect";
  const std::optional<std::string> design = ReadFile(folder / "design.json");
  VeskInput input = CaseInput(folder);
  input.import = design.has_value();
  const VeskRun run = RunVesk(design.value_or(""), FirstLine(ReadFile(folder / "args").value_or("")), input);
  SCOPED_TRACE("case folder " + folder.string() + "\nstandard error:\n" + run.errors);

  EXPECT_EQ(run.rc, std::stoi(Trimmed(ReadFile(expect / "rc").value_or("0")))) << run.output;
  if (auto want = ReadFile(expect / "stdout")) ExpectText("stdout", MaskDate(*want), MaskDate(run.output));
  if (auto want = ReadFile(expect / "deck")) {
    if (!run.Exists(input.deckPath))
      ADD_FAILURE() << "no deck at " << input.deckPath << "\nstdout:\n" << run.output;
    else
      ExpectText(input.deckPath, MaskDate(*want), run.deck);
  }
  for (const auto& [path, want] : FilesBelow(expect / "files")) {
    if (!run.Exists(path)) {
      ADD_FAILURE() << "missing file " << path;
      continue;
    }
    ExpectText(path, want, run.Read(path));
  }
  std::istringstream absent(ReadFile(expect / "absent").value_or(""));
  for (std::string line; std::getline(absent, line);)
    if (!Trimmed(line).empty()) {
      EXPECT_FALSE(run.Exists(Trimmed(line))) << "file should not exist: " << Trimmed(line);
    }
}

INSTANTIATE_TEST_SUITE_P(Decks, DeckCaseTest, ::testing::ValuesIn(FindCases()),
                         [](const ::testing::TestParamInfo<DeckCase>& info) { return TestName(info.param); });

}  // namespace
