// Whole decks about the nodes of a component line: pin orders, pins left out, pins without a
// net and their notes, bus pins, voltage-probe markers, and the dictionary with its ground warning.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;
using deckexpect::Part;

// A one-block design around the given components, resistors by default.
std::string Design(const std::string& components) {
  return R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" },
    "PROBE.1": { "PREFIX": "P" }, "SUB.1": { "DESC": "sub" } }, "blocks": [ { "name": "TOP",
        "components": [)" +
         components + " ] } ] }";
}

TEST(PinOrderDeckTest, PinOrderAttributesAndNoPins) {
  // C is no pin of R2: a node of its own and no note. R3 has no nodes; R4 and R5 have them.
  VeskRun run =
      RunVesk(Design(Part("R1", "RES.1", R"("VALUE": "2K", "PINORDER": "B A")", "A=IN B=OUT") + ", " +
                     Part("R2", "RES.1", R"("VALUE": "3K", "PIN ORDER": "B C A")", "A=IN B=GND") + ", " +
                     Part("R3", "RES.1", R"("VALUE": "4K", "No Pins": "true")", "A=IN B=GND") + ", " +
                     Part("R4", "RES.1", R"("VALUE": "5K", "NO_PINS": "0")", "A=OUT B=GND") + ", " +
                     Part("R5", "RES.1", R"("VALUE": "6K", "No Pins": "False")", "A=OUT B=GND")),
              "TOP");
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 2 2.000000K\nR2 0 N0 2 3.000000K\nR3 4.000000K\nR4 1 0 5.000000K\n"
                          "R5 1 0 6.000000K\n* Dictionary 3\n* GND=0\n* IN=2\n* OUT = 1\n\n*.END\n");
}

TEST(UnconnectedPinDeckTest, PinsWithoutANetGetNodesOfTheirOwnAndANote) {
  // The invented node skips N2, taken by a net, and N4, whose number 4 is a net's name.
  VeskRun run = RunVesk(Design(Part("R1", "RES.1", R"("VALUE": "2K", "PINORDER": "A B")", "A=IN B") + ", " +
                               Part("R2", "RES.1", R"("VALUE": "3K")", "A B=GND") + ", " +
                               Part("R3", "RES.1", R"("VALUE": "4K")", "A=N2 B") + ", " +
                               Part("R4", "RES.1", R"("VALUE": "5K")", "A=4 B")),
                        "TOP");
  EXPECT_EQ(run.output,
            "* Pin R1.B is not connected\n* Pin  is not connected\n* Pin  is not connected\n"
            "* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 N0 2.000000K\n* Pin R1.B is not connected\nR2 N1 0 3.000000K\n"
                          "* Pin  is not connected\nR3 2 N3 4.000000K\n* Pin  is not connected\n"
                          "R4 3 N5 5.000000K\n* Pin  is not connected\n* Dictionary 4\n* 4=3\n* N2=2\n"
                          "* GND=0\n* IN = 1\n\n*.END\n");
}

TEST(BusPinDeckTest, AConnectedBusPinIsOneNodeNamedAfterTheBus) {
  const std::string design = Design(R"({ "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
    "pins": [ { "name": "D[1:0]", "bus": "D", "nets": ["D1", "D0"] }, { "name": "B", "net": "GND" } ] })");
  const std::string lines = "R1 1 0 2.000000K\n* Dictionary 2\n* GND=0\n* D = 1\n\n";
  EXPECT_EQ(RunVesk(design, "TOP").deck, Head("TOP") + lines + "*.END\n");
  EXPECT_EQ(RunVesk(design, "-h TOP").deck, Head("-h TOP", true) + lines + "*.END\n\n");
}

// P1 and P2 are voltage probes, P2 with a pin left open; R3 is a current probe.
const std::string kProbes = Part("R1", "RES.1", R"("VALUE": "2K")", "A=A B=GND") + ", " +
                            Part("P1", "PROBE.1", R"("PROBE": "V")", "P=A N=GND") + ", " +
                            Part("P2", "PROBE.1", R"("PROBE": "DB")", "P=OUT N") + ", " +
                            Part("R2", "RES.1", R"("VALUE": "3K")", "A=OUT B=GND") + ", " +
                            Part("R3", "RES.1", R"("VALUE": "4K", "PROBE": "i")", "A=OUT B=GND");

const char* const kProbeDictionary = "* Dictionary 3\n* OUT=2\n* GND=0\n* A = 1\n\n";

TEST(VoltageProbeDeckTest, AFlatDeckKeepsTheMarkersAndANoteWaitsForTheNextLine) {
  // The probe of P2 takes node 2 for OUT and N0 for its open pin; writing its pins invents N1.
  VeskRun run = RunVesk(Design(kProbes), "TOP");
  EXPECT_EQ(run.output, "* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 0 2.000000K\n* voltage probe on node :  1 0\n"
                          "* voltage probe on node :  2 N1\nR2 2 0 3.000000K\n* Pin  is not connected\n"
                          "R3 2 0 4.000000K\n" +
                          kProbeDictionary + "*.END\n");
}

const char* const kGroundWarning = "*Warning : No ground node (Label a net GND)";

// No net of the design is ground.
const std::string kNoGround =
    R"({ "label": "X1", "name": "SUB.1", "type": 2, "child": "SUB", "pins": [ { "name": "P",
        "net": "A" } ] },)" +
    Part("R1", "RES.1", R"("VALUE": "3K")", "A=A B=B");

std::string NoGroundDesign() {
  std::string design = Design(kNoGround);
  design.replace(design.rfind("] }"), 3,
                 R"(, { "name": "SUB", "ports": [ { "name": "P", "net": "P" } ], "components": [)" +
                     Part("R2", "RES.1", R"("VALUE": "2K")", "A=P B=Q") + R"( ] } ] })");
  return design;
}

TEST(DictionaryDeckTest, AFlatDeckWithoutGroundEndsItsDictionaryWithTheWarning) {
  VeskRun run = RunVesk(NoGroundDesign(), "TOP");
  EXPECT_EQ(run.output, std::string(kGroundWarning) + "\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RX12 1 2 2.000000K\nR1 1 3 3.000000K\n* Dictionary 3\n* B=3\n* X1\\Q=2\n"
                          "* A=1\n" +
                          kGroundWarning + "\n*.END\n");
}

TEST(DictionaryDeckTest, AHierarchicalDeckWarnsInTheRootOnly) {
  VeskRun run = RunVesk(NoGroundDesign(), "-h TOP");
  EXPECT_EQ(run.output, std::string(kGroundWarning) + "\n");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project SUB\n.SUBCKT SUB 1\nR2 1 2 2.000000K\n"
                          "* CROSS-REFERENCE 2\n* Q=2\n* P=1\n.ENDS\n\nX1 1 SUB\nR1 1 2 3.000000K\n"
                          "* Dictionary 2\n* B=2\n* A=1\n" +
                          kGroundWarning + "\n\n*.END\n\n");
}

}  // namespace
