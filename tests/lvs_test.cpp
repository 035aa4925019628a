// Layout-versus-schematic with the decks that an LVS tool reads: the Dracula deck (-e) and the
// hierarchical Berkeley SPICE deck of each design in tests/sim must be, to netgen, the same circuit
// as the netlist of it drawn by hand.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_harness.h"
#include "tests/sim_harness.h"

namespace {

struct LvsCase {
  const char* testName;
  const char* design;    // folder of tests/sim
  const char* group;     // the group vesk is run with
  const char* switches;  // the deck gets the extension .spice, by which netgen knows its format
  const char* deck;      // the deck's file
  const char*
      cell;  // the top cell in it: the root's definition, or the file for a deck whose top is no sub-circuit
  const char* reference;  // the netlist drawn by hand, its top being the file
};

const LvsCase kCases[] = {
    {"AmplifierDracula", "amplifier", "ampbench", "-e", "AMPTB.spice", "AMPTB", "lvs-reference.spice"},
    {"AmplifierBerkeleyHier", "amplifier", "ampbench", "-s -h", "AMPTB.spice", "AMPTB.spice",
     "lvs-reference-global.spice"},
    {"FilterDracula", "filter", "FILTER", "-e", "FILTER.spice", "FILTER", "lvs-reference.spice"},
    {"FilterBerkeleyHier", "filter", "FILTER", "-s -h", "FILTER.spice", "FILTER.spice",
     "lvs-reference-global.spice"},
};

void PrintTo(const LvsCase& lvs, std::ostream* out) { *out << lvs.design << ": vesk " << lvs.switches; }

class LvsTest : public ::testing::TestWithParam<LvsCase> {
 protected:
  void TearDown() override { RemoveScratch(folder_); }
  std::string folder_;
};

TEST_P(LvsTest, DeckMatchesTheNetlistDrawnByHand) {
  std::string netgen = FindOnPath("netgen-lvs");
  if (netgen.empty()) GTEST_SKIP() << "netgen-lvs is not installed (scripts/setup installs it): no LVS";
  const LvsCase& lvs = GetParam();
  std::string error, output, errors;
  folder_ = MakeDesignProject(lvs.design, error);
  ASSERT_EQ(error, "");
  std::string args = std::string(lvs.switches) + " -.spice " + lvs.group;
  ASSERT_EQ(RunProgram(BinaryDir() + "/vesk", args, folder_, ProjectEnvironment(), output, errors), 0)
      << output << errors;
  std::string deck = ReadText(folder_ + "/" + lvs.deck);
  ASSERT_FALSE(deck.empty()) << output << errors;

  // netgen takes each netlist as one argument "file cell"; the harness splits at blanks, so the
  // command goes through a script of the folder.
  WriteText(folder_ + "/lvs.sh", "exec " + netgen + " -batch lvs \"" + lvs.deck + " " + lvs.cell + "\" \"" +
                                     lvs.reference + " " + lvs.reference + "\"\n");
  int rc = RunProgram("/bin/sh", "lvs.sh", folder_, ProjectEnvironment(), output, errors);
  std::string transcript = output + errors + "\ndeck:\n" + deck;
  EXPECT_EQ(rc, 0) << transcript;
  EXPECT_NE(output.find("Result: Circuits match uniquely."), std::string::npos) << transcript;
  // A model file that netgen cannot open leaves the model's cell unread on the deck's side.
  EXPECT_EQ(transcript.find("Error"), std::string::npos) << transcript;
}

INSTANTIATE_TEST_SUITE_P(Drawn, LvsTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<LvsCase>& info) {
                           return std::string(info.param.testName);
                         });

}  // namespace
