// The block dictionary, its ground warning, and the -x side file.
#include <gtest/gtest.h>

#include <filesystem>

#include "gen/spice_gen.h"
#include "tests/gen_test_support.h"

using gentest::Comp;

namespace {

class Dictionary : public ::testing::Test {
 protected:
  void SetUp() override { gentest::Ready(gen); }
  CSpiceGen gen;
};

TEST_F(Dictionary, NewestEntryFirst) {
  gen.WritePins(Comp("R1", {{"X", ""}}, {{"1", "A"}, {"2", "GND"}}), false);
  gen.out.OpenInMemory();
  gen.WriteDictionary(0);
  EXPECT_EQ(gen.out.Text(), "* Dictionary 2\n* GND = 0\n* A = 1\n");
  EXPECT_TRUE(gen.dictionaryLines.Empty());
}

TEST_F(Dictionary, NodeNamesLeaveOnlyGround) {
  gen.useNodeNames = true;
  gen.WritePins(Comp("R1", {{"X", ""}}, {{"1", "A"}, {"2", "GND"}}), false);
  gen.out.OpenInMemory();
  gen.WriteDictionary(0);
  EXPECT_EQ(gen.out.Text(), "* Dictionary 1\n* GND = 0\n");
}

TEST_F(Dictionary, DuplicatesAreDropped) {
  gen.AddDictionaryLine("* A = 1");
  gen.AddDictionaryLine("* B = 2");
  gen.AddDictionaryLine("* A = 1");
  gen.groundSeen = true;
  gen.WriteDictionary(0);
  EXPECT_EQ(gen.out.Text(), "* Dictionary 2\n* B = 2\n* A = 1\n");
}

TEST_F(Dictionary, InternalNetNamesOnlyWhenVerbose) {
  gen.AddDictionaryLine("* $12N3 = 4");
  EXPECT_TRUE(gen.dictionaryLines.Empty());
  gen.verbose = true;
  gen.AddDictionaryLine("* $12N3 = 4");
  gen.verbose = false;
  gen.probeAll = true;
  gen.AddDictionaryLine("* $12N4 = 5");
  EXPECT_EQ(gen.dictionaryLines.Size(), 2u);
}

TEST_F(Dictionary, MissingGroundIsWarnedInTheRootOnly) {
  gen.AddDictionaryLine("* A = 1");
  testing::internal::CaptureStdout();
  gen.WriteDictionary(0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "*Warning : No ground node (Label a net GND)\n");
  EXPECT_EQ(gen.out.Text(), "* Dictionary 1\n* A = 1\n*Warning : No ground node (Label a net GND)");

  gentest::Ready(gen);
  gen.AddDictionaryLine("* A = 1");
  gen.WriteDictionary(1);
  EXPECT_EQ(gen.out.Text(), "* CROSS-REFERENCE 1\n* A = 1\n");
}

TEST_F(Dictionary, GroundInANetNameIsEnough) {
  gen.AddDictionaryLine("* AGND = 3");
  gen.WriteDictionary(0);
  EXPECT_EQ(gen.out.Text(), "* Dictionary 1\n* AGND = 3\n");
}

TEST_F(Dictionary, HierarchicalDeckPutsAnEmptyLineAhead) {
  gen.flatten = 0;
  gen.groundSeen = true;
  gen.WriteDictionary(1);
  gen.WriteDictionary(0);
  EXPECT_EQ(gen.out.Text(), "\n* CROSS-REFERENCE 0\n\n* Dictionary 0\n");
}

class CrossReference : public gentest::ScratchFolder {};

TEST_F(CrossReference, SideFileHoldsOneLine) {
  CSpiceGen gen;
  gen.crossReference = true;
  gen.OpenCrossReference("lib\\design");
  EXPECT_EQ(gentest::ReadText(root_ / "lib" / "design.xrf"), "V 2 0 0\n");
}

TEST_F(CrossReference, NothingWithoutTheSwitch) {
  CSpiceGen gen;
  gen.ratings = true;
  gen.OpenCrossReference("design");
  EXPECT_TRUE(std::filesystem::is_empty(root_));
}

}  // namespace
