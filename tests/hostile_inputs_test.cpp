// Crafted names and counts stay harmless: a block (group) or model name that climbs out of the
// project writes nothing outside it, and a database file whose counts are huge is refused
// without reserving memory for them. (External XML entities: see the XML robustness test.)
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>

#include "design/db/design_import.h"
#include "design/db/design_store.h"
#include "tests/deck_harness.h"

namespace {

namespace fs = std::filesystem;

std::string Resistor(const std::string& block) {
  return R"({ "name": ")" + block + R"(", "components": [
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" },
    "definition": { "PREFIX": "R", "ORDER": "VALUE$" },
    "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] } ] })";
}

// Backslashes doubled for the JSON text.
std::string Json(std::string text) {
  std::string escaped;
  for (char c : text) escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return escaped;
}

std::set<std::string> Names(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
  return names;
}

// Every switch set that writes a file named after the group or the root block.
TEST(HostileInputTest, NamesThatClimbOutOfTheProjectWriteNothingThere) {
  const std::string tag = "vesk-hostile-" + std::to_string(::getpid());
  const std::string names[] = {"..\\..\\" + tag, "../../" + tag, "..\\" + tag, "/tmp/" + tag};
  for (const std::string& name : names) {
    for (const char* switches : {"", "-x ", "-_ ", "-_ -x ", "-m -h "}) {
      SCOPED_TRACE(name + " " + switches);
      const std::string design = R"({ "blocks": [ )" + Resistor(Json(name)) + " ] }";
      VeskRun run = RunVesk(design, switches + name);
      EXPECT_EQ(run.rc, 5) << run.output << run.errors;
      // Refused as outside, or (for a Kelpo deck whose folders stay inside) not found.
      EXPECT_EQ(run.output.rfind("Error: cannot write ", 0), 0u) << run.output;
      // Nothing beside the run folder or in /tmp carries the name.
      const fs::path root = fs::path(run.folder).parent_path();
      EXPECT_EQ(Names(root), (std::set<std::string>{"design.json", "run"}));
      for (const fs::path& folder : {root.parent_path(), fs::path("/tmp")})
        for (const char* suffix : {"", ".cir", ".xrf"}) EXPECT_FALSE(fs::exists(folder / (tag + suffix)));
    }
  }
}

// Replaces the first `from` in `text` by `to`.
std::string ReplaceOnce(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

// A model name from the mapping file that climbs out gets no parameter file outside: the op-amp
// design of the write-fault test with its model renamed.
TEST(HostileInputTest, ModelNameThatClimbsOutGetsNoParameterFileOutside) {
  const std::string tag = "vesk-hostile-model-" + std::to_string(::getpid());
  const std::string model = "..\\..\\" + tag;
  VeskInput input;
  input.deckPath = "genhdl/TOP/TOP.cir";
  input.files["Sym/Models_Info.xml"] = ReplaceOnce(SourceText("tests/write_faults/Models_Info.xml"),
                                                   "Name=\"OpAmp\"", "Name=\"" + model + "\"");
  const std::string design = ReplaceOnce(SourceText("tests/write_faults/opamps.json"), "\"MODEL\": \"OpAmp\"",
                                         "\"MODEL\": \"" + Json(model) + "\"");
  VeskRun run = RunVesk(design, "-_ -h TOP", input);
  const fs::path root = fs::path(run.folder).parent_path();
  EXPECT_EQ(Names(root), (std::set<std::string>{"design.json", "run"})) << run.output;
  EXPECT_FALSE(fs::exists(root.parent_path() / (tag + "-param.txt")));
  EXPECT_FALSE(fs::exists(root.parent_path() / (tag + ".mod")));
  EXPECT_NE(run.deck, "<no deck>") << run.output;
  EXPECT_NE(run.deck.find(tag), std::string::npos) << run.deck;
}

// The user's own output folder may lie outside the project.
TEST(HostileInputTest, OutputFolderTheUserGivesMayLieOutside) {
  VeskRun run = RunVesk(R"({ "blocks": [ )" + Resistor("TOP") + " ] }", "-%..\\decks TOP");
  EXPECT_EQ(run.rc, 0) << run.output;
  const fs::path deck = fs::path(run.folder).parent_path() / "decks" / "TOP.cir";
  EXPECT_TRUE(fs::exists(deck)) << run.output;
}

// Counts in the file far beyond what it holds are refused as damage.
TEST(HostileInputTest, HugeCountsInTheDatabaseAreRefused) {
  const fs::path folder = MakeScratch("hostile-db");
  std::string error;
  ASSERT_TRUE(ImportDesign(R"({ "blocks": [ )" + Resistor("TOP") + " ] }", folder.string(), error)) << error;
  const fs::path file = folder / "database" / vdb::kDatabaseFile;
  for (const char* edit : {"UPDATE blocks SET comps = 2147483647", "UPDATE blocks SET nets = 4294967295",
                           "UPDATE attr_lists SET data = x'FFFFFFFF01000000'"}) {
    ASSERT_TRUE(ImportDesign(R"({ "blocks": [ )" + Resistor("TOP") + " ] }", folder.string(), error))
        << error;
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, edit, nullptr, nullptr, nullptr), SQLITE_OK) << edit;
    sqlite3_close(db);
    vdb::Design design;
    std::string reason;
    EXPECT_FALSE(vdb::LoadDesign(file.string(), design, reason)) << edit;
    EXPECT_FALSE(reason.empty()) << edit;
    std::string output, errors;
    EXPECT_EQ(
        RunProgram(BinaryDir() + "/vesk", "TOP", folder.string(), {{"GALT_HOME", "galt"}}, output, errors),
        3);
    EXPECT_EQ(output.rfind("Couldn't Open TESSEL DataBase\n", 0), 0u) << edit << ": " << output;
    EXPECT_EQ(errors, "") << edit;
  }
  RemoveScratch(folder.string());
}

}  // namespace
