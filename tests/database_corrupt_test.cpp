// Damaged and hostile database files: a load refuses every one that does not hold a consistent
// design, vesk reports it as a database that cannot be opened, and nothing crashes on the way.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "design/db/design_import.h"
#include "design/db/design_store.h"
#include "design/tessel.h"
#include "tests/deck_harness.h"

namespace fs = std::filesystem;

namespace {

// Blocks in storage order: LEAF 0, MID 1, TOP 2. MID places LEAF through XL, TOP places MID.
const char* kDesign = R"({
  "groups": {"G": {"internal_id": "7A"}},
  "symbols": {"RES.1": {"PREFIX": "R", "ORDER": "VALUE$"}},
  "testbenches": {"bench": "TOP"},
  "blocks": [
    {"name": "LEAF", "ports": [{"name": "P", "net": "P", "attributes": {"SIGNAL": "A"}}],
     "components": [{"label": "RL", "name": "RES.1", "attributes": {"VALUE": "1K"},
                     "pins": [{"name": "A", "net": "P"}, {"name": "B", "net": "0"}]}]},
    {"name": "MID", "ports": [{"name": "D[1:0]", "bus": "D", "nets": ["D1", "D0"]}],
     "nets": [{"label": "D1", "group": "G", "number": 2}],
     "components": [{"label": "XL", "type": 2, "child": "LEAF", "pins": [{"name": "P", "net": "D1"}]},
                    {"label": "RM", "name": "RES.1", "attributes": {"VALUE": "2K"}, "group": "G", "number": 4,
                     "pins": [{"name": "A", "net": "D1"}, {"name": "B", "net": "D0"}]}]},
    {"name": "TOP", "nets": [{"label": "IN", "attributes": {"PROBE": ""}}],
     "components": [{"label": "X1", "type": 2, "child": "MID",
                     "pins": [{"name": "D[1:0]", "nets": ["IN", "OUT"], "bus": "B"}]},
                    {"label": "R1", "name": "RES.1", "attributes": {"VALUE": "3K"},
                     "pins": [{"name": "A", "net": "IN"}, {"name": "B", "net": "0"}]}]}]})";

std::string ReadBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

void WriteBytes(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string Blob(const std::vector<uint32_t>& words) {
  return std::string(reinterpret_cast<const char*>(words.data()), words.size() * 4);
}

// Everything that the interface can be asked about the design, asked once; returns how many
// objects it met. Damaged data must give answers, never a crash.
size_t WalkEverything(const std::string& location, const std::vector<std::string>& blockNames) {
  using namespace Tessel;
  TesselPI db;
  ProjectData data;
  data.location = location.c_str();
  db.OpenTessel(data);
  ContainerT<const ISnapshot> snapshot;
  if (!db.GetSnapshotByName(snapshot, "Qor")) return 0;
  IUIDManager uid;
  snapshot->GetUIDManager(uid);
  size_t met = 0;
  String text;
  auto walkNets = [&](IteratorT<const INet> nets) {
    for (; nets->IsValid(); nets++, met++) {
      bool global = false;
      nets->GetLabel(text);
      nets->IsGlobal(global);
      nets->GetAttribute("PROBE", text, eAttrInstance);
      Index index;
      nets->GetInstanceIndex(index);
      ContainerT<const IBlock> parent;
      nets->GetParentBlock(parent);
      ContainerT<const INet> again;
      if (!parent.Empty()) parent->GetNet(again, index);
    }
  };
  auto walkComp = [&](const IComp& comp, const IBlock& block) {
    BitContainerT<ECompType, 1> type;
    comp.GetType(type);
    comp.GetLabel(text);
    comp.GetName(text);
    comp.GetPartitionName(text);
    comp.GetAttribute("VALUE", text, eAttrInstance);
    comp.GetAttribute("ORDER", text, eAttrDefinition);
    ListAttribute attributes;
    comp.GetAttributes(attributes);
    for (auto it = attributes.GetIterator(); it.IsValid(); it++) met++;
    ContainerT<const IBlock> child, parent;
    comp.GetChildBlock(child);
    if (!child.Empty()) child->GetName(text);
    comp.GetParentBlock(parent);
    ContainerT<const IPath> path;
    comp.GetPath(path);
    if (!path.Empty()) path->GetHierarchicalName(text, '\\');
    ListT<GroupInfo> groups;
    comp.GetListGroups(groups, eGroupInternal);
    for (auto it = groups.GetIterator(); it.IsValid(); it++) {
      ContainerT<const IGroup> group;
      uid.GetGroup(group, *it.operator->());
      if (group.Empty()) continue;
      group->GetAttribute("$$Internal_ID", text);
      ContainerT<const IBlockViewQor> view;
      IBlockViewQor::Init(view, block, *group);
      CompDataQor compData;
      if (!view.Empty()) view->GetCompData(comp, compData);
    }
    int count = 0;
    comp.GetPinsCount(count);
    IteratorT<const IPin> pins;
    for (comp.GetIterPins(pins); pins->IsValid(); pins++, met++) {
      int width = 0;
      bool connected = false;
      pins->GetName(text);
      pins->GetWidth(width);
      pins->IsConnected(connected);
      Index index;
      pins->GetIndex(index);
      IteratorT<const INet> nets;
      pins->GetIterNetsConnected(nets);
      walkNets(nets);
      IteratorT<const IBus> buses;
      pins->GetIterBusesConnected(buses);
      if (buses.IsValid()) buses->GetLabel(text);
    }
  };
  for (const std::string& name : blockNames) {
    ListT<BlockInfo> hits;
    if (!snapshot->FindBlock(hits, name.c_str(), eSearchPlain) || hits.IsEmpty()) continue;
    ContainerT<const IBlock> block;
    snapshot->GetBlock(block, hits.GetIterator()->index);
    if (block.Empty()) continue;
    met++;
    IteratorT<const IComp> comps;
    for (block->GetIterComps(comps, eCompAll); comps->IsValid(); comps++, met++) {
      walkComp(*comps.operator->(), *block);
      Index index;
      comps->GetInstanceIndex(index);
      ContainerT<const IComp> again;
      block->GetComp(again, index);
    }
    IteratorT<const INet> nets;
    block->GetIterNets(nets);
    walkNets(nets);
    IteratorT<const IPort> ports;
    for (block->GetIterPorts(ports); ports->IsValid(); ports++, met++) {
      bool connected = false;
      ports->GetName(text);
      ports->IsConnected(connected);
      ports->GetAttribute("SIGNAL", text, 2);
      IteratorT<const INet> portNets;
      ports->GetIterNetsConnected(portNets);
      walkNets(portNets);
      IteratorT<const IBus> buses;
      ports->GetIterBusesConnected(buses);
      if (buses.IsValid()) buses->GetLabel(text);
    }
    Index configIndex;
    block->GetDefaultConfigIndex(configIndex);
    ContainerT<const IConfig> config;
    uid.GetConfig(config, configIndex);
    if (config.Empty()) continue;
    IteratorT<const IPath> paths;
    for (config->GetIterPaths(paths); paths->IsValid(); paths++, met++) {
      paths->GetHierarchicalName(text, '!');
      paths->GetName(text);
      ContainerT<const IComp> parentComp;
      paths->GetParentComp(parentComp);
      IteratorT<const IComp> inside;
      for (paths->GetIterComps(inside); inside->IsValid(); inside++) met++;
    }
    IteratorT<const IComp> occurrences;
    for (config->GetIterComps(occurrences); occurrences->IsValid(); occurrences++, met++)
      walkComp(*occurrences.operator->(), *block);
  }
  return met;
}

class CorruptDatabase : public ::testing::Test {
 protected:
  void SetUp() override {
    static int serial = 0;
    folder_ = fs::temp_directory_path() /
              ("vesk-db-corrupt-" + std::to_string(::getpid()) + "-" + std::to_string(serial++));
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    std::string error;
    ASSERT_TRUE(ImportDesign(kDesign, folder_.string(), error)) << error;
    good_ = ReadBytes(DatabaseFile());
  }
  void TearDown() override { fs::remove_all(folder_); }

  fs::path DatabaseFile() const { return folder_ / "database" / vdb::kDatabaseFile; }

  /// The good file after `sql`, with ?1 bound to `blob` when given. A strict edit must apply
  /// and change something; a random one may fail.
  std::string Edited(const std::string& sql, const std::string* blob = nullptr, bool strict = true) {
    fs::path file = folder_ / "edit.sqlite";
    WriteBytes(file, good_);
    sqlite3* db = nullptr;
    sqlite3_open(file.c_str(), &db);
    sqlite3_stmt* stmt = nullptr;
    int prepared = sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr);
    if (blob && stmt)
      sqlite3_bind_blob(stmt, 1, blob->data(), static_cast<int>(blob->size()), SQLITE_TRANSIENT);
    int stepped = stmt ? sqlite3_step(stmt) : SQLITE_ERROR;
    if (strict) {
      EXPECT_EQ(prepared, SQLITE_OK) << sql << sqlite3_errmsg(db);
      EXPECT_EQ(stepped, SQLITE_DONE) << sql << sqlite3_errmsg(db);
      EXPECT_GT(sqlite3_changes(db) + (sql.rfind("DROP", 0) == 0 || sql.rfind("ALTER", 0) == 0), 0) << sql;
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return ReadBytes(file);
  }

  /// Whether `bytes` load as a design database; `reason` says why not.
  bool Loads(const std::string& bytes, std::string& reason) {
    WriteBytes(DatabaseFile(), bytes);
    vdb::Design design;
    return vdb::LoadDesign(DatabaseFile().string(), design, reason);
  }

  /// The load refuses `bytes`, the interface says that it cannot open them, and vesk reports the
  /// database as one it could not open and writes no deck.
  void ExpectRefused(const std::string& bytes, const std::string& what) {
    std::string reason;
    EXPECT_FALSE(Loads(bytes, reason)) << what;
    EXPECT_FALSE(reason.empty()) << what;

    Tessel::TesselPI db;
    Tessel::ProjectData data;
    data.location = (folder_ / "database").c_str();
    db.OpenTessel(data);
    Tessel::ContainerT<const Tessel::ISnapshot> snapshot;
    Tessel::Result result = db.GetSnapshotByName(snapshot, "Qor");
    EXPECT_FALSE(result) << what;
    std::string description = result.GetDescription(false).operator const char*();
    EXPECT_NE(description.find(DatabaseFile().string()), std::string::npos) << what << ": " << description;

    VeskInput input;
    input.import = false;
    input.files["database/design.sqlite"] = bytes;
    VeskRun run = RunVesk("", "TOP", input);
    EXPECT_EQ(run.rc, 0) << what;
    EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\n", 0), 0u) << what << ": " << run.output;
    EXPECT_NE(run.output.find("cannot be read"), std::string::npos) << what << ": " << run.output;
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2) << what << ": " << run.output;
    EXPECT_EQ(run.output.back(), '\n') << what;
    EXPECT_EQ(run.deck, "<no deck>") << what;
    EXPECT_EQ(run.errors, "") << what;
  }

  fs::path folder_;
  std::string good_;
};

TEST_F(CorruptDatabase, TheUndamagedFileLoadsAndWalks) {
  std::string reason;
  ASSERT_TRUE(Loads(good_, reason)) << reason;
  EXPECT_GT(WalkEverything((folder_ / "database").string(), {"LEAF", "MID", "TOP", "bench"}), 30u);
}

TEST_F(CorruptDatabase, FilesThatHoldNoDesignDatabaseAreRefused) {
  for (size_t size : {size_t{0}, size_t{1}, size_t{16}, size_t{100}, size_t{4096}, good_.size() / 3,
                      good_.size() / 2, good_.size() - 65536, good_.size() - 1}) {
    ExpectRefused(good_.substr(0, size), "truncated to " + std::to_string(size));
  }
  ExpectRefused(good_ + '\0', "one byte more");
  ExpectRefused(good_ + good_.substr(0, 65536), "one page more");
  std::mt19937 random(7);
  for (size_t size : {size_t{100}, size_t{65536}, good_.size()}) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    ExpectRefused(bytes, "random bytes " + std::to_string(size));
  }
  // Random bytes behind a valid SQLite header.
  std::string bytes = good_.substr(0, 100);
  while (bytes.size() < good_.size()) bytes += static_cast<char>(random());
  ExpectRefused(bytes, "random pages");

  fs::path file = folder_ / "other.sqlite";
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  sqlite3_exec(db,
               "CREATE TABLE parts(id INTEGER PRIMARY KEY, name TEXT); INSERT INTO parts VALUES(1, 'R1');",
               nullptr, nullptr, nullptr);
  sqlite3_close(db);
  ExpectRefused(ReadBytes(file), "other tables");
}

// Statements that each leave the file a well-formed SQLite database whose design is not
// consistent, in the order tables and format, components, nets, ports, blocks, the small tables,
// shared strings and attribute lists: a table missing or changed, an index out of range
// (4294967296 would wrap to block 0), MID placing itself or TOP, a count that does not add up, a
// list cut short.
const char* const kInconsistentEdits = R"(
DROP TABLE comps; DROP TABLE meta; DROP TABLE strings; DROP TABLE attr_lists; DROP TABLE groups;
DROP TABLE symbols; DROP TABLE testbenches; DROP TABLE ports; DROP TABLE nets; DROP TABLE blocks;
ALTER TABLE comps RENAME COLUMN pins TO p; ALTER TABLE nets RENAME COLUMN grp TO g;
UPDATE meta SET value = 'vesk-design 2' WHERE key = 'format'; DELETE FROM meta WHERE key = 'format';
UPDATE comps SET child = 3 WHERE id = 0; UPDATE comps SET child = -1 WHERE id = 0;
UPDATE comps SET child = 4294967296 WHERE id = 3; UPDATE comps SET child = 4294967297 WHERE id = 3;
UPDATE comps SET child = 'LEAF' WHERE id = 1; UPDATE comps SET child = 2 WHERE id = 1;
UPDATE comps SET child = 1 WHERE id = 1; UPDATE comps SET label = 1000000 WHERE id = 0;
UPDATE comps SET label = 4294967297 WHERE id = 0; UPDATE comps SET label = -1 WHERE id = 0;
UPDATE comps SET label = 'RL' WHERE id = 0; UPDATE comps SET label = 1.5 WHERE id = 0;
UPDATE comps SET name = 99999 WHERE id = 0; UPDATE comps SET partition = 99999 WHERE id = 0;
UPDATE comps SET grp = 1 WHERE id = 0; UPDATE comps SET grp = -1 WHERE id = 0;
UPDATE comps SET inst_attrs = 999 WHERE id = 0; UPDATE comps SET def_attrs = 4294967296 WHERE id = 0;
UPDATE comps SET number = 2147483648 WHERE id = 2; UPDATE comps SET number = 'four' WHERE id = 2;
UPDATE comps SET type = -1 WHERE id = 0; UPDATE comps SET type = 4294967296 WHERE id = 0;
UPDATE comps SET block = 2 WHERE id = 0; UPDATE comps SET id = 10 WHERE id = 0;
UPDATE comps SET pins = x'01020304' WHERE id = 0; UPDATE comps SET pins = x'0102' WHERE id = 0;
DELETE FROM comps WHERE id = 4;
INSERT INTO comps SELECT 5, block, label, name, partition, type, child, inst_attrs, def_attrs,
  own_definition, grp, number, pins FROM comps WHERE id = 4;
UPDATE blocks SET comps = comps + 1 WHERE id = 0; UPDATE blocks SET comps = -1 WHERE id = 0;
UPDATE blocks SET comps = 16777216 WHERE id = 2;
UPDATE nets SET block = 0 WHERE id = (SELECT max(id) FROM nets); UPDATE nets SET label = 99999 WHERE id = 0;
UPDATE nets SET attrs = 99999 WHERE id = 0; UPDATE nets SET grp = 5 WHERE id = 0;
UPDATE nets SET number = -2147483649 WHERE id = 0; DELETE FROM nets WHERE id = 0;
UPDATE ports SET nets = x'010203' WHERE id = 0; UPDATE blocks SET nets = nets - 1 WHERE id = 2;
UPDATE ports SET name = 99999 WHERE id = 0; UPDATE ports SET bus = -5 WHERE id = 0;
UPDATE ports SET width = -1 WHERE id = 0; UPDATE ports SET width = 2147483648 WHERE id = 0;
UPDATE ports SET attrs = 99999 WHERE id = 0; UPDATE ports SET block = 2 WHERE id = 0;
DELETE FROM ports WHERE id = 1; UPDATE blocks SET ports = 5 WHERE id = 1;
UPDATE blocks SET name = 99999 WHERE id = 0; UPDATE blocks SET id = 7 WHERE id = 2;
DELETE FROM blocks WHERE id = 2; UPDATE groups SET internal_id = 99999; UPDATE groups SET name = -1;
UPDATE groups SET type = 'two'; UPDATE groups SET type = 4294967296; UPDATE symbols SET attrs = 99999;
UPDATE symbols SET name = 99999; UPDATE testbenches SET block = 3; UPDATE testbenches SET block = -1;
UPDATE strings SET data = x'FFFFFFFF41'; UPDATE strings SET data = x'0500000041';
UPDATE strings SET data = x'010000'; UPDATE attr_lists SET data = x'FFFFFF7F';
UPDATE attr_lists SET data = x'0100000001000000'; DELETE FROM strings;)";

TEST_F(CorruptDatabase, TablesThatAreMissingOrNotConsistentAreRefused) {
  std::istringstream edits(kInconsistentEdits);
  std::string sql;
  while (std::getline(edits, sql, ';')) {
    sql.erase(0, sql.find_first_not_of(" \n"));
    if (!sql.empty()) ExpectRefused(Edited(sql), sql);
  }
}

TEST_F(CorruptDatabase, PinsAndPortsThatNameForeignNetsAreRefused) {
  // LEAF owns nets 0 and 1 (P, 0); a pin of RL (component 0) that names a net of another block,
  // or no net at all, is refused.
  struct Case {
    const char* sql;
    std::vector<uint32_t> words;
  };
  const std::vector<Case> cases = {
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 0, 1, 1, 1, 2}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 0, 1, 1, 1, 99999}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 0, 1, 1, 0xFFFFFFFFu}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 0, 1, 1, 3, 0, 1}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {99999, 0, 1, 1, 1, 0}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 99999, 1, 1, 1, 0}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 0, 0x80000000u, 1, 1, 0}},
      {"UPDATE comps SET pins = ?1 WHERE id = 0", {1, 0, 1, 1, 1, 0, 7}},
      {"UPDATE ports SET nets = ?1 WHERE id = 0", {2}},
      {"UPDATE ports SET nets = ?1 WHERE id = 0", {0xFFFFFFFFu}},
      {"UPDATE attr_lists SET data = ?1", {1, 99999, 0}},
      {"UPDATE attr_lists SET data = ?1", {1, 0, 99999}},
      {"UPDATE attr_lists SET data = ?1", {2, 0, 0}},
  };
  for (const Case& c : cases) {
    std::string blob = Blob(c.words);
    ExpectRefused(Edited(c.sql, &blob),
                  std::string(c.sql) + " with " + std::to_string(c.words.size()) + " words");
  }
}

TEST_F(CorruptDatabase, AnEditThatKeepsTheDesignConsistentStillLoads) {
  // The checks refuse what is inconsistent, not what is merely unusual.
  std::string reason;
  EXPECT_TRUE(Loads(Edited("UPDATE comps SET type = 4294967295 WHERE id = 0"), reason)) << reason;
  EXPECT_TRUE(Loads(Edited("UPDATE comps SET child = NULL WHERE id = 1"), reason)) << reason;
  EXPECT_TRUE(Loads(Edited("UPDATE nets SET grp = NULL, number = NULL"), reason)) << reason;
  EXPECT_TRUE(Loads(Edited("UPDATE groups SET type = -7"), reason)) << reason;
}

// Sets one field of one row to a value picked from those that break programs most often.
std::string RandomEdit(std::mt19937& random) {
  struct Column {
    const char* table;
    const char* column;
  };
  static const Column kColumns[] = {
      {"comps", "block"}, {"comps", "label"},   {"comps", "name"},        {"comps", "partition"},
      {"comps", "type"},  {"comps", "child"},   {"comps", "inst_attrs"},  {"comps", "def_attrs"},
      {"comps", "grp"},   {"comps", "number"},  {"comps", "id"},          {"nets", "block"},
      {"nets", "label"},  {"nets", "attrs"},    {"nets", "grp"},          {"nets", "number"},
      {"nets", "id"},     {"ports", "block"},   {"ports", "name"},        {"ports", "bus"},
      {"ports", "width"}, {"ports", "attrs"},   {"blocks", "name"},       {"blocks", "comps"},
      {"blocks", "nets"}, {"blocks", "ports"},  {"blocks", "id"},         {"groups", "name"},
      {"groups", "type"}, {"symbols", "attrs"}, {"testbenches", "block"}, {"groups", "internal_id"}};
  static const char* kValues[] = {"0",          "1",          "2",          "3",        "-1",       "NULL",
                                  "4294967295", "4294967296", "2147483648", "16777215", "16777216", "'x'",
                                  "x'00'",      "1e10",       "id + 1",     "id - 1"};
  const Column& column = kColumns[random() % (sizeof kColumns / sizeof kColumns[0])];
  const char* value = kValues[random() % (sizeof kValues / sizeof kValues[0])];
  return std::string("UPDATE ") + column.table + " SET " + column.column + " = " + value +
         " WHERE rowid IN (SELECT rowid FROM " + column.table + " LIMIT 1 OFFSET " +
         std::to_string(random() % 5) + ")";
}

// Replaces one word of one blob with a random or telling value.
std::string RandomBlobEdit(std::mt19937& random, const std::string& good, std::string& blob) {
  static const char* kBlobs[][2] = {
      {"comps", "pins"}, {"ports", "nets"}, {"strings", "data"}, {"attr_lists", "data"}};
  const auto& which = kBlobs[random() % 4];
  sqlite3* db = nullptr;
  fs::path file = fs::temp_directory_path() / ("vesk-db-blob-" + std::to_string(::getpid()) + ".sqlite");
  WriteBytes(file, good);
  sqlite3_open(file.c_str(), &db);
  std::string select = std::string("SELECT ") + which[1] + ", rowid FROM " + which[0] + " LIMIT 1 OFFSET " +
                       std::to_string(random() % 4);
  sqlite3_stmt* stmt = nullptr;
  sqlite3_prepare_v2(db, select.c_str(), -1, &stmt, nullptr);
  int64_t rowid = -1;
  blob.clear();
  if (sqlite3_step(stmt) == SQLITE_ROW) {
    const char* data = static_cast<const char*>(sqlite3_column_blob(stmt, 0));
    blob.assign(data ? data : "", static_cast<size_t>(sqlite3_column_bytes(stmt, 0)));
    rowid = sqlite3_column_int64(stmt, 1);
  }
  sqlite3_finalize(stmt);
  sqlite3_close(db);
  fs::remove(file);
  if (rowid < 0 || blob.size() < 4) return "";
  static const uint32_t kWords[] = {0, 1, 2, 3, 5, 0xFFFFFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFu, 1000000};
  uint32_t word = random() % 2 ? kWords[random() % 10] : static_cast<uint32_t>(random());
  size_t at = (random() % (blob.size() / 4)) * 4;
  std::memcpy(&blob[at], &word, 4);
  if (random() % 4 == 0) blob.resize(blob.size() - 1 - random() % 3);
  return std::string("UPDATE ") + which[0] + " SET " + which[1] +
         " = ?1 WHERE rowid = " + std::to_string(rowid);
}

TEST_F(CorruptDatabase, RandomEditsNeverCrashTheLoadOrTheInterface) {
  std::mt19937 random(20240607);
  const std::vector<std::string> names = {"LEAF", "MID", "TOP", "bench", "RL", "", "P"};
  int loaded = 0, refused = 0;
  for (int round = 0; round < 400; ++round) {
    std::string blob;
    std::string sql = round % 2 ? RandomEdit(random) : RandomBlobEdit(random, good_, blob);
    if (sql.empty()) continue;
    std::string bytes = Edited(sql, blob.empty() ? nullptr : &blob, false);
    std::string reason;
    if (Loads(bytes, reason)) {
      ++loaded;
      WalkEverything((folder_ / "database").string(), names);
    } else {
      ++refused;
      EXPECT_FALSE(reason.empty()) << sql;
    }
  }
  EXPECT_GT(refused, 100);
  EXPECT_GT(loaded, 10);
}

TEST_F(CorruptDatabase, FlippedBytesNeverCrashTheLoadOrTheInterface) {
  std::mt19937 random(99);
  for (int round = 0; round < 300; ++round) {
    std::string bytes = good_;
    int flips = 1 + random() % 8;
    for (int i = 0; i < flips; ++i) bytes[random() % bytes.size()] ^= static_cast<char>(1 + random() % 255);
    std::string reason;
    if (Loads(bytes, reason))
      WalkEverything((folder_ / "database").string(), {"LEAF", "MID", "TOP", "bench"});
  }
}

TEST_F(CorruptDatabase, VeskRunsOnEveryEditedDatabaseThatLoads) {
  // What the load lets through is consistent enough for the whole program.
  std::mt19937 random(4711);
  int runs = 0;
  for (int round = 0; round < 200 && runs < 40; ++round) {
    std::string sql = RandomEdit(random), reason;
    std::string bytes = Edited(sql, nullptr, false);
    if (!Loads(bytes, reason)) continue;
    ++runs;
    for (const char* args : {"TOP", "TOP -h", "bench -j TOP/X1/XL"}) {
      VeskInput input;
      input.import = false;
      input.files["database/design.sqlite"] = bytes;
      VeskRun run = RunVesk("", args, input);
      EXPECT_TRUE(run.rc == 0 || run.rc == 1) << sql << " / " << args << ": rc " << run.rc << "\n"
                                              << run.output;
    }
  }
  EXPECT_GT(runs, 10);
}

TEST(MissingDatabase, VeskSaysItCannotOpenTheDatabaseAndWhere) {
  VeskInput input;
  input.import = false;
  VeskRun run = RunVesk("", "TOP", input);
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output.rfind("Couldn't Open TESSEL DataBase\nNo design database in \"", 0), 0u) << run.output;
  EXPECT_NE(run.output.find(run.folder + "/database"), std::string::npos) << run.output;
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2) << run.output;
  EXPECT_EQ(run.deck, "<no deck>");
}

TEST(MissingDatabase, AnotherSnapshotIsReportedAsOne) {
  fs::path folder = fs::temp_directory_path() / ("vesk-db-snapshot-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  WriteBytes(folder / "design.json", R"({"snapshot": "Other", "blocks": [{"name": "TOP"}]})");
  std::string out, err;
  ASSERT_EQ(RunProgram(BinaryDir() + "/vesk-db", "import design.json", folder.string(), {}, out, err), 0)
      << err;
  int rc = RunProgram(BinaryDir() + "/vesk", "TOP", folder.string(), {{"GALT_HOME", "galt"}}, out, err);
  EXPECT_EQ(rc, 0);
  EXPECT_EQ(out, "Couldn't Open TESSEL DataBase\nNo snapshot \"Qor\" in the design database \"" +
                     folder.string() + "/database\"\n");
  EXPECT_FALSE(fs::exists(folder / "TOP.cir"));
  fs::remove_all(folder);
}

TEST(MissingDatabase, AnUnknownGroupIsATestBenchThatDoesNotExist) {
  VeskRun run = RunVesk(R"({"testbenches": {"bench": "TOP"}, "blocks": [{"name": "TOP"}]})", "top");
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, "Testbench does not exist \nTestbench does not exist \n");
  EXPECT_EQ(run.deck, "<no deck>");
}

}  // namespace
