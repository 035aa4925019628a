// The SPICE model text reader where the deck include tests do not reach: called names behind
// parameters, continuations and comments, nested and unbalanced definitions, binary text, and
// model files that call each other in a circle.
#include "model/spice_reader.h"

#include <gtest/gtest.h>

#include "gen/spice_gen.h"

namespace {

using Names = std::vector<std::string>;

Names Calls(const SpiceReader& reader, const std::string& name) {
  const SpiceSubckt* subckt = reader.FindSubcktByName(name);
  return subckt ? subckt->calledNames : Names{"<none>"};
}

TEST(SpiceReader, CalledNamesStopAtParametersAndSkipComments) {
  SpiceReader reader;
  ASSERT_TRUE(reader.ParseText(
      ".SUBCKT TOP a b\nX1 a b STAGE PARAMS: GAIN=2\nx2 a b Buffer params: g=1\nX3 a b LOADER W=1 L=2\n"
      "X4 a b SPACED W = 1\nX5 a b STAGE\nXlonely\n.ENDS\n"
      ".subckt Joined a b\nX1 a\n* a comment between\n+ b INNER ; trailing comment\n  X2 a b\tOTHER\r\n"
      "*X3 a b HIDDEN\n.ENDS\n"));
  EXPECT_EQ(Calls(reader, "top"), (Names{"STAGE", "Buffer", "LOADER", "SPACED"}));
  EXPECT_EQ(Calls(reader, "JOINED"), (Names{"INNER", "OTHER"}));
  EXPECT_EQ(reader.FindSubcktByName("joined")->name, "Joined");
}

TEST(SpiceReader, NestedUnbalancedAndBinaryTexts) {
  SpiceReader reader;
  reader.ParseText(
      ".SUBCKT OUTER a\n.SUBCKT INNER b\nX1 b DEEP\n.ENDS INNER\nX2 a INNER\n.ENDS OUTER\nX9 a STRAY\n");
  EXPECT_EQ(Calls(reader, "OUTER"), Names{"INNER"});
  EXPECT_EQ(Calls(reader, "INNER"), Names{"DEEP"});
  EXPECT_TRUE(
      reader.ParseText(".ENDS\n.ENDS\n+ lonely continuation\n.SUBCKT\nX1 a B\n.SUBCKT OPEN a\nX2 a C"));
  EXPECT_EQ(Calls(reader, "OPEN"), Names{"C"});
  SpiceReader binary;
  EXPECT_FALSE(binary.ParseText(std::string(".SUBCKT A x\n\0\n.ENDS\n", 20)));
  EXPECT_EQ(binary.FindSubcktByName("A"), nullptr);
}

TEST(SpiceReader, CalledFilesAreCollectedOnceAroundACircle) {
  SpiceReader reader;
  reader.ParseText(".SUBCKT A x\nX1 x B\n.ENDS\n.SUBCKT B x\nX1 x A\nX2 x C\n.ENDS\n");
  CSpiceGen gen;
  std::set<std::string> files;
  gen.CollectModelFiles(reader, reader.FindSubcktByName("a"), "sym", files);
  EXPECT_EQ(files, (std::set<std::string>{"sym\\A.mod", "sym\\B.mod", "sym\\C.mod"}));
  gen.CollectModelFiles(reader, nullptr, "sym", files);
  EXPECT_EQ(files.size(), 3u);
}

}  // namespace
