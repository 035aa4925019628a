// Whole decks about nets: shunts, NET_ALIAS and NODE attributes, global nets, which nets are
// ground, and the dictionary with its ground warning.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;
using deckexpect::Part;

// S1 joins A and B, S2 joins B and C; S3 has a pin without a net.
const std::string kShunts =
    R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" },
    "SHUNT.1": { "PREFIX": "R", "ORDER": "VALUE$" } }, "blocks": [ { "name": "TOP", "components": [)" +
    Part("RA", "RES.1", R"("VALUE": "2K")", "A=IN B=A") + ", " +
    Part("S1", "SHUNT.1", R"("$$NotCommonProperty_EXCLUDE": "shunt", "VALUE": "1")", "X=A Y=B") + ", " +
    Part("S2", "SHUNT.1", R"("$$NotCommonProperty_EXCLUDE": "Shunt", "VALUE": "1")", "X=B Y=C") + ", " +
    Part("RB", "RES.1", R"("VALUE": "3K")", "A=B B=GND") + ", " +
    Part("RC", "RES.1", R"("VALUE": "4K")", "A=C B=GND") + ", " +
    Part("S3", "SHUNT.1", R"("$$NotCommonProperty_EXCLUDE": "shunt", "VALUE": "1")", "X=C Y") +
    R"( ] } ]
})";

const char* const kShuntPinWarning =
    "Warning:a component with EXCLUDE=SHUNT must have nets connected to its pins \n";

TEST(ShuntDeckTest, AHierarchicalDeckDropsTheShuntsAndNamesAChainAfterItsFirstNet) {
  VeskRun run = RunVesk(kShunts, "-h TOP");
  EXPECT_EQ(run.output, std::string(kShuntPinWarning) +
                            "*Note : Skipping Component S1\n*Note : Skipping Component S2\n"
                            "*Note : Skipping Component S3\n");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "RA 1 2 2.000000K\n*Note : Skipping Component S1\n"
                          "*Note : Skipping Component S2\nRB 2 0 3.000000K\nRC 2 0 4.000000K\n"
                          "*Note : Skipping Component S3\n* Dictionary 3\n* GND=0\n* A=2\n* IN = 1\n\n"
                          "*.END\n\n");
}

TEST(ShuntDeckTest, AFlatDeckWritesTheShuntsOnTheLabelsOfTheirNets) {
  // A flat deck names a top-level pin by its net's label, so the shunts stand as components.
  VeskRun run = RunVesk(kShunts, "TOP");
  EXPECT_EQ(run.output, std::string(kShuntPinWarning) + "* Pin  is not connected\n");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RA 1 2 2.000000K\nRS1 2 3 1.000000\nRS2 3 4 1.000000\nRB 3 0 3.000000K\n"
                          "RC 4 0 4.000000K\nRS3 4 N0 1.000000\n* Pin  is not connected\n* Dictionary 5\n"
                          "* GND=0\n* C=4\n* B=3\n* A=2\n* IN = 1\n\n*.END\n");
}

TEST(NetAttributeDeckTest, NetAliasRenamesAndNodeFixesTheNode) {
  VeskRun run = RunVesk(R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } },
    "blocks": [ { "name": "TOP", "nets": [ { "label": "OUT", "attributes": { "NET_ALIAS": "VOUT" } },
    { "label": "FIX", "attributes": { "NODE": "7" } } ], "components": [)" +
                            Part("R1", "RES.1", R"("VALUE": "2K")", "A=IN B=OUT") + ", " +
                            Part("R2", "RES.1", R"("VALUE": "3K")", "A=OUT B=FIX") + ", " +
                            Part("R3", "RES.1", R"("VALUE": "4K")", "A=FIX B=GND") +
                            R"( ] } ]
  })",
                        "-h TOP");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "R1 1 2 2.000000K\nR2 2 7 3.000000K\nR3 7 0 4.000000K\n* Dictionary 4\n"
                          "* GND=0\n* FIX=7\n* VOUT=2\n* IN = 1\n\n*.END\n\n");
}

// NODE on a net of the root and on a net inside SUB.
const std::string kNodeAttributes = R"({
    "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "SUB.1": { "DESC": "sub" } }, "blocks": [
    { "name": "TOP", "nets": [ { "label": "FIX", "attributes": { "NODE": "7" } } ], "components": [
    { "label": "X1", "name": "SUB.1", "type": 2, "child": "SUB", "pins": [ { "name": "P",
        "net": "FIX" } ] },)" + Part("R1", "RES.1", R"("VALUE": "2K")", "A=FIX B=GND") +
                                    R"( ] },
    { "name": "SUB",
      "ports": [ { "name": "P", "net": "P" } ],
      "nets": [ { "label": "INNER", "attributes": { "NODE": "5" } }, { "label": "GND", "global": true } ],
      "components": [
        )" + Part("R2", "RES.1", R"("VALUE": "3K")", "A=P B=INNER") +
                                    ", " + Part("R3", "RES.1", R"("VALUE": "4K")", "A=INNER B=GND") +
                                    R"( ] }
  ]
})";

TEST(NetAttributeDeckTest, AHierarchicalDeckReadsTheNodeAttributesOfEachBlock) {
  VeskRun run = RunVesk(kNodeAttributes, "-h TOP");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project SUB\n.SUBCKT SUB 1\nR2 1 5 3.000000K\n"
                          "R3 5 0 4.000000K\n* CROSS-REFERENCE 3\n* GND=0\n* INNER=5\n* P=1\n.ENDS\n\n"
                          "X1 7 SUB\nR1 7 0 2.000000K\n* Dictionary 2\n* GND=0\n* FIX = 7\n\n*.END\n\n");
}

TEST(GroundDeckTest, NetsThatBeginWithGndAreGround) {
  VeskRun run = RunVesk(R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } },
    "blocks": [ { "name": "TOP", "components": [)" +
                            Part("R1", "RES.1", R"("VALUE": "2K")", "A=A B=GND1") + ", " +
                            Part("R2", "RES.1", R"("VALUE": "3K")", "A=MYGND B=GND_ANALOG") + ", " +
                            Part("R3", "RES.1", R"("VALUE": "4K")", "A=AGND B=A") +
                            R"( ] } ]
  })",
                        "TOP");
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 0 2.000000K\nR2 2 0 3.000000K\nR3 3 1 4.000000K\n* Dictionary 5\n"
                          "* AGND=3\n* GND_ANALOG=0\n* MYGND=2\n* GND1=0\n* A = 1\n\n*.END\n");
}

}  // namespace
