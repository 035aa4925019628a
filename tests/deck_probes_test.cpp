// Whole decks of hierarchical probe designs: the probe pass's print statements in every
// dialect, analyses from a header file, .probe/csdf items, duplicates, initial conditions.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;
using deckexpect::Part;

// TOP places AMP twice and probes OUT; AMP senses the current of R1, probes MID and
// places BUF, which probes Q. Hierarchical instances carry an (empty) ORDER.
const std::string kAmp = R"("type": 2, "child": "AMP", "attributes": { "ORDER": "" })";
const std::string kDesign =
    R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" }, "VSRC.1": { "PREFIX": "V",
        "ORDER": "\"DC\" VALUE$" } },
    "blocks": [ { "name": "TOP", "components": [)" +
    Part("V1", "VSRC.1", R"("VALUE": "5")", "P=IN N=GND") + ", " +
    Part("X1", "AMP.1", "", "A=IN B=OUT", kAmp) + ", " + Part("X2", "AMP.1", "", "A=OUT B=GND", kAmp) + ", " +
    Part("P1", "VPROBE.1", R"("PROBE": "V")", "A=OUT") +
    R"( ] }, { "name": "AMP", "ports": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ],
        "components": [ )" +
    Part("R1", "RES.1", R"("VALUE": "1K", "PROBE": "i")", "A=A B=MID") + ", " +
    Part("X3", "BUF.1", "", "P=MID Q=B", R"("type": 2, "child": "BUF", "attributes": { "ORDER": "" })") +
    ", " + Part("P2", "VPROBE.1", R"("PROBE": "V")", "A=MID") +
    R"( ] }, { "name": "BUF", "ports": [ { "name": "P", "net": "P" }, { "name": "Q", "net": "Q" } ],
        "components": [ )" +
    Part("R9", "RES.1", R"("VALUE": "2K")", "A=P B=Q") + ", " +
    Part("P3", "VPROBE.1", R"("PROBE": "V")", "A=Q") + " ] } ] }";

const char kAcTranHeader[] = ".ac dec 10 1 1k\n.tran 1n 10n\n.probe/csdf V(IN)\n";

// Definitions and root lines with node names (-n), markers gone. A .ENDS followed by the
// empty line that opens the next definition keeps two empty lines.
const char kNamedBody[] =
    "*Definition For Project BUF\n.SUBCKT BUF P Q\nR9 P Q 2.000000K\n* CROSS-REFERENCE 0\n.ENDS\n\n\n"
    "*Definition For Project AMP\n.SUBCKT AMP A B\nR1 A MID 1000.000000\nX3 MID B BUF\n"
    "* CROSS-REFERENCE 0\n.ENDS\n\n"
    "V1 IN 0 DC 5.000000\nX1 IN OUT AMP\nX2 OUT 0 AMP\n* Dictionary 1\n* GND=0\n";

// The same with node numbers.
const char kNumberedBody[] =
    "*Definition For Project BUF\n.SUBCKT BUF 1 2\nR9 1 2 2.000000K\n* CROSS-REFERENCE 2\n* Q=2\n* P=1\n"
    ".ENDS\n\n\n*Definition For Project AMP\n.SUBCKT AMP 1 2\nR1 1 3 1000.000000\nX3 3 2 BUF\n"
    "* CROSS-REFERENCE 3\n* B=2\n* MID=3\n* A=1\n.ENDS\n\n"
    "V1 1 0 DC 5.000000\nX1 1 2 AMP\nX2 2 0 AMP\n* Dictionary 3\n* OUT=2\n* GND=0\n";

// Runs the design with a header file hdr.inc.
VeskRun RunWithHeader(const std::string& args, const std::string& header,
                      const std::string& deckPath = "TOP.cir") {
  VeskInput input;
  input.files["hdr.inc"] = header;
  input.deckPath = deckPath;
  return RunVesk(kDesign, args, input);
}

// Probe paths run through the top-level instances in deck order, each instance's probes
// before those of the instances it places; the root's own probe OUT comes with X2's stretch.
TEST(DeckProbesTest, PspiceProbeWordWritesDecibelAndPhaseUnderCsdfForAc) {
  const std::string args = "-h -n -ghdr.inc TOP";
  VeskRun run = RunWithHeader(args, kAcTranHeader);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, "");
  std::string statements;
  for (const char* path : {"[X1.MID]", "(X1.R1)", "[X1.X3.Q]", "[OUT]", "[X2.MID]", "(X2.R1)", "[X2.X3.Q]"}) {
    const std::string p = path;
    const bool current = p[0] == '(';
    const std::string t = current ? "I" : "V";
    const std::string probe = current ? p : "(" + p + ")";
    statements += ".PROBE/CSDF\n+ " + t + "DB" + probe + " " + t + "P" + probe + "\n.PROBE " + t + probe + "\n";
  }
  EXPECT_EQ(run.deck, Head(args, true) + ".ac dec 10 1 1k\n.tran 1n 10n\n" + kNamedBody + statements +
                          ".PROBE  V(IN)\n\n*.END\n\n");
}

// Node numbers need no brackets; the .probe/csdf items come newest first, each once, and
// the last one keeps its two blanks, standing ahead of an empty line. ".TRAN" in capitals
// is no analysis for the pass, while a lower-case .mc line names one.
TEST(DeckProbesTest, PspicePrintWordWithNumbersAndItems) {
  const std::string args = "-h -w -ghdr.inc TOP";
  VeskRun run = RunWithHeader(
      args,
      ".dc V1 0 5 0.1\n.TRAN 1n 10n\n.mc 10 tran V(1) YMAX\n.probe/csdf V(1)\n.probe/csdf I(V1)\n"
      ".probe/csdf V(1)\n");
  std::string statements;
  for (const char* probe :
       {"V(X1.3)", "I(X1.R1)", "V(X1.X3.2)", "V(2)", "V(X2.3)", "I(X2.R1)", "V(X2.X3.2)", "I(V1)"})
    statements += std::string(".PRINT DC ") + probe + "\n.PRINT TRAN " + probe + "\n";
  EXPECT_EQ(run.deck, Head(args, true) + ".dc V1 0 5 0.1\n.TRAN 1n 10n\n.mc 10 tran V(1) YMAX\n" +
                          kNumberedBody + "* IN=1\n" + statements +
                          ".PRINT DC V(1)\n.PRINT TRAN  V(1)\n\n*.END\n\n");
}

// The statements of the HSPICE and Kelpo kinds: decibel and phase under every analysis.
std::string DecibelStatements(const std::string& word) {
  std::string text;
  for (const char* path : {"V:X1.MID", "I:X1.R1", "V:X1.X3.Q", "V:OUT", "V:X2.MID", "I:X2.R1", "V:X2.X3.Q"}) {
    const std::string t(path, 1), p(path + 2);
    for (const char* analysis : {" AC ", " TRAN "})
      text += word + analysis + t + "DB(" + p + ") " + t + "P(" + p + ")\n";
  }
  return text;
}

TEST(DeckProbesTest, HspiceStatementsFollowTheOptionsLine) {
  const std::string args = "-h -m -n -ghdr.inc TOP";
  VeskRun run = RunWithHeader(args, kAcTranHeader);
  EXPECT_EQ(run.deck, Head(args, true) + ".ac dec 10 1 1k\n.tran 1n 10n\n" + kNamedBody +
                          ".OPTIONS INGOLD=2 CSDF=2\n" + DecibelStatements(".PROBE") +
                          ".PROBE  V(IN)\n\n*.END\n\n");
}

TEST(DeckProbesTest, KelpoDeckInItsFolderGetsTheDecibelForm) {
  const std::string args = "-_ -h -n -w -ghdr.inc TOP";
  VeskRun run = RunWithHeader(args, kAcTranHeader, "genhdl/TOP/TOP.cir");
  EXPECT_EQ(run.deck, Head(args, true) + ".ac dec 10 1 1k\n.tran 1n 10n\n" + kNamedBody +
                          DecibelStatements(".PRINT") + ".PRINT AC V(IN)\n.PRINT TRAN  V(IN)\n\n*.END\n\n");
}

TEST(DeckProbesTest, BerkeleyPrintsPlainValuesUnderEachAnalysis) {
  const std::string args = "-h -s -n -ghdr.inc TOP";
  VeskRun run = RunWithHeader(args, kAcTranHeader);
  std::string statements;
  for (const char* probe :
       {"V(X1.MID)", "I(X1.R1)", "V(X1.X3.Q)", "V(OUT)", "V(X2.MID)", "I(X2.R1)", "V(X2.X3.Q)"})
    statements += std::string(".PRINT AC ") + probe + "\n.PRINT TRAN " + probe + "\n";
  // The items follow the print word, which stays ".PROBE" without -w.
  EXPECT_EQ(run.deck, Head(args, true) + ".ac dec 10 1 1k\n.tran 1n 10n\n" + kNamedBody + statements +
                          ".PROBE  V(IN)\n\n*.END\n\n");
}

// -9: only the AC form is written, and the items give way to one .PROBE/CSDF line.
TEST(DeckProbesTest, AnalogDependenciesKeepOnlyTheCsdfStatements) {
  const std::string args = "-h -9 -n -ghdr.inc TOP";
  VeskRun run = RunWithHeader(args, kAcTranHeader);
  std::string statements;
  for (const char* probe :
       {"VDB([X1.MID]) VP([X1.MID])", "IDB(X1.R1) IP(X1.R1)", "VDB([X1.X3.Q]) VP([X1.X3.Q])",
        "VDB([OUT]) VP([OUT])", "VDB([X2.MID]) VP([X2.MID])", "IDB(X2.R1) IP(X2.R1)",
        "VDB([X2.X3.Q]) VP([X2.X3.Q])"})
    statements += std::string(".PROBE/CSDF\n+ ") + probe + "\n";
  EXPECT_EQ(run.deck, Head(args, true) + ".ac dec 10 1 1k\n.tran 1n 10n\n" + kNamedBody + statements +
                          ".PROBE/CSDF\n\n*.END\n\n");
}

// Duplicates are told by their full path on the console, subcircuits first; the deck keeps
// both definitions. A comment inside a model card is lost, its "+" line stays. A .model
// line without a blank behind its name names the empty model.
TEST(DeckProbesTest, DuplicateDefinitionsAreReportedAndKept) {
  const std::string args = "-h -n -ghdr.inc TOP";
  VeskRun run = RunWithHeader(args,
                              ".SUBCKT AMP 1 2\n.model DX D\nR1 1 2 1K\n.ENDS\n"
                              ".model QX NPN (BF=100) * comment\n* note\n+ IS=1E-15\n.MODEL QX PNP\n"
                              ".model DX D\n.model ONE\n.model TWO\n.SUBCKT AMP 1 2\n.ENDS\n.tran 1n 10n\n");
  EXPECT_EQ(run.output,
            "Duplicate sub-circuit definition: AMP\nDuplicate sub-circuit definition: AMP\n"
            "Duplicate model definition: \nDuplicate model definition: QX\n");
  std::string statements;
  for (const char* probe :
       {"V([X1.MID])", "I(X1.R1)", "V([X1.X3.Q])", "V([OUT])", "V([X2.MID])", "I(X2.R1)", "V([X2.X3.Q])"})
    statements += std::string(".PROBE ") + probe + "\n";
  EXPECT_EQ(run.deck, Head(args, true) +
                          ".SUBCKT AMP 1 2\n.model DX D\nR1 1 2 1K\n.ENDS\n\n"
                          ".model QX NPN (BF=100) * comment\n+ IS=1E-15\n.MODEL QX PNP\n.model DX D\n"
                          ".model ONE\n.model TWO\n.SUBCKT AMP 1 2\n.ENDS\n\n.tran 1n 10n\n" +
                          kNamedBody + statements + "\n*.END\n\n");
}

// Initial conditions: one statement per kind, pairs in label order, written at the end of
// the definition or root whose nets carry them, each under the node the deck gives the net.
const std::string kInitialDesign =
    R"({ "symbols": { "RES.1": { "PREFIX": "R", "ORDER": "VALUE$" } }, "blocks": [ { "name": "TOP",
    "nets": [ { "label": "OUT", "attributes": { "NODESET": "1.5", "IC": "0.2" } },
    { "label": "IN",  "attributes": { "NODESET": "5", "GUESS": "4" } } ], "components": [)" +
    Part("X1", "AMP.1", "", "A=IN B=OUT", kAmp) + ", " +
    Part("R1", "RES.1", R"("VALUE": "1K")", "A=OUT B=GND") +
    R"( ] }, { "name": "AMP", "ports": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ],
      "nets": [ { "label": "MID", "attributes": { "IC": "0" } } ], "components": [ )" +
    Part("R1", "RES.1", R"("VALUE": "1K")", "A=A B=MID") + ", " +
    Part("R2", "RES.1", R"("VALUE": "1K")", "A=MID B=B") + " ] } ] }";

TEST(DeckProbesTest, InitialConditionsInEachDialect) {
  const std::string body =
      "*Definition For Project AMP\n.SUBCKT AMP 1 2\nR1 1 3 1000.000000\nR2 3 2 1000.000000\n"
      "* CROSS-REFERENCE 3\n* B=2\n* MID=3\n* A=1\n.IC V(3)=0\n.ENDS\n\n"
      "X1 1 2 AMP\nR1 2 0 1000.000000\n* Dictionary 3\n* GND=0\n* OUT=2\n* IN=1\n"
      ".NODESET V(1)=5 V(2)=1.5\n.IC V(2)=0.2\n.GUESS V(1)=4\n";
  VeskRun hspice = RunVesk(kInitialDesign, "-h -m TOP");
  EXPECT_EQ(hspice.deck, Head("-h -m TOP", true) + body + ".OPTIONS INGOLD=2 CSDF=2\n\n*.END\n\n");
  VeskRun berkeley = RunVesk(kInitialDesign, "-s -h TOP");
  EXPECT_EQ(berkeley.deck, Head("-s -h TOP", true) + body + "\n*.END\n\n");
}

}  // namespace
