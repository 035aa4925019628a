// Whole frames of the plain dialects, flat and hierarchical, and the deck's file name.
#include "gen/flavours.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/gen_test_support.h"

using gentest::Comp;

namespace {

std::string Head(const std::string& name) {
  return "* Project " + name +
         "\n* Norvane Wirelist Created with Version 6.4.002\n"
         "* File created Thu Jan  1 00:00:00 1970\n\n"
         "* Inifile   :  \n* ConfigFile:  \n* Options   :  \n* Levels    :  \n*\n";
}

class Frames : public gentest::ScratchFolder {
 protected:
  void SetUp() override {
    gentest::ScratchFolder::SetUp();
    ::setenv("SOURCE_DATE_EPOCH", "0", 1);
    ::setenv("TZ", "UTC", 1);
    inventedNodes = 0;
    project.rootBlock.name = "TOP";
  }
  void TearDown() override {
    ::unsetenv("SOURCE_DATE_EPOCH");
    globalNets.clear();
    gentest::ScratchFolder::TearDown();
  }
  // A flat design: R1 from IN to GND.
  void Flat() {
    project.rootBlock.comps.push_back(
        Comp("R1", {{"ORDER", "VALUE$"}, {"VALUE", "1K"}}, {{"1", "IN"}, {"2", "GND"}}));
  }
  // A hierarchical design: block AMP with ports IN, OUT and R1 between them; X1 of it in TOP.
  void Hierarchical() {
    SpiceBlock amp;
    amp.name = "AMP";
    amp.ports = {gentest::Net("IN"), gentest::Net("OUT")};
    amp.comps.push_back(Comp("R1", {{"ORDER", "VALUE$"}, {"VALUE", "1K"}}, {{"1", "IN"}, {"2", "OUT"}}));
    project.subBlocks.push_back(amp);
    SpiceComp x1 = Comp("X1", {{"X", ""}}, {{"IN", "A"}, {"OUT", "GND"}}, 2);
    x1.childBlockName = "AMP";
    project.rootBlock.comps.push_back(x1);
  }
  template <class Gen>
  std::string Run(CSpiceGen& options) {
    Gen gen(options);
    gen.Run(project);
    gen.out.Close();
    return gentest::ReadText(root_ / "TOP.cir");
  }
  CSpiceGen options;
  SpiceProject project;
};

const char kFlatBody[] = "R1 1 0 1000.000000\n* Dictionary 2\n* GND = 0\n* IN = 1\n\n";

TEST_F(Frames, PspiceFlat) {
  Flat();
  EXPECT_EQ(Run<PspiceGen>(options), Head("TOP") + kFlatBody + "*.END\n");
}

TEST_F(Frames, EmptyRootWarnsOfTheMissingGround) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(Run<PspiceGen>(options),
            Head("TOP") + "* Dictionary 0\n*Warning : No ground node (Label a net GND)\n*.END\n");
  testing::internal::GetCapturedStdout();
}

TEST_F(Frames, HspiceFlatClosesWithOptions) {
  Flat();
  options.wirelistKind = kHspice;
  EXPECT_EQ(Run<HspiceGen>(options), Head("TOP") + kFlatBody + ".OPTIONS INGOLD=2 CSDF=2\n*.END\n");
}

TEST_F(Frames, BerkeleyWritesGlobalsAndPspiceDoesNot) {
  Flat();
  globalNets["VDD"] = "VDD";
  options.wirelistKind = kBerkeley;
  EXPECT_EQ(Run<GSpiceGen>(options), Head("TOP") +
                                         "R1 1 0 1000.000000\n* Dictionary 2\n* GND = 0\n* IN = 1\n" +
                                         "\n*Globals \n.global VDD\n\n*.END\n");
  inventedNodes = 0;
  options.wirelistKind = kPspice;
  EXPECT_EQ(Run<PspiceGen>(options), Head("TOP") + kFlatBody + "*.END\n");
}

const char kAmpLines[] =
    "\n*Definition For Project AMP\n"
    ".SUBCKT AMP 1 2\n"
    "R1 1 2 1000.000000\n"
    "\n* CROSS-REFERENCE 2\n* OUT = 2\n* IN = 1\n";
const char kRootLines[] = "X1 1 0 AMP \n\n* Dictionary 2\n* GND = 0\n* A = 1\n\n";

TEST_F(Frames, PspiceHierarchical) {
  Hierarchical();
  options.flatten = 0;
  EXPECT_EQ(Run<PspiceGen>(options), Head("TOP") + kAmpLines + "\n.ENDS\n\n" + kRootLines + "*.END\n");
}

TEST_F(Frames, HspiceHierarchicalDiffersInTheDefinitionEnd) {
  Hierarchical();
  options.flatten = 0;
  options.wirelistKind = kHspice;
  EXPECT_EQ(Run<HspiceGen>(options),
            Head("TOP") + kAmpLines + ".ENDS\n\n" + kRootLines + ".OPTIONS INGOLD=2 CSDF=2\n*.END\n");
}

TEST_F(Frames, BerkeleyHierarchicalInstanceHasNoBody) {
  Hierarchical();
  options.flatten = 0;
  options.wirelistKind = kBerkeley;
  EXPECT_EQ(Run<GSpiceGen>(options), Head("TOP") + kAmpLines + ".ENDS\n\n" +
                                         "X1 1 0 AMP\n\n* Dictionary 2\n* GND = 0\n* A = 1\n\n*.END\n");
}

TEST_F(Frames, DraculaFlatMakesTheRootTheOnlyDefinition) {
  Flat();
  options.wirelistKind = kHspice;
  options.dracula = true;
  options.useNodeNames = true;
  EXPECT_EQ(Run<HspiceGen>(options), Head("TOP") +
                                         "\n*Definition For Project TOP\n.SUBCKT TOP\n"
                                         "R1 IN 0 1000.000000\n* CROSS-REFERENCE 1\n* GND = 0\n"
                                         ".ENDS\n\n* Dictionary 0\n\n");
}

TEST_F(Frames, DraculaHierarchicalPutsTheRootLast) {
  Hierarchical();
  options.flatten = 0;
  options.wirelistKind = kHspice;
  options.dracula = true;
  EXPECT_EQ(Run<HspiceGen>(options), Head("TOP") + kAmpLines + ".ENDS\n\n" +
                                         "\n*Definition For Project TOP\n.SUBCKT TOP\n"
                                         "X1 1 0 AMP \n\n* CROSS-REFERENCE 2\n* GND = 0\n* A = 1\n.ENDS\n\n"
                                         "\n* Dictionary 0\n\n");
}

TEST_F(Frames, QuietDeckHasNoDictionary) {
  Flat();
  options.dictionary = false;
  EXPECT_EQ(Run<PspiceGen>(options), Head("TOP") + "R1 1 0 1000.000000\n\n*.END\n");
}

TEST_F(Frames, ComponentLoopSkipsNamelessAndStopsAtBareComponents) {
  SpiceComp nameless = Comp("", {{"X", ""}}, {{"1", "GND"}});
  nameless.label = "U9";
  SpiceComp bare = Comp("R9", {{"ORDER", "\"NEVER\""}}, {{"1", "GND"}});
  bare.hasAttributes = false;
  project.rootBlock.comps = {nameless, Comp("R1", {{"ORDER", "\"1\""}}, {{"1", "GND"}}), bare,
                             Comp("R2", {{"ORDER", "\"2\""}}, {{"1", "GND"}})};
  testing::internal::CaptureStdout();
  const std::string deck = Run<PspiceGen>(options);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "*Note : Skipping Component U9\n");
  EXPECT_EQ(deck,
            Head("TOP") + "*Note : Skipping Component U9\nR1 0 1\n* Dictionary 1\n* GND = 0\n\n*.END\n");
}

TEST_F(Frames, NameMapGivesANetTheNodeOfAnother) {
  project.rootBlock.comps.push_back(Comp("R1", {{"ORDER", "\"1\""}}, {{"1", "AGND"}, {"2", "IN"}}));
  project.rootBlock.nodeMap["GND"] = "0";
  PspiceGen gen(options);
  gen.nameMap["AGND"] = "GND";
  gen.Run(project);
  gen.out.Close();
  EXPECT_EQ(gentest::ReadText(root_ / "TOP.cir"),
            Head("TOP") + "R1 0 1 1\n* Dictionary 2\n* IN = 1\n* AGND = 0\n\n*.END\n");
}

class DeckPath : public gentest::ScratchFolder {
 protected:
  std::string Open(CSpiceGen& gen) {
    SpiceProject project;
    project.rootBlock.name = "TOP";
    gen.OpenWirelist(project);
    gen.out.Close();
    return gen.circuitPath;
  }
};

TEST_F(DeckPath, NamedAfterTheRootByDefault) {
  CSpiceGen gen;
  EXPECT_EQ(Open(gen), "TOP.cir");
  EXPECT_TRUE(std::filesystem::exists(root_ / "TOP.cir"));
}

TEST_F(DeckPath, NameExtensionAndFolderSwitches) {
  CSpiceGen gen;
  gen.circuitFileName = "out";
  gen.circuitExtension = "net";
  EXPECT_EQ(Open(gen), "out.net");
  gen.outputFolder = "decks\\run1";
  EXPECT_EQ(Open(gen), "decks\\run1\\out.net");
  EXPECT_TRUE(std::filesystem::exists(root_ / "decks" / "run1" / "out.net"));
}

TEST_F(DeckPath, KelpoDecksLieInTheirGeneratedFolder) {
  CSpiceGen gen;
  gen.wirelistKind = kKelpo;
  EXPECT_EQ(Open(gen), "genhdl\\TOP\\TOP.cir");
  EXPECT_TRUE(std::filesystem::exists(root_ / "genhdl" / "TOP" / "TOP.cir"));
}

TEST(Flavours, ConstructionCopiesTheOptionsButTheRootPath) {
  CSpiceGen options;
  options.levels = std::make_shared<LevelList>(LevelList{"L1"});
  options.useNodeNames = true;
  options.circuitFileName = "deck";
  options.rootPath = "lib!top";
  options.lineLength = 80;
  PspiceGen gen(options);
  EXPECT_TRUE(gen.useNodeNames);
  EXPECT_EQ(gen.circuitFileName, "deck");
  EXPECT_EQ(gen.rootPath, "");
  EXPECT_EQ(gen.levels, options.levels);
  EXPECT_EQ(gen.lineLength, 0);
}

}  // namespace
