// The SPICE netlist reader, its design, and vesk-db import-spice on the command line.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "design/db/json_writer.h"
#include "design/db/spice_netlist_reader.h"
#include "design/db/spice_to_design.h"
#include "tests/deck_harness.h"

namespace fs = std::filesystem;

namespace {

using Files = std::map<std::string, std::string>;

vdb::SpiceFileLoader LoaderOf(const Files& files) {
  return [files](const std::string& path, std::string& text) {
    auto found = files.find(path);
    if (found == files.end()) return false;
    text = found->second;
    return true;
  };
}

std::string Join(const std::vector<std::string>& words, const char* separator = " ") {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
  return text;
}

// One line for each element, sub-circuit, model, header line and global, in a fixed order.
std::string Describe(const vdb::SpiceNetlist& n) {
  std::string out = "title " + n.title + "\n";
  auto element = [](const vdb::SpiceElement& e) {
    std::string control = e.controlNodes.empty() ? "" : " ctl(" + Join(e.controlNodes) + ")";
    return e.name + " (" + Join(e.nodes) + ") [" + Join(e.words, "|") + "]" + control + " @" +
           std::to_string(e.origin.line) + "\n";
  };
  for (const vdb::SpiceElement& e : n.topElements) out += element(e);
  for (const vdb::SpiceSubckt& s : n.subckts) {
    out += "subckt " + s.name + " (" + Join(s.ports) + ") [" + Join(s.params) + "]" +
           (s.fromLibrary ? " lib" : "") + (s.hasLocalStatements ? " local" : "") + "\n";
    for (const vdb::SpiceElement& e : s.elements) out += "  " + element(e);
  }
  for (const vdb::SpiceModelCard& m : n.models) out += "model " + m.name + ": " + m.text + "\n";
  for (const std::string& line : n.header) out += "header " + line + "\n";
  for (const std::string& node : n.globals) out += "global " + node + "\n";
  return out;
}

struct ReadCase {
  const char* name;
  const char* text;
  Files files;
  const char* expected;
};

const ReadCase kReadCases[] = {
    {"CommentsAndContinuations",
     "The title\n* a comment\nR1 a b\n+ 1k ; inline\n\nC1 b 0 1n $ also a comment\nR2 b c 2k$notcomment\n",
     {},
     "title The title\nR1 (a b) [1k] @3\nC1 (b 0) [1n] @6\nR2 (b c) [2k$notcomment] @7\n"},
    {"GroupsAndEquals",
     "t\nV1 in 0 DC 1 SIN(0 1 1k)\nB1 o 0 V = {v(in) * 2}\nR1 a b r = '2 * k'\n",
     {},
     "title t\nV1 (in 0) [DC|1|SIN(0 1 1k)] @2\nB1 (o 0) [V={v(in) * 2}] @3\nR1 (a b) [r='2 * k'] @4\n"},
    {"NodeCountsByLetter",
     "t\nQ1 c b e qm\nQ2 c b e s qm area=2\nM1 d g s b nch w=1u\nE1 o 0 a b 2\nE2 o 0 value={v(a)}\n"
     "G1 o 0 poly(1) a 0 0 1\nF1 o 0 vs 2\nK1 L1 L2 0.9\nX1 a b c sub params: r=1\nJ1 d g s jm\nT1 a 0 b 0 "
     "z0=50 td=1n\n"
     ".model qm npn\n",
     {},
     "title t\nQ1 (c b e) [qm] @2\nQ2 (c b e s) [qm|area=2] @3\nM1 (d g s b) [nch|w=1u] @4\nE1 (o 0 a b) [2] "
     "@5\n"
     "E2 (o 0) [value={v(a)}] @6\nG1 (o 0) [poly(1)|0|1] ctl(a 0) @7\nF1 (o 0) [vs|2] @8\nK1 () [L1|L2|0.9] "
     "@9\n"
     "X1 (a b c) [sub|params:|r=1] @10\nJ1 (d g s) [jm] @11\nT1 (a 0 b 0) [z0=50|td=1n] @12\nmodel qm: "
     ".model qm npn\n"},
    {"SubcircuitsNestedAndCaseless",
     "t\n.SUBCKT Outer a b PARAMS: k=2\n.subckt inner x y\nR1 x y 1k\n.ends inner\nX1 a b inner\n.param "
     "q=1\n.Ends\n"
     "X9 1 2 outer\n.END\nR9 ignored after end 1\n",
     {},
     "title t\nX9 (1 2) [outer] @9\nsubckt Outer (a b) [k=2] local\n  X1 (a b) [inner] @6\nsubckt inner (x "
     "y) []\n"
     "  R1 (x y) [1k] @4\n"},
    {"HeaderStatementsAndControl",
     "t\n.param rv=1k\n.options reltol=1e-4\n.tran 1n 1u\n.global vdd\n.control\nrun\nprint v(1)\n.endc\nR1 "
     "1 0 {rv}\n",
     {},
     "title t\nR1 (1 0) [{rv}] @10\nheader .param rv=1k\nheader .options reltol=1e-4\nheader .tran 1n 1u\n"
     "header .control\nheader run\nheader print v(1)\nheader .endc\nglobal vdd\n"},
    {"IncludeAndLibSection",
     "t\n.include sub/parts.inc\n.lib lib/c.lib tt\nR1 a 0 1\n",
     {{"sub/parts.inc", "* parts\nR2 a b 2\n.include more.inc\n"},
      {"sub/more.inc", "R3 b 0 3\n"},
      {"lib/c.lib",
       ".lib ff\n.model d1 d is=1\n.endl\n.lib tt\n.model d1 d is=2\n.subckt s a\nR1 a 0 1\n.ends\n.endl "
       "tt\n"}},
     "title t\nR2 (a b) [2] @2\nR3 (b 0) [3] @1\nR1 (a 0) [1] @4\nsubckt s (a) [] lib\n  R1 (a 0) [1] @7\n"
     "model d1: .model d1 d is=2\n"},
};

class SpiceReadTest : public ::testing::TestWithParam<ReadCase> {};

TEST_P(SpiceReadTest, ReadsTheStatements) {
  const ReadCase& c = GetParam();
  vdb::SpiceNetlist netlist;
  std::string error;
  ASSERT_TRUE(vdb::ReadSpiceNetlist(c.text, "top.cir", LoaderOf(c.files), netlist, error)) << error;
  EXPECT_EQ(Describe(netlist), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceReadTest, ::testing::ValuesIn(kReadCases),
                         [](const ::testing::TestParamInfo<ReadCase>& info) { return info.param.name; });

struct BadCase {
  const char* name;
  const char* text;
  Files files;
  const char* error;
};

const BadCase kBadCases[] = {
    {"UnknownLetter", "t\nR1 a b 1k\nU1 a b c\n", {}, "top.cir:3: unknown element letter in U1"},
    {"TooFewNodes",
     "t\nR1 a\n+ 1k\n",
     {},
     "top.cir:2: wrong number of nodes for R1 (2 nodes and a value expected)"},
    {"MosWithoutModel",
     "t\nM1 d g s b\n",
     {},
     "top.cir:2: wrong number of nodes for M1 (4 nodes and a value expected)"},
    {"SubcircuitCallWithNothing",
     "t\nX1\n",
     {},
     "top.cir:2: wrong number of nodes for X1 (nodes and a sub-circuit expected)"},
    {"PolyWithoutItsNodes",
     "t\nE1 o 0 poly(2) a 0 b\n",
     {},
     "top.cir:2: wrong number of nodes for E1 (4 controlling nodes expected behind poly(2))"},
    {"UnterminatedSubckt", "t\n.subckt s a b\nR1 a b 1\n", {}, "top.cir:2: .subckt s has no .ends"},
    {"EndsAlone", "t\n.ends\n", {}, "top.cir:2: .ends without .subckt"},
    {"SubcktTwice",
     "t\n.subckt s a\n.ends\n.SUBCKT S a\n.ends\n",
     {},
     "top.cir:4: sub-circuit S is defined twice"},
    {"CallsItself", "t\n.subckt s a\nX1 a s\n.ends\n", {}, "top.cir:3: sub-circuit s calls itself (s > s)"},
    {"CallsItselfThroughAnother",
     "t\nX0 1 s\n.subckt s a\nX1 a t\n.ends\n.subckt t a\nX2 a s\n.ends\n",
     {},
     "top.cir:7: sub-circuit s calls itself (s > t > s)"},
    {"UnreadableInclude", "t\n.include missing.inc\n", {}, "top.cir:2: cannot read missing.inc"},
    {"BadLineInInclude",
     "t\n.inc parts.inc\n",
     {{"parts.inc", "R1 a b 1\nZ9 a b\n"}},
     "parts.inc:2: unknown element letter in Z9"},
    {"MissingLibSection",
     "t\n.lib c.lib ss\n",
     {{"c.lib", ".lib tt\n.endl\n"}},
     "c.lib:0: no .lib section ss"},
    {"IncludesItself",
     "t\n.include top.cir\n",
     {{"top.cir", ".include top.cir\n"}},
     "top.cir:1: files include each other too deeply"},
    {"PortCountDiffers",
     "t\nX1 a b s\n.subckt s a\n.ends\n",
     {},
     "top.cir:2: X1 has 2 nodes, sub-circuit s has 1 ports"},
    {"SubcktNamedLikeTop",
     "t\n.subckt TOP a\n.ends\n",
     {},
     "top.cir:2: sub-circuit TOP has the top block's name"},
};

class SpiceBadInputTest : public ::testing::TestWithParam<BadCase> {};

TEST_P(SpiceBadInputTest, NamesFileAndLine) {
  const BadCase& c = GetParam();
  vdb::Design design;
  std::vector<vdb::SpiceSideFile> files;
  std::string error;
  EXPECT_FALSE(vdb::DesignFromSpiceText(c.text, "top.cir", LoaderOf(c.files), "TOP", design, files, error));
  EXPECT_EQ(error, c.error);
}

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceBadInputTest, ::testing::ValuesIn(kBadCases),
                         [](const ::testing::TestParamInfo<BadCase>& info) { return info.param.name; });

std::string DesignOf(const std::string& text, std::vector<vdb::SpiceSideFile>& files) {
  vdb::Design design;
  std::string error;
  if (!vdb::DesignFromSpiceText(text, "top.cir", LoaderOf({}), "TOP", design, files, error)) return error;
  return vdb::WriteDescription(design);
}

// Each element's words come back through its ORDER template; keys vesk reads for itself, or
// would give a unit, are kept whole.
TEST(SpiceDesignTest, ElementsBecomeComponentsWithTheirTemplate) {
  std::vector<vdb::SpiceSideFile> files;
  std::string json = DesignOf(
      "t\nR1 a 0 1k tc1=1m\nM1 d g 0 0 NCH w=1u m=2\nX1 a d lib r=5\nX2 a 0 ext\n"
      ".model nch nmos level=1\n.subckt lib p q params: r=1 c=2\nR1 p q {r}\n.ends\n",
      files);
  for (
      const char* fragment :
      {R"({"label": "R1", "name": "R", "type": 1, "attributes": {"VALUE": "1k", "TC1": "1m"}, "definition": {"PREFIX": "R", "ORDER": "VALUE$ TC1="})",
       R"("attributes": {"MODEL": "nch", "ARG1": "w=1u", "ARG2": "m=2"}, "definition": {"PREFIX": "M", "ORDER": "MODEL$ ARG1$ ARG2$"})",
       R"("attributes": {"MODEL": "lib", "R": "5"}, "definition": {"R": "1", "C": "2", "PREFIX": "X", "ORDER": "MODEL$ R="})",
       R"("attributes": {"MODEL": "ext"}, "definition": {"PREFIX": "X", "ORDER": "MODEL$"})",
       R"("pins": [{"name": "D", "nets": ["d"]}, {"name": "G", "nets": ["g"]}, {"name": "S", "nets": ["GND"]}, {"name": "B", "nets": ["GND"]}])"})
    EXPECT_NE(json.find(fragment), std::string::npos) << fragment << "\n" << json;
  ASSERT_EQ(files.size(), 3u);
  EXPECT_EQ(files[0].path, "sym/nch.mod");
  EXPECT_EQ(files[0].text, ".model nch nmos level=1\n");
  EXPECT_EQ(files[1].path, "sym/lib.mod");
  EXPECT_EQ(files[1].text, ".subckt lib p q params: r=1 c=2\nR1 p q {r}\n.ends\n");
  EXPECT_EQ(files[2].path, "TOP.inc");
  EXPECT_EQ(files[2].text, "* t\n");
}

TEST(SpiceDesignTest, SubcircuitsBecomeBlocksAndInstances) {
  std::vector<vdb::SpiceSideFile> files;
  std::string json = DesignOf(
      "t\nX1 in GND mid\n.subckt mid A b\nX1 A n leaf\nC1 n 0 1p\n.ends\n"
      ".subckt leaf x y\nD1 x y dx\n.model dx d\n.ends\n",
      files);
  for (
      const char* fragment :
      {R"({"label": "X1", "name": "mid", "type": 2, "child": "mid", "definition": {"PREFIX": "X", "ORDER": ""}, "pins": [{"name": "A", "nets": ["in"]}, {"name": "b", "nets": ["GND"]}]})",
       R"({"name": "A", "nets": ["A"]})", R"({"label": "GND", "global": true})",
       R"("attributes": {"MODEL": "leaf"}, "definition": {"PREFIX": "X", "ORDER": "MODEL$"}, "pins": [{"name": "1", "nets": ["A"]}, {"name": "2", "nets": ["n"]}])"})
    EXPECT_NE(json.find(fragment), std::string::npos) << fragment << "\n" << json;
  // leaf has a model of its own: a library sub-circuit, not a block.
  EXPECT_EQ(json.find(R"("name": "leaf")"), std::string::npos) << json;
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0].text, ".subckt leaf x y\nD1 x y dx\n.model dx d\n.ends\n");
}

// Which sub-circuits stay text: parameters, local statements, elements that name elements.
TEST(SpiceDesignTest, LibraryOrBlock) {
  struct Case {
    const char* definition;
    bool library;
  } cases[] = {
      {".subckt s a b\nR1 a b 1\n.ends\n", false},
      {".subckt s a b params: k=1\nR1 a b {k}\n.ends\n", true},
      {".subckt s a b k=1\nR1 a b {k}\n.ends\n", true},
      {".subckt s a b\n.param k=1\nR1 a b {k}\n.ends\n", true},
      {".subckt s a b\nL1 a b 1u\nL2 a b 1u\nK1 L1 L2 0.5\n.ends\n", true},
      {".subckt s a b\nV1 a c 0\nF1 c b V1 2\n.ends\n", true},
      {".subckt s a b\nV1 a c 0\nH1 c b V1 2\n.ends\n", true},
      {".subckt s a b\nV1 a c 0\nW1 c b V1 sw\n.ends\n", true},
  };
  for (const Case& c : cases) {
    std::vector<vdb::SpiceSideFile> files;
    std::string json = DesignOf(std::string("t\nX1 1 0 s\n") + c.definition, files);
    EXPECT_EQ(json.find(R"("type": 2, "child": "s")") == std::string::npos, c.library)
        << c.definition << json;
    EXPECT_EQ(files.size(), c.library ? 2u : 1u) << c.definition;
  }
}

// vesk grounds nets whose label begins with "GND"; other such nodes are labelled in lower case.
TEST(SpiceDesignTest, GroundAndNodesThatLookLikeIt) {
  std::vector<vdb::SpiceSideFile> files;
  std::string json =
      DesignOf("t\nR1 GNDA 0 1\nR2 gnd GND 1\nR3 Gnd2 GNDA 1\n.global vdd\nR4 vdd 0 1\n", files);
  EXPECT_NE(json.find(R"({"label": "vdd", "global": true})"), std::string::npos) << json;
  EXPECT_NE(json.find(R"("pins": [{"name": "P", "nets": ["gnda"]}, {"name": "N", "nets": ["GND"]}])"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find(R"("pins": [{"name": "P", "nets": ["GND"]}, {"name": "N", "nets": ["GND"]}])"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find(R"("pins": [{"name": "P", "nets": ["Gnd2"]}, {"name": "N", "nets": ["gnda"]}])"),
            std::string::npos)
      << json;
}

// A library sub-circuit's file carries what it calls and the models they use.
TEST(SpiceDesignTest, LibraryFileStandsAlone) {
  std::vector<vdb::SpiceSideFile> files;
  DesignOf(
      "t\nX1 a 0 top2 k=1\n.model dm d\n.subckt top2 p q params: k=0\nX1 p q plain\n.ends\n"
      ".subckt plain u v\nD1 u v DM\n.ends\n",
      files);
  ASSERT_EQ(files.size(), 3u);
  EXPECT_EQ(files[1].path, "sym/top2.mod");
  EXPECT_EQ(files[1].text,
            ".subckt top2 p q params: k=0\n.model dm d\n.subckt plain u v\nD1 u v DM\n.ends\nX1 p q "
            "plain\n.ends\n");
}

// --- the command line -------------------------------------------------------------------

class ToolFolder {
 public:
  ToolFolder() {
    char pattern[] = "/tmp/vesk-spice-cli-XXXXXX";
    path = ::mkdtemp(pattern);
  }
  ~ToolFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  void Write(const std::string& name, const std::string& text) const {
    fs::create_directories((fs::path(path) / name).parent_path());
    std::ofstream(fs::path(path) / name, std::ios::binary) << text;
  }
  std::string Read(const std::string& name) const {
    std::ifstream in(fs::path(path) / name, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
  int Run(const std::string& args, std::string& output, std::string& errors) const {
    return RunProgram(BinaryDir() + "/vesk-db", args, path, {}, output, errors);
  }
  std::string path;
};

TEST(SpiceImportToolTest, PrintsWhatItWrote) {
  ToolFolder folder;
  folder.Write("amp.sp", "amp\nV1 1 0 1\nR1 1 0 1k\nD1 1 0 dm\n.model dm d\n.op\n");
  std::string output, errors;
  ASSERT_EQ(folder.Run("import-spice amp.sp", output, errors), 0) << errors;
  EXPECT_EQ(output, "Wrote database (1 blocks, 3 components)\nWrote sym/dm.mod\nWrote AMP.inc\n");
  EXPECT_EQ(errors, "");
  EXPECT_EQ(folder.Read("AMP.inc"), "* amp\n.op\n");
  ASSERT_EQ(folder.Run("import-spice --project p --top Amp2 amp.sp", output, errors), 0) << errors;
  EXPECT_EQ(output, "Wrote p/database (1 blocks, 3 components)\nWrote p/sym/dm.mod\nWrote p/Amp2.inc\n");
}

// The deck TOP.cir would land on a netlist top.cir beside the database (files are found ignoring case).
TEST(SpiceImportToolTest, WarnsWhenTheDeckWouldOverwriteTheNetlist) {
  ToolFolder folder;
  folder.Write("amp.cir", "amp\nR1 1 0 1\n");
  folder.Write("src/amp.cir", "amp\nR1 1 0 1\n");
  std::string output, errors;
  ASSERT_EQ(folder.Run("import-spice amp.cir", output, errors), 0) << errors;
  EXPECT_EQ(output,
            "Wrote database (1 blocks, 1 components)\nWrote AMP.inc\n"
            "Warning: vesk writes the deck AMP.cir over the netlist amp.cir; keep the netlist under another "
            "name\n");
  ASSERT_EQ(folder.Run("import-spice src/amp.cir", output, errors), 0) << errors;
  EXPECT_EQ(output.find("Warning"), std::string::npos) << output;
  ASSERT_EQ(folder.Run("import-spice --project src --top Other src/amp.cir", output, errors), 0) << errors;
  EXPECT_EQ(output.find("Warning"), std::string::npos) << output;
}

TEST(SpiceImportToolTest, BadInputLeavesTheOldDatabase) {
  ToolFolder folder;
  folder.Write("good.cir", "good\nR1 1 0 1k\n");
  folder.Write("bad.cir", "bad\nR1 1 0 1k\n.subckt s a\nR2 a 0 1\n");
  std::string output, errors;
  ASSERT_EQ(folder.Run("import-spice good.cir", output, errors), 0) << errors;
  std::string before = folder.Read("database/design.sqlite"), header = folder.Read("GOOD.inc");
  ASSERT_FALSE(before.empty());
  EXPECT_EQ(folder.Run("import-spice --top GOOD bad.cir", output, errors), 2);
  EXPECT_EQ(errors, "vesk-db: bad.cir:3: .subckt s has no .ends\n");
  EXPECT_EQ(output, "");
  EXPECT_EQ(folder.Read("database/design.sqlite"), before);
  EXPECT_EQ(folder.Read("GOOD.inc"), header);
  EXPECT_EQ(folder.Run("import-spice missing.cir", output, errors), 2);
  EXPECT_EQ(errors, "vesk-db: missing.cir:0: cannot read the file\n");
  EXPECT_EQ(folder.Run("import-spice", output, errors), 1);
  EXPECT_NE(errors.find("vesk-db import-spice [--project DIR] [--top NAME] FILE"), std::string::npos);
}

TEST(SpiceImportToolTest, VersionLines) {
  ToolFolder folder;
  std::string output, errors;
  EXPECT_EQ(folder.Run("--version", output, errors), 0);
  EXPECT_EQ(output.rfind("vesk-db ", 0), 0u) << output;
  EXPECT_EQ(RunProgram(BinaryDir() + "/vesk", "--version", folder.path, {}, output, errors), 0);
  EXPECT_EQ(output.rfind("vesk ", 0), 0u) << output;
  EXPECT_EQ(output.back(), '\n');
}

}  // namespace
