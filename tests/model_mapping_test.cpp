// Tests of the model mapping: which XML elements are found for a component, and what it gets.
// Cards in decks and broken or hostile files in whole runs are pinned by the deck model and XML
// robustness tests.
#include "model/model_mapping.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "model_test_folder.h"

using modeltest::MappedComp;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

const char kBipolarMapping[] = R"(<?xml version="1.0"?>
<Models>
  <Part Name="PN1">
    <Info/>
    <Symbol Name="Q1">
      <Model Name="QMOD" Library="" ModelFile="" ModType="NPN">
        <Ports>
          <Port Assigned="1">C</Port>
          <Port Assigned="0">B</Port>
          <Port Assigned="2">E</Port>
        </Ports>
        <Params>
          <Param Name="RB" Type="" DefValue="5"><Value>7</Value><Attr>rb_attr</Attr></Param>
          <Param Name="CJE" Type="" DefValue="1P"><Value/><Attr/></Param>
        </Params>
      </Model>
    </Symbol>
  </Part>
</Models>
)";

// A VHDL model "counter" in library "mylib", declared under part PN2 for symbol U1.
std::string CounterMapping(const std::string& modelAttributes, const std::string& params) {
  return "<Models><Part Name=\"PN2\"><Info/><Symbol Name=\"U1\"><Model " + modelAttributes +
         " ModType=\"Subckt\"><Ports><Port Assigned=\"1\">CLK</Port></Ports><Params>" + params +
         "</Params></Model></Symbol></Part></Models>";
}

const char kWidthParam[] = "<Param Name=\"WIDTH\" Type=\"integer\" DefValue=\"4\"><V/><A/></Param>";

SpiceComp CounterComp(const std::string& vhdlModel, const std::string& vhdlFile = "") {
  return MappedComp("U1", {{"SIMULATION MODEL", "VHDL"},
                           {"VHDL MODEL", vhdlModel},
                           {"VHDL FILE", vhdlFile},
                           {"PART NUMBER", "PN2"}});
}

bool Mapped(const SpiceComp& comp) { return !comp.Model().modelParameters.empty(); }

class ModelMappingTest : public modeltest::ModelFolder {};

TEST_F(ModelMappingTest, DefaultFileAndInstanceFileAreFoundInAFolderSpelledEitherWay) {
  for (const char* folder : {"sym", "Sym", "SYM"}) {
    std::filesystem::remove_all(root_ / "sym");
    std::filesystem::remove_all(root_ / "Sym");
    std::filesystem::remove_all(root_ / "SYM");
    ClearModelMappingCache();
    Write(std::string(folder) + "/Models_Info.xml", CounterMapping("Name=\"counter\" Library=\"mylib\"", kWidthParam));
    Write(std::string(folder) + "/Instances_Info.xml",
          "<I><Block Name=\"U1\"><Instance Name=\"$1I1\"><Model Name=\"counter\" Library=\"mylib\">"
          "<Params><Param Name=\"WIDTH\" Type=\"integer\">16</Param></Params></Model></Instance></Block></I>");
    SpiceComp comp = CounterComp("mylib.counter");
    MapComponentModel(comp);
    ASSERT_EQ(comp.Model().modelParameters.size(), 1u) << folder;
    EXPECT_EQ(comp.Model().modelParameters[0]->instanceText, "integer:=16") << folder;
  }
}

TEST_F(ModelMappingTest, SymbolIsMatchedByQualifiedNameThenByName) {
  Write("sym/Models_Info.xml",
        "<M><Part Name=\"pn1\"><I/><Symbol Name=\"Q1\"><Model Name=\"qmod\"><P><Port Assigned=\"1\">A</Port></P>"
        "</Model></Symbol><Symbol Name=\"LIB:q1\"><Model Name=\"QMOD\"><P><Port Assigned=\"1\">B</Port></P>"
        "</Model></Symbol></Part></M>");
  SpiceComp qualified = MappedComp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
  qualified.partitionName = "lib";
  ReadModelMapping(qualified);
  EXPECT_EQ(qualified.ModelPinList(), "B ");

  SpiceComp plain = MappedComp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
  plain.partitionName = "other";
  ReadModelMapping(plain);
  EXPECT_EQ(plain.ModelPinList(), "A ");
}

TEST_F(ModelMappingTest, OnlyUnassignedPortsGiveModelPinsButAnEmptyList) {
  Write("sym/Models_Info.xml",
        "<M><Part Name=\"PN1\"><I/><Symbol Name=\"Q1\"><Model Name=\"QMOD\"><P><Port Assigned=\"0\">A</Port>"
        "<Port Assigned=\"zero\">B</Port></P></Model></Symbol></Part></M>");
  SpiceComp comp = MappedComp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
  ReadModelMapping(comp);
  EXPECT_TRUE(comp.HasModelPins());
  EXPECT_EQ(comp.ModelPinList(), "");
}

TEST_F(ModelMappingTest, NamedMappingFileThatIsMissingWarnsAndHasNoFallBack) {
  Write("sym/Models_Info.xml", kBipolarMapping);
  SpiceComp comp = MappedComp(
      "Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}, {"SIMULATION MAPPING", "maps\\none.xml"}});
  comp.label = "Q1LABEL";
  CaptureStdout();
  MapComponentModel(comp);
  EXPECT_EQ(GetCapturedStdout(), "Warning: Could not open Mapping file maps\\none.xml For Component Q1LABEL\n");
  EXPECT_FALSE(comp.HasModelPins());
  EXPECT_FALSE(Mapped(comp));
}

TEST_F(ModelMappingTest, NamedMappingFileGoesThroughEnvironmentExpansion) {
  Write("maps/Bipolar.xml", kBipolarMapping);
  ::setenv("VESK_TEST_MAPS", "maps", 1);
  SpiceComp comp = MappedComp(
      "Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}, {"SIMULATION MAPPING", "${VESK_TEST_MAPS}\\bipolar.xml"}});
  CaptureStdout();
  ReadModelMapping(comp);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(comp.ModelPinList(), "C E ");
  ::unsetenv("VESK_TEST_MAPS");
}

TEST_F(ModelMappingTest, MissingDefaultFileIsSilent) {
  SpiceComp comp = MappedComp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
  CaptureStdout();
  MapComponentModel(comp);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_FALSE(comp.HasModelPins());
}

TEST_F(ModelMappingTest, ComponentWithoutModelOrNameNeverReadsTheFiles) {
  Write("sym/Models_Info.xml", "<broken");
  Write("sym/Instances_Info.xml", "<broken");
  SpiceComp noModel = MappedComp("Q1", {{"PART NUMBER", "PN1"}});
  SpiceComp noName = MappedComp("", {{"MODEL", "QMOD"}});
  CaptureStdout();
  MapComponentModel(noModel);
  MapComponentModel(noName);
  EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(ModelMappingTest, HdlModelSplitsLibraryAndCutsTheArchitecture) {
  Write("sym/Models_Info.xml", CounterMapping("Name=\"Counter\" Library=\"MYLIB\" ModelFile=\"\"", kWidthParam));
  SpiceComp comp = CounterComp("mylib.counter(rtl)");
  ReadModelMapping(comp);
  EXPECT_TRUE(Mapped(comp));

  ClearModelMappingCache();
  Write("sym/Models_Info.xml", CounterMapping("Name=\"counter\" Library=\"work\"", kWidthParam));
  SpiceComp plain = CounterComp("counter");
  ReadModelMapping(plain);
  EXPECT_TRUE(Mapped(plain));
}

TEST_F(ModelMappingTest, CompiledModelCountsAsHavingNoFile) {
  Write("sym/Models_Info.xml",
        CounterMapping("Name=\"counter\" Library=\"mylib\" ModelFile=\"cnt.vhd\" isOstrelCompiled=\"1\"", kWidthParam));
  SpiceComp withoutFile = CounterComp("mylib.counter");
  ReadModelMapping(withoutFile);
  EXPECT_TRUE(Mapped(withoutFile));

  SpiceComp withFile = CounterComp("mylib.counter", "cnt.vhd");
  ReadModelMapping(withFile);
  EXPECT_FALSE(Mapped(withFile));

  ClearModelMappingCache();
  Write("sym/Models_Info.xml",
        CounterMapping("Name=\"counter\" Library=\"mylib\" ModelFile=\"CNT.vhd\" isOstrelCompiled=\"0\"", kWidthParam));
  SpiceComp notCompiled = CounterComp("mylib.counter", "cnt.VHD");
  ReadModelMapping(notCompiled);
  EXPECT_TRUE(Mapped(notCompiled));
}

TEST_F(ModelMappingTest, ModelFileStoredRelativeToTheProjectMatchesOnTheSecondSearch) {
  ::unsetenv("CURRENT_PROJECT_PATH");
  Write("sym/Models_Info.xml",
        CounterMapping("Name=\"counter\" Library=\"mylib\" ModelFile=\".\\lib\\cnt.vhd\"", kWidthParam));
  Write("sym/Instances_Info.xml",
        "<I><Block Name=\"U1\"><Instance Name=\"$1I1\"><Model Name=\"counter\" Library=\"mylib\" "
        "ModelFile=\".\\LIB\\cnt.vhd\"><Params><Param Name=\"WIDTH\">9</Param></Params></Model></Instance>"
        "</Block></I>");
  SpiceComp comp = CounterComp("mylib.counter", std::filesystem::current_path().string() + "/lib/cnt.vhd");
  MapComponentModel(comp);
  ASSERT_EQ(comp.Model().modelParameters.size(), 1u);
  EXPECT_EQ(comp.Model().modelParameters[0]->instanceText, "9");
}

TEST_F(ModelMappingTest, ParametersDifferingByCaseShareOneGeneric) {
  Write("sym/Models_Info.xml",
        CounterMapping("Name=\"counter\" Library=\"mylib\"",
                       "<Param Name=\"W\" DefValue=\"1\"/><Param Name=\"w\" DefValue=\"2\"/>"));
  SpiceComp comp = CounterComp("mylib.counter");
  ReadModelMapping(comp);
  ASSERT_EQ(comp.Model().modelParameters.size(), 2u);
  ASSERT_EQ(comp.Model().modelGenerics.size(), 1u);
  EXPECT_EQ(comp.Model().modelGenerics.at("w")->name, "w");
  EXPECT_EQ(comp.Model().modelGenerics.at("w")->defaultValue, "2");
  EXPECT_EQ(comp.Model().modelGenerics.at("w")->content, "");
}

TEST_F(ModelMappingTest, DeclaredTextJoinsTypeAndDefault) {
  Write("sym/Models_Info.xml",
        CounterMapping("Name=\"counter\" Library=\"mylib\"",
                       "<Param Name=\"A\" Type=\"real\" DefValue=\"1.0\"/><Param Name=\"B\" Type=\"real\"/>"
                       "<Param Name=\"C\" DefValue=\"3\"/><Param Name=\"D\"/>"));
  SpiceComp comp = CounterComp("mylib.counter");
  ReadModelMapping(comp);
  const auto& params = comp.Model().modelParameters;
  ASSERT_EQ(params.size(), 4u);
  EXPECT_EQ(params[0]->declaredText, "real:=1.0");
  EXPECT_EQ(params[0]->type, "real");
  EXPECT_EQ(params[1]->declaredText, "real");
  EXPECT_EQ(params[2]->declaredText, "3");
  EXPECT_EQ(params[3]->declaredText, "");
}

TEST_F(ModelMappingTest, InstanceFileReplacesTheDeclaredListOrKeepsItWhenEmpty) {
  Write("sym/Models_Info.xml",
        CounterMapping("Name=\"counter\" Library=\"mylib\"", std::string(kWidthParam) + "<Param Name=\"D\"/>"));
  Write("sym/Instances_Info.xml",
        "<I><Block Name=\"U1\">"
        "<Instance Name=\"$1I1\"><Model Name=\"counter\" Library=\"mylib\"><Params>"
        "<Param Name=\"WIDTH\" Type=\"integer\" DefValue=\"4\">16</Param>"
        "<Param Name=\"E\" Type=\"real\" DefValue=\"2\"/></Params></Model></Instance>"
        "<Instance Name=\"$1I2\"><Model Name=\"counter\" Library=\"mylib\"><Params/></Model></Instance>"
        "</Block></I>");
  SpiceComp replaced = CounterComp("mylib.counter");
  MapComponentModel(replaced);
  const auto& params = replaced.Model().modelParameters;
  ASSERT_EQ(params.size(), 2u);
  EXPECT_EQ(params[0]->instanceText, "integer:=16");
  EXPECT_EQ(params[0]->declaredText, "integer:=4");
  EXPECT_EQ(params[0]->type, "");
  EXPECT_EQ(params[1]->instanceText, "");
  EXPECT_EQ(params[1]->declaredText, "real:=2");
  EXPECT_EQ(replaced.Model().modelGenerics.size(), 2u);

  SpiceComp kept = MappedComp("U1",
                              {{"SIMULATION MODEL", "VHDL"}, {"VHDL MODEL", "mylib.counter"}, {"PART NUMBER", "PN2"}},
                              "$1I2", "$1I2");
  MapComponentModel(kept);
  ASSERT_EQ(kept.Model().modelParameters.size(), 2u);
  EXPECT_EQ(kept.Model().modelParameters[0]->declaredText, "integer:=4");
}

TEST_F(ModelMappingTest, InstanceStageHasNoDefaultLibrary) {
  Write("sym/Instances_Info.xml",
        "<I><Block Name=\"U1\"><Instance Name=\"$1I1\">"
        "<Model Name=\"counter\" Library=\"work\"><Params><Param Name=\"A\">1</Param></Params></Model>"
        "<Model Name=\"counter\" Library=\"\"><Params><Param Name=\"B\">2</Param></Params></Model>"
        "</Instance></Block></I>");
  SpiceComp comp = CounterComp("counter");
  ReadInstanceMapping(comp);
  ASSERT_EQ(comp.Model().modelParameters.size(), 1u);
  EXPECT_EQ(comp.Model().modelParameters[0]->name, "B");
}

TEST_F(ModelMappingTest, ManyComponentsShareOneParsedFileWithTheSameResults) {
  Write("sym/Models_Info.xml", kBipolarMapping);
  for (int i = 0; i < 50; ++i) {
    SpiceComp comp = MappedComp("Q1", {{"MODEL", "qmod"}, {"PART NUMBER", "pn1"}});
    ReadModelMapping(comp);
    EXPECT_EQ(comp.ModelPinList(), "C E ");
    EXPECT_EQ(comp.Model().modelCards.size(), 0u);  // nothing overridden
  }
}

TEST_F(ModelMappingTest, FindElementByAttributeSkipsTextNodesAndIgnoresCase) {
  Write("x.xml", "<r>text<text Name=\"a\"/><e Name=\"A\" Id=\"1\"/><e Id=\"2\"/></r>");
  xmlDocPtr doc = ParseXmlFile("x.xml");
  ASSERT_NE(doc, nullptr);
  xmlNodePtr first = xmlDocGetRootElement(doc)->children;
  xmlNodePtr found = FindElementByAttribute(first, "Name", "a");
  ASSERT_NE(found, nullptr);
  xmlChar* id = xmlGetProp(found, BAD_CAST "Id");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(id)), "1");
  xmlFree(id);
  xmlNodePtr missing = FindElementByAttribute(first, "Name", "");
  ASSERT_NE(missing, nullptr);
  EXPECT_EQ(missing->next, nullptr);
  EXPECT_EQ(FindElementByAttribute(first, "Name", "b"), nullptr);
}

}  // namespace
