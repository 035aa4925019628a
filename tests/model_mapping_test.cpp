// The model mapping's lookups that no deck reaches: qualified symbol names, unassigned ports,
// named mapping files, the work library, compiled and project-relative model files, generics that
// differ by case, empty instance entries. Cards in decks and broken or hostile files in whole runs
// are pinned by the deck model and XML robustness tests.
#include "model/model_mapping.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "design/spice_comp.h"
#include "model/model_files.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

namespace fs = std::filesystem;

// Each test runs in an empty folder of its own, with no mapping or parameter file held.
class ModelMappingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() / ("vesk-model-" + std::to_string(::getpid()) + "-" +
                                         ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root_);
    fs::create_directories(root_);
    old_ = fs::current_path();
    fs::current_path(root_);
    ClearModelMappingCache();
    ResetParameterFiles();
  }
  void TearDown() override {
    ResetParameterFiles();
    ClearModelMappingCache();
    fs::current_path(old_);
    fs::remove_all(root_);
  }
  void Write(const std::string& path, const std::string& text) {
    fs::create_directories((root_ / path).parent_path());
    std::ofstream(root_ / path, std::ios::binary) << text;
  }
  fs::path root_, old_;
};

// A component as the hierarchical load leaves it before the mapping runs.
SpiceComp MappedComp(const std::string& name, const std::vector<std::pair<std::string, std::string>>& attrs,
                     const std::string& internalName = "$1I1", const std::string& instancePath = "$1I1") {
  SpiceComp comp;
  comp.name = comp.label = comp.refName = name;
  comp.hasAttributes = true;
  comp.internalName = internalName;
  comp.instancePath = instancePath;
  for (const auto& [key, value] : attrs) comp.attrs.Set(key, value);
  return comp;
}

// Part PN1, symbol Q1: model QMOD with the ports C, B and E, of which B is not assigned.
const char kBipolarMapping[] =
    "<Models><Part Name=\"PN1\"><Info/><Symbol Name=\"Q1\"><Model Name=\"QMOD\" Library=\"\" ModelFile=\"\" "
    "ModType=\"NPN\"><Ports><Port Assigned=\"1\">C</Port><Port Assigned=\"0\">B</Port>"
    "<Port Assigned=\"2\">E</Port></Ports><Params/></Model></Symbol></Part></Models>";

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

// The qualified name "LIB:q1" comes before the plain one; only unassigned ports give model pins,
// and when none is assigned the list is empty but there.
TEST_F(ModelMappingTest, SymbolIsMatchedByQualifiedNameThenByName) {
  Write("sym/Models_Info.xml",
        "<M><Part Name=\"pn1\"><I/><Symbol Name=\"Q1\"><Model Name=\"qmod\"><P><Port "
        "Assigned=\"1\">A</Port></P>"
        "</Model></Symbol><Symbol Name=\"LIB:q1\"><Model Name=\"QMOD\"><P><Port Assigned=\"1\">B</Port></P>"
        "</Model></Symbol><Symbol Name=\"Q2\"><Model Name=\"QMOD\"><P><Port Assigned=\"0\">A</Port>"
        "<Port Assigned=\"zero\">B</Port></P></Model></Symbol></Part></M>");
  for (const auto& [partition, pins] : {std::pair<const char*, const char*>{"lib", "B "}, {"other", "A "}}) {
    SpiceComp comp = MappedComp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
    comp.partitionName = partition;
    ReadModelMapping(comp);
    EXPECT_EQ(comp.ModelPinList(), pins) << partition;
  }
  SpiceComp comp = MappedComp("Q2", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}});
  ReadModelMapping(comp);
  EXPECT_TRUE(comp.HasModelPins());
  EXPECT_EQ(comp.ModelPinList(), "");
}

TEST_F(ModelMappingTest, NamedMappingFileThatIsMissingWarnsAndHasNoFallBack) {
  Write("sym/Models_Info.xml", kBipolarMapping);
  SpiceComp comp =
      MappedComp("Q1", {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}, {"SIMULATION MAPPING", "maps\\none.xml"}});
  comp.label = "Q1LABEL";
  CaptureStdout();
  MapComponentModel(comp);
  EXPECT_EQ(GetCapturedStdout(),
            "Warning: Could not open Mapping file maps\\none.xml For Component Q1LABEL\n");
  EXPECT_FALSE(comp.HasModelPins());
  EXPECT_FALSE(Mapped(comp));
}

TEST_F(ModelMappingTest, NamedMappingFileGoesThroughEnvironmentExpansion) {
  Write("maps/Bipolar.xml", kBipolarMapping);
  ::setenv("VESK_TEST_MAPS", "maps", 1);
  SpiceComp comp = MappedComp(
      "Q1",
      {{"MODEL", "QMOD"}, {"PART NUMBER", "PN1"}, {"SIMULATION MAPPING", "${VESK_TEST_MAPS}\\bipolar.xml"}});
  CaptureStdout();
  ReadModelMapping(comp);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(comp.ModelPinList(), "C E ");
  ::unsetenv("VESK_TEST_MAPS");
}

// A model without library is looked up in "work"; a compiled model counts as having no file,
// and a model file matches the component's ignoring case.
TEST_F(ModelMappingTest, HdlModelLibraryAndFile) {
  const std::tuple<const char*, const char*, const char*, bool> cases[] = {
      {"Name=\"counter\" Library=\"work\"", "counter", "", true},
      {"Name=\"counter\" Library=\"mylib\" ModelFile=\"cnt.vhd\" isOstrelCompiled=\"1\"", "mylib.counter", "",
       true},
      {"Name=\"counter\" Library=\"mylib\" ModelFile=\"cnt.vhd\" isOstrelCompiled=\"1\"", "mylib.counter",
       "cnt.vhd", false},
      {"Name=\"counter\" Library=\"mylib\" ModelFile=\"CNT.vhd\" isOstrelCompiled=\"0\"", "mylib.counter",
       "cnt.VHD", true},
  };
  for (const auto& [model, vhdlModel, vhdlFile, mapped] : cases) {
    ClearModelMappingCache();
    Write("sym/Models_Info.xml", CounterMapping(model, kWidthParam));
    SpiceComp comp = CounterComp(vhdlModel, vhdlFile);
    ReadModelMapping(comp);
    EXPECT_EQ(Mapped(comp), mapped) << model << " " << vhdlFile;
  }
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

TEST_F(ModelMappingTest, EmptyInstanceEntryKeepsTheDeclaredList) {
  Write("sym/Models_Info.xml", CounterMapping("Name=\"counter\" Library=\"mylib\"",
                                              std::string(kWidthParam) + "<Param Name=\"D\"/>"));
  Write("sym/Instances_Info.xml",
        "<I><Block Name=\"U1\"><Instance Name=\"$1I2\"><Model Name=\"counter\" Library=\"mylib\"><Params/>"
        "</Model></Instance></Block></I>");
  SpiceComp kept = MappedComp(
      "U1", {{"SIMULATION MODEL", "VHDL"}, {"VHDL MODEL", "mylib.counter"}, {"PART NUMBER", "PN2"}}, "$1I2",
      "$1I2");
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

}  // namespace
