// Include lines of model files that call each other in a circle: each file is included once.
#include <gtest/gtest.h>

#include "gen/spice_gen.h"
#include "model/spice_reader.h"
#include "tests/gen_test_support.h"

namespace {

class Header : public gentest::ScratchFolder {
 protected:
  void SetUp() override {
    gentest::ScratchFolder::SetUp();
    gentest::Ready(gen);
  }
  CSpiceGen gen;
};

TEST_F(Header, CalledSubcircuitsBringTheirFiles) {
  Write("sym/TOP.mod",
        ".SUBCKT TOP a\nX1 a MID\n.ENDS\n.SUBCKT MID a\nX1 a LEAF PARAMS: G=1\nX2 a TOP\n.ENDS\n");
  Write("sym/MID.mod", "* mid\n");
  Write("sym/LEAF.mod", "* leaf\n");
  gen.RegisterModel("TOP", SpiceComp());
  gen.WriteModelIncludes();
  EXPECT_EQ(gen.out.Text(),
            "\n.include \"..\\..\\sym\\LEAF.mod\"\n"
            "\n.include \"..\\..\\sym\\MID.mod\"\n"
            "\n.include \"..\\..\\sym\\TOP.mod\"\n"
            "\n");
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

}  // namespace
