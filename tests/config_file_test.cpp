// Reading vesk.cfg: every key form, the NAME pairs and the two unit name sets. Where the file is
// looked for and the errors that end a run are pinned by the run-control tests.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

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
  int Read(const std::string& text) {
    std::ofstream("my.cfg", std::ios::binary) << text;
    gen_.configFile = "my.cfg";
    ::testing::internal::CaptureStdout();
    int result = gen_.ReadConfigFile();
    printed_ = ::testing::internal::GetCapturedStdout();
    return result;
  }

  CSpiceGen gen_;
  std::string printed_;
  fs::path root_, old_;
};

TEST_F(ConfigFileTest, CommentsOnlyKeepTheDefaults) {
  EXPECT_EQ(Read("| a comment\n|STRIP_CHARS #\n\n"), 0);
  EXPECT_EQ(printed_, "");
  EXPECT_EQ(gen_.stripChars, "@");
  EXPECT_EQ(gen_.uParNames, kUDefaults);
  EXPECT_EQ(gen_.pParNames, kPDefaults);
}

TEST_F(ConfigFileTest, NextWordAndRestOfLineForms) {
  EXPECT_EQ(Read("STRIP_CHARS #$ extra\r\nCOMMANDS .TRAN  .PARAM\r\nELEMENTS\r\n"
                 "AD ad  x\nAS as\nPS ps\nPD pd\nNRD nrd\nNRS nrs\nSTRIP COMMENTS UNITS\n"
                 "STRIP_COMS ;\nCONTINUE ++ x\nBREAKSTRING x\n"),
            0);
  EXPECT_EQ(gen_.stripChars, "#$");
  EXPECT_EQ(gen_.commands, ".TRAN  .PARAM");
  EXPECT_EQ(gen_.elements, "");
  EXPECT_EQ(gen_.adName, "ad  x");
  EXPECT_EQ(gen_.asName, "as");
  EXPECT_EQ(gen_.psName, "ps");
  EXPECT_EQ(gen_.pdName, "pd");
  EXPECT_EQ(gen_.nrdName, "nrd");
  EXPECT_EQ(gen_.nrsName, "nrs");
  EXPECT_EQ(gen_.stripWords, "COMMENTS UNITS");
  EXPECT_EQ(gen_.stripComs, ";");
  EXPECT_EQ(gen_.continueString, "++");
  EXPECT_EQ(gen_.breakString, "x ");
}

TEST_F(ConfigFileTest, NumbersAreReadByAtoi) {
  EXPECT_EQ(Read("CALC_AREA 2\nCALC_RES 3x\nWL_SPLIT 1\nCSDF\nNOSLASH 1\nSUFFIX2EE 1\n"
                 "NOEQUATION 1\nNOQUOTES 1\nLINELENGHT 80\nACCURACY abc\n"),
            0);
  EXPECT_EQ(gen_.calcArea, 2);
  EXPECT_EQ(gen_.calcRes, 3);
  EXPECT_EQ(gen_.wlSplit, 1);
  EXPECT_EQ(gen_.csdf, 0);
  EXPECT_EQ(gen_.noSlash, 1);
  EXPECT_EQ(gen_.suffix2ee, 1);
  EXPECT_EQ(gen_.noEquation, 1);
  EXPECT_EQ(gen_.noQuotes, 1);
  EXPECT_EQ(gen_.lineLength, 80);
  EXPECT_EQ(gen_.accuracy, 0);
}

TEST_F(ConfigFileTest, KeysAreExactAndLaterLinesWin) {
  EXPECT_EQ(Read("elements R\nELEMENTS R C\n   ELEMENTS   M\n |ELEMENTS X\nADD ELEMENTS Q\nELEMENTSX Y\n"),
            0);
  EXPECT_EQ(gen_.elements, "M");
}

TEST_F(ConfigFileTest, LeadingBlanksKeepTheRestOfLineBehindTheKey) {
  EXPECT_EQ(Read("  COMMANDS  .OP\n"), 0);
  EXPECT_EQ(gen_.commands, " .OP");
}

TEST_F(ConfigFileTest, NameFamilyPairsWithTheNextLine) {
  EXPECT_EQ(Read("GND_NAME GND\nx VSS AGND\nVDD_NAME VDD VCC\ny VDD1\nNAME A\n"), 0);
  EXPECT_EQ(gen_.nameMap["VSS"], "GND");
  EXPECT_EQ(gen_.nameMap["VDD1"], "VDD");
  EXPECT_EQ(gen_.nameMap[""], "A");  // VCC had no partner, nor A
  EXPECT_EQ(gen_.nameMap.size(), 3u);
}

TEST_F(ConfigFileTest, NameSecondLineIsNotReadAsAKey) {
  EXPECT_EQ(Read("NAME N1\nELEMENTS N2\n"), 0);
  EXPECT_EQ(gen_.elements, "ALL");
  EXPECT_EQ(gen_.nameMap["N2"], "N1");
}

TEST_F(ConfigFileTest, UnitListGivenAloneKeepsTheOtherDefault) {
  EXPECT_EQ(Read("UPARNAMS M L\n"), 0);
  EXPECT_EQ(gen_.uParNames, (Names{"M", "L"}));
  EXPECT_EQ(gen_.pParNames, kPDefaults);
}

TEST_F(ConfigFileTest, DefaultListLeavesOutWhatTheOtherListHolds) {
  EXPECT_EQ(Read("PPARNAMS  L W \n"), 0);
  Names withoutLW = kUDefaults;
  withoutLW.erase("L");
  withoutLW.erase("W");
  EXPECT_EQ(gen_.uParNames, withoutLW);
  EXPECT_EQ(gen_.pParNames, (Names{"L", "W"}));
}

TEST_F(ConfigFileTest, PresentEmptyListLeavesItsSetEmpty) {
  EXPECT_EQ(Read("UPARNAMS\nPPARNAMS m\tl\n"), 0);
  EXPECT_TRUE(gen_.uParNames.empty());
  EXPECT_EQ(gen_.pParNames, (Names{"m", "l"}));
}

TEST_F(ConfigFileTest, DefaultsDoNotConflictWithAGivenList) {
  EXPECT_EQ(Read("UPARNAMS AS W\n"), 0);
  EXPECT_EQ(printed_, "");
  Names withoutAS = kPDefaults;
  withoutAS.erase("AS");
  EXPECT_EQ(gen_.pParNames, withoutAS);
}

}  // namespace
