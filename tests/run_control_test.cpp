// The whole program's run control: help, missing inputs, exit codes, deck naming, ini file.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "tests/deck_harness.h"

namespace {

const char* const kDesign = R"({
  "testbenches": { "mydesign": "TOP" },
  "blocks": [
    { "name": "TOP",
      "components": [
        { "label": "R1", "name": "RES.1",
          "attributes": { "VALUE": "1K" },
          "definition": { "ORDER": "VALUE$" },
          "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] }
      ] }
  ]
})";

const char* const kUsage =
    "Usage:  vesk <switches> groupname levelname\n\n"
    "where <switches> are one or more of the following:\n"
    "  -a        Alien Simulator (no defaults)\n"
    "  -b        No warning for Parameterized Attributes\n"
    "  -cnn      Set max chars in name to nn\n"
    "  -d        Write DICTIONARY (Default)\n"
    "  -e        Wirelist to Dracula\n"
    "  -f        Flatten the wirelist (Default)\n"
    "  -g<fname> Specify Header file name\n"
    "  -h        Hierarchical wirelist:  not flat\n"
    "  -i        Ignore .PRINTs or .PROBEs\n"
    "  -j        No GUI, execute from the command line\n"
    "  -k<fname> Specify Config file name\n"
    "  -lXX      Use XX as additional LEVEL= match\n"
    "  -m        Metasoftware's HSPICE wirelist\n"
    "  -n        Use node names, not numbers\n"
    "  -oXX      Use XX as first choice ORDER=\n"
    "  -p        Wirelist to Pspice (Default)\n"
    "  -q        Quiet ... No Dictionary\n"
    "  -r        Write out a ratings file\n"
    "  -s        Berkeley SPICE wirelist.\n"
    "  -t        Wirelist to AT&T\n"
    "  -v        Write a VERBOSE dictionary\n"
    "  -w        Use .Print instead of .Probe\n"
    "  -x        Write cross reference file\n"
    "  -yXX      Use XX as first choice PREFIX=\n"
    "  -z        Ignore reading in .MOD files\n"
    "  -#        Use node numbers (Default)\n"
    "  -9        Fennic-Analog Dependencies\n"
    "  -@<fname> Parameterized Attribute file name\n"
    "  -.<fext>  Change circuit file ext from default=cir\n"
    "  -!<fname> Change circuit file name from default=proj\n"
    "  -=<name>  Change from \"LOAD\" attribute to \"name\".\n"
    "  -+        Do not sort Dracula wirelist\n"
    "  -_        Norvane Kelpo wirelist\n"
    "  -$        De-replicate the hierarchy\n"
    "  -%        Specify folder of output file\n";

// The Pspice deck of kDesign after both passes; `options` as the header shows them.
std::string FlatDeck(const std::string& options, const std::string& config = "galt\\standard\\vesk.cfg") {
  return "\n"
         "* Project TOP\n"
         "* Norvane Wirelist Created with Version 6.4.002\n"
         "* File created <date>\n"
         "\n"
         "* Inifile   :\n"
         "* ConfigFile:  " +
         config +
         "\n"
         "* Options   :  " +
         options +
         "\n"
         "* Levels    :\n"
         "*\n"
         "R1 1 0 1000.000000\n"
         "* Dictionary 2\n"
         "* GND=0\n"
         "* IN = 1\n"
         "\n"
         "*.END\n";
}

VeskInput NoConfig() {
  VeskInput input;
  input.config.reset();
  return input;
}

TEST(HelpTest, NoArgumentsPrintTheUsage) {
  VeskRun run = RunVesk(kDesign, "");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, kUsage);
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

TEST(HelpTest, HelpSwitchesAnywhereAnswerBeforeTheDatabase) {
  for (const char* args : {"-? mydesign", "mydesign -help", "-helpme", "-n -?x mydesign"}) {
    VeskRun run = RunVesk(kDesign, args);
    EXPECT_EQ(run.rc, 0) << args;
    EXPECT_EQ(run.output, kUsage) << args;
    EXPECT_FALSE(run.Exists("TOP.cir")) << args;
  }
}

TEST(HelpTest, SwitchesAloneAreNoGroup) {
  VeskRun run = RunVesk(kDesign, "-n -h");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, "Database Required\n");
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

TEST(DesignErrorTest, UnknownGroupIsReportedTwiceAndHidesAConfigError) {
  VeskRun run = RunVesk(kDesign, "-x NOPE", NoConfig());
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, "Testbench does not exist \nTestbench does not exist \n");
  EXPECT_FALSE(run.Exists("TOP.cir"));
  EXPECT_FALSE(run.Exists("NOPE.cir"));
  EXPECT_FALSE(run.Exists("NOPE.xrf"));
}

TEST(DesignErrorTest, GroupNamesAreCaseSensitive) {
  VeskRun run = RunVesk(kDesign, "MyDesign");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, "Testbench does not exist \nTestbench does not exist \n");
}

TEST(DesignErrorTest, MissingDatabaseEndsQuietlyWithoutDeck) {
  VeskRun run = RunVesk("", "mydesign");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\n", 0), 0u) << run.output;
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2) << run.output;
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

TEST(DesignErrorTest, CorruptDatabaseIsNoCrash) {
  VeskInput input;
  input.files["database/placeholder"] = "";
  VeskRun run = RunVesk("", "mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\n", 0), 0u) << run.output;
  EXPECT_FALSE(run.Exists("TOP.cir"));

  // A database whose files hold garbage.
  VeskRun imported = RunVesk(kDesign, "mydesign", NoConfig());
  for (const auto& entry : std::filesystem::recursive_directory_iterator(imported.folder + "/database")) {
    if (!entry.is_regular_file()) continue;
    std::filesystem::resize_file(entry.path(), 0);
    std::filesystem::resize_file(entry.path(), 4096);
  }
  std::string output, errors;
  int rc =
      RunProgram(BinaryDir() + "/vesk", "mydesign", imported.folder, {{"GALT_HOME", "galt"}}, output, errors);
  EXPECT_EQ(rc, 0) << output << errors;
  EXPECT_NE(output.find("Couldn't Open TESSEL DataBase\n"), std::string::npos) << output;
  EXPECT_FALSE(imported.Exists("TOP.cir"));
}

TEST(ConfigErrorTest, MissingConfigurationEndsWithCodeOneAndNoFiles) {
  VeskRun run = RunVesk(kDesign, "-x mydesign", NoConfig());
  EXPECT_EQ(run.rc, 1);
  EXPECT_EQ(run.output, "Error: No Configuration File Found \n");
  EXPECT_FALSE(run.Exists("TOP.cir"));
  EXPECT_FALSE(run.Exists("mydesign.xrf"));
}

TEST(ConfigErrorTest, ConfigurationPathFromSwitchReplacesTheDefault) {
  VeskInput input = NoConfig();
  input.files["my.cfg"] = "| nothing to change\r\n";
  VeskRun run = RunVesk(kDesign, "-kmy.cfg mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("-kmy.cfg mydesign", "my.cfg"));
  VeskRun missing = RunVesk(kDesign, "-kother.cfg mydesign");
  EXPECT_EQ(missing.rc, 1);
  EXPECT_EQ(missing.output, "Error: No Configuration File Found \n");
}

TEST(ConfigErrorTest, NameInBothUnitListsEndsWithCodeOne) {
  VeskInput input;
  input.config = "UPARNAMS M L W AD\r\nPPARNAMS AS AD W\r\n";
  VeskRun run = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(run.rc, 1);
  EXPECT_EQ(run.output,
            "Error: The same attribute is listed in both UPARNAMS and PPARNAMS keys in configuration file:\n"
            "AD\nW\n");
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

TEST(DeckNameTest, DefaultDeckIsNamedAfterTheRootBlock) {
  VeskRun run = RunVesk(kDesign, "mydesign");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, FlatDeck("mydesign"));
}

TEST(DeckNameTest, NameAndExtensionSwitches) {
  VeskInput input;
  input.deckPath = "out.net";
  VeskRun run = RunVesk(kDesign, "-!out -.net mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("-!out -.net mydesign"));
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

TEST(DeckNameTest, OutputFolderIsCreatedTwoLevelsDeep) {
  VeskInput input;
  input.deckPath = "decks/spice/out.cir";
  VeskRun run = RunVesk(kDesign, "-%decks\\spice -!out mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("-%decks\\spice -!out mydesign"));
}

TEST(DeckNameTest, KelpoDeckLiesInTheGenhdlFolder) {
  VeskRun run = RunVesk(kDesign, "-_ mydesign");
  EXPECT_EQ(run.rc, 0);
  EXPECT_TRUE(run.Exists("genhdl/TOP/TOP.cir"));
  EXPECT_FALSE(run.Exists("TOP.cir"));
}

TEST(DeckNameTest, CrossReferenceSideFileIsNamedAfterTheGroup) {
  VeskRun run = RunVesk(kDesign, "-x mydesign");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.Read("mydesign.xrf"), "V 2 0 0\n");
  EXPECT_EQ(run.deck, FlatDeck("-x mydesign"));
  VeskRun without = RunVesk(kDesign, "-r mydesign");
  EXPECT_FALSE(without.Exists("mydesign.xrf"));
}

TEST(IniFileTest, IniSwitchesApplyButStayOutOfTheOptionsLine) {
  VeskInput input;
  input.files["vesk.ini"] = "-q\r\n-!fromini\r\n";
  input.deckPath = "fromini.cir";
  VeskRun run = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_NE(run.deck.find("* Options   :  mydesign\n"), std::string::npos) << run.deck;
  EXPECT_EQ(run.deck.find("* Dictionary"), std::string::npos) << run.deck;
}

TEST(IniFileTest, LineEndInsideAnIniValueBelongsToIt) {
  VeskInput input;
  input.files["vesk.ini"] = "-!fromini\n-q";
  input.deckPath = "fromini\n-q.cir";
  VeskRun run = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("mydesign"));
}

TEST(IniFileTest, CommandLineOverridesTheIniFile) {
  VeskInput input;
  input.files["vesk.ini"] = "-!fromini -q\n";
  VeskRun run = RunVesk(kDesign, "-!TOP -d mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("-!TOP -d mydesign"));
}

TEST(IniFileTest, IniIsCutAtFiveHundredTwelveBytes) {
  VeskInput input;
  input.files["vesk.ini"] = std::string(500, ' ') + "-!TOP -.cir -q";  // "-q" lies behind the cut
  VeskRun cut = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(cut.deck, FlatDeck("mydesign"));
  input.files["vesk.ini"] = std::string(498, ' ') + "-!TOP -.cir -q";
  VeskRun whole = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(whole.deck.find("* Dictionary"), std::string::npos) << whole.deck;
}

TEST(IniFileTest, IniIsFoundThroughWdir) {
  VeskInput input;
  input.files["ini2/vesk.ini"] = "-!second";
  input.files["ini1/latest/vesk.ini"] = "-!first";
  input.env["WDIR"] = "missing;ini1;ini2";
  input.deckPath = "first.cir";
  VeskRun run = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(run.deck, FlatDeck("mydesign"));
  input.files["latest/vesk.ini"] = "-!latest";
  input.deckPath = "latest.cir";
  VeskRun local = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(local.deck, FlatDeck("mydesign"));
}

TEST(LevelTest, LevelNamesDoNotReachTheDatabase) {
  VeskRun run = RunVesk(kDesign, "mydesign top sub");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("mydesign top sub"));
}

}  // namespace
