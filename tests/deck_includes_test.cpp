// Whole decks around the component lines: model includes, header file, .global lines.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

using deckexpect::Head;
using deckexpect::TopDesign;

namespace {

const char kTransistorPins[] =
    R"([ { "name": "C", "net": "OUT" }, { "name": "B", "net": "IN" }, { "name": "E", "net": "GND" } ])";

// Components that name their models: two spellings of one model, a sub-circuit whose file
// calls others, a model without a file, and one whose file differs from it in case.
std::string ModelsDesign() {
  const std::string order = R"("definition": { "ORDER": "MODEL$" })";
  return TopDesign(R"({ "label": "Q1", "name": "NPN.1", "attributes": { "MODEL": "Q2N" }, )" + order +
                   R"(, "pins": )" + kTransistorPins + " }, " +
                   R"({ "label": "Q2", "name": "NPN.1", "attributes": { "MODEL": "q2n" }, )" + order +
                   R"(, "pins": )" + kTransistorPins + " }, " +
                   R"({ "label": "X1", "name": "OPAMP.1", "attributes": { "MODEL": "opamp" }, )" + order +
                   R"(, "pins": [ { "name": "IN", "net": "IN" }, { "name": "OUT", "net": "OUT" } ] },
    { "label": "D1", "name": "DIODE.1", "attributes": { "MODEL": "DMISSING" },)" +
                   order + R"(, "pins": [ { "name": "A", "net": "IN" }, { "name": "K", "net": "GND" } ] },
    { "label": "D2", "name": "DIODE.1", "attributes": { "MODEL": "Dx" },)" +
                   order + R"(, "pins": [ { "name": "A", "net": "OUT" }, { "name": "K", "net": "GND" } ] })");
}

// The model files of ModelsDesign: opamp calls stage1, which the same file defines as a
// caller of leaf; leaf has no file.
VeskInput ModelFiles() {
  VeskInput input;
  input.files = {
      {"sym/Q2N.mod", ".MODEL Q2N NPN(BF=100)\n"},
      {"sym/opamp.mod",
       ".SUBCKT opamp IN OUT\nX1 IN MID stage1\nR1 MID OUT 1K\n.ENDS\n"
       ".SUBCKT stage1 A B\nX1 A B leaf\n.ENDS\n"},
      {"sym/stage1.mod", ".SUBCKT stage1 A B\nR1 A B 1K\n.ENDS\n"},
      {"sym/DX.mod", ".MODEL DX D(IS=1E-14)\n"},
  };
  return input;
}

const char kModelLines[] =
    "Q1 1 2 0 Q2N\nQ2 1 2 0 q2n\nX1 2 1 opamp\nD1 2 0 DMISSING\nD2 1 0 Dx\n* Dictionary 3\n* GND=0\n"
    "* IN=2\n";

TEST(DeckIncludes, ModelFilesAndTheFilesTheyCallAreIncludedInPathOrder) {
  VeskRun run = RunVesk(ModelsDesign(), "TOP", ModelFiles());
  ASSERT_EQ(run.rc, 0) << run.output;
  // One include a file, named from the deck's folder as the file is spelled on disk; a missing
  // file is a warning (in its classic text) without a line end, which the next line's own line
  // end closes.
  EXPECT_EQ(run.deck, Head("TOP") + kModelLines +
                          "* OUT = 1\n\n*Warning: Could not open data file sym\\DMISSING.mod\n"
                          ".include \"sym/DX.mod\"\n\n.include \"sym/Q2N.mod\"\n\n"
                          "*Warning: Could not open data file sym\\leaf.mod\n"
                          ".include \"sym/opamp.mod\"\n\n.include \"sym/stage1.mod\"\n"
                          "\n*.END\n");
  EXPECT_EQ(run.output,
            "\n*Warning: Could not open data file sym\\DMISSING.mod"
            "\n*Warning: Could not open data file sym\\leaf.mod");
}

TEST(DeckIncludes, NoModelFileIsReadUnderZ) {
  VeskRun run = RunVesk(ModelsDesign(), "-z TOP", ModelFiles());
  ASSERT_EQ(run.rc, 0) << run.output;
  EXPECT_EQ(run.deck, Head("-z TOP") + kModelLines + "* OUT=1\n*.END\n");
  EXPECT_EQ(run.output, "");
}

// One resistor from IN to GND.
std::string DividerDesign() {
  return TopDesign(R"({ "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" },
    "definition": { "ORDER": "VALUE$" },
    "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] })");
}

const char kDividerLines[] = "R1 1 0 1000.000000\n* Dictionary 2\n* GND=0\n* IN = 1\n\n*.END\n";

TEST(DeckIncludes, HeaderFileIsCopiedBehindTheCommentBlock) {
  VeskInput input;
  input.files = {{"incl/Hdr.txt", "* my header\n.PARAM VDD = 5\n\n.TEMP  27"}};
  // The path is looked up ignoring case; its lines then pass the post-process pass like any.
  VeskRun run = RunVesk(DividerDesign(), "-gincl\\hdr.txt TOP", input);
  ASSERT_EQ(run.rc, 0) << run.output;
  EXPECT_EQ(run.deck,
            Head("-gincl\\hdr.txt TOP") + "* my header\n.PARAM VDD = 5\n\n.TEMP 27\n" + kDividerLines);
  EXPECT_EQ(run.output, "");
}

// Three global nets, each under a resistor to ground.
std::string GlobalsDesign() {
  return TopDesign(
      R"({ "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" },
    "definition": { "ORDER": "VALUE$" },
    "pins": [ { "name": "A", "net": "VDD" }, { "name": "B", "net": "GND" } ] },
    { "label": "R2", "name": "RES.1", "attributes": { "VALUE": "1K" }, "definition": { "ORDER": "VALUE$" },
    "pins": [ { "name": "A", "net": "AVDD" }, { "name": "B", "net": "GND" } ] })",
      R"({ "label": "VDD", "global": true }, { "label": "AVDD", "global": true },
    { "label": "GND", "global": true })");
}

TEST(DeckIncludes, GlobalLinesStandInLabelOrderWhereTheDialectHasThem) {
  const std::string lines = "R1 VDD 0 1000.000000\nR2 AVDD 0 1000.000000\n* Dictionary 1\n* GND = 0\n\n";
  VeskRun hspice = RunVesk(GlobalsDesign(), "-m -n TOP");
  ASSERT_EQ(hspice.rc, 0) << hspice.output;
  EXPECT_EQ(hspice.deck, Head("-m -n TOP") + lines +
                             "*Globals\n.global AVDD\n.global 0\n.global VDD\n\n"
                             ".OPTIONS INGOLD=2 CSDF=2\n*.END\n");
  // Pspice marks a global node by "$G_" in front of its name.
  VeskRun pspice = RunVesk(GlobalsDesign(), "-n TOP");
  EXPECT_EQ(pspice.deck, Head("-n TOP") +
                             "R1 $G_VDD 0 1000.000000\nR2 $G_AVDD 0 1000.000000\n* Dictionary 3\n"
                             "* AVDD=$G_AVDD\n* GND=0\n* VDD = $G_VDD\n\n*.END\n");
}

// TOP places AMP and a transistor of a model without a file; AMP holds a diode with a model
// and one that defaults to the first part of its name, whose file is spelled in lower case.
const char* const kHierarchicalModels = R"({ "blocks": [ { "name": "TOP", "components": [
    { "label": "X1", "name": "AMP.1", "type": 2, "child": "AMP", "attributes": { "NOTE": "x" },
    "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] },
    { "label": "Q1", "name": "NPN.1", "attributes": { "MODEL": "QX" }, "definition": { "ORDER": "MODEL$" },
    "pins": [ { "name": "C", "net": "OUT" }, { "name": "B", "net": "IN" }, { "name": "E", "net": "GND" } ] }
    ] }, { "name": "AMP", "ports": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ],
    "components": [ { "label": "D1", "name": "DIODE.1", "attributes": { "MODEL": "DX" },
    "definition": { "ORDER": "MODEL$" },
    "pins": [ { "name": "A", "net": "A" }, { "name": "K", "net": "B" } ] },
    { "label": "D2", "name": "DIODE.1", "attributes": { "PREFIX": "D" },
    "pins": [ { "name": "A", "net": "A" }, { "name": "K", "net": "B" } ] } ] } ] })";

TEST(DeckIncludes, HierarchicalDeckIncludesTheModelsOfAllBlocksAtItsEnd) {
  VeskInput input;
  input.files = {{"sym/DX.mod", ".MODEL DX D(IS=1E-14)\n"}, {"sym/diode.mod", ".MODEL diode D\n"}};
  VeskRun run = RunVesk(kHierarchicalModels, "-h TOP", input);
  ASSERT_EQ(run.rc, 0) << run.output;
  // The probe pass drops the empty line ahead of each include.
  EXPECT_EQ(run.deck, Head("-h TOP", true) +
                          "*Definition For Project AMP\n.SUBCKT AMP 1 2\nD1 1 2 DX\nD2 1 2 DIODE\n"
                          "*Warning: No Model For D2.Defaulting to DIODE\n* CROSS-REFERENCE 2\n* B=2\n"
                          "* A=1\n.ENDS\n\nX1 1 0 AMP\nQ1 2 1 0 QX\n* Dictionary 3\n* OUT=2\n* GND=0\n"
                          "* IN=1\n.include \"sym/diode.mod\"\n"
                          ".include \"sym/DX.mod\"\n"
                          "*Warning: Could not open data file sym\\QX.mod\n\n*.END\n\n");
}

}  // namespace
