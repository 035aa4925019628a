// Simulates the example divider's decks with ngspice: the decks that vesk writes for Pspice,
// HSPICE and Berkeley SPICE, flat and hierarchical, numbered and named, must load and give the
// operating point that the resistors set.
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>

#include "tests/deck_harness.h"
#include "tests/sim_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace {

// The example: V1 = 10 V on IN; R1 = 1K from IN to MID; inside X1, RA = 1K from MID to OUT and
// RB = 1K from OUT to ground, with CB = 100N beside RB (open at the operating point). 3K in all
// carry 10/3 mA into the source's + terminal.
constexpr double kIn = 10.0, kMid = 10.0 * 2000.0 / 3000.0, kOut = 10.0 * 1000.0 / 3000.0;
constexpr double kSourceCurrent = -10.0 / 3000.0;

class SimulateTest : public ::testing::TestWithParam<DeckForm> {};

TEST_P(SimulateTest, OperatingPointOfTheDivider) {
  if (FindOnPath("ngspice").empty()) GTEST_SKIP() << "ngspice is not installed (scripts/setup installs it)";
  const DeckForm& form = GetParam();
  const std::string source = std::string(VESK_SOURCE_DIR) + "/examples/";
  VeskInput input;
  input.config = ReadText(source + "standard/vesk.cfg");
  input.deckPath = "DIVIDER.cir";
  const std::string design = ReadText(source + "divider/design.json");
  ASSERT_FALSE(design.empty()) << "examples/divider/design.json not found";
  VeskRun run = RunVesk(design, form.switches + " divider", input);
  ASSERT_EQ(run.rc, 0) << run.output << run.errors;
  ASSERT_TRUE(run.Exists(input.deckPath)) << run.output;
  const std::string deck = run.Read(input.deckPath);
  // A hierarchical deck must really hold the sub-circuit and its call, or it proves nothing more.
  if (form.switches.find("-h") != std::string::npos) {
    EXPECT_NE(deck.find("\n.SUBCKT RCDIV "), std::string::npos) << deck;
    EXPECT_NE(deck.find("\nX1 "), std::string::npos) << deck;
  }
  const auto dictionary = RootDictionary(deck);
  const std::string in = NodeOfNet(dictionary, "IN"), mid = NodeOfNet(dictionary, "MID"),
                    out = NodeOfNet(dictionary, "OUT");
  EXPECT_EQ(NodeOfNet(dictionary, "GND"), "0") << deck;
  ASSERT_EQ(std::set<std::string>({in, mid, out, "0"}).size(), 4u) << "IN, MID, OUT, GND share a node:\n"
                                                                   << deck;

  // The deck as it stands, with the operating point behind its closing comment.
  WriteText(run.folder + "/simulate.cir", deck + ".op\n.end\n");
  const SimResult sim = RunNgspice(run.folder, "simulate.cir", form.ngBehavior);
  ASSERT_EQ(sim.rc, 0) << sim.transcript;
  EXPECT_EQ(sim.transcript.find("rror"), std::string::npos) << sim.transcript;
  const SimPlot* op = sim.Plot("Operating Point");
  ASSERT_NE(op, nullptr) << sim.transcript;
  // Exactly these vectors at the operating point: a stray node would be a wrong connection.
  const std::map<std::string, double> want = {{in, kIn}, {mid, kMid}, {out, kOut}};
  const auto got = sim.OperatingPoint();
  ASSERT_EQ(got.size(), want.size()) << sim.transcript;
  EXPECT_EQ(op->names.size(), want.size() + 1) << sim.transcript;  // and the source's current
  for (const auto& [node, volts] : want) {
    ASSERT_TRUE(got.count(node)) << node << "\n" << sim.transcript;
    EXPECT_NEAR(got.at(node), volts, 1e-6) << node << "\n" << sim.transcript;
  }
  const auto* current = op->Vector("i(v1)");
  if (!current) current = op->Vector("v1#branch");
  ASSERT_TRUE(current && !current->empty()) << sim.transcript;
  EXPECT_NEAR(current->front().real(), kSourceCurrent, 1e-9) << sim.transcript;
}

INSTANTIATE_TEST_SUITE_P(ExampleDivider, SimulateTest, ::testing::ValuesIn(PlainDeckForms()),
                         [](const ::testing::TestParamInfo<DeckForm>& info) { return info.param.testName; });

}  // namespace
