// Whole Kelpo decks: HDL instances, model directives, the netUidMap file, analysis and print
// statements, and the HDL-sources mode with its folded lines.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

using deckexpect::Head;
using deckexpect::Part;

VeskInput KelpoDeck() {
  VeskInput input;
  input.deckPath = "genhdl/TOP/TOP.cir";
  return input;
}

// TOP holds a resistor, an instance X1 of AMP, an excluded part, a part whose two model words
// are "SCH" and an unknown one, and a part without attributes that is written as any other. AMP
// holds a Verilog-A and a VHDL-AMS instance, a part without attributes, a part of unknown
// model words and an excluded part.
std::string Numbered(int number) { return R"("group": "G1", "number": )" + std::to_string(number); }

const std::string kHierarchy =
    R"({ "groups": { "G1": { "internal_id": "7A" } }, "blocks": [ { "name": "TOP", "nets": [
    { "label": "IN", "group": "G1", "number": 1 }, { "label": "OUT", "group": "G1", "number": 2 },
    { "label": "GND", "group": "G1", "number": 3 } ], "components": [)" +
    Part("R1", "RES.1", R"("VALUE": "1K")", "A=IN B=GND",
         R"("definition": { "ORDER": "VALUE$" }, )" + Numbered(10)) +
    ", " +
    Part("X1", "AMP.1", "", "IN=IN OUT=OUT",
         R"("type": 2, "child": "AMP", "definition": { "PREFIX": "X" }, )" + Numbered(11)) +
    ", " + Part("E9", "RES.1", R"("EXCLUDE": "Yes", "VALUE": "1")", "A=IN B=OUT", Numbered(12)) + ", " +
    Part("V7", "VSRC.1", R"("SIMULATION MODEL": "SCH", "SIMMODEL": "ABC", "VALUE": "5")", "P=IN N=GND",
         R"("definition": { "ORDER": "VALUE$" }, )" + Numbered(13)) +
    ", " + Part("U4", "ODD.1", R"("SIMULATION MODEL": "Xyz", "SIMMODEL": "ABC")", "A=OUT", Numbered(16)) +
    ", " + Part("C9", "BARE.1", "", "A=OUT B=GND", Numbered(14)) + ", " +
    Part("R8", "RES.1", R"("VALUE": "8")", "A=OUT B=GND",
         R"("definition": { "ORDER": "VALUE$" }, )" + Numbered(15)) +
    R"( ] }, { "name": "AMP", "ports": [ { "name": "IN", "net": "IN" }, { "name": "OUT", "net": "OUT" } ],
      "nets": [ { "label": "IN", "group": "G1", "number": 4 }, { "label": "OUT", "group": "G1", "number": 5 },
                { "label": "MID", "group": "G1", "number": 6 } ], "components": [ )" +
    Part("YU1", "AMP_VA",
         R"("SIMULATION MODEL": "veriloga", "MODEL": "amp", "VERILOG FILE": "va/Amp.VA",
            "VERILOG_PARAM_GAIN": "10")",
         "INP=IN OUTP=MID", R"("definition": { "PREFIX": "Y" }, )" + Numbered(20)) +
    ", " + Part("C5", "BARE.1", "", "A=MID", Numbered(23)) + ", " +
    Part("U2", "CNT_VHD", R"("SIMMODEL": "VHDL-AMS", "VHDL": "lib.cnt", "VHDL_GENERIC_WIDTH": "integer:=8")",
         "A=MID B=OUT", Numbered(21)) +
    ", " +
    Part("U8", "CNT_VHD", R"("SIMMODEL": "VHDL", "VHDL MODEL": "mylib.sub.counter")", "A=MID", Numbered(25)) +
    ", " +
    Part("YU9", "AMP_VA",
         R"("SIMULATION MODEL": "Verilog", "MODEL": "AMP", "USE VERILOG": "amplib",
            "VERILOG FILE": "unused.va")",
         "INP=OUT", Numbered(26)) +
    ", " + Part("U3", "ODD.1", R"("SIMULATION MODEL": "SCH", "SIMMODEL": "ABC")", "A=MID", Numbered(22)) +
    ", " + Part("E1", "RES.1", R"("EXCLUDE": "shunt")", "A=IN B=MID", Numbered(24)) + " ] } ] }";

const char kAmpDefinition[] =
    "*Definition For Project AMP\n.SUBCKT AMP IN OUT\n.verilog ../../va/Amp.va\n"
    "YU1 amp PORT: IN MID GENERIC: GAIN=10\nC5 MID 0\n*Warning: No Value For C5.Defaulting to 0\n"
    "YU2 cnt GENERIC: WIDTH=\"8\" PORT: MID OUT\n"
    "YU8 counter PORT: MID\n.use_verilog amplib\nYU9 AMP PORT: OUT\n"
    "*U3 Unrecognized Simulation Model type\n*Note : Excluding Component E1\n* CROSS-REFERENCE 0\n.ENDS\n";

const char kHierarchyMap[] =
    "AMP/c5 $7AI23\nAMP/in $7AN4\nAMP/mid $7AN6\nAMP/out $7AN5\nAMP/u3 $7AI22\nAMP/yu1 $7AI20\n"
    "AMP/yu2 $7AI21\nAMP/yu8 $7AI25\nAMP/yu9 $7AI26\nTOP/ $7AI12\nTOP/0 $7AN3\nTOP/c9 $7AI14\n"
    "TOP/in $7AN1\nTOP/out $7AN2\nTOP/r1 $7AI10\nTOP/r8 $7AI15\nTOP/u4 $7AI16\nTOP/v7 $7AI13\nx1 AMP\n";

// The "*.END" line right behind the model directives is no comment of the last card: it stays,
// and hierarchical print statements have their place ahead of it.
TEST(KelpoHierarchyTest, DefinitionsFirstThenTheRootThenTheDirectives) {
  VeskRun run = RunVesk(kHierarchy, "-_ -h TOP", KelpoDeck());
  ASSERT_EQ(run.rc, 0) << run.output << run.errors;
  EXPECT_EQ(run.output,
            "*Warning: No Value For C5.Defaulting  to 0\n*Note : Excluding Component E1\n"
            "*Note : Excluding Component E9\n*Warning: No Value For C9.Defaulting  to 0\n");
  EXPECT_EQ(run.deck, Head("-_ -h TOP", true) + kAmpDefinition +
                          "\nR1 IN 0 1000.000000\nX1 IN OUT AMP\n*Note : Excluding Component E9\n"
                          "V7 IN 0 5.000000\n*U4Unrecognized Simulation Model type\nC9 OUT 0 0\n"
                          "*Warning: No Value For C9.Defaulting to 0\nR8 OUT 0 8.000000\n* Dictionary 1\n"
                          "* GND=0\n.model amp macro lang=veriloga\n"
                          ".model cnt macro lang=vhdlams LIB=lib\n"
                          ".model counter macro lang=vhdlams LIB=mylib.sub\n\n*.END\n\n");
  EXPECT_EQ(run.Read("genhdl/TOP/netUidMap"), kHierarchyMap);
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

// The ".global" lines stand behind the end line.
TEST(KelpoHierarchyTest, GlobalsFollowTheEndLine) {
  const char design[] = R"({ "blocks": [ { "name": "TOP", "nets": [ { "label": "VDD", "global": true } ],
    "components": [ { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" },
    "definition": { "ORDER": "VALUE$" }, "pins": [ { "name": "A", "net": "VDD" }, { "name": "B",
        "net": "GND" } ] } ] } ] })";
  VeskRun run = RunVesk(design, "-_ TOP", KelpoDeck());
  ASSERT_EQ(run.rc, 0) << run.errors;
  EXPECT_EQ(
      run.deck,
      Head("-_ TOP") + "R1 VDD 0 1000.000000\n* Dictionary 1\n* GND = 0\n\n*.END\n\n*Globals\n.global VDD\n");
}

// Three levels: TOP places MID, MID places LEAF. Long VHDL-AMS lines in TOP and LEAF.
const std::string kValue = R"("definition": { "ORDER": "VALUE$" })";
const std::string kSources =
    R"({ "blocks": [ { "name": "TOP", "components": [ )" +
    Part("YU5", "FILTER",
         R"("SIMULATION MODEL": "VHDL", "VHDL": "filter", "VHDL_GENERIC_ZETA": "7",
            "VHDL_GENERIC_ALPHA": "0.25",
            "VHDL_GENERIC_BETA": "real:=1.5", "VHDL_GENERIC_DELTA_T": "1n", "VHDL_GENERIC_GAMMA": "3",
            "VHDL_GENERIC_GAIN_LIMIT": "1000", "VHDL_GENERIC_OFFSET_VOLTAGE": "0.001")",
         "A=IN B=GND") +
    ", " +
    Part("E_WITH_A_LABEL_SO_LONG_THAT_ITS_NOTE_RUNS_FAR_BEYOND_THE_SEVENTY_SEVENTH_COLUMN", "RES.1",
         R"("EXCLUDE": "yes")", "A=IN B=GND") +
    ", " +
    Part("R4", "RES.1", R"("VALUE": "2", "TC": "A+B")", "A=IN B=GND",
         R"("definition": { "ORDER": "VALUE$ TC=" })") +
    ", " +
    Part("X1", "MID.1", "", "P=IN Q=OUT", R"("type": 2, "child": "MID", "definition": { "PREFIX": "X" })") +
    R"(, { "label": "AC1", "name": "AC.1", "attributes": { "GENERATOR": ".AC", "N": "10" },
    "definition": { "ORDER": "N$" } } ] },
    { "name": "MID", "ports": [ { "name": "P", "net": "P" }, { "name": "Q", "net": "Q" } ],
        "components": [)" +
    Part("X2", "LEAF.1", "", "A=P B=Q", R"("type": 2, "child": "LEAF", "definition": { "PREFIX": "X" })") +
    ", " + Part("R2", "RES.1", R"("VALUE": "2K")", "A=P B=Q", kValue) +
    R"( ] }, { "name": "LEAF", "ports": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ],
      "components": [ )" +
    Part("R3", "RES.1", R"("VALUE": "3")", "A=A B=B", kValue) + ", " +
    Part("U6", "STAGE",
         R"("SIMMODEL": "vhdl", "VHDL": "lib.stage", "VHDL_GENERIC_MODE": "fast",
            "VHDL_GENERIC_COEFFICIENT_A": "1111", "VHDL_GENERIC_COEFFICIENT_B": "2",
                "VHDL_GENERIC_COEFFICIENT_C": "3.5")",
         "P=B N=GND") +
    ", " +
    Part("YU7", "PROBE_VA",
         R"("SIMULATION MODEL": "veriloga", "MODEL": "Probe", "VERILOG FILE": "$VA/Sub.Dir/x.V")", "P=A") +
    " ] } ] }";

const char kLongNote[] =
    "*Note : Excluding Component "
    "E_WITH_A_LABEL_SO_LONG_THAT_ITS_NOTE_RUNS_FAR_BEYOND_THE_SEVENTY_SEVENTH_COLUMN\n";

// With "-__" the root comes first and its definitions follow, parents before children; there is
// no end line and no analysis statement. Values are not quoted. Lines of 77 characters and more are folded at
// a blank: the blank stays at the end of the first part, or, when it stands at column 77, begins the
// continuation. Comment lines stay whole.
TEST(KelpoSourcesTest, RootFirstDefinitionsBehindItAndLongLinesFolded) {
  VeskInput input = KelpoDeck();
  input.files["genhdl/TOP/TOP_sources.spi"] = "* generated\n";
  input.env["VA"] = "expanded";  // "$VA" without braces names no variable
  VeskRun run = RunVesk(kSources, "-_ -__ -7 -h TOP", input);
  ASSERT_EQ(run.rc, 0) << run.output << run.errors;
  EXPECT_EQ(run.output, kLongNote);
  EXPECT_EQ(run.deck,
            Head("-_ -__ -7 -h TOP", true) +
                ".include \"TOP_sources.spi\"\n"
                "YU5 filter GENERIC: ALPHA=\"0.25\" BETA=\"1.5\" DELTA_T=\"1n\" GAIN_LIMIT=\"1000\" \n"
                "+GAMMA=\"3\" OFFSET_VOLTAGE=\"0.001\" ZETA=\"7\" PORT: IN 0\n" +
                kLongNote +
                "R4 IN 0 2.000000 TC=A+B\nX1 IN OUT MID\n* Dictionary 1\n* GND=0\n"
                "*Definition For Project MID\n.SUBCKT MID P Q\nX2 P Q LEAF\nR2 P Q 2.000000K\n"
                "* CROSS-REFERENCE 0\n.ENDS\n\n\n*Definition For Project LEAF\n.SUBCKT LEAF A B\n"
                "R3 A B 3.000000\n"
                "YU6 stage GENERIC: COEFFICIENT_A=\"1111\" COEFFICIENT_B=\"2\" COEFFICIENT_C=\"3.5\"\n"
                "+ MODE=\"fast\" PORT: B 0\n"
                ".verilog ../../$VA/Sub.dir/x.v\n"
                "YU7 Probe PORT: A\n* CROSS-REFERENCE 1\n* GND=0\n.ENDS\n\n\n"
                ".model filter macro lang=vhdlams LIB=WORK\n.model stage macro lang=vhdlams LIB=lib\n"
                ".model Probe macro lang=veriloga\n\n");
}

// A flat RC filter with a probed net IN, a voltage probe P1 on OUT, a current probe on R1 and a
// NODESET on IN, and the generator components named in `generators`.
std::string Analyses(const std::string& generators) {
  return R"({ "blocks": [ { "name": "TOP",
    "nets": [ { "label": "IN", "attributes": { "PROBE": "V", "NODESET": "1.5" } } ], "components": [)" +
         Part("V1", "VSRC.1", R"("VALUE": "1")", "P=IN N=GND", kValue) + ", " +
         Part("R1", "RES.1", R"("VALUE": "1K", "PROBE": "i")", "A=IN B=OUT", kValue) + ", " +
         Part("C1", "CAP.1", R"("VALUE": "1N")", "A=OUT B=GND", kValue) + ", " +
         Part("P1", "PROBE.1", R"("PROBE": "V")", "A=OUT") + generators + " ] } ] }";
}

const char kTran[] = R"(,
    { "label": "TR1", "name": "TRAN.1", "attributes": { "GENERATOR": ".TRAN", "TSTEP": "1N", "TSTOP": "1U" },
    "definition": { "ORDER": "TSTEP$ TSTOP$" } })";
const char kAc[] = R"(,
    { "label": "AC1", "name": "AC.1", "attributes": { "GENERATOR": ".AC", "NPTS": "10", "FSTART": "1",
    "FSTOP": "1MEG" }, "definition": { "ORDER": "\"DEC\" NPTS$ FSTART$ FSTOP$" } })";
const char kFour[] = R"(,
    { "label": "F1", "name": "FOUR.1", "attributes": { "GENERATOR": ".FOUR", "FREQ": "1K" },
    "definition": { "ORDER": "FREQ$" }, "pins": [ { "name": "P", "net": "OUT" } ] })";
const char kNoise[] = R"(,
    { "label": "N1", "name": "NOISE.1", "attributes": { "GENERATOR": ".NOISE", "SRC": "V1" },
    "definition": { "ORDER": "SRC$" }, "pins": [ { "name": "P", "net": "OUT" } ] })";
const char kSens[] = R"(,
    { "label": "S1", "name": "SENS.1", "attributes": { "GENERATOR": ".SENS", "NO_PINS": "yes" },
    "definition": { "ORDER": "\"V(OUT)\"" }, "pins": [ { "name": "P", "net": "OUT" } ] })";

const char kCircuit[] =
    "V1 IN 0 1.000000\nR1 IN OUT 1000.000000\nC1 OUT 0 1000.000000P\n* voltage probe on node :  OUT\n";

// Analysis statements stand in key order behind the root's lines; the flat probes are printed
// once for each of ".AC", ".DC" and ".TRAN", the newest analysis first, in decibel and phase form
// under ".AC". A ".FOUR" has its ".TRAN" and a ".NOISE" its ".AC" here.
TEST(KelpoAnalysesTest, StatementsInKeyOrderAndProbesPerAnalysis) {
  VeskRun run = RunVesk(Analyses(std::string(kTran) + kNoise + kAc + kFour + kSens), "-_ TOP", KelpoDeck());
  ASSERT_EQ(run.rc, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  // Every component has its entry, generators and probes included; a flat walk gives no
  // internal names, and the nets here are in no group.
  EXPECT_EQ(run.Read("genhdl/TOP/netUidMap"),
            "TOP/0 \nTOP/ac1 \nTOP/c1 \nTOP/f1 \nTOP/in \nTOP/n1 \nTOP/out \nTOP/p1 \nTOP/r1 \nTOP/s1 \n"
            "TOP/tr1 \nTOP/v1 \n");
  EXPECT_EQ(run.deck, Head("-_ TOP") + kCircuit +
                          ".AC DEC 10.000000 1.000000 1000.000000K\n.FOUR V(OUT) 1000.000000\n"
                          ".NOISE V(OUT) V1\n.PRINT NOISE ONOISE INOISE DB(ONOISE) DB(INOSIE)\n"
                          ".SENS V(OUT)\n.TRAN 1000.000000P 1000.000000N\n* Dictionary 1\n* GND=0\n"
                          ".PROBE TRAN V(IN)\n.PROBE TRAN V(OUT)\n.PROBE TRAN i(R1)\n"
                          ".PROBE AC VDB(IN) VP(IN)\n.PROBE AC VDB(OUT) VP(OUT)\n"
                          ".PROBE AC iDB(R1) iP(R1)\n.NODESET V(IN)=1.5\n\n*.END\n");
}

}  // namespace
