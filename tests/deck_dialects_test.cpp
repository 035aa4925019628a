// Whole decks of one design in each plain dialect, flat and hierarchical: the frame of each.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

using deckexpect::Head;
using deckexpect::Part;

namespace {

// TOP: a source, an instance X1 of block AMP with a parameter, and a load; GND is global.
// AMP: R1 from IN to OUT and C1 from OUT to GND.
const std::string kDesign =
    R"({ "symbols": { "RES.1": { "ORDER": "VALUE$" }, "CAP.1": { "ORDER": "VALUE$" },
        "VSRC.1": { "ORDER": "\"dc\" VALUE$" } },
    "blocks": [ { "name": "TOP", "nets": [ { "label": "GND", "global": true } ], "components": [)" +
    Part("V1", "VSRC.1", R"("VALUE": "5")", "P=IN N=GND") + ", " +
    Part("X1", "AMP.1", "", "IN=IN OUT=OUT",
         R"("type": 2, "child": "AMP", "attributes": { "ORDER": "GAIN=", "GAIN": "2" })") +
    ", " + Part("RL", "RES.1", R"("VALUE": "10K")", "A=OUT B=GND") +
    R"( ] }, { "name": "AMP", "ports": [ { "name": "IN", "net": "IN" }, { "name": "OUT", "net": "OUT" } ],
      "nets": [ { "label": "GND", "global": true } ], "components": [ )" +
    Part("R1", "RES.1", R"("VALUE": "1K")", "A=IN B=OUT") + ", " +
    Part("C1", "CAP.1", R"("VALUE": "2P")", "A=OUT B=GND") + " ] } ] }";

// The definition of AMP with node numbers, after the probe pass has taken out its blank lines.
const char kNumberedDefinition[] =
    "*Definition For Project AMP\n.SUBCKT AMP 1 2\nR1 1 2 1000.000000\nC1 2 0 2.000000P\n"
    "* CROSS-REFERENCE 3\n* GND=0\n* OUT=2\n* IN=1\n.ENDS\n\n";

// The root's components and dictionary with node numbers, ahead of the dialect's end.
std::string NumberedRoot(const std::string& instance) {
  return "V1 1 0 DC 5.000000\n" + instance + "\nRL 2 0 10.000000K\n* Dictionary 3\n* OUT=2\n* GND=0\n";
}

TEST(DeckDialects, PspiceHierarchicalHasNoGlobalsAndMarksInstanceParameters) {
  VeskRun run = RunVesk(kDesign, "-h TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  EXPECT_EQ(run.deck, Head("-h TOP", true) + kNumberedDefinition +
                          NumberedRoot("X1 1 2 AMP PARAMS: GAIN=2.000000") + "* IN = 1\n\n*.END\n\n");
}

TEST(DeckDialects, HspiceHierarchicalEndsWithGlobalsAndOptions) {
  VeskRun run = RunVesk(kDesign, "-m -h TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // The definition's end differs from Pspice only by an empty line that the probe pass drops.
  EXPECT_EQ(run.deck, Head("-m -h TOP", true) + kNumberedDefinition +
                          NumberedRoot("X1 1 2 AMP GAIN=2.000000") +
                          "* IN=1\n*Globals\n.global 0\n.OPTIONS INGOLD=2 CSDF=2\n\n*.END\n\n");
}

TEST(DeckDialects, BerkeleyHierarchicalInstanceHasNoBody) {
  VeskRun run = RunVesk(kDesign, "-s -h TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  EXPECT_EQ(run.deck, Head("-s -h TOP", true) + kNumberedDefinition + NumberedRoot("X1 1 2 AMP") +
                          "* IN=1\n*Globals\n.global 0\n\n*.END\n\n");
}

TEST(DeckDialects, DraculaHierarchicalMakesTheRootTheLastDefinition) {
  VeskRun run = RunVesk(kDesign, "-e -h TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // Node names; no probe pass, so the blank lines stay; no globals, options or end mark; the
  // root's dictionary was written with its definition and comes back empty behind it.
  EXPECT_EQ(run.deck, Head("-e -h TOP") +
                          "\n*Definition For Project AMP\n.SUBCKT AMP IN OUT\nR1 IN OUT 1000.000000\n"
                          "C1 OUT 0 2.000000P\n\n* CROSS-REFERENCE 1\n* GND=0\n.ENDS\n\n\n"
                          "*Definition For Project TOP\n.SUBCKT TOP\nV1 IN 0 DC 5.000000\n"
                          "X1 IN OUT AMP GAIN=2.000000\nRL OUT 0 10.000000K\n\n* CROSS-REFERENCE 1\n"
                          "* GND=0\n.ENDS\n\n\n* Dictionary 0\n\n");
}

// The flat deck's components: AMP's are named after the instance path and use the outer nets.
const char kNumberedFlatLines[] =
    "V1 1 0 DC 5.000000\nRX11 1 2 1000.000000\nCX11 2 0 2.000000P\nRL 2 0 10.000000K\n* Dictionary 3\n"
    "* OUT=2\n* GND=0\n* IN = 1\n\n";

// Pspice ends with the end mark alone, HSPICE puts its globals and options ahead of it,
// Berkeley its globals.
TEST(DeckDialects, FlatDeckEndsOfPspiceHspiceAndBerkeley) {
  const std::pair<std::string, std::string> cases[] = {
      {"TOP", "*.END\n"},
      {"-m TOP", "*Globals\n.global 0\n\n.OPTIONS INGOLD=2 CSDF=2\n*.END\n"},
      {"-s TOP", "*Globals\n.global 0\n\n*.END\n"},
  };
  for (const auto& [args, end] : cases) {
    VeskRun run = RunVesk(kDesign, args);
    ASSERT_EQ(run.rc, 0) << run.output;
    EXPECT_EQ(run.deck, Head(args) + kNumberedFlatLines + end) << args;
  }
}

TEST(DeckDialects, DraculaFlatMakesTheRootTheOnlyDefinition) {
  VeskRun run = RunVesk(kDesign, "-e TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // A flat deck's dictionary has no empty line ahead of it.
  EXPECT_EQ(run.deck, Head("-e TOP") +
                          "\n*Definition For Project TOP\n.SUBCKT TOP\nV1 IN 0 DC 5.000000\n"
                          "RX11 IN OUT 1000.000000\nCX11 OUT 0 2.000000P\nRL OUT 0 10.000000K\n"
                          "* CROSS-REFERENCE 1\n* GND=0\n.ENDS\n\n* Dictionary 0\n\n");
}

TEST(DeckDialects, QuietDeckHasNoDictionaryInAnyDialect) {
  VeskRun pspice = RunVesk(kDesign, "-q TOP");
  EXPECT_EQ(pspice.deck, Head("-q TOP") +
                             "V1 1 0 DC 5.000000\nRX11 1 2 1000.000000\nCX11 2 0 2.000000P\n"
                             "RL 2 0 10.000000K\n\n*.END\n");
  VeskRun hierarchical = RunVesk(kDesign, "-q -h -m TOP");
  EXPECT_EQ(hierarchical.deck, Head("-q -h -m TOP", true) +
                                   "*Definition For Project AMP\n.SUBCKT AMP 1 2\nR1 1 2 1000.000000\n"
                                   "C1 2 0 2.000000P\n.ENDS\n\nV1 1 0 DC 5.000000\n"
                                   "X1 1 2 AMP GAIN=2.000000\nRL 2 0 10.000000K\n*Globals\n.global 0\n"
                                   ".OPTIONS INGOLD=2 CSDF=2\n\n*.END\n\n");
}

}  // namespace
