// Help switches, switch clusters and the ini file, where the run-control tests do not reach:
// every switch letter, tokens without a dash, a folder named like the ini file.
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
    ::unsetenv("WDIR");
  }

  // Parses `args` (without the program name) into `options`; returns the group or "".
  std::string Parse(CSpiceGen& options, std::vector<const char*> args) {
    args.insert(args.begin(), "vesk");
    const char* group = nullptr;
    options.ParseArguments(&group, static_cast<int>(args.size()), args.data());
    return group ? group : "";
  }

  void WriteFile(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path().empty() ? "." : path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }

  fs::path root_, old_;
};

int Help(std::vector<const char*> args, std::string& printed) {
  args.insert(args.begin(), "vesk");
  ::testing::internal::CaptureStdout();
  int result = CSpiceGen::CheckHelp(static_cast<int>(args.size()), args.data());
  printed = ::testing::internal::GetCapturedStdout();
  return result;
}

TEST(CheckHelpTest, AnswersHelpSwitchesByPrefixAndCase) {
  std::string printed;
  EXPECT_EQ(Help({}, printed), 1);
  EXPECT_EQ(printed.rfind("Usage:  vesk <switches> groupname levelname\n\n", 0), 0u);
  EXPECT_EQ(Help({"design", "-?"}, printed), 1);
  EXPECT_EQ(Help({"-help"}, printed), 1);
  EXPECT_EQ(Help({"-helpme"}, printed), 1);
  EXPECT_EQ(Help({"-HELP", "design"}, printed), 0);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(Help({"-n", "design"}, printed), 0);
}

TEST_F(OptionsTest, DefaultsHoldWithoutSwitches) {
  CSpiceGen options;
  EXPECT_EQ(Parse(options, {"mydesign"}), "mydesign");
  EXPECT_EQ(options.optionsString, "mydesign ");
  EXPECT_EQ(options.wirelistKind, 1);
  EXPECT_EQ(options.flatten, 1);
  EXPECT_TRUE(options.dictionary);
  EXPECT_EQ(options.maxNameChars, 256);
  EXPECT_EQ(options.printWord, ".PROBE");
  EXPECT_EQ(options.circuitExtension, "cir");
  EXPECT_EQ(options.loadAttribute, "LOAD");
  EXPECT_TRUE(options.levels->empty());
}

TEST_F(OptionsTest, PositionalArgumentsAreGroupThenLevelsNewestFirst) {
  CSpiceGen options;
  EXPECT_EQ(Parse(options, {"design", "top", "sub"}), "design");
  EXPECT_EQ(*options.levels, (LevelList{"sub", "top"}));
  CSpiceGen other;
  EXPECT_EQ(Parse(other, {"-lABC", "-lDEF", "design"}), "design");
  EXPECT_EQ(*other.levels, (LevelList{"DEF", "ABC"}));
  EXPECT_EQ(other.optionsString, "-lABC -lDEF design ");
}

TEST_F(OptionsTest, ValueSwitchesTakeTheRestOfTheirToken) {
  CSpiceGen options;
  EXPECT_EQ(Parse(options, {"-kconfig.cfg", "-gHead.inc", "-o", "-c", "d"}), "d");
  EXPECT_EQ(options.configFile, "config.cfg");
  EXPECT_EQ(options.headerFile, "Head.inc");
  EXPECT_EQ(options.firstOrder, "");
  EXPECT_EQ(options.maxNameChars, 0);
  CSpiceGen spaced;
  EXPECT_EQ(Parse(spaced, {"-k", "config.cfg"}), "config.cfg");
  EXPECT_EQ(spaced.configFile, "");
  CSpiceGen cluster;
  Parse(cluster, {"-nkfoo", "-c12x", "-!out", "-.net", "-%C:\\x", "-=", "-@p.txt", "-jTOP\\A", "-yQ"});
  EXPECT_TRUE(cluster.useNodeNames);
  EXPECT_EQ(cluster.configFile, "foo");
  EXPECT_EQ(cluster.maxNameChars, 12);
  EXPECT_EQ(cluster.circuitFileName, "out");
  EXPECT_EQ(cluster.circuitExtension, "net");
  EXPECT_EQ(cluster.outputFolder, "C:\\x");
  EXPECT_EQ(cluster.loadAttribute, "");
  EXPECT_EQ(cluster.paramFile, "p.txt");
  EXPECT_EQ(cluster.rootPath, "TOP\\A");
  EXPECT_EQ(cluster.firstPrefix, "Q");
}

TEST_F(OptionsTest, FlagClustersAndLetterCase) {
  CSpiceGen options;
  Parse(options, {"-nhv", "-QX", "-w", "-z", "-i", "-a", "-t", "-r", "-b", "-$", "-+", "-7", "-8", "-9"});
  EXPECT_TRUE(options.useNodeNames);
  EXPECT_EQ(options.flatten, 0);
  EXPECT_TRUE(options.noParamWarning);
  EXPECT_TRUE(options.verbose);
  EXPECT_FALSE(options.dictionary);
  EXPECT_TRUE(options.crossReference);
  EXPECT_EQ(options.printWord, ".PRINT");
  EXPECT_EQ(options.readModFiles, 0);
  EXPECT_TRUE(options.ignorePrints && options.alien && options.attWirelist && options.ratings);
  EXPECT_TRUE(options.dereplicate && options.noSort && options.probeAll && options.analogDeps);
  EXPECT_EQ(options.includeSources, 1);
  EXPECT_EQ(options.wirelistKind, 1);
  CSpiceGen hash;
  Parse(hash, {"-#", "-u"});
  EXPECT_TRUE(hash.useNodeNames);
}

TEST_F(OptionsTest, DialectSwitchesActInOrder) {
  CSpiceGen hspice;
  Parse(hspice, {"-m"});
  EXPECT_EQ(hspice.wirelistKind, 3);
  EXPECT_FALSE(hspice.dracula);
  CSpiceGen berkeley;
  Parse(berkeley, {"-e", "-s"});
  EXPECT_EQ(berkeley.wirelistKind, 4);
  EXPECT_TRUE(berkeley.dracula);
  CSpiceGen draculaFirst;
  Parse(draculaFirst, {"-p", "-e"});
  EXPECT_EQ(draculaFirst.wirelistKind, 3);
  EXPECT_TRUE(draculaFirst.useNodeNames);
}

TEST_F(OptionsTest, PspiceYieldsToAnEarlierDracula) {
  CSpiceGen options;
  ::testing::internal::CaptureStdout();
  Parse(options, {"-e", "-p"});
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "Ignoring -p switch since wirelisting to Dracula III ... \n");
  EXPECT_EQ(options.wirelistKind, 3);
}

TEST_F(OptionsTest, KelpoSwitchAndItsDoubledForm) {
  CSpiceGen single;
  Parse(single, {"-.net", "-_", "-_"});
  EXPECT_EQ(single.wirelistKind, 2);
  EXPECT_TRUE(single.useNodeNames);
  EXPECT_EQ(single.circuitExtension, "cir");
  EXPECT_EQ(single.hdlSpiceSources, 0);
  CSpiceGen doubled;
  Parse(doubled, {"-__"});
  EXPECT_EQ(doubled.hdlSpiceSources, 1);
}

TEST_F(OptionsTest, ParseSwitchesCountsSwitchCharacters) {
  CSpiceGen options;
  EXPECT_EQ(options.ParseSwitches("-nhv"), 3);
  EXPECT_EQ(options.ParseSwitches("-kfile.cfg"), 1);
  EXPECT_EQ(options.ParseSwitches("-u-"), 0);
}

TEST_F(OptionsTest, IniTokensAreSwitchesEvenWithoutDash) {
  WriteFile("vesk.ini", "n design");
  CSpiceGen options;
  EXPECT_EQ(Parse(options, {}), "");
  EXPECT_TRUE(options.useNodeNames);
}

TEST_F(OptionsTest, FolderNamedLikeTheIniFileDoesNotCount) {
  fs::create_directories("vesk.ini");
  std::string path;
  EXPECT_NE(CSpiceGen::FindOnSearchPath("vesk.ini", path), 0);
  CSpiceGen options;
  ::testing::internal::CaptureStderr();
  Parse(options, {"d"});
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(OptionsTest, UnreadableIniIsReportedOnStandardError) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
  WriteFile("vesk.ini", "-n");
  fs::permissions("vesk.ini", fs::perms::none);
  CSpiceGen options;
  ::testing::internal::CaptureStderr();
  Parse(options, {"d"});
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Could not open ini file!\n");
  EXPECT_FALSE(options.useNodeNames);
}

}  // namespace
