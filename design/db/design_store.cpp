// Writes the compact design to its SQLite file and reads it back (schema: docs/database-schema.md).
#include "design/db/design_store.h"

#include <cstring>

#include "design/db/sqlite_handle.h"

namespace vdb {

namespace {

constexpr const char* kFormat = "vesk-design 1";

constexpr const char* kSchema = R"(
CREATE TABLE meta(key TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE strings(chunk INTEGER PRIMARY KEY, data BLOB NOT NULL);
CREATE TABLE attr_lists(chunk INTEGER PRIMARY KEY, data BLOB NOT NULL);
CREATE TABLE blocks(id INTEGER PRIMARY KEY, name INTEGER NOT NULL, comps INTEGER NOT NULL,
                    nets INTEGER NOT NULL, ports INTEGER NOT NULL);
CREATE TABLE groups(id INTEGER PRIMARY KEY, name INTEGER NOT NULL, internal_id INTEGER NOT NULL,
                    type INTEGER NOT NULL);
CREATE TABLE symbols(id INTEGER PRIMARY KEY, name INTEGER NOT NULL, attrs INTEGER NOT NULL);
CREATE TABLE testbenches(id INTEGER PRIMARY KEY, name INTEGER NOT NULL, block INTEGER NOT NULL);
CREATE TABLE nets(id INTEGER PRIMARY KEY, block INTEGER NOT NULL, label INTEGER NOT NULL,
                  global INTEGER NOT NULL, attrs INTEGER NOT NULL, grp INTEGER, number INTEGER);
CREATE TABLE ports(id INTEGER PRIMARY KEY, block INTEGER NOT NULL, name INTEGER NOT NULL,
                   bus INTEGER NOT NULL, width INTEGER NOT NULL, connected INTEGER NOT NULL,
                   attrs INTEGER NOT NULL, nets BLOB);
CREATE TABLE comps(id INTEGER PRIMARY KEY, block INTEGER NOT NULL, label INTEGER NOT NULL,
                   name INTEGER NOT NULL, partition INTEGER NOT NULL, type INTEGER NOT NULL,
                   child INTEGER, inst_attrs INTEGER NOT NULL, def_attrs INTEGER NOT NULL,
                   own_definition INTEGER NOT NULL, grp INTEGER, number INTEGER, pins BLOB);
)";

void PutWord(std::string& bytes, uint32_t word) { bytes.append(reinterpret_cast<const char*>(&word), 4); }

bool SaveStrings(SqliteDb& db, const Design& d) {
  SqliteStmt insert(db, "INSERT INTO strings(chunk, data) VALUES(?, ?)");
  std::string bytes;
  uint32_t chunk = 0;
  for (uint32_t id = 1; id < d.strings.Size(); ++id) {
    std::string_view text = d.strings.View(id);
    PutWord(bytes, static_cast<uint32_t>(text.size()));
    bytes.append(text);
    if (id % kChunkItems != 0 && id + 1 < d.strings.Size()) continue;
    insert.Bind(1, chunk++);
    insert.BindBytes(2, bytes);
    if (!insert.Run()) return false;
    bytes.clear();
  }
  return insert.Ok();
}

bool SaveAttrLists(SqliteDb& db, const Design& d) {
  SqliteStmt insert(db, "INSERT INTO attr_lists(chunk, data) VALUES(?, ?)");
  std::string bytes;
  uint32_t chunk = 0, count = d.attrs.Count();
  for (uint32_t list = 1; list < count; ++list) {
    uint32_t pairs = d.attrs.PairCount(list);
    PutWord(bytes, pairs);
    bytes.append(reinterpret_cast<const char*>(d.attrs.Pairs(list)), pairs * 8);
    if (list % kChunkItems != 0 && list + 1 < count) continue;
    insert.Bind(1, chunk++);
    insert.BindBytes(2, bytes);
    if (!insert.Run()) return false;
    bytes.clear();
  }
  return insert.Ok();
}

void BindOptional(SqliteStmt& stmt, int col, bool present, int64_t value) {
  if (present) {
    stmt.Bind(col, value);
  } else {
    stmt.BindNull(col);
  }
}

bool SaveTables(SqliteDb& db, const Design& d) {
  SqliteStmt meta(db, "INSERT INTO meta(key, value) VALUES(?, ?)");
  for (auto [key, value] :
       {std::pair<std::string, std::string>{"format", kFormat}, {"snapshot", d.snapshot}}) {
    meta.Bind(1, key);
    meta.Bind(2, value);
    if (!meta.Run()) return false;
  }
  SqliteStmt blocks(db, "INSERT INTO blocks(id, name, comps, nets, ports) VALUES(?, ?, ?, ?, ?)");
  for (uint32_t b = 0; b < d.blocks.size(); ++b) {
    const BlockRec& r = d.blocks[b];
    int64_t values[] = {b, r.name, r.compsEnd - r.compsBegin, r.netsEnd - r.netsBegin,
                        r.portsEnd - r.portsBegin};
    for (int i = 0; i < 5; ++i) blocks.Bind(i + 1, values[i]);
    if (!blocks.Run()) return false;
  }
  SqliteStmt groups(db, "INSERT INTO groups(id, name, internal_id, type) VALUES(?, ?, ?, ?)");
  for (uint32_t g = 0; g < d.groups.size(); ++g) {
    int64_t values[] = {g, d.groups[g].name, d.groups[g].internalId, d.groups[g].type};
    for (int i = 0; i < 4; ++i) groups.Bind(i + 1, values[i]);
    if (!groups.Run()) return false;
  }
  SqliteStmt symbols(db, "INSERT INTO symbols(name, attrs) VALUES(?, ?)");
  SqliteStmt benches(db, "INSERT INTO testbenches(name, block) VALUES(?, ?)");
  for (auto& [table, rows] :
       {std::pair<SqliteStmt*, const std::vector<std::pair<uint32_t, uint32_t>>*>{&symbols, &d.symbols},
        {&benches, &d.testbenches}}) {
    for (auto [name, value] : *rows) {
      table->Bind(1, name);
      table->Bind(2, value);
      if (!table->Run()) return false;
    }
  }
  return true;
}

bool SaveNets(SqliteDb& db, const Design& d) {
  SqliteStmt insert(db,
                    "INSERT INTO nets(id, block, label, global, attrs, grp, number) VALUES(?,?,?,?,?,?,?)");
  for (uint32_t n = 0; n < d.nets.size(); ++n) {
    const NetRec& r = d.nets[n];
    int64_t values[] = {n, r.block, r.label, r.global, r.attrs};
    for (int i = 0; i < 5; ++i) insert.Bind(i + 1, values[i]);
    BindOptional(insert, 6, r.group != kNone, r.group);
    BindOptional(insert, 7, r.hasNumber, r.number);
    if (!insert.Run()) return false;
  }
  return true;
}

bool SavePorts(SqliteDb& db, const Design& d) {
  SqliteStmt insert(
      db, "INSERT INTO ports(id, block, name, bus, width, connected, attrs, nets) VALUES(?,?,?,?,?,?,?,?)");
  std::vector<uint32_t> nets;
  for (uint32_t p = 0; p < d.ports.size(); ++p) {
    const PortRec& r = d.ports[p];
    int64_t values[] = {p, r.block, r.name, r.bus, r.width, r.connected, r.attrs};
    for (int i = 0; i < 7; ++i) insert.Bind(i + 1, values[i]);
    nets.assign(d.links.begin() + r.netsBegin, d.links.begin() + r.netsBegin + r.netsCount);
    insert.Bind(8, nets);
    if (!insert.Run()) return false;
  }
  return true;
}

// A component's pins as words: for each pin its name, bus, width, connected flag, net count and nets.
void PinWords(const Design& d, const CompRec& c, std::vector<uint32_t>& words) {
  words.clear();
  for (uint32_t p = c.pinsBegin; p < c.pinsBegin + c.pinsCount; ++p) {
    const PinRec& pin = d.pins[p];
    words.insert(words.end(), {pin.name, pin.bus, pin.width, pin.connected, pin.netsCount});
    words.insert(words.end(), d.links.begin() + pin.netsBegin,
                 d.links.begin() + pin.netsBegin + pin.netsCount);
  }
}

bool SaveComps(SqliteDb& db, const Design& d) {
  SqliteStmt insert(
      db,
      "INSERT INTO comps(id, block, label, name, partition, type, child, inst_attrs, def_attrs, "
      "own_definition, grp, number, pins) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)");
  std::vector<uint32_t> words;
  for (uint32_t c = 0; c < d.comps.size(); ++c) {
    const CompRec& r = d.comps[c];
    int64_t values[] = {c, r.block, r.label, r.name, r.partition, r.type};
    for (int i = 0; i < 6; ++i) insert.Bind(i + 1, values[i]);
    BindOptional(insert, 7, r.child != kNone, r.child);
    insert.Bind(8, r.instAttrs);
    insert.Bind(9, r.defAttrs);
    insert.Bind(10, r.ownDefinition);
    BindOptional(insert, 11, r.group != kNone, r.group);
    BindOptional(insert, 12, r.hasNumber, r.number);
    PinWords(d, r, words);
    insert.Bind(13, words);
    if (!insert.Run()) return false;
  }
  return true;
}

}  // namespace

bool SaveDesign(const Design& design, const std::string& file, std::string& error) {
  SqliteDb db;
  bool ok = db.Open(file, true) &&
            db.Exec("PRAGMA page_size=65536; PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;") &&
            db.Exec("BEGIN") && db.Exec(kSchema) && SaveStrings(db, design) && SaveAttrLists(db, design) &&
            SaveTables(db, design) && SaveNets(db, design) && SavePorts(db, design) &&
            SaveComps(db, design) && db.Exec("COMMIT");
  if (!ok) error = "cannot write " + file + ": " + db.Message();
  return ok;
}

}  // namespace vdb
