// Whole decks about names: the characters each dialect allows in a node or instance name, cut
// names, unique instance names, the deck-name rule with -y and designators, and ground.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;
using deckexpect::Part;

// A design of one block TOP whose resistors have prefix R and template VALUE$.
std::string Design(const std::string& components) {
  return R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } }, "blocks": [ { "name": "TOP",
    "components": [)" +
         components + " ] } ] }";
}

// Seven nets with characters that some dialects drop, each tied to GND by a resistor.
std::string OddNets() {
  std::string components;
  int index = 0;
  for (const char* net : {"A.B", "1A", "A/B", "/A", "$1N23", "IN+", "OUT-"}) {
    if (index++) components += ", ";
    components +=
        Part("R" + std::to_string(index), "RES.1", R"("VALUE": "2K")", "A=" + std::string(net) + " B=GND");
  }
  return Design(components);
}
const std::string kOddNets = OddNets();

// The seven component lines with the given nodes of their first pins.
std::string OddLines(const char* const (&nodes)[7]) {
  std::string lines;
  for (int i = 0; i < 7; ++i) lines += "R" + std::to_string(i + 1) + " " + nodes[i] + " 0 2.000000K\n";
  return lines;
}

// Each dialect's rule for the characters of a node name, on the seven odd nets.
TEST(LegalNameDeckTest, EachDialectKeepsItsOwnCharacters) {
  const std::pair<const char*, std::string> cases[] = {
      // Pspice keeps letters, digits and underscores: A.B and A/B become one node; the entry of
      // $1N23 is an internal name's and stays out.
      {"-n TOP", OddLines({"AB", "1A", "AB", "A", "1N23", "IN", "OUT"}) + "* Dictionary 6\n"
                                                                          "* OUT-=OUT\n* IN+=IN\n* /A=A\n"
                                                                          "* A/B=AB\n* GND=0\n"
                                                                          "* A.B = AB\n\n*.END\n"},
      // HSPICE keeps punctuation and puts N ahead of a digit; Berkeley with node names does the same.
      {"-m -n TOP", OddLines({"A.B", "N1A", "A/B", "/A", "N1N23", "IN+", "OUT-"}) +
                        "* Dictionary 2\n* 1A=N1A\n* GND = 0\n\n.OPTIONS INGOLD=2 CSDF=2\n*.END\n"},
      {"-s -n TOP", OddLines({"A.B", "N1A", "A/B", "/A", "N1N23", "IN+", "OUT-"}) + "* Dictionary 2\n"
                                                                                    "* 1A=N1A\n"
                                                                                    "* GND = 0\n\n*.END\n"},
      // Analog dependencies spell plus and minus.
      {"-9 -n TOP", OddLines({"A.B", "N1A", "A/B", "/A", "N1N23", "INP", "OUTN"}) + "* Dictionary 4\n"
                                                                                    "* OUT-=OUTN\n"
                                                                                    "* IN+=INP\n"
                                                                                    "* 1A=N1A\n"
                                                                                    "* GND = 0\n\n*.END\n"},
      // Dracula takes any first character and keeps minus. The root becomes the only definition, its
      // dictionary a cross reference; the deck has no end mark.
      {"-e TOP",
       "\n*Definition For Project TOP\n.SUBCKT TOP\n" +
           OddLines({"AB", "N1A", "AB", "N/A", "N1N23", "IN", "OUT-"}) +
           "* CROSS-REFERENCE 6\n* IN+=IN\n* /A=N/A\n* A/B=AB\n* 1A=N1A\n* GND=0\n* A.B=AB\n.ENDS\n\n"
           "* Dictionary 0\n\n"},
  };
  for (const auto& [args, body] : cases) EXPECT_EQ(RunVesk(kOddNets, args).deck, Head(args) + body) << args;
}

TEST(LegalNameDeckTest, VerboseDictionaryShowsInternalNames) {
  VeskRun run = RunVesk(kOddNets, "-v -n TOP");
  EXPECT_NE(run.deck.find("* $1N23=1N23\n"), std::string::npos) << run.deck;
}

TEST(LegalNameDeckTest, CutNamesMayMeetAndThenShareANode) {
  // With three characters both nets are ABC and both instances RLO, the second made unique.
  VeskRun run = RunVesk(Design(Part("RLONG1", "RES.1", R"("VALUE": "2K")", "A=ABCD B=GND") + ", " +
                               Part("RLONG2", "RES.1", R"("VALUE": "3K")", "A=ABCE B=GND")),
                        "-c3 -n TOP");
  EXPECT_EQ(run.deck, Head("-c3 -n TOP") +
                          "RLO ABC 0 2.000000K\nR0 ABC 0 3.000000K\n* Dictionary 3\n* ABCE=ABC\n* GND=0\n"
                          "* ABCD = ABC\n\n*.END\n");
}

// Names that meet: RX11 inside X1 and at the top, three R1 and two C1.
std::string Collisions() {
  std::string components = Part("X1", "SUB.1", "", "P=A", R"("type": 2, "child": "SUB")");
  for (const char* label : {"RX11", "R1", "R1", "R1"})
    components += ", " + Part(label, "RES.1", R"("VALUE": "2K")", "A=A B=GND");
  for (int i = 0; i < 2; ++i) components += ", " + Part("C1", "CAP.1", R"("VALUE": "10P")", "A=A B=GND");
  return R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "CAP.1": { "PREFIX": "C",
      "ORDER": "VALUE$" },
    "SUB.1": { "DESC": "sub" } }, "blocks": [ { "name": "TOP", "components": [)" +
         components + R"( ] }, { "name": "SUB", "ports": [ { "name": "P", "net": "P" } ],
      "nets": [ { "label": "GND", "global": true } ], "components": [ )" +
         Part("R1", "RES.1", R"("VALUE": "2K")", "A=P B=GND") + " ] } ] }";
}
const std::string kCollisions = Collisions();

TEST(UniqueNameDeckTest, AFlatDeckMakesNamesUniqueAcrossTheWholeDesign) {
  // Names are handed out in walk order; a clash tries the first letter with 0, 1, 2 ...
  VeskRun run = RunVesk(kCollisions, "TOP");
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, Head("TOP") +
                          "RX11 1 0 2.000000K\nR0 1 0 2.000000K\nR1 1 0 2.000000K\nR2 1 0 2.000000K\n"
                          "R3 1 0 2.000000K\nC1 1 0 10.000000P\nC0 1 0 10.000000P\n* Dictionary 2\n"
                          "* GND=0\n* A = 1\n\n*.END\n");
}

TEST(UniqueNameDeckTest, AHierarchicalDeckMakesNamesUniqueWithinEachBlock) {
  VeskRun run = RunVesk(kCollisions, "-h TOP");
  EXPECT_EQ(run.deck,
            "\n* Project TOP\n* Norvane Wirelist Created with Version 6.4.002\n* File created <date>\n"
            "* Inifile   :\n* ConfigFile:  galt\\standard\\vesk.cfg\n* Options   :  -h TOP\n"
            "* Levels    :\n*\n*Definition For Project SUB\n.SUBCKT SUB 1\nR1 1 0 2.000000K\n"
            "* CROSS-REFERENCE 2\n* GND=0\n* P=1\n.ENDS\n\nX1 1 SUB\nRX11 1 0 2.000000K\n"
            "R1 1 0 2.000000K\nR0 1 0 2.000000K\nR2 1 0 2.000000K\nC1 1 0 10.000000P\nC0 1 0 10.000000P\n"
            "* Dictionary 2\n* GND=0\n* A = 1\n\n*.END\n\n");
}

// R1 has the attribute MYP, R2 has not; the automatic labels carry designators. Without -y the
// prefix goes ahead of a label that lacks it: U? is no designator; R7 replaces the label, but
// the prefix test looks at the label $1I24. With -y the attribute it names replaces the prefix
// where it is set.
TEST(DeckNameRuleTest, PrefixOrTheAttributeNamedByYGoesAheadOfALabelThatLacksIt) {
  const std::string design =
      Design(Part("R1", "RES.1", R"("VALUE": "2K", "MYP": "Q")", "A=A B=GND") + ", " +
             Part("R2", "RES.1", R"("VALUE": "3K")", "A=A B=GND") + ", " +
             Part("$1I23", "RES.1", R"("VALUE": "4K", "REF DESIGNATOR": "U?")", "A=A B=GND") + ", " +
             Part("$1I24", "RES.1", R"("VALUE": "5K", "REFDES": "R7")", "A=A B=GND") + ", " +
             Part("C1", "RES.1", R"("VALUE": "6K")", "A=A B=GND"));
  for (const auto& [args, first] : {std::pair<std::string, std::string>{"TOP", "R1"}, {"-ymyp TOP", "QR1"}})
    EXPECT_EQ(RunVesk(design, args).deck, Head(args) + first +
                                              " 1 0 2.000000K\nR2 1 0 3.000000K\nR1I23 1 0 4.000000K\n"
                                              "RR7 1 0 5.000000K\nRC1 1 0 6.000000K\n* Dictionary 2\n"
                                              "* GND=0\n* A = 1\n\n*.END\n")
        << args;
}

TEST(DeckNameRuleTest, BerkeleyInstanceNamesKeepLettersAndDigitsOnly) {
  VeskRun run = RunVesk(Design(Part("R_X.1", "RES.1", R"("VALUE": "2K")", "A=A B=GND")), "-s TOP");
  EXPECT_EQ(run.deck, Head("-s TOP") + "RX1 1 0 2.000000K\n* Dictionary 2\n* GND=0\n* A = 1\n\n*.END\n");
}

}  // namespace
