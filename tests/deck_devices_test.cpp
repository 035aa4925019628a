// Whole decks with MOS, B and bipolar device cards after the post-process pass: units of
// widths and lengths, expression quoting per dialect, geometry formulas, WL splitting,
// Dracula words, and the width-length split of instance parameters.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;

// One MOS component whose template writes L= and W= words; the other cards come from
// the header file.
const char* const kDesign = R"({ "blocks": [ { "name": "TOP", "components": [
    { "label": "M9", "name": "NMOS.1", "attributes": { "MODEL": "NCH", "L": "1", "W": "VW" },
    "definition": { "PREFIX": "M", "ORDER": "MODEL$ L= W=" },
    "pins": [ { "name": "D", "net": "OUT" }, { "name": "G", "net": "IN" },
    { "name": "S", "net": "GND" }, { "name": "B", "net": "GND" } ] } ] } ] })";

const char kCards[] =
    "M1 D G S B NCH L=1 W=10\nM2 D G S B NCH W = 2 L=1U AS=5 VT=VTH0\n+ L=3 W=4\nM3 D G S B NCH WL=1/2\n"
    "M4 D G S B NCH WL=5 AD=1\nM5 D G S B MODEL=PCH L={2*3} W=LX\nB1 D G S NB W=2\n"
    "Q1 C B E QN M=2 $EA=M*2\n";

const char kDictionary[] = "* Dictionary 3\n* GND=0\n* IN=2\n* OUT=1\n";

VeskRun RunWith(const std::string& args, const std::string& header, const std::string& config) {
  VeskInput input;
  input.files["hdr.inc"] = header;
  input.config = config;
  return RunVesk(kDesign, args, input);
}

// Without configuration: L and W get the unit U unless they carry a suffix, expressions
// get braces, WL and the area stay as written; a B card is not quoted, and a Q card
// outside Dracula decks is an ordinary element line.
TEST(DeckDevicesTest, PspiceUnitsAndBracesByDefault) {
  const std::string args = "-z -ghdr.inc TOP";
  VeskRun run = RunWith(args, kCards, "");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, Head(args) +
                          "M1 D G S B NCH L=1U W=10U\nM2 D G S B NCH W=2U L=1U AS=5 VT={VTH0}\n"
                          "+ L=3U W=4U\nM3 D G S B NCH WL={1/2}\nM4 D G S B NCH WL=5 AD=1\n"
                          "M5 D G S B MODEL=PCH L={2*3} W={LX}\nB1 D G S NB W=2U\n"
                          "Q1 C B E QN M=2 $EA={M*2}\nM9 1 2 0 0 NCH L=1000.000000N W={VW}\n" +
                          kDictionary + "*.END\n");
}

// CALC_AREA with formulas: a parameter on the card is replaced by its formula's text, a
// missing one is added in the order AS AD PS, each "+" line with the values as they stand
// by then. WL_SPLIT 1 splits W/L behind the WL word, and a single value becomes the width
// over a length of 1.0, the WL word gone. Formulas of numbers are braced by the quoting
// of the word; a formula of a word is braced as a whole. Without values the letters go.
TEST(DeckDevicesTest, GeometryFormulasAndWidthLengthSplit) {
  const std::string args = "-z -ghdr.inc TOP";
  VeskRun run = RunWith(args, kCards, "CALC_AREA 1\nAS L*W\nAD 2*W\nPS 2*(W+L)\nWL_SPLIT 1\n");
  EXPECT_EQ(run.deck, Head(args) +
                          "M1 D G S B NCH L=1U W=10U AS={1*10} AD={2*10} PS={2*(10+1)}\n"
                          "M2 D G S B NCH W=2U L=1U AS={1U*2} VT={VTH0} AD={2*2} PS={2*(2+1U)}\n"
                          "+ L=3U W=4U AS={3*4} AD={2*4} PS={2*(4+3)}\n"
                          "M3 D G S B NCH WL={1/2} W=1U L=2U AS={2*1} AD={2*1} PS={2*(1+2)}\n"
                          "M4 D G S B NCH AD={2*5} W=5U AS={1.0*5} PS={2*(5+1.0)}\n"
                          "M5 D G S B MODEL=PCH L={2*3} W={LX} AS={2*3*LX} AD={2*LX} PS={2*(LX+2*3)}\n"
                          "B1 D G S NB W=2U AS=*2 AD=2*2 PS=2*(2+)\nQ1 C B E QN M=2 $EA={M*2}\n"
                          "M9 1 2 0 0 NCH L=1000.000000N W={VW} AS={1000.000000N*VW} AD={2*VW} "
                          "PS={2*(VW+1000.000000N)}\n" +
                          kDictionary + "*.END\n");
}

// Dracula: apostrophes; area words on a card are dropped but missing ones added; the
// emitter area of a bipolar card takes the card's M; a value ending in X loses it; a
// NOT4ECAD line is emptied; NOSLASH drops "/" words and PARAMS: goes. The root becomes
// a definition, and there is no probe pass.
TEST(DeckDevicesTest, DraculaWordsAndBipolarCards) {
  const std::string args = "-e -z -ghdr.inc TOP";
  VeskRun run =
      RunWith(args,
              "M1 D G S B NCH L=1 W=10 AS=5 PD=3\nQ1 C B E QN M=2 $EA=M*2\nQ2 C B E QN M=K $EA=M*2\n"
              "R1 A B R=2X\nC1 A B 1P NOT4ECAD\nXD1 A B SUB /dev PARAMS: P=1\nR9 A B 1K\n",
              "CALC_AREA 1\nAS L*W\nNOSLASH 1\n");
  EXPECT_EQ(run.deck, Head(args) +
                          "M1 D G S B NCH L=1U W=10U\nQ1 C B E QN M=2 $EA='2*2'\n"
                          "Q2 C B E QN M='K' $EA='K*2'\nR1 A B R=2\n\nXD1 A B SUB P=1\nR9 A B 1K\n"
                          "\n*Definition For Project TOP\n.SUBCKT TOP\n"
                          "M9 OUT IN 0 0 NCH L=1000.000000N W='VW' AS='1000.000000N*VW'\n"
                          "* CROSS-REFERENCE 1\n* GND=0\n.ENDS\n\n* Dictionary 0\n");
}

// WL_SPLIT other than 1 splits the Wl words of instances only; UNITS in STRIP takes the
// unit letter U off (case-sensitive) instead of adding it.
TEST(DeckDevicesTest, InstanceWidthLengthSplitAndStrippedUnits) {
  const std::string args = "-z -ghdr.inc TOP";
  VeskRun run = RunWith(args,
                        "X1 A B SUB Wl1=2/3 wl=WL2 Wl3=7 Wl=4/5\nM1 D G S B NCH L=1U W=10u WL=1/2\n"
                        "M2 D G S B NCH L=1 W=LX VT=VTH0\nX2 A B SUB PARAMS: G=A+B\n",
                        "WL_SPLIT 2\nSTRIP UNITS\n");
  EXPECT_EQ(run.deck, Head(args) +
                          "X1 A B SUB PARAMS: L1=3 W1=2 L2={L2} W2={W2} L=5 W=4\n"
                          "M1 D G S B NCH L=1 W=10u WL={1/2}\nM2 D G S B NCH L=1 W={LX} VT={VTH0}\n"
                          "X2 A B SUB PARAMS: G={A+B}\nM9 1 2 0 0 NCH L=1000.000000N W={VW}\n" +
                          kDictionary + "*.END\n");
}

}  // namespace
