// Simulates the example divider's decks with ngspice: the decks that vesk writes for Pspice,
// HSPICE and Berkeley SPICE, flat and hierarchical, must load and give the operating point that
// the resistors set.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "tests/deck_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace {

// The example: V1 = 10 V on IN; R1 = 1K from IN to MID; inside X1, RA = 1K from MID to OUT and
// RB = 1K from OUT to ground, with CB = 100N beside RB (open at the operating point). 3K in all
// carry 10/3 mA.
constexpr double kIn = 10.0;
constexpr double kMid = 10.0 * 2000.0 / 3000.0;
constexpr double kOut = 10.0 * 1000.0 / 3000.0;
constexpr double kSourceCurrent = -10.0 / 3000.0;  // into the source's + terminal

struct Dialect {
  std::string testName;
  std::string switches;
  /// ngspice's compatibility mode for the dialect, "" for its own Berkeley syntax.
  std::string ngBehavior;
};

void PrintTo(const Dialect& dialect, std::ostream* out) { *out << "vesk " << dialect.switches; }

std::string ReadSourceFile(const std::string& relative) {
  std::ifstream in(std::string(VESK_SOURCE_DIR) + "/" + relative, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Full path of ngspice on PATH, "" when it is not installed.
std::string FindNgspice() {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path ? path : "");
  std::string folder;
  while (std::getline(folders, folder, ':')) {
    if (folder.empty()) continue;
    std::string candidate = folder + "/ngspice";
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return "";
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

/// The vectors that "print all" lists after an operating point ("name = number" lines), lower
/// case, node voltages under their node ("v(2)" and "2" alike), branch currents as ngspice names
/// them ("v1#branch").
std::map<std::string, double> ParsePrintAll(const std::string& output) {
  std::map<std::string, double> values;
  std::istringstream lines(output);
  std::string line, name, equals, rest;
  double value;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    if (!(words >> name >> equals >> value) || equals != "=" || (words >> rest)) continue;
    name = Lower(name);
    if (name.size() > 3 && name.compare(0, 2, "v(") == 0 && name.back() == ')')
      name = name.substr(2, name.size() - 3);
    values[name] = value;
  }
  return values;
}

/// Net name to node of the root's dictionary ("* Dictionary n" and its "* NET=node" lines). Only
/// nets whose node differs from their name are listed there.
std::map<std::string, std::string> RootDictionary(const std::string& deck) {
  std::map<std::string, std::string> entries;
  std::istringstream lines(deck.substr(std::min(deck.find("* Dictionary "), deck.size())));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line) && line.rfind("* ", 0) == 0 && line.find('=') != std::string::npos) {
    std::istringstream entry(line.substr(2));
    std::string net, node;
    std::getline(entry, net, '=');
    entry >> node;
    entries[net.substr(0, net.find_last_not_of(' ') + 1)] = node;
  }
  return entries;
}

std::string NodeOf(const std::map<std::string, std::string>& dictionary, const std::string& net) {
  auto entry = dictionary.find(net);
  return Lower(entry == dictionary.end() ? net : entry->second);
}

bool MentionsError(const std::string& text) { return Lower(text).find("error") != std::string::npos; }

/// What a copy of the deck gets behind it: the operating point. ngspice reads its first line as
/// the title; the closing .end stands in for the deck's comment "*.END".
const char kControlSection[] = ".control\nop\nprint all\nquit 0\n.endc\n.end\n";

/// Checks that `values` holds exactly the names of `expected`, each with its value. ngspice
/// prints six significant digits.
void ExpectValues(const std::map<std::string, double>& values, const std::map<std::string, double>& expected,
                  const std::string& transcript) {
  std::set<std::string> names, expectedNames;
  for (const auto& [name, value] : values) names.insert(name);
  for (const auto& [name, value] : expected) expectedNames.insert(name);
  EXPECT_EQ(names, expectedNames) << transcript;
  for (const auto& [name, value] : expected) {
    auto found = values.find(name);
    if (found == values.end()) continue;
    EXPECT_NEAR(found->second, value, std::fabs(value) * 1e-5) << name << "\n" << transcript;
  }
}

class SimulateTest : public ::testing::TestWithParam<Dialect> {};

TEST_P(SimulateTest, OperatingPointOfTheDivider) {
  std::string ngspice = FindNgspice();
  if (ngspice.empty())
    GTEST_SKIP() << "ngspice is not installed (scripts/setup installs it): decks not simulated";
  const Dialect& dialect = GetParam();

  VeskInput input;
  input.config = ReadSourceFile("examples/standard/vesk.cfg");
  input.deckPath = "DIVIDER.cir";
  std::string design = ReadSourceFile("examples/divider/design.json");
  ASSERT_FALSE(design.empty()) << "examples/divider/design.json not found";
  VeskRun run = RunVesk(design, dialect.switches + " divider", input);
  ASSERT_EQ(run.rc, 0) << run.output << run.errors;
  ASSERT_TRUE(run.Exists(input.deckPath)) << run.output;
  std::string deck = run.Read(input.deckPath);
  // A hierarchical deck must really hold the sub-circuit and its call, or it proves nothing more.
  if (dialect.switches.find("-h") != std::string::npos) {
    EXPECT_NE(deck.find("\n.SUBCKT RCDIV "), std::string::npos) << deck;
    EXPECT_NE(deck.find("\nX1 "), std::string::npos) << deck;
  }

  std::map<std::string, std::string> dictionary = RootDictionary(deck);
  std::string in = NodeOf(dictionary, "IN"), mid = NodeOf(dictionary, "MID"), out = NodeOf(dictionary, "OUT");
  EXPECT_EQ(NodeOf(dictionary, "GND"), "0") << deck;
  std::set<std::string> distinct = {in, mid, out, "0"};
  ASSERT_EQ(distinct.size(), 4u) << "IN, MID, OUT and GND must have nodes of their own:\n" << deck;

  // The compatibility mode goes into .spiceinit there (an empty file keeps a user's own away).
  std::ofstream(run.folder + "/simulate.cir", std::ios::binary) << deck << kControlSection;
  std::ofstream(run.folder + "/.spiceinit", std::ios::binary)
      << (dialect.ngBehavior.empty() ? "" : "set ngbehavior=" + dialect.ngBehavior + "\n");
  std::string output, errors;
  int rc = RunProgram(ngspice, "-b simulate.cir", run.folder, {}, output, errors);
  output += errors;
  std::string transcript = "deck:\n" + deck + "\nngspice output:\n" + output;
  ASSERT_EQ(rc, 0) << transcript;
  EXPECT_FALSE(MentionsError(output)) << transcript;
  // Exactly these vectors at the operating point: a stray node would be a wrong connection.
  ExpectValues(ParsePrintAll(output), {{in, kIn}, {mid, kMid}, {out, kOut}, {"v1#branch", kSourceCurrent}},
               transcript);
}

const Dialect kDialects[] = {
    {"BerkeleyFlat", "-s", ""},
    {"BerkeleyHierarchical", "-s -h", ""},
    {"PspiceFlat", "-p", "psa"},
    {"PspiceHierarchical", "-p -h", "psa"},
    {"HspiceFlat", "-m", "hsa"},
    {"HspiceHierarchical", "-m -h", "hsa"},
    {"BerkeleyFlatNodeNames", "-s -n", ""},
    {"BerkeleyHierarchicalNodeNames", "-s -h -n", ""},
    {"PspiceFlatNodeNames", "-p -n", "psa"},
    {"PspiceHierarchicalNodeNames", "-p -h -n", "psa"},
    {"HspiceFlatNodeNames", "-m -n", "hsa"},
    {"HspiceHierarchicalNodeNames", "-m -h -n", "hsa"},
};

INSTANTIATE_TEST_SUITE_P(ExampleDivider, SimulateTest, ::testing::ValuesIn(kDialects),
                         [](const ::testing::TestParamInfo<Dialect>& info) { return info.param.testName; });

}  // namespace
