// The comment header, .global lines, model registration and the include lines.
#include <gtest/gtest.h>

#include <cstdlib>

#include "gen/spice_gen.h"
#include "model/spice_reader.h"
#include "tests/gen_test_support.h"

using gentest::Comp;

namespace {

class Header : public gentest::ScratchFolder {
 protected:
  void SetUp() override {
    gentest::ScratchFolder::SetUp();
    gentest::Ready(gen);
    ::setenv("SOURCE_DATE_EPOCH", "0", 1);
    ::setenv("TZ", "UTC", 1);
  }
  void TearDown() override {
    ::unsetenv("SOURCE_DATE_EPOCH");
    globalNets.clear();
    gentest::ScratchFolder::TearDown();
  }
  void Use(const std::string& model) { gen.RegisterModel(model, SpiceComp()); }
  CSpiceGen gen;
};

const char kHead[] =
    "* Project TOP\n"
    "* Norvane Wirelist Created with Version 6.4.002\n"
    "* File created Thu Jan  1 00:00:00 1970\n"
    "\n"
    "* Inifile   :  \n"
    "* ConfigFile:  C:\\galt\\vesk.cfg\n"
    "* Options   :  -oABC -n design top \n"
    "* Levels    :  \n"
    "*\n";

TEST_F(Header, CommentBlock) {
  SpiceBlock root;
  root.name = "TOP";
  gen.configFile = "C:\\galt\\vesk.cfg";
  gen.optionsString = "-oABC -n design top ";
  gen.WriteHeader(root);
  EXPECT_EQ(gen.out.Text(), kHead);
}

TEST_F(Header, HeaderFileIsCopiedLineByLine) {
  Write("Hdr/Top.txt", "* first\r\n.param x=1\nlast");
  SpiceBlock root;
  root.name = "TOP";
  gen.configFile = "C:\\galt\\vesk.cfg";
  gen.optionsString = "-oABC -n design top ";
  gen.headerFile = "hdr\\top.txt";
  gen.WriteHeader(root);
  EXPECT_EQ(gen.out.Text(), std::string(kHead) + "* first\n.param x=1\nlast\n");
}

TEST_F(Header, MissingHeaderFileIsWarnedOnTheConsoleOnly) {
  SpiceBlock root;
  gen.headerFile = "none.txt";
  testing::internal::CaptureStdout();
  gen.WriteHeader(root);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Warning: No Header File Found \n");
  EXPECT_EQ(gen.out.Text().substr(gen.out.Text().size() - 2), "*\n");
}

TEST_F(Header, GlobalLinesInKeyOrder) {
  gen.WriteGlobals();
  EXPECT_EQ(gen.out.Text(), "");
  globalNets["VDD"] = "$G_VDD";
  globalNets["AVSS"] = "AVSS";
  gen.WriteGlobals();
  EXPECT_EQ(gen.out.Text(), "\n*Globals \n.global AVSS\n.global $G_VDD\n");
}

TEST_F(Header, ModelsAreRegisteredOnceIgnoringCase) {
  SpiceComp comp = Comp("Q1", {});
  comp.model = std::make_shared<ModelData>();
  comp.model->modelCards["q2n"] = ".model Q2N NPN\n+ RB=10\n";
  gen.RegisterModel("Q2N", SpiceComp());
  gen.RegisterModel("q2n", comp);
  EXPECT_EQ(gen.usedModels, std::vector<std::string>{"Q2N"});
  EXPECT_EQ(gen.modelFiles["q2n"], ".model Q2N NPN\n+ RB=10\n");
}

TEST_F(Header, IncludeLinesInPathOrderWithWarnings) {
  Write("sym/Q2N.mod", ".model Q2N NPN\n");
  Write("sym/AMP.mod", ".SUBCKT AMP a\n.ENDS\n");
  Use("Q2N");
  Use("");
  Use("AMP");
  Use("q2n");
  Use("NOFILE");
  testing::internal::CaptureStdout();
  gen.WriteModelIncludes();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n*Warning: Could not open data file sym\\NOFILE.mod");
  EXPECT_EQ(gen.out.Text(),
            "\n.include \"..\\..\\sym\\AMP.mod\"\n"
            "\n*Warning: Could not open data file sym\\NOFILE.mod"
            "\n.include \"..\\..\\sym\\Q2N.mod\"\n"
            "\n");
}

TEST_F(Header, CalledSubcircuitsBringTheirFiles) {
  Write("sym/TOP.mod",
        ".SUBCKT TOP a\nX1 a MID\n.ENDS\n.SUBCKT MID a\nX1 a LEAF PARAMS: G=1\nX2 a TOP\n.ENDS\n");
  Write("sym/MID.mod", "* mid\n");
  Write("sym/LEAF.mod", "* leaf\n");
  Use("TOP");
  gen.WriteModelIncludes();
  EXPECT_EQ(gen.out.Text(),
            "\n.include \"..\\..\\sym\\LEAF.mod\"\n"
            "\n.include \"..\\..\\sym\\MID.mod\"\n"
            "\n.include \"..\\..\\sym\\TOP.mod\"\n"
            "\n");
}

TEST_F(Header, ModelCardTakesThePlaceOfTheInclude) {
  Write("sym/Q1.mod", ".model Q1 NPN\n");
  gen.modelFiles["q1"] = ".model Q1 NPN\n+ RB=10";
  Use("Q1");
  gen.WriteModelIncludes();
  EXPECT_EQ(gen.out.Text(), "\n.model Q1 NPN\n+ RB=10\n\n");
}

TEST_F(Header, NoModelFilesUnderZ) {
  Write("sym/Q1.mod", ".model Q1 NPN\n");
  Use("Q1");
  gen.readModFiles = 0;
  gen.WriteModelIncludes();
  EXPECT_EQ(gen.out.Text(), "");
}

TEST_F(Header, CollectModelFilesFollowsCallsOnce) {
  SpiceReader reader;
  reader.ParseText(".SUBCKT A x\nX1 x B\n.ENDS\n.SUBCKT B x\nX1 x A\nX2 x C\n.ENDS\n");
  std::set<std::string> files;
  gen.CollectModelFiles(reader, reader.FindSubcktByName("a"), "sym", files);
  EXPECT_EQ(files, (std::set<std::string>{"sym\\A.mod", "sym\\B.mod", "sym\\C.mod"}));
  gen.CollectModelFiles(reader, nullptr, "sym", files);
  EXPECT_EQ(files.size(), 3u);
}

TEST_F(Header, HdlIncludesOnlyForFilesThatExist) {
  gen.WriteHdlIncludes("TOP");
  EXPECT_EQ(gen.out.Text(), "");
  Write("genhdl/TOP/TOP_sources.cir", "");
  gen.WriteHdlIncludes("TOP");
  EXPECT_EQ(gen.out.Text(), "");
  gen.includeSources = 1;
  gen.WriteHdlIncludes("TOP");
  EXPECT_EQ(gen.out.Text(), ".include ..\\..\\genhdl\\TOP\\TOP_sources.cir\n");
}

TEST_F(Header, HdlIncludesWithBoundariesAndSpiceSources) {
  Write("genhdl/TOP/TOP_boundaries.cir", "");
  Write("genhdl/TOP/TOP_sources.spi", "");
  gen.includeSources = 1;
  gen.WriteHdlIncludes("TOP");
  EXPECT_EQ(gen.out.Text(),
            ".include ..\\..\\genhdl\\TOP\\TOP_sources.cir\n"
            ".include ..\\..\\genhdl\\TOP\\TOP_boundaries.cir\n");
  gentest::Ready(gen);
  gen.hdlSpiceSources = 1;
  gen.WriteHdlIncludes("TOP");
  EXPECT_EQ(gen.out.Text(), ".include \"..\\..\\genhdl\\TOP\\TOP_sources.spi\"\n");
}

}  // namespace
