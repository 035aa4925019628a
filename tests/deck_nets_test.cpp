// Whole decks about nets: shunts, NET_ALIAS and NODE attributes, global nets, which nets are
// ground, and the dictionary with its ground warning.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;

// S1 joins A and B, S2 joins B and C; S3 has a pin without a net.
const char* const kShunts = R"({
  "symbols": {
    "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" },
    "SHUNT.1": { "PREFIX": "R", "ORDER": "VALUE$" }
  },
  "blocks": [ { "name": "TOP", "components": [
    { "label": "RA", "name": "RES.1", "attributes": { "VALUE": "2K" },
      "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "A" } ] },
    { "label": "S1", "name": "SHUNT.1", "attributes": { "$$NotCommonProperty_EXCLUDE": "shunt", "VALUE": "1" },
      "pins": [ { "name": "X", "net": "A" }, { "name": "Y", "net": "B" } ] },
    { "label": "S2", "name": "SHUNT.1", "attributes": { "$$NotCommonProperty_EXCLUDE": "Shunt", "VALUE": "1" },
      "pins": [ { "name": "X", "net": "B" }, { "name": "Y", "net": "C" } ] },
    { "label": "RB", "name": "RES.1", "attributes": { "VALUE": "3K" },
      "pins": [ { "name": "A", "net": "B" }, { "name": "B", "net": "GND" } ] },
    { "label": "RC", "name": "RES.1", "attributes": { "VALUE": "4K" },
      "pins": [ { "name": "A", "net": "C" }, { "name": "B", "net": "GND" } ] },
    { "label": "S3", "name": "SHUNT.1", "attributes": { "$$NotCommonProperty_EXCLUDE": "shunt", "VALUE": "1" },
      "pins": [ { "name": "X", "net": "C" }, { "name": "Y" } ] } ] } ]
})";

const char* const kShuntPinWarning =
    "Warning:a component with EXCLUDE=SHUNT must have nets connected to its pins \n";

TEST(ShuntDeckTest, AHierarchicalDeckDropsTheShuntsAndNamesAChainAfterItsFirstNet) {
  VeskRun run = RunVesk(kShunts, "-h TOP");
  EXPECT_EQ(run.output, std::string(kShuntPinWarning) +
                            "*Note : Skipping Component S1\n"
                            "*Note : Skipping Component S2\n"
                            "*Note : Skipping Component S3\n");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "RA 1 2 2.000000K\n"
                          "*Note : Skipping Component S1\n"
                          "*Note : Skipping Component S2\n"
                          "RB 2 0 3.000000K\n"
                          "RC 2 0 4.000000K\n"
                          "*Note : Skipping Component S3\n"
                          "* Dictionary 3\n"
                          "* GND=0\n"
                          "* A=2\n"
                          "* IN = 1\n"
                          "\n"
                          "*.END\n\n");
}

TEST(ShuntDeckTest, AFlatDeckWritesTheShuntsOnTheLabelsOfTheirNets) {
  // A flat deck names a top-level pin by its net's label, so the shunts stand as components.
  VeskRun run = RunVesk(kShunts, "TOP");
  EXPECT_EQ(run.output, std::string(kShuntPinWarning) + "* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RA 1 2 2.000000K\n"
                          "RS1 2 3 1.000000\n"
                          "RS2 3 4 1.000000\n"
                          "RB 3 0 3.000000K\n"
                          "RC 4 0 4.000000K\n"
                          "RS3 4 N0 1.000000\n"
                          "* Pin  is not connected\n"
                          "* Dictionary 5\n"
                          "* GND=0\n"
                          "* C=4\n"
                          "* B=3\n"
                          "* A=2\n"
                          "* IN = 1\n"
                          "\n"
                          "*.END\n");
}

TEST(ShuntDeckTest, AShuntNeedsTwoPins) {
  std::string design = kShunts;
  design.replace(design.find(R"({ "name": "Y" })"), 15, R"({ "name": "Y", "net": "D" }, { "name": "Z" })");
  VeskRun run = RunVesk(design, "-h TOP");
  EXPECT_EQ(run.output.find("Warning: can only place EXCLUDE-SHUNT on two-pin components \n"), 0u)
      << run.output;
}

TEST(NetAttributeDeckTest, NetAliasRenamesAndNodeFixesTheNode) {
  VeskRun run = RunVesk(R"({
    "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } },
    "blocks": [ { "name": "TOP",
      "nets": [ { "label": "OUT", "attributes": { "NET_ALIAS": "VOUT" } },
                { "label": "FIX", "attributes": { "NODE": "7" } } ],
      "components": [
        { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
          "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "OUT" } ] },
        { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K" },
          "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "FIX" } ] },
        { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K" },
          "pins": [ { "name": "A", "net": "FIX" }, { "name": "B", "net": "GND" } ] } ] } ]
  })",
                        "-h TOP");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "R1 1 2 2.000000K\n"
                          "R2 2 7 3.000000K\n"
                          "R3 7 0 4.000000K\n"
                          "* Dictionary 4\n"
                          "* GND=0\n"
                          "* FIX=7\n"
                          "* VOUT=2\n"
                          "* IN = 1\n"
                          "\n"
                          "*.END\n\n");
}

// NODE on a net of the root and on a net inside SUB.
const char* const kNodeAttributes = R"({
  "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "SUB.1": { "DESC": "sub" } },
  "blocks": [
    { "name": "TOP",
      "nets": [ { "label": "FIX", "attributes": { "NODE": "7" } } ],
      "components": [
        { "label": "X1", "name": "SUB.1", "type": 2, "child": "SUB", "pins": [ { "name": "P", "net": "FIX" } ] },
        { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
          "pins": [ { "name": "A", "net": "FIX" }, { "name": "B", "net": "GND" } ] } ] },
    { "name": "SUB",
      "ports": [ { "name": "P", "net": "P" } ],
      "nets": [ { "label": "INNER", "attributes": { "NODE": "5" } }, { "label": "GND", "global": true } ],
      "components": [
        { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K" },
          "pins": [ { "name": "A", "net": "P" }, { "name": "B", "net": "INNER" } ] },
        { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K" },
          "pins": [ { "name": "A", "net": "INNER" }, { "name": "B", "net": "GND" } ] } ] }
  ]
})";

TEST(NetAttributeDeckTest, AFlatDeckReadsNodeAttributesOfTheRootAlone) {
  VeskRun run = RunVesk(kNodeAttributes, "TOP");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RX12 7 1 3.000000K\n"
                          "RX13 1 0 4.000000K\n"
                          "R1 7 0 2.000000K\n"
                          "* Dictionary 3\n"
                          "* GND=0\n"
                          "* X1\\INNER=1\n"
                          "* FIX = 7\n"
                          "\n"
                          "*.END\n");
}

TEST(NetAttributeDeckTest, AHierarchicalDeckReadsTheNodeAttributesOfEachBlock) {
  VeskRun run = RunVesk(kNodeAttributes, "-h TOP");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project SUB\n"
                          ".SUBCKT SUB 1\n"
                          "R2 1 5 3.000000K\n"
                          "R3 5 0 4.000000K\n"
                          "* CROSS-REFERENCE 3\n"
                          "* GND=0\n"
                          "* INNER=5\n"
                          "* P=1\n"
                          ".ENDS\n"
                          "\n"
                          "X1 7 SUB\n"
                          "R1 7 0 2.000000K\n"
                          "* Dictionary 2\n"
                          "* GND=0\n"
                          "* FIX = 7\n"
                          "\n"
                          "*.END\n\n");
}

const char* const kGlobals = R"({
  "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } },
  "blocks": [ { "name": "TOP",
    "nets": [ { "label": "VDD", "global": true }, { "label": "GND", "global": true } ],
    "components": [
      { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
        "pins": [ { "name": "A", "net": "VDD" }, { "name": "B", "net": "OUT" } ] },
      { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K" },
        "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] } ] } ]
})";

TEST(GlobalNetDeckTest, HspiceListsTheGlobalNetsByTheirNodes) {
  VeskRun run = RunVesk(kGlobals, "-m -n TOP");
  EXPECT_EQ(run.deck, Head("-m -n TOP") +
                          "R1 VDD OUT 2.000000K\n"
                          "R2 OUT 0 3.000000K\n"
                          "* Dictionary 1\n"
                          "* GND = 0\n"
                          "\n"
                          "*Globals\n"
                          ".global 0\n"
                          ".global VDD\n"
                          "\n"
                          ".OPTIONS INGOLD=2 CSDF=2\n"
                          "*.END\n");
}

TEST(GlobalNetDeckTest, PspiceWritesNoGlobals) {
  VeskRun run = RunVesk(kGlobals, "-n TOP");
  EXPECT_EQ(run.deck, Head("-n TOP") +
                          "R1 VDD OUT 2.000000K\n"
                          "R2 OUT 0 3.000000K\n"
                          "* Dictionary 1\n"
                          "* GND = 0\n"
                          "\n"
                          "*.END\n");
}

TEST(GroundDeckTest, NetsThatBeginWithGndAreGround) {
  VeskRun run = RunVesk(R"({
    "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } },
    "blocks": [ { "name": "TOP", "components": [
      { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "2K" },
        "pins": [ { "name": "A", "net": "A" }, { "name": "B", "net": "GND1" } ] },
      { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "3K" },
        "pins": [ { "name": "A", "net": "MYGND" }, { "name": "B", "net": "GND_ANALOG" } ] },
      { "label": "R3", "name": "RES.1", "attributes": { "VALUE": "4K" },
        "pins": [ { "name": "A", "net": "AGND" }, { "name": "B", "net": "A" } ] } ] } ]
  })",
                        "TOP");
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 0 2.000000K\n"
                          "R2 2 0 3.000000K\n"
                          "R3 3 1 4.000000K\n"
                          "* Dictionary 5\n"
                          "* AGND=3\n"
                          "* GND_ANALOG=0\n"
                          "* MYGND=2\n"
                          "* GND1=0\n"
                          "* A = 1\n"
                          "\n"
                          "*.END\n");
}

}  // namespace
