// Whole decks after the post-process pass: "=" blanks, PARAMS:, quoting, stripped characters,
// the COMMANDS, ELEMENTS and STRIP filters, instance parameter files, folding, and a
// replacement of the deck that fails.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;

const char* const kDesign = R"({ "blocks": [ { "name": "TOP", "components": [
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "@RX*2", "TC": "1 + 2" },
    "definition": { "PREFIX": "R", "ORDER": "VALUE$ TC=" },
    "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "OUT" } ] },
    { "label": "D1", "name": "DIODE.1", "attributes": { "MODEL": "DX", "AREA": "2" },
    "definition": { "PREFIX": "D", "ORDER": "MODEL$ AREA=" },
    "pins": [ { "name": "A", "net": "OUT" }, { "name": "K", "net": "GND" } ] } ] } ] })";

// Lines of every kind the pass tells apart, copied into the deck from the header file.
const char kHeader[] =
    "* stimulus and options\n*note  without  blank\n.OPTIONS   NOPAGE\n.OP\n.PARAM RLOAD = 2K\n"
    ".TRAN 1N 100N\n.AC DEC 10 1 1MEG\nXH1 IN OUT SUBX W = 1 L=#2\n+ TC = 3\n"
    "XH2 IN OUT SUBX PARAMS: G=1\n.SUBCKT SUBX A B PARAMS: W=1\nRS A B {W * 1K}\n.ENDS\n"
    ".SUBCKT SUBY A B W=1 OPTIONAL: X=1\n.ENDS\n.MACRO MAC A B C=2\n.EOM\n.subckt lower A B W=1\n.ends\n"
    "V5 IN 0 DC 'RLOAD / 2'\nC7 A B C = CX*2\nL7 A B L={LX\nK7 L1 L2 K=0.5\nD9 A B DX\n+ AREA=@AR\n";

const char kDictionary[] = "* Dictionary 3\n* GND=0\n* OUT=2\n* IN=1\n*.END\n";

VeskRun RunWith(const std::string& args, const std::string& config, const std::string& deckPath = "TOP.cir") {
  VeskInput input;
  input.files["hdr.inc"] = kHeader;
  input.config = config;
  input.deckPath = deckPath;
  return RunVesk(kDesign, args, input);
}

// Pspice: PARAMS: ahead of the first parameter of X, .SUBCKT and .MACRO statements, also
// across "+" lines; expressions in braces; "@" stripped after the quoting; lower-case
// .subckt and .ends untouched; an empty line ahead of .EOM and behind .ENDS.
TEST(DeckPostTest, PspiceDefaults) {
  const std::string args = "-z -ghdr.inc TOP";
  VeskRun run = RunWith(args, "");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck,
            Head(args) +
                "* stimulus and options\n*note without blank\n.OPTIONS NOPAGE\n.OP\n.PARAM RLOAD=2K\n"
                ".TRAN 1N 100N\n.AC DEC 10 1 1MEG\n"
                "XH1 IN OUT SUBX PARAMS: W=1 L=#2\n+ TC=3\nXH2 IN OUT SUBX PARAMS: G=1\n"
                ".SUBCKT SUBX A B PARAMS: W=1\nRS A B {W * 1K}\n.ENDS\n\n"
                ".SUBCKT SUBY A B PARAMS: W=1 OPTIONAL: X=1\n.ENDS\n\n"
                ".MACRO MAC A B PARAMS: C=2\n\n.EOM\n.subckt lower A B W=1\n.ends\n"
                "V5 IN 0 DC 'RLOAD / 2'\nC7 A B C={CX*2}\nL7 A B L={LX}\nK7 L1 L2 K=0.5\n"
                "D9 A B DX\n+ AREA={AR}\nR1 1 2 {RX*2} TC=3.000000\nD1 2 0 DX AREA=2.000000\n" +
                kDictionary);
}

// HSPICE: PARAMS: and OPTIONAL: go, expressions get apostrophes, a half-braced value too.
TEST(DeckPostTest, HspiceDropsTheKeywordsAndQuotesWithApostrophes) {
  const std::string args = "-z -m -ghdr.inc TOP";
  VeskRun run = RunWith(args, "");
  EXPECT_EQ(run.deck,
            Head(args) +
                "* stimulus and options\n*note without blank\n.OPTIONS NOPAGE\n.OP\n.PARAM RLOAD=2K\n"
                ".TRAN 1N 100N\n.AC DEC 10 1 1MEG\n"
                "XH1 IN OUT SUBX W=1 L=#2\n+ TC=3\nXH2 IN OUT SUBX G=1\n"
                ".SUBCKT SUBX A B W=1\nRS A B {W * 1K}\n.ENDS\n\n.SUBCKT SUBY A B W=1 X=1\n.ENDS\n\n"
                ".MACRO MAC A B C=2\n\n.EOM\n.subckt lower A B W=1\n.ends\n"
                "V5 IN 0 DC 'RLOAD / 2'\nC7 A B C='CX*2'\nL7 A B L='{LX'\nK7 L1 L2 K=0.5\n"
                "D9 A B DX\n+ AREA='AR'\nR1 1 2 RX*2 TC=3.000000\nD1 2 0 DX AREA=2.000000\n"
                "* Dictionary 3\n* GND=0\n* OUT=2\n* IN=1\n.OPTIONS INGOLD=2 CSDF=2\n*.END\n");
}

// COMMANDS keeps the dot commands whose first word it holds as text (".OP" is inside
// ".OPTIONS"); the case counts. STRIP COMMENTS drops "* " lines but not "*note", nor a
// comment that stands ahead of an empty line, which goes through untouched.
TEST(DeckPostTest, CommandsListAndStrippedComments) {
  VeskRun run = RunWith("-z -ghdr.inc TOP", "COMMANDS .TRAN .SUBCKT .ENDS .OPTIONS\nSTRIP COMMENTS\n");
  EXPECT_EQ(run.deck,
            "\n* File created <date>\n\n*note without blank\n.OPTIONS NOPAGE\n.OP\n.TRAN 1N 100N\n"
            "XH1 IN OUT SUBX PARAMS: W=1 L=#2\n+ TC=3\nXH2 IN OUT SUBX PARAMS: G=1\n"
            ".SUBCKT SUBX A B PARAMS: W=1\nRS A B {W * 1K}\n.ENDS\n\n"
            ".SUBCKT SUBY A B PARAMS: W=1 OPTIONAL: X=1\n.ENDS\n\n"
            "V5 IN 0 DC 'RLOAD / 2'\nC7 A B C={CX*2}\nL7 A B L={LX}\nK7 L1 L2 K=0.5\n"
            "D9 A B DX\n+ AREA={AR}\nR1 1 2 {RX*2} TC=3.000000\nD1 2 0 DX AREA=2.000000\n*.END\n");
}

// ELEMENTS, one word of letters, keeps the element lines whose letter it holds, with
// their "+" lines; comments and dot commands are not its business.
TEST(DeckPostTest, ElementsListKeepsTheLettersItNames) {
  const std::string args = "-z -ghdr.inc TOP";
  VeskRun run = RunWith(args, "ELEMENTS RXV\n");
  EXPECT_EQ(run.deck,
            Head(args) +
                "* stimulus and options\n*note without blank\n.OPTIONS NOPAGE\n.OP\n.PARAM RLOAD=2K\n"
                ".TRAN 1N 100N\n.AC DEC 10 1 1MEG\n"
                "XH1 IN OUT SUBX PARAMS: W=1 L=#2\n+ TC=3\nXH2 IN OUT SUBX PARAMS: G=1\n"
                ".SUBCKT SUBX A B PARAMS: W=1\nRS A B {W * 1K}\n.ENDS\n\n"
                ".SUBCKT SUBY A B PARAMS: W=1 OPTIONAL: X=1\n.ENDS\n\n"
                ".MACRO MAC A B PARAMS: C=2\n\n.EOM\n.subckt lower A B W=1\n.ends\n"
                "V5 IN 0 DC 'RLOAD / 2'\nR1 1 2 {RX*2} TC=3.000000\n" +
                kDictionary);
}

// Parameter files of instance models (hierarchical deck, so that components know their
// internal names): a -param.txt section of the instance, a .par file that renames the
// model and adds its lines, both files (the section wins), and an instance line whose
// last word is a parameter, which names no file. The last dictionary entry stands ahead of
// the empty line of the probe pass and keeps its blanks.
TEST(DeckPostTest, InstanceParameterFiles) {
  const char* const design = R"({ "groups": { "G1": { "internal_id": "7A" } },
    "blocks": [ { "name": "TOP", "components": [
    { "label": "X5", "name": "OPAMP.1", "group": "G1", "number": 12, "attributes": { "MODEL": "SUBX" },
    "definition": { "PREFIX": "X", "ORDER": "MODEL$" },
    "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "OUT" } ] },
    { "label": "X6", "name": "OPAMP.1", "attributes": { "MODEL": "SUBP" },
    "definition": { "PREFIX": "X", "ORDER": "MODEL$" },
    "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] },
    { "label": "X7", "name": "OPAMP.1", "group": "G1", "number": 13, "attributes": { "MODEL": "SUBB" },
    "definition": { "PREFIX": "X", "ORDER": "MODEL$" },
    "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] },
    { "label": "X8", "name": "OPAMP.1", "group": "G1", "number": 12,
    "attributes": { "MODEL": "SUBX", "GAIN": "2" },
    "definition": { "PREFIX": "X", "ORDER": "MODEL$ GAIN=" },
    "pins": [ { "name": "A", "net": "OUT" }, { "name": "B", "net": "GND" } ] } ] } ] })";
  VeskInput input;
  input.files["sym/SUBX-param.txt"] =
      "* subx $7ai12 section\n+ A=1\nnot kept\n\n+ B=2\n*end\n* subx $7ai99\n+ C=3\n*end\n"
      "*SUBX $7AI12 upper case heads never match\n+ D=4\n*end\n";
  input.files["sym/SUBP.par"] = "* SUBQ\n* lines of the par file\n.PARAM PQ=1\n";
  input.files["sym/SUBB.par"] = "first line without star\n.PARAM NEVER=1\n";
  input.files["sym/SUBB-param.txt"] = "*subb $7ai13\n+ GAIN=2\n*end\n";
  VeskRun run = RunVesk(design, "-h -z TOP", input);
  EXPECT_EQ(
      run.deck,
      "\n* Project TOP\n* Norvane Wirelist Created with Version 6.4.002\n* File created <date>\n"
      "* Inifile   :\n* ConfigFile:  galt\\standard\\vesk.cfg\n* Options   :  -h -z TOP\n* Levels    :\n*\n"
      "X5 1 2 SUBX\n+ A=1\n+ B=2\nX6 2 0 SUBQ\n* lines of the par file\n.PARAM PQ=1\n"
      "X7 2 0 first line without star\n+ GAIN=2\nX8 2 0 SUBX PARAMS: GAIN=2.000000\n"
      "* Dictionary 3\n* GND=0\n* OUT=2\n* IN = 1\n\n*.END\n\n");
}

// The new text goes to a file beside the deck; when the passes cannot write it the deck
// stays as the generator wrote it, markers and all, and the run fails.
TEST(DeckPostTest, FailedReplacementLeavesTheWrittenDeck) {
  const char* const design = R"({ "blocks": [ { "name": "TOP", "components": [
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K", "PROBE": "i" },
    "definition": { "PREFIX": "R", "ORDER": "VALUE$" },
    "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] } ] } ] })";
  VeskInput input;
  input.env["VESK_WRITE_FAULT"] = "folder:TOP.cir:2+";
  input.files["hdr.inc"] = ".tran 1n 10n\n";
  VeskRun run = RunVesk(design, "-h -ghdr.inc TOP", input);
  EXPECT_EQ(run.rc, 1);
  EXPECT_EQ(run.output,
            "Error: cannot write TOP.cir: Permission denied\nCannot remove file 'TOP.cir'\n"
            "Error: cannot write TOP.cir: Permission denied\n");
  EXPECT_EQ(run.deck,
            "* Project TOP\n* Norvane Wirelist Created with Version 6.4.002\n* File created <date>\n\n"
            "* Inifile   :  \n* ConfigFile:  galt\\standard\\vesk.cfg\n* Options   :  -h -ghdr.inc TOP \n"
            "* Levels    :  \n*\n.tran 1n 10n\n * next line is a current sense\nR1 1 0 1000.000000\n\n"
            "* Dictionary 2\n* GND = 0\n* IN = 1\n\n*.END\n");
}

}  // namespace
