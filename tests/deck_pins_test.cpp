// Whole decks about the nodes of a component line: pin orders, pins left out, pins without a
// net and their notes, bus pins, voltage-probe markers, and the dictionary with its ground warning.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;

// A one-block design around the given components, resistors by default.
std::string Design(const std::string& components) {
  return R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" },
                          "PROBE.1": { "PREFIX": "P" }, "SUB.1": { "DESC": "sub" } },
              "blocks": [ { "name": "TOP", "components": [ )" +
         components + " ] } ] }";
}

TEST(PinOrderDeckTest, PinOrderAttributesAndNoPins) {
  // C is no pin of R2: a node of its own and no note. R3 has no nodes; R4 and R5 have them.
  VeskRun run = RunVesk(Design(R"(
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K", "PINORDER": "B A" },
      "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "OUT" } ] },
    { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K", "PIN ORDER": "B C A" },
      "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] },
    { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K", "No Pins": "true" },
      "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] },
    { "label": "R4", "name": "RES.1", "attributes": { "VALUE": "5K", "NO_PINS": "0" },
      "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] },
    { "label": "R5", "name": "RES.1", "attributes": { "VALUE": "6K", "No Pins": "False" },
      "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] })"),
                        "TOP");
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 2 2.000000K\n"
                          "R2 0 N0 2 3.000000K\n"
                          "R3 4.000000K\n"
                          "R4 1 0 5.000000K\n"
                          "R5 1 0 6.000000K\n"
                          "* Dictionary 3\n"
                          "* GND=0\n"
                          "* IN=2\n"
                          "* OUT = 1\n"
                          "\n"
                          "*.END\n");
}

TEST(UnconnectedPinDeckTest, PinsWithoutANetGetNodesOfTheirOwnAndANote) {
  // The invented node skips N2, taken by a net, and N4, whose number 4 is a net's name.
  VeskRun run = RunVesk(Design(R"(
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K", "PINORDER": "A B" },
      "pins": [ { "name": "A", "net": "IN" }, { "name": "B" } ] },
    { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K" },
      "pins": [ { "name": "A" }, { "name": "B", "net": "GND" } ] },
    { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K" },
      "pins": [ { "name": "A", "net": "N2" }, { "name": "B" } ] },
    { "label": "R4", "name": "RES.1", "attributes": { "VALUE": "5K" },
      "pins": [ { "name": "A", "net": "4" }, { "name": "B" } ] })"),
                        "TOP");
  EXPECT_EQ(run.output,
            "* Pin R1.B is not connected\n"
            "* Pin  is not connected\n"
            "* Pin  is not connected\n"
            "* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 N0 2.000000K\n"
                          "* Pin R1.B is not connected\n"
                          "R2 N1 0 3.000000K\n"
                          "* Pin  is not connected\n"
                          "R3 2 N3 4.000000K\n"
                          "* Pin  is not connected\n"
                          "R4 3 N5 5.000000K\n"
                          "* Pin  is not connected\n"
                          "* Dictionary 4\n"
                          "* 4=3\n"
                          "* N2=2\n"
                          "* GND=0\n"
                          "* IN = 1\n"
                          "\n"
                          "*.END\n");
}

TEST(UnconnectedPinDeckTest, EachBlockInventsItsNodesFromN0) {
  VeskRun run = RunVesk(R"({
    "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "SUB.1": { "DESC": "sub" } },
    "blocks": [
      { "name": "TOP", "components": [
        { "label": "X1", "name": "SUB.1", "type": 2, "child": "SUB", "pins": [ { "name": "P", "net": "A" } ] },
        { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "3K" },
          "pins": [ { "name": "A", "net": "A" }, { "name": "B" } ] },
        { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K" },
          "pins": [ { "name": "A", "net": "A" }, { "name": "B", "net": "GND" } ] } ] },
      { "name": "SUB", "ports": [ { "name": "P", "net": "P" } ], "components": [
        { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "2K" },
          "pins": [ { "name": "A", "net": "P" }, { "name": "B" } ] } ] }
    ]
  })",
                        "-h TOP");
  EXPECT_EQ(run.output, "* Pin  is not connected\n* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project SUB\n"
                          ".SUBCKT SUB 1\n"
                          "R2 1 N0 2.000000K\n"
                          "* Pin  is not connected\n"
                          "* CROSS-REFERENCE 1\n"
                          "* P=1\n"
                          ".ENDS\n"
                          "\n"
                          "X1 1 SUB\n"
                          "R1 1 N0 3.000000K\n"
                          "* Pin  is not connected\n"
                          "R3 1 0 4.000000K\n"
                          "* Dictionary 2\n"
                          "* GND=0\n"
                          "* A = 1\n"
                          "\n"
                          "*.END\n\n");
}

TEST(BusPinDeckTest, AConnectedBusPinIsOneNodeNamedAfterTheBus) {
  const std::string design = Design(R"(
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
      "pins": [ { "name": "D[1:0]", "bus": "D", "nets": ["D1", "D0"] }, { "name": "B", "net": "GND" } ] })");
  const std::string lines =
      "R1 1 0 2.000000K\n"
      "* Dictionary 2\n"
      "* GND=0\n"
      "* D = 1\n"
      "\n";
  EXPECT_EQ(RunVesk(design, "TOP").deck, Head("TOP") + lines + "*.END\n");
  EXPECT_EQ(RunVesk(design, "-h TOP").deck, Head("-h TOP", true) + lines + "*.END\n\n");
}

// P1 and P2 are voltage probes, P2 with a pin left open; R3 is a current probe.
const char* const kProbes = R"(
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
      "pins": [ { "name": "A", "net": "A" }, { "name": "B", "net": "GND" } ] },
    { "label": "P1", "name": "PROBE.1", "attributes": { "PROBE": "V" },
      "pins": [ { "name": "P", "net": "A" }, { "name": "N", "net": "GND" } ] },
    { "label": "P2", "name": "PROBE.1", "attributes": { "PROBE": "DB" },
      "pins": [ { "name": "P", "net": "OUT" }, { "name": "N" } ] },
    { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K" },
      "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] },
    { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K", "PROBE": "i" },
      "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] })";

const char* const kProbeDictionary =
    "* Dictionary 3\n"
    "* OUT=2\n"
    "* GND=0\n"
    "* A = 1\n"
    "\n";

TEST(VoltageProbeDeckTest, AFlatDeckKeepsTheMarkersAndANoteWaitsForTheNextLine) {
  // The probe of P2 takes node 2 for OUT and N0 for its open pin; writing its pins invents N1.
  VeskRun run = RunVesk(Design(kProbes), "TOP");
  EXPECT_EQ(run.output, "* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 0 2.000000K\n"
                          "* voltage probe on node :  1 0\n"
                          "* voltage probe on node :  2 N1\n"
                          "R2 2 0 3.000000K\n"
                          "* Pin  is not connected\n"
                          "R3 2 0 4.000000K\n" +
                          kProbeDictionary + "*.END\n");
}

TEST(VoltageProbeDeckTest, AHierarchicalDeckLosesTheMarkersToTheProbePass) {
  VeskRun run = RunVesk(Design(kProbes), "-h TOP");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "R1 1 0 2.000000K\n"
                          "R2 2 0 3.000000K\n"
                          "* Pin  is not connected\n"
                          "R3 2 0 4.000000K\n" +
                          kProbeDictionary + "*.END\n\n");
}

const char* const kGroundWarning = "*Warning : No ground node (Label a net GND)";

// No net of the design is ground.
const char* const kNoGround = R"(
    { "label": "X1", "name": "SUB.1", "type": 2, "child": "SUB", "pins": [ { "name": "P", "net": "A" } ] },
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "3K" },
      "pins": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ] })";

std::string NoGroundDesign() {
  std::string design = Design(kNoGround);
  design.replace(design.rfind("] }"), 3, R"(,
    { "name": "SUB", "ports": [ { "name": "P", "net": "P" } ], "components": [
      { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "2K" },
        "pins": [ { "name": "A", "net": "P" }, { "name": "B", "net": "Q" } ] } ] } ] })");
  return design;
}

TEST(DictionaryDeckTest, AFlatDeckWithoutGroundEndsItsDictionaryWithTheWarning) {
  VeskRun run = RunVesk(NoGroundDesign(), "TOP");
  EXPECT_EQ(run.output, std::string(kGroundWarning) + "\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RX12 1 2 2.000000K\n"
                          "R1 1 3 3.000000K\n"
                          "* Dictionary 3\n"
                          "* B=3\n"
                          "* X1\\Q=2\n"
                          "* A=1\n" +
                          kGroundWarning + "\n*.END\n");
}

TEST(DictionaryDeckTest, AHierarchicalDeckWarnsInTheRootOnly) {
  VeskRun run = RunVesk(NoGroundDesign(), "-h TOP");
  EXPECT_EQ(run.output, std::string(kGroundWarning) + "\n");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project SUB\n"
                          ".SUBCKT SUB 1\n"
                          "R2 1 2 2.000000K\n"
                          "* CROSS-REFERENCE 2\n"
                          "* Q=2\n"
                          "* P=1\n"
                          ".ENDS\n"
                          "\n"
                          "X1 1 SUB\n"
                          "R1 1 2 3.000000K\n"
                          "* Dictionary 2\n"
                          "* B=2\n"
                          "* A=1\n" +
                          kGroundWarning + "\n\n*.END\n\n");
}

TEST(DictionaryDeckTest, QuietLeavesTheDictionaryAndTheWarningOutUntilDTurnsItBackOn) {
  VeskRun quiet = RunVesk(NoGroundDesign(), "-q TOP");
  EXPECT_EQ(quiet.output, "");
  EXPECT_EQ(quiet.deck, Head("-q TOP") +
                            "RX12 1 2 2.000000K\n"
                            "R1 1 3 3.000000K\n"
                            "\n"
                            "*.END\n");
  VeskRun again = RunVesk(NoGroundDesign(), "-q -d TOP");
  EXPECT_EQ(again.output, std::string(kGroundWarning) + "\n");
  EXPECT_NE(again.deck.find("* Dictionary 3\n"), std::string::npos) << again.deck;
}

}  // namespace
