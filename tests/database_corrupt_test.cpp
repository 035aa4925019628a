// Damaged and missing databases: the load refuses every file that does not hold a consistent
// design, vesk reports it as a database that cannot be opened, and nothing crashes on the way.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "design/db/design_import.h"
#include "design/db/design_store.h"
#include "tests/deck_harness.h"

namespace fs = std::filesystem;

namespace {

std::string Blob(const std::vector<uint32_t>& words) {
  return std::string(reinterpret_cast<const char*>(words.data()), words.size() * 4);
}

// vesk run on `bytes` as the database file.
VeskRun RunOn(const std::string& bytes, const std::string& args) {
  VeskInput input;
  input.import = false;
  input.files["database/design.sqlite"] = bytes;
  return RunVesk("", args, input);
}

class CorruptDatabase : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = MakeScratch("db-corrupt");
    std::string error;
    // Blocks in storage order: LEAF 0, MID 1, TOP 2. MID places LEAF through XL, TOP places MID.
    ASSERT_TRUE(ImportDesign(SourceText("tests/vesk_db/three_levels.json"), folder_.string(), error))
        << error;
    good_ = ReadText(DatabaseFile());
  }
  void TearDown() override { RemoveScratch(folder_.string()); }

  fs::path DatabaseFile() const { return folder_ / "database" / vdb::kDatabaseFile; }

  /// The good file after `sql`, with ?1 bound to `blob` when given. An edit that does not apply
  /// leaves the good file, which a test that expects a refusal notices.
  std::string Edited(const std::string& sql, const std::string* blob = nullptr) {
    fs::path file = folder_ / "edit.sqlite";
    WriteText(file, good_);
    sqlite3* db = nullptr;
    sqlite3_open(file.c_str(), &db);
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr) == SQLITE_OK) {
      if (blob) sqlite3_bind_blob(stmt, 1, blob->data(), static_cast<int>(blob->size()), SQLITE_TRANSIENT);
      sqlite3_step(stmt);
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return ReadText(file);
  }

  /// Whether `bytes` load as a design database; `reason` says why not.
  bool Loads(const std::string& bytes, std::string& reason) {
    WriteText(DatabaseFile(), bytes);
    vdb::Design design;
    return vdb::LoadDesign(DatabaseFile().string(), design, reason);
  }

  /// The load refuses `bytes`, and vesk reports the database as one it could not open and
  /// writes no deck.
  void ExpectRefused(const std::string& bytes, const std::string& what) {
    std::string reason;
    EXPECT_FALSE(Loads(bytes, reason)) << what;
    EXPECT_FALSE(reason.empty()) << what;
    VeskRun run = RunOn(bytes, "TOP");
    EXPECT_EQ(run.rc, 3) << what;
    EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\n", 0), 0u) << what << ": " << run.output;
    EXPECT_NE(run.output.find("cannot be read"), std::string::npos) << what << ": " << run.output;
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2) << what << ": " << run.output;
    EXPECT_EQ(run.deck, "<no deck>") << what;
    EXPECT_EQ(run.errors, "") << what;
  }

  fs::path folder_;
  std::string good_;
};

TEST_F(CorruptDatabase, DamageOfEachKindIsRefusedAndReported) {
  ExpectRefused(good_.substr(0, good_.size() / 2), "truncated");
  std::mt19937 random(7);
  std::string noise(4096, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  ExpectRefused(noise, "random bytes");

  fs::path file = folder_ / "other.sqlite";
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  sqlite3_exec(db, "CREATE TABLE parts(id INTEGER PRIMARY KEY, name TEXT);", nullptr, nullptr, nullptr);
  sqlite3_close(db);
  ExpectRefused(ReadText(file), "other tables");

  // Well-formed SQLite whose design is not consistent: a table missing, another format, an index
  // that would wrap to block 0, MID placing TOP, a count that does not add up, a value of the
  // wrong type, shared strings cut short.
  for (const char* sql :
       {"DROP TABLE nets", "UPDATE meta SET value = 'vesk-design 2' WHERE key = 'format'",
        "UPDATE comps SET child = 4294967296 WHERE id = 3", "UPDATE comps SET child = 2 WHERE id = 1",
        "UPDATE blocks SET comps = comps + 1 WHERE id = 0", "UPDATE comps SET label = 'RL' WHERE id = 0",
        "UPDATE strings SET data = x'0500000041'"})
    ExpectRefused(Edited(sql), sql);
  // Lists that name a net of another block (LEAF owns nets 0 and 1) or a string that is not there.
  const std::string foreignNet = Blob({1, 0, 1, 1, 1, 2}), badKey = Blob({1, 99999, 0});
  ExpectRefused(Edited("UPDATE comps SET pins = ?1 WHERE id = 0", &foreignNet), "pin on a foreign net");
  ExpectRefused(Edited("UPDATE attr_lists SET data = ?1", &badKey), "attribute key out of range");
  // A net count whose low bits alone would name one good net: the count shares its word with a
  // flag in memory, so a count that does not fit is refused rather than cut.
  const std::string hugeCount = Blob({1, 0, 1, 1, 0x80000001u, 0});
  ExpectRefused(Edited("UPDATE comps SET pins = ?1 WHERE id = 0", &hugeCount), "net count beyond 31 bits");
}

// The components are read beside the other tables: when several tables are damaged, the reason
// given is that of the first in reading order (meta, strings, attribute lists, blocks, the small
// tables, nets, ports, components).
TEST_F(CorruptDatabase, FirstDamagedTableInReadingOrderIsReported) {
  const std::pair<std::vector<const char*>, const char*> cases[] = {
      {{"DROP TABLE comps"}, "no such table: comps"},
      {{"DROP TABLE nets", "DROP TABLE comps"}, "no such table: nets"},
      {{"DROP TABLE comps", "DROP TABLE ports"}, "no such table: ports"},
      {{"DROP TABLE blocks", "DROP TABLE strings"}, "no such table: strings"},
      {{"DROP TABLE comps", "DROP TABLE blocks"}, "no such table: blocks"},
      {{"DROP TABLE attr_lists", "DROP TABLE blocks"}, "no such table: attr_lists"},
  };
  const std::string good = good_;
  for (const auto& [edits, expected] : cases) {
    // Each edit applies to the file as the one before left it.
    std::string bytes = good;
    for (const char* sql : edits) {
      good_ = bytes;
      bytes = Edited(sql);
    }
    good_ = good;
    std::string reason;
    EXPECT_FALSE(Loads(bytes, reason)) << edits[0];
    EXPECT_EQ(reason, expected) << edits[0];
  }
}

// Each round damages the file at random: a field set to a value that often breaks programs, one
// word of a list replaced (and sometimes the list cut short), or a few bytes flipped.
TEST_F(CorruptDatabase, VeskNeverCrashesOnRandomDamage) {
  std::mt19937 random(20240607);
  int loaded = 0, refused = 0;
  for (int round = 0; round < 150; ++round) {
    std::string sql, bytes = good_;
    switch (round % 3) {
      case 0: {
        static const char* kColumns[] = {
            "comps.block",  "comps.label",  "comps.type",    "comps.child",      "comps.inst_attrs",
            "comps.grp",    "comps.number", "comps.id",      "nets.block",       "nets.label",
            "nets.grp",     "ports.width",  "ports.bus",     "blocks.comps",     "blocks.nets",
            "blocks.ports", "groups.type",  "symbols.attrs", "testbenches.block"};
        static const char* kValues[] = {"0",          "1",          "2",        "-1",  "NULL",
                                        "4294967295", "2147483648", "16777216", "'x'", "x'00'",
                                        "1e10",       "id + 1",     "id - 1"};
        std::string column = kColumns[random() % std::size(kColumns)];
        std::string table = column.substr(0, column.find('.'));
        sql = "UPDATE " + table + " SET " + column.substr(table.size() + 1) + " = " +
              kValues[random() % std::size(kValues)] + " WHERE rowid IN (SELECT rowid FROM " + table +
              " LIMIT 1 OFFSET " + std::to_string(random() % 5) + ")";
        break;
      }
      case 1: {
        static const char* kLists[][2] = {
            {"comps", "pins"}, {"ports", "nets"}, {"strings", "data"}, {"attr_lists", "data"}};
        const auto& list = kLists[random() % 4];
        static const char* kWords[] = {"00000000", "01000000", "03000000",
                                       "FFFFFFFF", "FFFFFF7F", "40420F00"};
        std::string c = list[1],
                    at = "4 * (" + std::to_string(random()) + " % max(1, length(" + c + ") / 4))";
        std::string cut = std::to_string(random() % 4 ? 0 : 1 + random() % 3);
        sql = std::string("UPDATE ") + list[0] + " SET " + c + " = CAST(substr(" + c + ", 1, " + at +
              ") || x'" + kWords[random() % std::size(kWords)] + "' || substr(" + c + ", " + at +
              " + 5, max(0, length(" + c + ") - " + at + " - 4 - " + cut +
              ")) AS BLOB) WHERE rowid IN (SELECT rowid FROM " + list[0] + " LIMIT 1 OFFSET " +
              std::to_string(random() % 4) + ")";
        break;
      }
      default:
        for (int flips = 1 + random() % 8; flips > 0; --flips)
          bytes[random() % bytes.size()] ^= static_cast<char>(1 + random() % 255);
        sql = "flipped bytes";
    }
    if (round % 3 != 2) bytes = Edited(sql);
    std::string reason;
    bool loads = Loads(bytes, reason);
    loads ? ++loaded : ++refused;
    EXPECT_TRUE(loads || !reason.empty()) << sql;
    static const char* kArgs[] = {"TOP", "TOP -h", "bench -j TOP/X1/XL"};
    const char* args = kArgs[round / 3 % 3];
    VeskRun run = RunOn(bytes, args);
    // 0 deck written, 1 configuration, 3 database unreadable, 4 group not found.
    EXPECT_TRUE(run.rc == 0 || run.rc == 1 || run.rc == 3 || run.rc == 4)
        << sql << " / " << args << ": rc " << run.rc << "\n"
        << run.output;
    if (!loads) {
      EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\n", 0), 0u) << sql << run.output;
    }
  }
  EXPECT_GT(refused, 30);
  EXPECT_GT(loaded, 10);
}

TEST(MissingDatabase, VeskSaysItCannotOpenTheDatabaseAndWhere) {
  VeskInput input;
  input.import = false;
  VeskRun run = RunVesk("", "TOP", input);
  EXPECT_EQ(run.rc, 3);
  EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\nNo design database in \"", 0), 0u) << run.output;
  EXPECT_NE(run.output.find(run.folder + "/database"), std::string::npos) << run.output;
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2) << run.output;
  EXPECT_EQ(run.deck, "<no deck>");
}

TEST(MissingDatabase, AnotherSnapshotIsReportedAsOne) {
  VeskRun run = RunVesk(R"({"snapshot": "Other", "blocks": [{"name": "TOP"}]})", "TOP");
  EXPECT_EQ(run.rc, 3);
  EXPECT_EQ(run.output, "Couldn't Open TESSEL DataBase\nNo snapshot \"Qor\" in the design database \"" +
                            run.folder + "/database\"\n");
  EXPECT_EQ(run.deck, "<no deck>");
}

}  // namespace

namespace {

// A block large enough that its components are read in two stretches at once: damage in either
// stretch, at the seam or behind the last row is refused as when the table is read in one go.
class LargeDatabase : public CorruptDatabase {
 protected:
  void SetUp() override {
    folder_ = MakeScratch("db-large");
    std::string json =
        R"({"symbols": {"RES.1": {"PREFIX": "R", "ORDER": "VALUE$"}}, "blocks": [{"name": "TOP",
        "components": [)";
    for (int i = 0; i < kCount; ++i) {
      if (i) json += ',';
      json += R"({"label": "R)" + std::to_string(i) + R"(", "name": "RES.1", "attributes": {"VALUE": "1K"},
          "pins": [{"name": "A", "net": "N)" +
              std::to_string(i) + R"("}, {"name": "B", "net": "N)" + std::to_string(i + 1) + R"("}]})";
    }
    json += "]}]}";
    std::string error;
    ASSERT_TRUE(ImportDesign(json, folder_.string(), error)) << error;
    good_ = ReadText(DatabaseFile());
  }
  static constexpr int kCount = 40000;
};

TEST_F(LargeDatabase, BothStretchesAreReadWholeAndCheckedAsOne) {
  std::string reason;
  ASSERT_TRUE(Loads(good_, reason)) << reason;
  vdb::Design design;
  WriteText(DatabaseFile(), good_);
  ASSERT_TRUE(vdb::LoadDesign(DatabaseFile().string(), design, reason));
  ASSERT_EQ(design.comps.size(), static_cast<size_t>(kCount));
  // Every component keeps its own two pins and their nets across the seam.
  for (int i : {0, kCount / 2 - 1, kCount / 2, kCount - 1}) {
    const vdb::CompRec& comp = design.comps[i];
    ASSERT_EQ(comp.pinsCount, 2u) << i;
    const vdb::PinRec& second = design.pins[comp.pinsBegin + 1];
    ASSERT_EQ(second.netsCount, 1u) << i;
    EXPECT_EQ(design.strings.View(design.nets[design.links[second.netsBegin]].label),
              "N" + std::to_string(i + 1))
        << i;
  }
  const std::string half = std::to_string(kCount / 2), last = std::to_string(kCount - 1);
  for (const std::string& sql : std::vector<std::string>{
           "UPDATE comps SET block = 7 WHERE id = 3", "UPDATE comps SET block = 7 WHERE id = " + half,
           "DELETE FROM comps WHERE id = " + half, "DELETE FROM comps WHERE id = " + last,
           "INSERT INTO comps SELECT id + 1, block, label, name, partition, type, child, inst_attrs, "
           "def_attrs, "
           "own_definition, grp, number, pins FROM comps WHERE id = " +
               last,
           "UPDATE comps SET pins = x'01' WHERE id = " + last})
    ExpectRefused(Edited(sql), sql);
}

}  // namespace
