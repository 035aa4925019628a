// Parameter files of instance models: found and read once per pass for all instances of a model.
#include "post/instance_parameters.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

class InstanceParametersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    root_ = fs::temp_directory_path() / ("vesk-params-" + std::to_string(::getpid()) + "-" + info->name());
    fs::remove_all(root_);
    fs::create_directories(root_ / "sym");
    old_ = fs::current_path();
    fs::current_path(root_);
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
  }

  // The lines behind instance `instance` of `model`; `line` is rewritten in place.
  std::string Load(const std::string& instance, const std::string& model, std::string& line) {
    std::string current = instance;
    return LoadInstanceParameters(instance, model, line, internalNames_, current, cache_);
  }

  fs::path root_, old_;
  std::unordered_map<std::string, std::string> internalNames_ = {{"x1", "$7ai1"}, {"x2", "$7ai2"}};
  ParameterFileCache cache_;
};

TEST_F(InstanceParametersTest, EachInstanceOfAModelGetsWhatTheFilesHeldAtItsFirstInstance) {
  std::ofstream("sym/SUBX.par") << "* SUBY\n.PARAM P=1\n";
  std::ofstream("sym/SUBX-param.txt") << "* subx $7ai2\n+ B=2\n*end\n";
  std::string line1 = "X1 1 2 SUBX ", line2 = "X2 2 3 SUBX ";
  EXPECT_EQ(Load("X1", "SUBX", line1), ".PARAM P=1\n");  // no section of X1: the .par file's lines
  EXPECT_EQ(line1, "X1 1 2  SUBY");                      // the text behind "*", blank included
  // Files changed or removed during the pass do not change the deck.
  fs::remove("sym/SUBX.par");
  fs::remove("sym/SUBX-param.txt");
  EXPECT_EQ(Load("X2", "SUBX", line2), "+ B=2\n");  // X2's section
  EXPECT_EQ(line2, "X2 2 3  SUBY");
}

TEST_F(InstanceParametersTest, AModelWithoutFilesStaysWithoutForThePass) {
  std::string line = "X1 1 2 SUBZ ";
  EXPECT_EQ(Load("X1", "SUBZ", line), "");
  EXPECT_EQ(line, "X1 1 2 SUBZ ");
  std::ofstream("sym/SUBZ.par") << "* OTHER\n";
  EXPECT_EQ(Load("X2", "SUBZ", line), "");
  EXPECT_EQ(line, "X1 1 2 SUBZ ");
  // A new cache (the next pass) finds the file.
  cache_.clear();
  EXPECT_EQ(Load("X2", "SUBZ", line), "");
  EXPECT_EQ(line, "X1 1 2  OTHER");
}

}  // namespace

namespace {

// The post pass looks for no model's files when sym holds none: the one listing must see every
// name the lookups of single files would find, in any case.
TEST_F(InstanceParametersTest, SymHoldsParameterFilesSeesEveryNameTheLookupsWouldFind) {
  EXPECT_FALSE(SymHoldsParameterFiles());
  std::ofstream("sym/notes.txt") << "x\n";
  std::ofstream("sym/A.mod") << "x\n";
  fs::create_directories("sym/old.par.d");
  EXPECT_FALSE(SymHoldsParameterFiles());
  for (const char* name : {"sym/AMP.PAR", "sym/amp-Param.TXT", "sym/..par"}) {
    std::ofstream(name) << "* X\n";
    EXPECT_TRUE(SymHoldsParameterFiles()) << name;
    fs::remove(name);
  }
  fs::remove_all("sym");
  EXPECT_FALSE(SymHoldsParameterFiles());
  fs::create_directories("Sym");
  std::ofstream("Sym/amp.par") << "* X\n";
  EXPECT_TRUE(SymHoldsParameterFiles());  // the folder's name too is matched ignoring case
}

}  // namespace
