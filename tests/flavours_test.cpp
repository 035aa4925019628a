// The component loop of a deck frame and the name map: what whole-deck tests cannot reach.
#include "gen/flavours.h"

#include <gtest/gtest.h>

#include <cstdlib>

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
    gentest::ScratchFolder::TearDown();
  }
  std::string Run(PspiceGen& gen) {
    gen.Run(project);
    gen.out.Close();
    return gentest::ReadText(root_ / "TOP.cir");
  }
  CSpiceGen options;
  SpiceProject project;
};

TEST_F(Frames, ComponentLoopSkipsNamelessAndStopsAtBareComponents) {
  SpiceComp nameless = Comp("", {{"X", ""}}, {{"1", "GND"}});
  nameless.label = "U9";
  SpiceComp bare = Comp("R9", {{"ORDER", "\"NEVER\""}}, {{"1", "GND"}});
  bare.hasAttributes = false;
  project.rootBlock.comps = {nameless, Comp("R1", {{"ORDER", "\"1\""}}, {{"1", "GND"}}), bare,
                             Comp("R2", {{"ORDER", "\"2\""}}, {{"1", "GND"}})};
  testing::internal::CaptureStdout();
  PspiceGen gen(options);
  const std::string deck = Run(gen);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "*Note : Skipping Component U9\n");
  EXPECT_EQ(deck,
            Head("TOP") + "*Note : Skipping Component U9\nR1 0 1\n* Dictionary 1\n* GND = 0\n\n*.END\n");
}

TEST_F(Frames, NameMapGivesANetTheNodeOfAnother) {
  project.rootBlock.comps.push_back(Comp("R1", {{"ORDER", "\"1\""}}, {{"1", "AGND"}, {"2", "IN"}}));
  project.rootBlock.nodeMap["GND"] = "0";
  PspiceGen gen(options);
  gen.nameMap["AGND"] = "GND";
  EXPECT_EQ(Run(gen), Head("TOP") + "R1 0 1 1\n* Dictionary 2\n* IN = 1\n* AGND = 0\n\n*.END\n");
}

}  // namespace
