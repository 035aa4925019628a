// Whole Kelpo decks with mapped models: .model cards in place of includes, parameter-file
// sections behind sub-circuit instances, and VHDL-AMS generics from the mapping files.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

namespace {

const std::string kHead = deckexpect::Head("-_ -h TOP", true);

VeskInput KelpoDeck() {
  VeskInput input;
  input.deckPath = "genhdl/TOP/TOP.cir";
  return input;
}

// The files of a folder of the run, by name.
std::set<std::string> FolderFiles(const VeskRun& run, const std::string& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(run.folder) / folder))
    names.insert(entry.path().filename().string());
  return names;
}

// Two transistors of part PN1: Q1 overrides RB of its model QMOD through RB_ATTR, Q3's model
// QPLAIN has nothing overridden. The pins stand in the design in the order E B C.
const char kBipolar[] = R"({ "blocks": [ { "name": "TOP", "components": [
    { "label": "Q1", "name": "NPN1", "attributes": { "PART NUMBER": "PN1", "MODEL": "QMOD", "RB_ATTR": "10" },
    "definition": { "ORDER": "MODEL$" },
    "pins": [ { "name": "E", "net": "GND" }, { "name": "B", "net": "BAS" }, { "name": "C", "net": "COL" } ] },
    { "label": "Q3", "name": "NPN1", "attributes": { "PART NUMBER": "PN1", "MODEL": "QPLAIN" },
    "definition": { "ORDER": "MODEL$" },
    "pins": [ { "name": "E", "net": "GND" }, { "name": "B", "net": "BAS" }, { "name": "C", "net": "COL" } ] }
    ] } ] })";

const char kBipolarMapping[] =
    R"(<?xml version="1.0"?><Models><Part Name="PN1"><Info>bipolar transistors</Info><Symbol Name="NPN1">
<Model Name="QMOD" Library="" ModelFile="" ModType=" NPN (">
<Ports><Port Assigned="1">C</Port><Port Assigned="1">B</Port><Port Assigned="1">E</Port></Ports>
<Params><Param Name="RB" Type="" DefValue="5"><Value>7</Value><Attr>rb_attr</Attr></Param>
<Param Name="CJE" Type="" DefValue="1P"><Value/><Attr/></Param></Params></Model>
<Model Name="QPLAIN" Library="" ModelFile="" ModType="NPN">
<Ports><Port Assigned="1">C</Port><Port Assigned="1">B</Port><Port Assigned="1">E</Port></Ports>
<Params><Param Name="RB" Type="" DefValue="5"><Value/><Attr>rb_attr</Attr></Param></Params></Model>
</Symbol></Part></Models>
)";

// The overridden primitive model is written as a card, with its parameters in name order and the
// parenthesis of its type word closed, where its file would be included; the other model keeps
// its include. The model's port list gives the order of the nodes.
TEST(MappedModelDeckTest, OverriddenPrimitiveModelBecomesACardInPlaceOfItsInclude) {
  VeskInput input = KelpoDeck();
  input.files["Sym/Models_Info.xml"] = kBipolarMapping;
  input.files["sym/QMOD.mod"] = ".model QMOD NPN (BF=50)\n";
  input.files["sym/QPLAIN.mod"] = ".model QPLAIN NPN (BF=80)\n";
  VeskRun run = RunVesk(kBipolar, "-_ -h TOP", input);
  ASSERT_EQ(run.rc, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, kHead +
                          "Q1 COL BAS 0 QMOD\nQ3 COL BAS 0 QPLAIN\n* Dictionary 1\n* GND=0\n"
                          ".model QMOD NPN (\n+ CJE=1P\n+ RB=10\n)\n\n"
                          ".include \"../../sym/QPLAIN.mod\"\n\n*.END\n\n");
  // A primitive model leaves no parameter file.
  EXPECT_EQ(FolderFiles(run, "sym"), (std::set<std::string>{"QMOD.mod", "QPLAIN.mod"}));
}

// Two instances of the sub-circuit model OpAmp: U1 overrides GAIN, U2 does not.
const char kOpAmps[] = R"({ "groups": { "G1": { "internal_id": "7A" } }, "blocks": [ { "name": "TOP",
    "components": [
    { "label": "U1", "name": "OPA", "attributes": { "PART NUMBER": "PN741", "MODEL": "OpAmp", "GAIN": "200" },
    "definition": { "PREFIX": "X", "ORDER": "MODEL$" }, "group": "G1", "number": 1,
    "pins": [ { "name": "OUT", "net": "OUT" }, { "name": "IN", "net": "IN" } ] },
    { "label": "U2", "name": "OPA", "attributes": { "PART NUMBER": "PN741", "MODEL": "OpAmp" },
    "definition": { "PREFIX": "X", "ORDER": "MODEL$" }, "group": "G1", "number": 2,
    "pins": [ { "name": "OUT", "net": "GND" }, { "name": "IN", "net": "OUT" } ] } ] } ] })";

const char kOpAmpMapping[] =
    R"(<?xml version="1.0"?><ModelsInfo><Part Name="PN741"><Description>operational amplifier</Description>
<Symbol Name="OPA">
<Model Name="OpAmp" Library="" ModelFile="" isOstrelCompiled="0" ModType="Subckt">
<Ports><Port Assigned="1">IN</Port><Port Assigned="1">OUT</Port></Ports><Parameters>
<Parameter Name="ROUT" Type="" DefValue="75"><Content></Content><Override></Override></Parameter>
<Parameter Name="GAIN" Type="" DefValue="100"><Content></Content><Override>gain</Override></Parameter>
<Parameter Name="RIN" Type="" DefValue="1MEG"><Content>2MEG</Content><Override></Override></Parameter>
</Parameters></Model></Symbol></Part></ModelsInfo>
)";

// Each instance's section follows its X line; ROUT, with only a default, is in neither. The
// section of another instance stays in the file, U1's old section is replaced, U2's is added.
const char kOpAmpDeck[] =
    "XU1 IN OUT OpAmp\n+ GAIN=200\n+ RIN=2MEG\nXU2 OUT 0 OpAmp\n+ RIN=2MEG\n* Dictionary 1\n* GND=0\n"
    ".include \"../../sym/OpAmp.mod\"\n\n*.END\n\n";

TEST(MappedModelDeckTest, SubcircuitSectionsFollowTheirInstanceLines) {
  VeskInput input = KelpoDeck();
  input.files["Sym/Models_Info.xml"] = kOpAmpMapping;
  input.files["sym/OpAmp.mod"] = ".SUBCKT opamp IN OUT\nRIN IN OUT 1MEG\n.ENDS\n";
  input.files["sym/OpAmp-param.txt"] = "\n*opamp $7ai9\n+ GAIN=50\n*end\n*opamp $7ai1\n+ GAIN=1\n*end";
  VeskRun run = RunVesk(kOpAmps, "-_ -h TOP", input);
  ASSERT_EQ(run.rc, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, kHead + kOpAmpDeck);
  EXPECT_EQ(run.Read("sym/OpAmp-param.txt"),
            "*opamp $7ai9\n+ GAIN=50\n*end\n\n*opamp $7ai1\n+ GAIN=200\n+ RIN=2MEG\n*end"
            "\n*opamp $7ai2\n+ RIN=2MEG\n*end");
  // The file was replaced as a whole: nothing else is left beside it.
  EXPECT_EQ(FolderFiles(run, "sym"), (std::set<std::string>{"OpAmp-param.txt", "OpAmp.mod"}));

  // A second run in the same folder keeps one section for each instance.
  std::string output, errors;
  ASSERT_EQ(
      RunProgram(BinaryDir() + "/vesk", "-_ -h TOP", run.folder, {{"GALT_HOME", "galt"}}, output, errors), 0);
  EXPECT_EQ(run.Read("sym/OpAmp-param.txt"),
            "*opamp $7ai9\n+ GAIN=50\n*end\n*opamp $7ai1\n+ GAIN=200\n+ RIN=2MEG\n*end\n"
            "\n*opamp $7ai2\n+ RIN=2MEG\n*end");
  EXPECT_EQ(MaskDate(run.Read("genhdl/TOP/TOP.cir")), kHead + kOpAmpDeck);
}

// Two instances of the VHDL-AMS model mylib.counter(rtl). U1 overrides WIDTH by an attribute and
// has values in the instance file; U2 has neither. The model's ports list the bus bits, so the
// bus pin is split into its bits, and RST is not assigned.
const char kCounters[] = R"json({
  "groups": { "G1": { "internal_id": "7A" } },
  "blocks": [
    { "name": "TOP",
      "components": [
        { "label": "U1", "name": "CNT",
          "attributes": { "SIMULATION MODEL": "VHDL", "VHDL MODEL": "mylib.counter(rtl)",
              "PART NUMBER": "PN2",
                          "WIDTH_ATTR": "16" },
          "group": "G1", "number": 1,
          "pins": [ { "name": "CLK", "net": "CK" }, { "name": "D[1:0]", "bus": "D", "nets": [ "D1", "D0" ] },
                    { "name": "Q", "net": "QO" }, { "name": "RST", "net": "GND" } ] },
        { "label": "U2", "name": "CNT",
          "attributes": { "SIMULATION MODEL": "VHDL", "VHDL MODEL": "mylib.counter(rtl)",
              "PART NUMBER": "PN2" },
          "group": "G1", "number": 2,
          "pins": [ { "name": "CLK", "net": "CK" }, { "name": "D[1:0]", "bus": "D", "nets": [ "D1", "D0" ] },
                    { "name": "Q", "net": "QO" }, { "name": "RST", "net": "GND" } ] },
        { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" },
            "definition": { "ORDER": "VALUE$" },
          "pins": [ { "name": "A", "net": "QO" }, { "name": "B", "net": "GND" } ] }
      ] }
  ]
})json";

const char kCounterMapping[] = R"(<?xml version="1.0"?><Models><Part Name="PN2"><Info/><Symbol Name="CNT">
<Model Name="counter" Library="mylib" ModelFile="" ModType=""><Ports>
<Port Assigned="1">CLK</Port><Port Assigned="0">RST</Port>
<Port Assigned="1">D[1]</Port><Port Assigned="1">D[0]</Port><Port Assigned="1">Q</Port></Ports>
<Params><Param Name="WIDTH" Type="integer" DefValue="4"><Value/><Attr>width_attr</Attr></Param>
<Param Name="DEPTH" Type="integer" DefValue="2"><Value/><Attr/></Param>
<Param Name="MODE" Type="string" DefValue="slow"><Value>medium</Value><Attr/></Param>
<Param Name="TPD" Type="real" DefValue="1.0"><Value/><Attr/></Param></Params></Model></Symbol>
</Part></Models>
)";

const char kCounterInstances[] = R"(<?xml version="1.0"?><Instances><Block Name="CNT"><Instance Name="$7AI1">
<Model Name="counter" Library="mylib" ModelFile=""><Params>
<Param Name="WIDTH" Type="integer" DefValue="4">32</Param>
<Param Name="DEPTH" Type="integer" DefValue="3"></Param>
<Param Name="MODE" Type="string" DefValue="slow"></Param>
<Param Name="TPD" Type="real" DefValue="1.0">2.5</Param></Params></Model></Instance></Block>
</Instances>
)";

// A generic's value is the overriding attribute, else the instance file's value, else the
// mapping's content, else the declared default, each without its type. The entity keeps its
// architecture; the directive names the library.
TEST(MappedModelDeckTest, VhdlGenericsFromTheMappingFiles) {
  VeskInput input = KelpoDeck();
  input.files["Sym/Models_Info.xml"] = kCounterMapping;
  input.files["sym/Instances_Info.xml"] = kCounterInstances;
  VeskRun run = RunVesk(kCounters, "-_ -h TOP", input);
  ASSERT_EQ(run.rc, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, kHead +
                          "YU1 counter(rtl) GENERIC: WIDTH=\"16\" DEPTH=\"3\" MODE=\"medium\" TPD=\"2.5\" "
                          "PORT: CK ( D1 D0 ) QO\n"
                          "YU2 counter(rtl) GENERIC: WIDTH=\"4\" DEPTH=\"2\" MODE=\"medium\" TPD=\"1.0\" "
                          "PORT: CK ( D1 D0 ) QO\nR1 QO 0 1000.000000\n* Dictionary 1\n* GND=0\n"
                          ".model counter(rtl) macro lang=vhdlams LIB=mylib\n\n*.END\n\n");
  // A model without ModType writes neither a card nor a parameter file.
  EXPECT_EQ(FolderFiles(run, "sym"), (std::set<std::string>{"Instances_Info.xml"}));
}

}  // namespace
