// Instance parameters from sym\<model>.par and sym\<model>-param.txt.
#include "post/instance_parameters.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_map>

namespace fs = std::filesystem;

namespace {

class InstanceParametersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() / ("vesk-instance-params-" + std::to_string(::getpid()));
    fs::remove_all(root_);
    fs::create_directories(root_ / "Sym");
    old_ = fs::current_path();
    fs::current_path(root_);
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
  }
  void Write(const std::string& name, const std::string& text) {
    std::ofstream(root_ / "Sym" / name, std::ios::binary) << text;
  }
  std::string Load(const std::string& instance, const std::string& model) {
    current_ = instance;
    return LoadInstanceParameters(instance, model, line_, internalNames_, current_);
  }
  fs::path root_, old_;
  std::string line_ = "X1 A B OPAMP ";
  std::string current_;
  std::unordered_map<std::string, std::string> internalNames_{{"x1", "U7"}};
};

const char kParamText[] =
    "* opamp u7\n"
    "+ GAIN=10\n"
    "\n"
    "not a parameter line\n"
    "+ BW=1MEG\n"
    "*end\n"
    "+ OUTSIDE=1\n"
    "* opamp u8\n"
    "+ GAIN=20\n"
    "*end\n"
    "* OPAMP U7\n"
    "+ UPPER=1\n"
    "*end\n"
    "* opamp u7 again\n"
    "+ MORE=2\r\n"
    "*end\n";

TEST_F(InstanceParametersTest, NoFileLeavesEverything) {
  EXPECT_EQ(Load("X1", "OPAMP"), "");
  EXPECT_EQ(line_, "X1 A B OPAMP ");
  EXPECT_EQ(current_, "X1");
}

TEST_F(InstanceParametersTest, ParFileOnlyReplacesModelAndAddsItsLines) {
  Write("OPAMP.par", "*OPAMP_V2 * old\n.PARAM X=1\n\n+ Y=2\n");
  EXPECT_EQ(Load("X1", "OPAMP"), ".PARAM X=1\n\n+ Y=2\n");
  EXPECT_EQ(line_, "X1 A B OPAMP_V2 * old");
  EXPECT_EQ(current_, "");
}

TEST_F(InstanceParametersTest, ParFirstLineWithoutStarCountsWhole) {
  Write("OPAMP.par", "NEWMODEL\r\nlast line without end");
  EXPECT_EQ(Load("X1", "OPAMP"), "last line without end\n");
  EXPECT_EQ(line_, "X1 A B NEWMODEL");
}

TEST_F(InstanceParametersTest, ParamFileOnlyKeepsTheLine) {
  Write("OPAMP-param.txt", kParamText);
  EXPECT_EQ(Load("X1", "OPAMP"), "+ GAIN=10\n+ BW=1MEG\n+ MORE=2\n");
  EXPECT_EQ(line_, "X1 A B OPAMP ");
  EXPECT_EQ(current_, "");
}

TEST_F(InstanceParametersTest, BothFilesTakeTheSectionAndTheParModelName) {
  Write("OPAMP.par", "*OPAMP_V2\n.PARAM X=1\n");
  Write("OPAMP-param.txt", kParamText);
  EXPECT_EQ(Load("x1", "OPAMP"), "+ GAIN=10\n+ BW=1MEG\n+ MORE=2\n");
  EXPECT_EQ(line_, "X1 A B OPAMP_V2");
}

TEST_F(InstanceParametersTest, BothFilesWithoutMatchingSectionTakeTheParLines) {
  Write("OPAMP.par", "*OPAMP_V2\n.PARAM X=1\n");
  Write("OPAMP-param.txt", kParamText);
  internalNames_["x1"] = "U9";
  EXPECT_EQ(Load("X1", "OPAMP"), ".PARAM X=1\n");
  EXPECT_EQ(line_, "X1 A B OPAMP_V2");
}

TEST_F(InstanceParametersTest, LineWithoutBlankGetsTheModelBehindIt) {
  Write("OPAMP.par", "*OPAMP_V2\n");
  line_ = "X1";
  EXPECT_EQ(Load("X1", "OPAMP"), "");
  EXPECT_EQ(line_, "X1 OPAMP_V2");
}

TEST_F(InstanceParametersTest, EmptyParFileHasNoFirstLine) {
  Write("OPAMP.par", "");
  EXPECT_EQ(Load("X1", "OPAMP"), "");
  EXPECT_EQ(line_, "X1 A B OPAMP ");
  EXPECT_EQ(current_, "");
}

TEST(ReadParameterSectionTest, NamesAreLowerCasedFileIsNot) {
  std::string path = (fs::temp_directory_path() / ("vesk-section-" + std::to_string(::getpid()))).string();
  std::ofstream(path) << kParamText;
  std::string text = "kept ";
  EXPECT_TRUE(ReadParameterSection(path, "OPAMP", "U8", text));
  EXPECT_EQ(text, "kept + GAIN=20\n");
  text.clear();
  EXPECT_FALSE(ReadParameterSection(path, "OPAMP", "U5", text));
  EXPECT_EQ(text, "");
  EXPECT_FALSE(ReadParameterSection(path + ".missing", "OPAMP", "U7", text));
  fs::remove(path);
}

}  // namespace
