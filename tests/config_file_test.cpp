// Reading vesk.cfg: every key form, the NAME pairs and the two unit name sets. Where the file is
// looked for and the errors that end a run are pinned by the run-control tests.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "gen/spice_gen.h"

namespace fs = std::filesystem;

namespace {

using Names = std::set<std::string>;

const Names kUDefaults = {"M",  "L",  "W",  "S",   "D",   "LP",  "PL",  "WP",  "PW", "LN",
                          "NL", "WN", "NW", "PSN", "PDN", "NPS", "NPD", "PSP", "PDP"};
const Names kPDefaults = {"AS", "AD", "ADP", "AND", "ASP", "ASN"};

class ConfigFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    root_ = fs::temp_directory_path() / ("vesk-config-" + std::to_string(::getpid()) + "-" + info->name());
    fs::remove_all(root_);
    fs::create_directories(root_ / "galt" / "standard");
    old_ = fs::current_path();
    fs::current_path(root_);
    ::setenv("GALT_HOME", "galt", 1);
  }
  void TearDown() override {
    fs::current_path(old_);
    fs::remove_all(root_);
    ::unsetenv("GALT_HOME");
  }

  // Reads `text` as the file given by -k; returns the result and keeps the printed text.
  int Read(const std::string& text) { return Read(text, gen_); }
  int Read(const std::string& text, CSpiceGen& gen) {
    std::ofstream("my.cfg", std::ios::binary) << text;
    gen.options.configFile = "my.cfg";
    ::testing::internal::CaptureStdout();
    int result = gen.ReadConfigFile();
    printed_ = ::testing::internal::GetCapturedStdout();
    return result;
  }

  CSpiceGen gen_;
  std::string printed_;
  fs::path root_, old_;
};

TEST_F(ConfigFileTest, NextWordAndRestOfLineForms) {
  EXPECT_EQ(Read("| a comment\n|STRIP_CHARS #\n\nCOMMANDS .TRAN  .PARAM\r\nELEMENTS\r\n"
                 "AD ad  x\nAS as\nNRD nrd\nSTRIP COMMENTS UNITS\n"
                 "STRIP_COMS ;\nCONTINUE ++ x\nBREAKSTRING x\n"),
            0);
  EXPECT_EQ(printed_, "");
  EXPECT_EQ(gen_.config.stripChars, "@");
  EXPECT_EQ(gen_.config.commands, ".TRAN  .PARAM");
  EXPECT_EQ(gen_.config.elements, "");
  EXPECT_EQ(gen_.config.adName, "ad  x");
  EXPECT_EQ(gen_.config.asName, "as");
  EXPECT_EQ(gen_.config.nrdName, "nrd");
  EXPECT_EQ(gen_.config.stripWords, "COMMENTS UNITS");
  EXPECT_EQ(gen_.config.stripComs, ";");
  EXPECT_EQ(gen_.config.continueString, "++");
  EXPECT_EQ(gen_.config.breakString, "x ");
  EXPECT_EQ(Read("CALC_RES 3x\nCSDF\nLINELENGHT 80\nACCURACY abc\n"), 0);  // numbers are read by atoi
  EXPECT_EQ(gen_.config.calcRes, 3);
  EXPECT_EQ(gen_.config.csdf, 0);
  EXPECT_EQ(gen_.config.lineLength, 80);
  EXPECT_EQ(gen_.config.accuracy, 0);
}

// PATHS takes a word; only WINDOWS (any case) asks for the classic path text.
TEST_F(ConfigFileTest, PathsKeyChoosesTheFormOfSimulatorPaths) {
  EXPECT_FALSE(gen_.config.WindowsPaths());  // NATIVE by default
  const std::pair<const char*, bool> cases[] = {
      {"PATHS WINDOWS\n", true},
      {"PATHS windows extra\n", true},
      {"PATHS NATIVE\n", false},
      {"PATHS\n", false},
      {"PATHS WINDOWS7\n", false},
      {"paths WINDOWS\n", false},
      {"PATHS WINDOWS\nPATHS NATIVE\n", false},
  };
  for (const auto& [text, windows] : cases) {
    CSpiceGen gen;
    EXPECT_EQ(Read(text, gen), 0) << text;
    EXPECT_EQ(gen.config.WindowsPaths(), windows) << text;
  }
}

TEST_F(ConfigFileTest, KeysAreExactAndLaterLinesWin) {
  EXPECT_EQ(Read("elements R\nELEMENTS R C\n   ELEMENTS   M\n |ELEMENTS X\nADD ELEMENTS Q\nELEMENTSX Y\n"),
            0);
  EXPECT_EQ(gen_.config.elements, "M");
  EXPECT_EQ(Read("  COMMANDS  .OP\n"), 0);  // leading blanks keep the rest of the line behind the key
  EXPECT_EQ(gen_.config.commands, " .OP");
}

TEST_F(ConfigFileTest, NameFamilyPairsWithTheNextLine) {
  EXPECT_EQ(Read("GND_NAME GND\nx VSS AGND\nVDD_NAME VDD VCC\ny VDD1\nNAME A\n"), 0);
  EXPECT_EQ(gen_.config.nameMap["VSS"], "GND");
  EXPECT_EQ(gen_.config.nameMap["VDD1"], "VDD");
  EXPECT_EQ(gen_.config.nameMap[""], "A");  // VCC had no partner, nor A
  EXPECT_EQ(gen_.config.nameMap.size(), 3u);
  EXPECT_EQ(Read("NAME N1\nELEMENTS N2\n"), 0);  // the second line is not read as a key
  EXPECT_EQ(gen_.config.elements, "ALL");
  EXPECT_EQ(gen_.config.nameMap["N2"], "N1");
}

// A list given alone keeps the other default without the names it holds; a present empty list
// leaves its set empty.
TEST_F(ConfigFileTest, UnitNameSets) {
  Names uWithoutLW = kUDefaults, pWithoutAS = kPDefaults;
  uWithoutLW.erase("L");
  uWithoutLW.erase("W");
  pWithoutAS.erase("AS");
  const std::tuple<const char*, Names, Names> cases[] = {
      {"| nothing\n", kUDefaults, kPDefaults},      {"UPARNAMS M L\n", {"M", "L"}, kPDefaults},
      {"PPARNAMS  L W \n", uWithoutLW, {"L", "W"}}, {"UPARNAMS\nPPARNAMS m\tl\n", {}, {"m", "l"}},
      {"UPARNAMS AS W\n", {"AS", "W"}, pWithoutAS},
  };
  for (const auto& [text, u, p] : cases) {
    CSpiceGen gen;
    EXPECT_EQ(Read(text, gen), 0) << text;
    EXPECT_EQ(printed_, "") << text;
    EXPECT_EQ(gen.config.uParNames, u) << text;
    EXPECT_EQ(gen.config.pParNames, p) << text;
  }
}

}  // namespace
