// The SPICE netlist reader, its design, and vesk-db import-spice on the command line.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>

#include "design/db/json_writer.h"
#include "design/db/spice_netlist_reader.h"
#include "design/db/spice_to_design.h"
#include "tests/deck_harness.h"
#include "tests/sim_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

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

// A case folder of tests/spice/<kind>: input.cir, read as top.cir, and the files it includes
// under files/.
struct NetlistCase {
  std::string name;
  fs::path folder;
};

void PrintTo(const NetlistCase& c, std::ostream* out) { *out << c.folder.string(); }

std::vector<NetlistCase> CasesOf(const std::string& kind) {
  std::vector<NetlistCase> cases;
  const fs::path root = fs::path(VESK_SOURCE_DIR) / "tests" / "spice" / kind;
  if (fs::is_directory(root))
    for (const auto& entry : fs::directory_iterator(root))
      cases.push_back({entry.path().filename().string(), entry.path()});
  std::sort(cases.begin(), cases.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return cases;
}

Files FilesOf(const NetlistCase& c) {
  Files files;
  if (fs::is_directory(c.folder / "files"))
    for (const auto& entry : fs::recursive_directory_iterator(c.folder / "files"))
      if (entry.is_regular_file())
        files[fs::relative(entry.path(), c.folder / "files").generic_string()] = ReadText(entry.path());
  return files;
}

std::string CaseName(const ::testing::TestParamInfo<NetlistCase>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

// tests/spice/read/<case>/expect: the reader's statements as Describe prints them.
class SpiceReadTest : public ::testing::TestWithParam<NetlistCase> {};

TEST_P(SpiceReadTest, ReadsTheStatements) {
  const NetlistCase& c = GetParam();
  vdb::SpiceNetlist netlist;
  std::string error;
  ASSERT_TRUE(vdb::ReadSpiceNetlist(ReadText(c.folder / "input.cir"), "top.cir", LoaderOf(FilesOf(c)),
                                    netlist, error))
      << error;
  EXPECT_EQ(Describe(netlist), ReadText(c.folder / "expect"));
}

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceReadTest, ::testing::ValuesIn(CasesOf("read")), CaseName);

// tests/spice/bad/<case>/error: the message, with the file and line, that ends the import.
class SpiceBadInputTest : public ::testing::TestWithParam<NetlistCase> {};

TEST_P(SpiceBadInputTest, NamesFileAndLine) {
  const NetlistCase& c = GetParam();
  vdb::Design design;
  std::vector<vdb::SpiceSideFile> files;
  std::string error;
  EXPECT_FALSE(vdb::DesignFromSpiceText(ReadText(c.folder / "input.cir"), "top.cir", LoaderOf(FilesOf(c)),
                                        "TOP", design, files, error));
  EXPECT_EQ(error + "\n", ReadText(c.folder / "error"));
}

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceBadInputTest, ::testing::ValuesIn(CasesOf("bad")), CaseName);

std::string DesignOf(const std::string& text, std::vector<vdb::SpiceSideFile>& files) {
  vdb::Design design;
  std::string error;
  if (!vdb::DesignFromSpiceText(text, "top.cir", LoaderOf({}), "TOP", design, files, error)) return error;
  return vdb::WriteDescription(design);
}

// tests/spice/design/<case>/expect: the design's description and the side files, each behind a
// line "=== <path>", in the order they are written.
class SpiceDesignTest : public ::testing::TestWithParam<NetlistCase> {};

TEST_P(SpiceDesignTest, DescriptionAndSideFiles) {
  const NetlistCase& c = GetParam();
  std::vector<vdb::SpiceSideFile> files;
  EXPECT_EQ(DesignOf(ReadText(c.folder / "input.cir"), files), ReadText(c.folder / "expect" / "design.json"));
  std::string side;
  for (const vdb::SpiceSideFile& file : files) side += "=== " + file.path + "\n" + file.text;
  EXPECT_EQ(side, ReadText(c.folder / "expect" / "side-files"));
}

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceDesignTest, ::testing::ValuesIn(CasesOf("design")), CaseName);

// --- the command line -------------------------------------------------------------------

// A scratch folder for vesk-db runs, removed at the end.
struct ToolFolder {
  ToolFolder() : path(MakeScratch("spice-cli")) {}
  ~ToolFolder() { RemoveScratch(path); }
  void Write(const std::string& name, const std::string& text) const { WriteText(path + "/" + name, text); }
  std::string Read(const std::string& name) const { return ReadText(path + "/" + name); }
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
