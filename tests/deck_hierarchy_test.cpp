// Whole decks of designs with hierarchy: flat names through several levels, names passed down
// through pins, global nets, levels that stop an instance, and the definitions of a hierarchical deck.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;
using deckexpect::Part;

// TOP places MID, MID places LEAF; VDD is global in both sub-blocks, K lives in LEAF alone.
const std::string kThreeLevels =
    R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "CAP.1": { "PREFIX": "C",
        "ORDER": "VALUE$" },
    "MID.1": { "DESC": "amplifier" }, "LEAF.1": { "LEVEL": "STOP" } },
    "blocks": [ { "name": "TOP", "components": [)" +
    Part("X1", "MID.1", "", "A=IN B=OUT", R"("type": 2, "child": "MID")") + ", " +
    Part("RL", "RES.1", R"("VALUE": "5")", "A=OUT B=GND") +
    R"( ] }, { "name": "MID", "ports": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ],
      "nets": [ { "label": "VDD", "global": true } ], "components": [ )" +
    Part("R1", "RES.1", R"("VALUE": "2K")", "A=A B=M") + ", " +
    Part("X2", "LEAF.1", "", "P=M Q=B", R"("type": 2, "child": "LEAF")") +
    R"( ] }, { "name": "LEAF", "ports": [ { "name": "P", "net": "P" }, { "name": "Q", "net": "Q" } ],
      "nets": [ { "label": "VDD", "global": true } ], "components": [ )" +
    Part("R1", "RES.1", R"("VALUE": "3K")", "A=P B=K") + ", " +
    Part("C1", "CAP.1", R"("VALUE": "10P")", "A=K B=Q") + ", " +
    Part("R2", "RES.1", R"("VALUE": "4K")", "A=K B=VDD") + " ] } ] }";

TEST(FlatHierarchyDeckTest, NamesPassDownThroughPinsAndGainTheInstancePathElsewhere) {
  // M is local to X1, K local to X1\X2; P and Q reach the pins of X2, A and B those of X1;
  // VDD is global and keeps its name, "$G_" in front, as in every definition.
  VeskRun run = RunVesk(kThreeLevels, "TOP");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RX11 1 2 2.000000K\nRX1X21 2 3 3.000000K\nCX1X21 3 4 10.000000P\n"
                          "RX1X22 3 $G_VDD 4.000000K\nRL 4 0 5.000000\n* Dictionary 6\n* GND=0\n* VDD=$G_VDD\n"
                          "* OUT=4\n* X1\\X2\\K=3\n* X1\\M=2\n* IN = 1\n\n*.END\n");
}

TEST(FlatHierarchyDeckTest, NodeNamesAreTheLegalFormOfTheFlatNames) {
  // Only nets whose node differs from the name reach the dictionary.
  VeskRun run = RunVesk(kThreeLevels, "-n TOP");
  EXPECT_EQ(run.deck, Head("-n TOP") +
                          "RX11 IN X1M 2.000000K\nRX1X21 X1M X1X2K 3.000000K\n"
                          "CX1X21 X1X2K OUT 10.000000P\nRX1X22 X1X2K $G_VDD 4.000000K\nRL OUT 0 5.000000\n"
                          "* Dictionary 4\n* GND=0\n* VDD=$G_VDD\n* X1\\X2\\K=X1X2K\n* X1\\M = X1M\n\n*.END\n");
}

TEST(FlatHierarchyDeckTest, ALevelTakesTheInstanceAndItsBlockOut) {
  // X2 carries LEVEL=STOP at definition level: LEAF's components go, X1's stay.
  const std::string flatDeck =
      "RX11 1 2 2.000000K\nRL 3 0 5.000000\n* Dictionary 4\n* GND=0\n* OUT=3\n* X1\\M=2\n* IN = 1\n\n"
      "*.END\n";
  VeskRun bySwitch = RunVesk(kThreeLevels, "-lSTOP TOP");
  EXPECT_EQ(bySwitch.deck, Head("-lSTOP TOP") + flatDeck);
  VeskRun byArgument = RunVesk(kThreeLevels, "TOP STOP");
  EXPECT_EQ(byArgument.deck, Head("TOP STOP") + flatDeck);
}

TEST(FlatHierarchyDeckTest, ALevelMatchesExactly) {
  VeskRun run = RunVesk(kThreeLevels, "-lstop TOP");
  EXPECT_NE(run.deck.find("RX1X21 2 3 3.000000K\n"), std::string::npos) << run.deck;
}

TEST(HierarchicalDeckTest, EachBlockIsDefinedOnceChildrenFirst) {
  // Each definition numbers its own nodes, ports first; the global VDD keeps its name; the
  // root's lines follow the definitions.
  VeskRun run = RunVesk(kThreeLevels, "-h TOP");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project LEAF\n.SUBCKT LEAF 1 2\nR1 1 3 3.000000K\n"
                          "C1 3 2 10.000000P\nR2 3 $G_VDD 4.000000K\n* CROSS-REFERENCE 4\n* VDD=$G_VDD\n* Q=2\n"
                          "* K=3\n* P=1\n.ENDS\n\n\n*Definition For Project MID\n.SUBCKT MID 1 2\n"
                          "R1 1 3 2.000000K\nX2 3 2 LEAF\n* CROSS-REFERENCE 3\n* B=2\n* M=3\n* A=1\n"
                          ".ENDS\n\nX1 1 2 MID\nRL 2 0 5.000000\n* Dictionary 3\n* GND=0\n* OUT=2\n"
                          "* IN = 1\n\n*.END\n\n");
}

TEST(HierarchicalDeckTest, AStoppedInstanceWithoutPrefixIsSkippedAndItsBlockNotDefined) {
  VeskRun run = RunVesk(kThreeLevels, "-h -lSTOP TOP");
  EXPECT_EQ(run.output, "*Note : Skipping Component X2\n");
  EXPECT_EQ(run.deck, Head("-h -lSTOP TOP", true) +
                          "*Definition For Project MID\n.SUBCKT MID 1 2\nR1 1 3 2.000000K\n"
                          "*Note : Skipping Component X2\n* CROSS-REFERENCE 2\n* M=3\n* A=1\n.ENDS\n\n"
                          "X1 1 2 MID\nRL 2 0 5.000000\n* Dictionary 3\n* GND=0\n* OUT=2\n* IN = 1\n\n"
                          "*.END\n\n");
}

// SUB is placed in A and in B with its pins in different orders; its first instance sets the
// order of the .SUBCKT line.
const std::string kSharedBlock =
    R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "A.1": { "DESC": "a" },
        "B.1": { "DESC": "b" },
    "SUB.1": { "DESC": "sub" } }, "blocks": [ { "name": "TOP", "components": [)" +
    Part("X1", "A.1", "", "I=IN", R"("type": 2, "child": "A")") + ", " +
    Part("X2", "B.1", "", "I=IN", R"("type": 2, "child": "B")") + ", " +
    Part("RIN", "RES.1", R"("VALUE": "5")", "A=IN B=GND") +
    R"( ] }, { "name": "A", "ports": [ { "name": "I", "net": "I" } ], "nets": [ { "label": "GND",
        "global": true } ],
      "components": [ )" +
    Part("U1", "SUB.1", "", "Q=GND P=I", R"("type": 2, "child": "SUB")") +
    R"( ] }, { "name": "B", "ports": [ { "name": "I", "net": "I" } ], "nets": [ { "label": "GND",
        "global": true } ],
      "components": [ )" +
    Part("U2", "SUB.1", "", "P=I Q=GND", R"("type": 2, "child": "SUB")") +
    R"( ] }, { "name": "SUB", "ports": [ { "name": "P", "net": "P" }, { "name": "Q", "net": "Q" } ],
      "components": [ )" +
    Part("R1", "RES.1", R"("VALUE": "2K")", "A=P B=Q") + " ] } ] }";

TEST(HierarchicalDeckTest, ABlockPlacedTwiceIsDefinedOnceWithThePinsOfItsFirstInstance) {
  // An instance label without its prefix gets it in front: U1 becomes XU1.
  VeskRun run = RunVesk(kSharedBlock, "-h TOP");
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project SUB\n.SUBCKT SUB 2 1\nR1 1 2 2.000000K\n"
                          "* CROSS-REFERENCE 2\n* Q=2\n* P=1\n.ENDS\n\n\n*Definition For Project A\n"
                          ".SUBCKT A 1\nXU1 0 1 SUB\n* CROSS-REFERENCE 2\n* I=1\n* GND=0\n.ENDS\n\n\n"
                          "*Definition For Project B\n.SUBCKT B 1\nXU2 1 0 SUB\n* CROSS-REFERENCE 2\n"
                          "* GND=0\n* I=1\n.ENDS\n\nX1 1 A\nX2 1 B\nRIN 1 0 5.000000\n* Dictionary 2\n"
                          "* GND=0\n* IN = 1\n\n*.END\n\n");
}

TEST(FlatHierarchyDeckTest, ALabelFindsTheWholePinNameNotTheEndOfAnEarlierOne) {
  // The pin list of X1 reads "AB,NA;B,NB;": the inner net B takes NB, not NA of "AB,"; the
  // inner GND is ground under its flat name.
  VeskRun run = RunVesk(
      R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } }, "blocks": [
    { "name": "TOP", "components": [)" +
          Part("X1", "SUB.1", "", "AB=NA B=NB", R"("type": 2, "child": "SUB")") +
          R"( ] }, { "name": "SUB", "ports": [ { "name": "AB", "net": "AB" }, { "name": "B", "net": "B" } ],
        "components": [ )" +
          Part("R1", "RES.1", R"("VALUE": "2K")", "A=B B=GND") + " ] } ] }",
      "TOP");
  EXPECT_EQ(run.deck, Head("TOP") + "RX11 1 0 2.000000K\n* Dictionary 2\n* X1\\GND=0\n* NB = 1\n\n*.END\n");
}

}  // namespace
