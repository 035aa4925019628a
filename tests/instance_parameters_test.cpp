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
  std::string line_;
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

TEST_F(InstanceParametersTest, ParAndParamFilesGiveTheLinesAndTheModelName) {
  struct Case {
    const char* par;  // the .par file; nullptr: none
    bool section;     // whether the -param.txt file is there
    const char* internal;
    const char* line;
    const char* lines;  // what follows the instance line
    const char* lineAfter;
    const char* current;  // the instance still waiting for its parameters
  };
  const Case cases[] = {
      {nullptr, false, "U7", "X1 A B OPAMP ", "", "X1 A B OPAMP ", "X1"},
      {"*OPAMP_V2 * old\n.PARAM X=1\n\n+ Y=2\n", false, "U7", "X1 A B OPAMP ", ".PARAM X=1\n\n+ Y=2\n",
       "X1 A B OPAMP_V2 * old", ""},
      {"NEWMODEL\r\nlast line without end", false, "U7", "X1 A B OPAMP ", "last line without end\n",
       "X1 A B NEWMODEL", ""},
      {nullptr, true, "U7", "X1 A B OPAMP ", "+ GAIN=10\n+ BW=1MEG\n+ MORE=2\n", "X1 A B OPAMP ", ""},
      // Both files: the section wins over the lines of the .par file, which still names the model.
      {"*OPAMP_V2\n.PARAM X=1\n", true, "U7", "X1 A B OPAMP ", "+ GAIN=10\n+ BW=1MEG\n+ MORE=2\n",
       "X1 A B OPAMP_V2", ""},
      {"*OPAMP_V2\n.PARAM X=1\n", true, "U9", "X1 A B OPAMP ", ".PARAM X=1\n", "X1 A B OPAMP_V2", ""},
      {"*OPAMP_V2\n", false, "U7", "X1", "", "X1 OPAMP_V2", ""},
      {"", false, "U7", "X1 A B OPAMP ", "", "X1 A B OPAMP ", ""},  // an empty .par has no first line
  };
  for (const Case& c : cases) {
    fs::remove(root_ / "Sym" / "OPAMP.par");
    fs::remove(root_ / "Sym" / "OPAMP-param.txt");
    if (c.par) Write("OPAMP.par", c.par);
    if (c.section) Write("OPAMP-param.txt", kParamText);
    internalNames_["x1"] = c.internal;
    line_ = c.line;
    EXPECT_EQ(Load("X1", "OPAMP"), c.lines) << c.lineAfter;
    EXPECT_EQ(line_, c.lineAfter);
    EXPECT_EQ(current_, c.current) << c.lineAfter;
  }
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
