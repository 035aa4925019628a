// The whole program's run control: help, exit codes, configuration errors, deck naming, ini file, -x.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>

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

// Help switches anywhere answer before the database is opened (status 0); switches alone name no
// group (status 2); an unknown group (group names are case-sensitive) is reported once, ahead of a
// missing configuration (status 4). None of them writes a deck.
TEST(HelpTest, MessagesOfRunsThatWriteNoDeck) {
  const std::tuple<const char*, std::string, int> cases[] = {
      {"", kUsage, 0},
      {"-? mydesign", kUsage, 0},
      {"mydesign -help", kUsage, 0},
      {"-helpme", kUsage, 0},
      {"-n -?x mydesign", kUsage, 0},
      {"-n -h", "Database Required\n", 2},
      {"MyDesign", "Testbench does not exist \n", 4},
  };
  for (const auto& [args, output, rc] : cases) {
    VeskRun run = RunVesk(kDesign, args);
    EXPECT_EQ(run.rc, rc) << args;
    EXPECT_EQ(run.output, output) << args;
    EXPECT_FALSE(run.Exists("TOP.cir")) << args;
  }
  VeskRun run = RunVesk(kDesign, "-x NOPE", NoConfig());
  EXPECT_EQ(run.rc, 4);
  EXPECT_EQ(run.output, "Testbench does not exist \n");
  EXPECT_FALSE(run.Exists("TOP.cir"));
  EXPECT_FALSE(run.Exists("NOPE.cir"));
  EXPECT_FALSE(run.Exists("NOPE.xrf"));
}

// A missing configuration, the default or the one -k names, and a name in both unit lists end
// the run with code 1 before any file is written.
TEST(ConfigErrorTest, ConfigurationErrorsEndWithCodeOneAndNoFiles) {
  VeskInput both;
  both.config = "UPARNAMS M L W AD\r\nPPARNAMS AS AD W\r\n";
  const std::tuple<const char*, VeskInput, std::string> cases[] = {
      {"-x mydesign", NoConfig(), "Error: No Configuration File Found \n"},
      {"-kother.cfg mydesign", VeskInput(), "Error: No Configuration File Found \n"},
      {"mydesign", both,
       "Error: The same attribute is listed in both UPARNAMS and PPARNAMS keys in configuration "
       "file:\nAD\nW\n"},
  };
  for (const auto& [args, input, output] : cases) {
    VeskRun run = RunVesk(kDesign, args, input);
    EXPECT_EQ(run.rc, 1) << args;
    EXPECT_EQ(run.output, output) << args;
    EXPECT_FALSE(run.Exists("TOP.cir")) << args;
    EXPECT_FALSE(run.Exists("mydesign.xrf")) << args;
  }
  VeskInput input = NoConfig();
  input.files["my.cfg"] = "| nothing to change\r\n";
  VeskRun run = RunVesk(kDesign, "-kmy.cfg mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.deck, FlatDeck("-kmy.cfg mydesign", "my.cfg"));
}

// Where the deck goes: named after the root block unless -! and -. say otherwise, in the folder
// -% names, or as the ini file found here, in WDIR's folders or their "latest" folders says;
// the command line overrides the ini file, which is read up to 512 bytes and whose switches
// stay out of the options line. Level names do not reach the database.
TEST(DeckNameTest, DeckPathFromSwitchesAndIniFile) {
  struct Case {
    const char* args;
    std::map<std::string, std::string> files;
    const char* wdir;
    const char* deckPath;
  };
  const Case cases[] = {
      {"mydesign", {}, "", "TOP.cir"},
      {"mydesign top sub", {}, "", "TOP.cir"},
      {"-!out -.net mydesign", {}, "", "out.net"},
      {"-%decks\\spice -!out mydesign", {}, "", "decks/spice/out.cir"},
      {"mydesign", {{"vesk.ini", "-!fromini\n-q"}}, "", "fromini\n-q.cir"},
      {"-!TOP -d mydesign", {{"vesk.ini", "-!fromini -q\n"}}, "", "TOP.cir"},
      {"mydesign",
       {{"vesk.ini", std::string(500, ' ') + "-!TOP -.cir -q"}},
       "",
       "TOP.cir"},  // "-q" lies behind the cut
      {"mydesign",
       {{"ini2/vesk.ini", "-!second"}, {"ini1/latest/vesk.ini", "-!first"}},
       "missing;ini1;ini2",
       "first.cir"},
      {"mydesign",
       {{"ini2/vesk.ini", "-!second"}, {"ini1/latest/vesk.ini", "-!first"}, {"latest/vesk.ini", "-!latest"}},
       "missing;ini1;ini2",
       "latest.cir"},
  };
  for (const Case& c : cases) {
    VeskInput input;
    input.files = c.files;
    if (*c.wdir) input.env["WDIR"] = c.wdir;
    input.deckPath = c.deckPath;
    VeskRun run = RunVesk(kDesign, c.args, input);
    EXPECT_EQ(run.rc, 0) << c.args << " " << c.deckPath;
    EXPECT_EQ(run.output, "") << c.args << " " << c.deckPath;
    EXPECT_EQ(run.deck, FlatDeck(c.args)) << c.args << " " << c.deckPath;
    if (std::string(c.deckPath) != "TOP.cir") {
      EXPECT_FALSE(run.Exists("TOP.cir")) << c.deckPath;
    }
  }
}

TEST(IniFileTest, IniSwitchesApplyButStayOutOfTheOptionsLine) {
  VeskInput input;
  input.files["vesk.ini"] = "-q\r\n-!fromini\r\n";
  input.deckPath = "fromini.cir";
  VeskRun run = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_NE(run.deck.find("* Options   :  mydesign\n"), std::string::npos) << run.deck;
  EXPECT_EQ(run.deck.find("* Dictionary"), std::string::npos) << run.deck;
  input.files["vesk.ini"] = std::string(498, ' ') + "-!TOP -.cir -q";
  input.deckPath = "TOP.cir";
  VeskRun whole = RunVesk(kDesign, "mydesign", input);
  EXPECT_EQ(whole.deck.find("* Dictionary"), std::string::npos) << whole.deck;
}

TEST(DeckNameTest, CrossReferenceSideFileIsNamedAfterTheGroup) {
  VeskRun run = RunVesk(kDesign, "-x mydesign");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.Read("mydesign.xrf"), "V 2 0 0\n");
  EXPECT_EQ(run.deck, FlatDeck("-x mydesign"));
  VeskRun without = RunVesk(kDesign, "-r mydesign");
  EXPECT_FALSE(without.Exists("mydesign.xrf"));
}

}  // namespace
