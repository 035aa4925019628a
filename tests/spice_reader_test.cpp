// The SPICE model text reader: definitions, nesting, continuations, called sub-circuits.
#include "model/spice_reader.h"

#include <gtest/gtest.h>

#include "tests/gen_test_support.h"

namespace {

std::vector<std::string> Calls(const SpiceReader& reader, const std::string& name) {
  const SpiceSubckt* subckt = reader.FindSubcktByName(name);
  return subckt ? subckt->calledNames : std::vector<std::string>{"<none>"};
}

TEST(SpiceReader, FindsDefinitionsIgnoringCase) {
  SpiceReader reader;
  ASSERT_TRUE(reader.ParseText(".subckt OpAmp in out\nR1 in out 1k\n.ENDS OpAmp\n.SUBCKT other a\n.ends\n"));
  ASSERT_NE(reader.FindSubcktByName("opamp"), nullptr);
  EXPECT_EQ(reader.FindSubcktByName("OPAMP")->name, "OpAmp");
  EXPECT_NE(reader.FindSubcktByName("Other"), nullptr);
  EXPECT_EQ(reader.FindSubcktByName("missing"), nullptr);
}

TEST(SpiceReader, CalledNamesStopAtParameters) {
  SpiceReader reader;
  reader.ParseText(
      ".SUBCKT TOP a b\n"
      "X1 a b STAGE PARAMS: GAIN=2\n"
      "x2 a b Buffer params: g=1\n"
      "X3 a b LOADER W=1 L=2\n"
      "X4 a b SPACED W = 1\n"
      "X5 a b STAGE\n"
      "Xlonely\n"
      ".ENDS\n");
  EXPECT_EQ(Calls(reader, "top"), (std::vector<std::string>{"STAGE", "Buffer", "LOADER", "SPACED"}));
}

TEST(SpiceReader, ContinuationsAndCommentsAreJoinedAndDropped) {
  SpiceReader reader;
  reader.ParseText(
      "* a model file\n"
      ".SUBCKT TOP a b\n"
      "X1 a\n"
      "* a comment between\n"
      "+ b INNER ; trailing comment\n"
      "  X2 a b\tOTHER\r\n"
      "*X3 a b HIDDEN\n"
      ".ENDS\n");
  EXPECT_EQ(Calls(reader, "TOP"), (std::vector<std::string>{"INNER", "OTHER"}));
}

TEST(SpiceReader, NestedDefinitionsKeepTheirOwnCalls) {
  SpiceReader reader;
  reader.ParseText(
      ".SUBCKT OUTER a\n"
      ".SUBCKT INNER b\n"
      "X1 b DEEP\n"
      ".ENDS INNER\n"
      "X2 a INNER\n"
      ".ENDS OUTER\n"
      "X9 a STRAY\n");
  EXPECT_EQ(Calls(reader, "OUTER"), std::vector<std::string>{"INNER"});
  EXPECT_EQ(Calls(reader, "INNER"), std::vector<std::string>{"DEEP"});
}

TEST(SpiceReader, UnbalancedTextDoesNotCrash) {
  SpiceReader reader;
  EXPECT_TRUE(
      reader.ParseText(".ENDS\n.ENDS\n+ lonely continuation\n.SUBCKT\nX1 a B\n.SUBCKT OPEN a\nX2 a C"));
  EXPECT_EQ(Calls(reader, "OPEN"), std::vector<std::string>{"C"});
  EXPECT_TRUE(reader.ParseText(""));
  EXPECT_EQ(reader.SubcktCount(), 0u);
}

TEST(SpiceReader, BinaryTextHoldsNothing) {
  SpiceReader reader;
  EXPECT_FALSE(reader.ParseText(std::string(".SUBCKT A x\n\0\n.ENDS\n", 20)));
  EXPECT_EQ(reader.FindSubcktByName("A"), nullptr);
}

class SpiceReaderFile : public gentest::ScratchFolder {};

TEST_F(SpiceReaderFile, ReadsThroughBackslashPaths) {
  Write("Sym/Amp.MOD", ".SUBCKT AMP a\nX1 a STAGE\n.ENDS\n");
  SpiceReader reader;
  EXPECT_TRUE(reader.MorvaFile("sym\\amp.mod", 0));
  EXPECT_EQ(Calls(reader, "amp"), std::vector<std::string>{"STAGE"});
  EXPECT_FALSE(reader.MorvaFile("sym\\none.mod", 0));
  EXPECT_EQ(reader.FindSubcktByName("amp"), nullptr);
}

}  // namespace
