// Reads a design back from its SQLite file with one sequential scan per table.
#include <cstring>

#include "design/db/design_store.h"
#include "design/db/sqlite_handle.h"

namespace vdb {

namespace {

constexpr const char* kFormat = "vesk-design 1";

/// Reads 32-bit words from a blob, refusing to run past its end.
class WordReader {
 public:
  WordReader(const unsigned char* data, size_t size) : data_(data), left_(data ? size : 0) {}
  bool Word(uint32_t& word) {
    if (left_ < 4) return false;
    std::memcpy(&word, data_, 4);
    data_ += 4, left_ -= 4;
    return true;
  }
  bool Bytes(size_t count, std::string_view& bytes) {
    if (left_ < count) return false;
    bytes = std::string_view(reinterpret_cast<const char*>(data_), count);
    data_ += count, left_ -= count;
    return true;
  }
  bool Done() const { return left_ == 0; }

 private:
  const unsigned char* data_;
  size_t left_;
};

bool LoadMeta(SqliteDb& db, Design& d) {
  SqliteStmt query(db, "SELECT key, value FROM meta");
  bool formatOk = false;
  while (query.Row()) {
    std::string key = query.Text(0);
    if (key == "format") formatOk = query.Text(1) == kFormat;
    if (key == "snapshot") d.snapshot = query.Text(1);
  }
  return query.Finished() && formatOk;
}

bool LoadStrings(SqliteDb& db, Design& d) {
  SqliteStmt query(db, "SELECT data FROM strings ORDER BY chunk");
  while (query.Row()) {
    size_t size = 0;
    const unsigned char* data = query.Blob(0, size);
    WordReader reader(data, size);
    while (!reader.Done()) {
      uint32_t length = 0;
      std::string_view text;
      if (!reader.Word(length) || !reader.Bytes(length, text)) return false;
      d.strings.Append(text);
    }
  }
  return query.Finished();
}

bool LoadAttrLists(SqliteDb& db, Design& d) {
  SqliteStmt query(db, "SELECT data FROM attr_lists ORDER BY chunk");
  std::vector<uint32_t> pairs;
  while (query.Row()) {
    size_t size = 0;
    const unsigned char* data = query.Blob(0, size);  // sets `size`, so it must come first
    WordReader reader(data, size);
    while (!reader.Done()) {
      uint32_t count = 0;
      if (!reader.Word(count) || count > size / 8) return false;
      pairs.resize(2 * count);
      for (uint32_t& word : pairs) {
        if (!reader.Word(word)) return false;
      }
      d.attrs.Append(pairs.data(), count);
    }
  }
  return query.Finished();
}

bool LoadBlocks(SqliteDb& db, Design& d) {
  SqliteStmt query(db, "SELECT id, name, comps, nets, ports FROM blocks ORDER BY id");
  uint64_t comps = 0, nets = 0, ports = 0;
  while (query.Row()) {
    if (query.Int(0) != static_cast<int64_t>(d.blocks.size())) return false;
    BlockRec b;
    b.name = static_cast<uint32_t>(query.Int(1));
    int64_t counts[] = {query.Int(2), query.Int(3), query.Int(4)};
    for (int64_t count : counts) {
      if (count < 0 || count > kMaxPerBlock) return false;
    }
    b.compsBegin = static_cast<uint32_t>(comps), b.compsEnd = static_cast<uint32_t>(comps += counts[0]);
    b.netsBegin = static_cast<uint32_t>(nets), b.netsEnd = static_cast<uint32_t>(nets += counts[1]);
    b.portsBegin = static_cast<uint32_t>(ports), b.portsEnd = static_cast<uint32_t>(ports += counts[2]);
    if (comps >= kNone || nets >= kNone || ports >= kNone) return false;
    d.blocks.push_back(b);
  }
  return query.Finished();
}

bool LoadSmallTables(SqliteDb& db, Design& d) {
  SqliteStmt groups(db, "SELECT name, internal_id, type FROM groups ORDER BY id");
  while (groups.Row()) {
    GroupRec g;
    g.name = static_cast<uint32_t>(groups.Int(0));
    g.internalId = static_cast<uint32_t>(groups.Int(1));
    g.type = static_cast<int32_t>(groups.Int(2));
    d.groups.push_back(g);
  }
  SqliteStmt symbols(db, "SELECT name, attrs FROM symbols ORDER BY id");
  while (symbols.Row())
    d.symbols.emplace_back(static_cast<uint32_t>(symbols.Int(0)), static_cast<uint32_t>(symbols.Int(1)));
  SqliteStmt benches(db, "SELECT name, block FROM testbenches ORDER BY id");
  while (benches.Row())
    d.testbenches.emplace_back(static_cast<uint32_t>(benches.Int(0)), static_cast<uint32_t>(benches.Int(1)));
  return groups.Finished() && symbols.Finished() && benches.Finished();
}

uint32_t OptionalId(const SqliteStmt& query, int col) {
  return query.IsNull(col) ? kNone : static_cast<uint32_t>(query.Int(col));
}

// The block that owns the `index`th object, given the range of each block; blocks come in order.
bool OwnerMatches(const Design& d, int64_t block, uint32_t index, uint32_t BlockRec::*begin,
                  uint32_t BlockRec::*end) {
  if (block < 0 || block >= static_cast<int64_t>(d.blocks.size())) return false;
  const BlockRec& b = d.blocks[block];
  return index >= b.*begin && index < b.*end;
}

bool LoadNets(SqliteDb& db, Design& d) {
  SqliteStmt query(db, "SELECT id, block, label, global, attrs, grp, number FROM nets ORDER BY id");
  while (query.Row()) {
    uint32_t index = static_cast<uint32_t>(d.nets.size());
    if (query.Int(0) != index) return false;
    if (!OwnerMatches(d, query.Int(1), index, &BlockRec::netsBegin, &BlockRec::netsEnd)) return false;
    NetRec n;
    n.block = static_cast<uint32_t>(query.Int(1));
    n.label = static_cast<uint32_t>(query.Int(2));
    n.global = query.Int(3) != 0;
    n.attrs = static_cast<uint32_t>(query.Int(4));
    n.group = OptionalId(query, 5);
    n.hasNumber = !query.IsNull(6);
    n.number = static_cast<int32_t>(query.Int(6));
    d.nets.push_back(n);
  }
  return query.Finished();
}

bool ReadLinks(WordReader& reader, uint32_t count, Design& d) {
  for (uint32_t i = 0; i < count; ++i) {
    uint32_t net = 0;
    if (!reader.Word(net)) return false;
    d.links.push_back(net);
  }
  return true;
}

bool LoadPorts(SqliteDb& db, Design& d) {
  SqliteStmt query(db, "SELECT id, block, name, bus, width, connected, attrs, nets FROM ports ORDER BY id");
  while (query.Row()) {
    uint32_t index = static_cast<uint32_t>(d.ports.size());
    if (query.Int(0) != index) return false;
    if (!OwnerMatches(d, query.Int(1), index, &BlockRec::portsBegin, &BlockRec::portsEnd)) return false;
    PortRec p;
    p.block = static_cast<uint32_t>(query.Int(1));
    p.name = static_cast<uint32_t>(query.Int(2));
    p.bus = static_cast<uint32_t>(query.Int(3));
    p.width = static_cast<uint32_t>(query.Int(4));
    p.connected = query.Int(5) != 0;
    p.attrs = static_cast<uint32_t>(query.Int(6));
    size_t size = 0;
    const unsigned char* blob = query.Blob(7, size);
    WordReader reader(blob, size);
    p.netsBegin = static_cast<uint32_t>(d.links.size());
    p.netsCount = static_cast<uint32_t>(size / 4);
    if (!ReadLinks(reader, p.netsCount, d)) return false;
    d.ports.push_back(p);
  }
  return query.Finished();
}

bool ReadPins(WordReader& reader, CompRec& c, Design& d) {
  c.pinsBegin = static_cast<uint32_t>(d.pins.size());
  while (!reader.Done()) {
    PinRec pin;
    uint32_t connected = 0;
    if (!reader.Word(pin.name) || !reader.Word(pin.bus) || !reader.Word(pin.width) || !reader.Word(connected) ||
        !reader.Word(pin.netsCount))
      return false;
    pin.connected = connected != 0;
    pin.netsBegin = static_cast<uint32_t>(d.links.size());
    if (!ReadLinks(reader, pin.netsCount, d)) return false;
    d.pins.push_back(pin);
  }
  c.pinsCount = static_cast<uint32_t>(d.pins.size() - c.pinsBegin);
  return true;
}

bool LoadComps(SqliteDb& db, Design& d) {
  SqliteStmt query(db,
                   "SELECT id, block, label, name, partition, type, child, inst_attrs, def_attrs, own_definition, "
                   "grp, number, pins FROM comps ORDER BY id");
  while (query.Row()) {
    uint32_t index = static_cast<uint32_t>(d.comps.size());
    if (query.Int(0) != index) return false;
    if (!OwnerMatches(d, query.Int(1), index, &BlockRec::compsBegin, &BlockRec::compsEnd)) return false;
    CompRec c;
    c.block = static_cast<uint32_t>(query.Int(1));
    c.label = static_cast<uint32_t>(query.Int(2));
    c.name = static_cast<uint32_t>(query.Int(3));
    c.partition = static_cast<uint32_t>(query.Int(4));
    c.type = static_cast<uint32_t>(query.Int(5));
    c.child = OptionalId(query, 6);
    c.instAttrs = static_cast<uint32_t>(query.Int(7));
    c.defAttrs = static_cast<uint32_t>(query.Int(8));
    c.ownDefinition = query.Int(9) != 0;
    c.group = OptionalId(query, 10);
    c.hasNumber = !query.IsNull(11);
    c.number = static_cast<int32_t>(query.Int(11));
    size_t size = 0;
    const unsigned char* blob = query.Blob(12, size);
    WordReader reader(blob, size);
    if (!ReadPins(reader, c, d)) return false;
    d.comps.push_back(c);
  }
  return query.Finished();
}

}  // namespace

bool LoadDesign(const std::string& file, Design& design, std::string& error) {
  SqliteDb db;
  if (!db.Open(file, false)) {
    error = db.Message();
    return false;
  }
  db.Exec("PRAGMA mmap_size=1073741824");
  bool ok = LoadMeta(db, design) && LoadStrings(db, design) && LoadAttrLists(db, design) &&
            LoadBlocks(db, design) && LoadSmallTables(db, design) && LoadNets(db, design) &&
            LoadPorts(db, design) && LoadComps(db, design);
  if (!ok) {
    std::string message = db.Message();
    error = message.empty() || message == "not an error" ? "not a design database of this program" : message;
    return false;
  }
  design.strings.ReleaseIndex();
  uint32_t comps = design.blocks.empty() ? 0 : design.blocks.back().compsEnd;
  uint32_t nets = design.blocks.empty() ? 0 : design.blocks.back().netsEnd;
  if (comps != design.comps.size() || nets != design.nets.size()) {
    error = "the tables do not match the blocks";
    return false;
  }
  return CheckDesign(design, error);
}

}  // namespace vdb
