// Value switches and the ini file where the run-control tests do not reach: a switch cluster
// ending in a value, values in the next token, tokens without a dash, a folder named like the ini
// file, an unreadable ini file. The flag letters are pinned by the decks they change.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "gen/spice_gen.h"

namespace fs = std::filesystem;

namespace {

// Runs each case in an empty working folder of its own, without WDIR.
class OptionsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    root_ = fs::temp_directory_path() / ("vesk-options-" + std::to_string(::getpid()) + "-" + info->name());
    fs::remove_all(root_);
    fs::create_directories(root_);
    old_ = fs::current_path();
    fs::current_path(root_);
    ::unsetenv("WDIR");
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
  }

  // Parses `args` (without the program name) into `options`; returns the group or "".
  std::string Parse(CSpiceGen& options, std::vector<const char*> args) {
    args.insert(args.begin(), "vesk");
    const char* group = nullptr;
    options.ParseArguments(&group, static_cast<int>(args.size()), args.data());
    return group ? group : "";
  }

  fs::path root_, old_;
};

TEST_F(OptionsTest, ValueSwitchesTakeTheRestOfTheirToken) {
  CSpiceGen options;
  EXPECT_EQ(Parse(options, {"-kconfig.cfg", "-gHead.inc", "-o", "-c", "d", "top", "sub"}), "d");
  EXPECT_EQ(options.options.configFile, "config.cfg");
  EXPECT_EQ(options.options.headerFile, "Head.inc");
  EXPECT_EQ(options.options.firstOrder, "");
  EXPECT_EQ(options.options.maxNameChars, 0);
  EXPECT_EQ(*options.options.levels, (LevelList{"sub", "top"}));
  CSpiceGen spaced;
  EXPECT_EQ(Parse(spaced, {"-k", "config.cfg"}), "config.cfg");
  EXPECT_EQ(spaced.options.configFile, "");
  CSpiceGen cluster;
  Parse(cluster, {"-nkfoo", "-c12x", "-!out", "-.net", "-%C:\\x", "-=", "-@p.txt", "-jTOP\\A", "-yQ", "-lABC",
                  "-lDEF"});
  EXPECT_TRUE(cluster.options.useNodeNames);
  EXPECT_EQ(cluster.options.configFile, "foo");
  EXPECT_EQ(cluster.options.maxNameChars, 12);
  EXPECT_EQ(cluster.options.circuitFileName, "out");
  EXPECT_EQ(cluster.options.circuitExtension, "net");
  EXPECT_EQ(cluster.options.outputFolder, "C:\\x");
  EXPECT_EQ(cluster.options.loadAttribute, "");
  EXPECT_EQ(cluster.options.paramFile, "p.txt");
  EXPECT_EQ(cluster.options.rootPath, "TOP\\A");
  EXPECT_EQ(cluster.options.firstPrefix, "Q");
  EXPECT_EQ(*cluster.options.levels, (LevelList{"DEF", "ABC"}));
}

// Flag letters that no deck test passes, in a cluster and in capitals.
TEST_F(OptionsTest, FlagsNoDeckShows) {
  CSpiceGen options;
  Parse(options, {"-tB", "-$", "-+", "-8"});
  EXPECT_TRUE(options.options.attWirelist && options.options.noParamWarning && options.options.dereplicate &&
              options.options.noSort && options.options.probeAll);
}

TEST_F(OptionsTest, IniFileCorners) {
  std::ofstream("vesk.ini", std::ios::binary) << "n design";  // tokens are switches even without a dash
  CSpiceGen options;
  EXPECT_EQ(Parse(options, {}), "");
  EXPECT_TRUE(options.options.useNodeNames);
  if (::geteuid() != 0) {  // root reads every file
    fs::permissions("vesk.ini", fs::perms::none);
    CSpiceGen unreadable;
    ::testing::internal::CaptureStderr();
    Parse(unreadable, {"d"});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Could not open ini file!\n");
    EXPECT_FALSE(unreadable.options.useNodeNames);
  }
  fs::remove("vesk.ini");
  fs::create_directories("vesk.ini");  // a folder named like the ini file does not count
  std::string path;
  EXPECT_NE(CSpiceGen::FindOnSearchPath("vesk.ini", path), 0);
  CSpiceGen folder;
  ::testing::internal::CaptureStderr();
  Parse(folder, {"d"});
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
