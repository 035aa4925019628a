// Reads a design back from its SQLite file with one sequential scan per table.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fstream>
#include <system_error>
#include <thread>

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

// A stored index or count: an integer that fits below kNone. Anything else (text, a real, a value
// that a cast to 32 bits would wrap) marks the file as damaged rather than naming another object.
bool ReadId(const SqliteStmt& query, int col, uint32_t& id) {
  int64_t value = 0;
  if (query.TypedInt(col, value) != SQLITE_INTEGER) return false;
  if (value < 0 || value >= kNone) return false;
  id = static_cast<uint32_t>(value);
  return true;
}

// An index that may be absent (NULL): kNone then. Each column is asked its type once: a million
// rows make every call to SQLite count.
bool ReadOptionalId(const SqliteStmt& query, int col, uint32_t& id) {
  int64_t value = 0;
  int type = query.TypedInt(col, value);
  if (type == SQLITE_NULL) {
    id = kNone;
    return true;
  }
  if (type != SQLITE_INTEGER) return false;
  if (value < 0 || value >= kNone) return false;
  id = static_cast<uint32_t>(value);
  return true;
}

// A signed number stored in 32 bits, or NULL when `present` may be false.
bool ReadNumber(const SqliteStmt& query, int col, int32_t& number, uint8_t& present) {
  int64_t value = 0;
  int type = query.TypedInt(col, value);
  present = type != SQLITE_NULL;
  number = 0;
  if (!present) return true;
  if (type != SQLITE_INTEGER) return false;
  if (value < INT32_MIN || value > INT32_MAX) return false;
  number = static_cast<int32_t>(value);
  return true;
}

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
  // Room for every text at once. A chunk holds up to kChunkItems texts of at least their 4-byte
  // length each, which bounds what a damaged file can make us reserve.
  SqliteStmt count(db, "SELECT count(*), sum(length(data)) FROM strings");
  if (!count.Row()) return false;
  uint64_t texts = std::min<uint64_t>(static_cast<uint64_t>(count.Int(0)) * uint64_t{kChunkItems},
                                      static_cast<uint64_t>(count.Int(1)) / 4);
  d.strings.Reserve(static_cast<size_t>(std::min<uint64_t>(texts + 1, kNone)));
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
    if (!query.IsInteger(0) || query.Int(0) != static_cast<int64_t>(d.blocks.size())) return false;
    BlockRec b;
    uint32_t counts[3] = {};
    if (!ReadId(query, 1, b.name)) return false;
    for (int i = 0; i < 3; ++i) {
      if (!ReadId(query, 2 + i, counts[i]) || counts[i] > kMaxPerBlock) return false;
    }
    b.compsBegin = static_cast<uint32_t>(comps), b.compsEnd = static_cast<uint32_t>(comps += counts[0]);
    b.netsBegin = static_cast<uint32_t>(nets), b.netsEnd = static_cast<uint32_t>(nets += counts[1]);
    b.portsBegin = static_cast<uint32_t>(ports), b.portsEnd = static_cast<uint32_t>(ports += counts[2]);
    if (comps >= kNone || nets >= kNone || ports >= kNone) return false;
    d.blocks.push_back(b);
  }
  // The counts come from the file: a damaged one must not make us reserve without end.
  constexpr uint64_t kMaxReserve = uint64_t(1) << 26;
  d.comps.reserve(std::min(comps, kMaxReserve));
  d.nets.reserve(std::min(nets, kMaxReserve));
  d.ports.reserve(std::min(ports, kMaxReserve));
  // Pins are not counted ahead; two a component (each on one net) is the common case, and a
  // guess that is wrong only costs the growth that would have happened anyway.
  d.pins.reserve(std::min(2 * comps, kMaxReserve));
  d.links.reserve(std::min(2 * comps, kMaxReserve));  // the pins' links; the ports' come behind them
  return query.Finished();
}

bool LoadSmallTables(SqliteDb& db, Design& d) {
  SqliteStmt groups(db, "SELECT name, internal_id, type FROM groups ORDER BY id");
  while (groups.Row()) {
    GroupRec g;
    uint8_t present = 0;
    if (!ReadId(groups, 0, g.name) || !ReadId(groups, 1, g.internalId) ||
        !ReadNumber(groups, 2, g.type, present) || !present)
      return false;
    d.groups.push_back(g);
  }
  if (!groups.Finished()) return false;
  // Symbols and test benches: a name and an index each.
  for (auto [sql, rows] : {std::pair<const char*, std::vector<std::pair<uint32_t, uint32_t>>*>{
                               "SELECT name, attrs FROM symbols ORDER BY id", &d.symbols},
                           {"SELECT name, block FROM testbenches ORDER BY id", &d.testbenches}}) {
    SqliteStmt query(db, sql);
    while (query.Row()) {
      uint32_t name = 0, value = 0;
      if (!ReadId(query, 0, name) || !ReadId(query, 1, value)) return false;
      rows->emplace_back(name, value);
    }
    if (!query.Finished()) return false;
  }
  return true;
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
    int64_t block = query.Int(1);
    if (!OwnerMatches(d, block, index, &BlockRec::netsBegin, &BlockRec::netsEnd)) return false;
    NetRec n;
    n.block = static_cast<uint32_t>(block);
    n.global = query.Int(3) != 0;
    uint32_t attrs = 0;
    uint8_t hasNumber = 0;
    if (!ReadId(query, 2, n.label) || !ReadId(query, 4, attrs) || attrs >= kMaxNetAttrList ||
        !ReadOptionalId(query, 5, n.group) || !ReadNumber(query, 6, n.number, hasNumber))
      return false;
    n.attrs = attrs;
    n.hasNumber = hasNumber;
    d.nets.push_back(n);
  }
  return query.Finished();
}

bool ReadLinks(WordReader& reader, uint32_t count, std::vector<uint32_t>& links) {
  for (uint32_t i = 0; i < count; ++i) {
    uint32_t net = 0;
    if (!reader.Word(net)) return false;
    links.push_back(net);
  }
  return true;
}

// The ports' links go into `links`, numbered from its start; the caller moves them behind the
// pins' links, which another thread may be filling meanwhile.
bool LoadPorts(SqliteDb& db, Design& d, std::vector<uint32_t>& links) {
  SqliteStmt query(db, "SELECT id, block, name, bus, width, connected, attrs, nets FROM ports ORDER BY id");
  while (query.Row()) {
    uint32_t index = static_cast<uint32_t>(d.ports.size());
    if (query.Int(0) != index) return false;
    int64_t block = query.Int(1);
    if (!OwnerMatches(d, block, index, &BlockRec::portsBegin, &BlockRec::portsEnd)) return false;
    PortRec p;
    p.block = static_cast<uint32_t>(block);
    p.connected = query.Int(5) != 0;
    if (!ReadId(query, 2, p.name) || !ReadId(query, 3, p.bus) || !ReadId(query, 4, p.width) ||
        !ReadId(query, 6, p.attrs))
      return false;
    size_t size = 0;
    const unsigned char* blob = query.Blob(7, size);  // sets `size`, so it must come first
    if (size % 4 != 0) return false;
    WordReader reader(blob, size);
    p.netsBegin = static_cast<uint32_t>(links.size());
    p.netsCount = static_cast<uint32_t>(size / 4);
    if (!ReadLinks(reader, p.netsCount, links)) return false;
    d.ports.push_back(p);
  }
  return query.Finished();
}

bool ReadPins(WordReader& reader, CompRec& c, Design& d) {
  c.pinsBegin = static_cast<uint32_t>(d.pins.size());
  while (!reader.Done()) {
    PinRec pin;
    uint32_t connected = 0, count = 0;
    if (!reader.Word(pin.name) || !reader.Word(pin.bus) || !reader.Word(pin.width) ||
        !reader.Word(connected) || !reader.Word(count) || count >= kMaxPinsOrNets)
      return false;
    pin.connected = connected != 0;
    pin.netsCount = count;
    pin.netsBegin = static_cast<uint32_t>(d.links.size());
    if (!ReadLinks(reader, pin.netsCount, d.links)) return false;
    d.pins.push_back(pin);
  }
  if (d.pins.size() - c.pinsBegin >= kMaxPinsOrNets) return false;
  c.pinsCount = static_cast<uint32_t>(d.pins.size() - c.pinsBegin);
  return true;
}

bool LoadComps(SqliteDb& db, Design& d) {
  SqliteStmt query(
      db,
      "SELECT id, block, label, name, partition, type, child, inst_attrs, def_attrs, own_definition, "
      "grp, number, pins FROM comps ORDER BY id");
  while (query.Row()) {
    uint32_t index = static_cast<uint32_t>(d.comps.size());
    if (query.Int(0) != index) return false;
    int64_t block = query.Int(1);
    if (!OwnerMatches(d, block, index, &BlockRec::compsBegin, &BlockRec::compsEnd)) return false;
    CompRec c;
    uint8_t hasNumber = 0;
    c.block = static_cast<uint32_t>(block);
    c.ownDefinition = query.Int(9) != 0;
    // Type bits are any 32-bit value, all ones included.
    int64_t type = 0;
    if (query.TypedInt(5, type) != SQLITE_INTEGER || type < 0 || type > UINT32_MAX) return false;
    c.type = static_cast<uint32_t>(type);
    if (!ReadId(query, 2, c.label) || !ReadId(query, 3, c.name) || !ReadId(query, 4, c.partition) ||
        !ReadOptionalId(query, 6, c.child) || !ReadId(query, 7, c.instAttrs) ||
        !ReadId(query, 8, c.defAttrs) || !ReadOptionalId(query, 10, c.group) ||
        !ReadNumber(query, 11, c.number, hasNumber))
      return false;
    c.hasNumber = hasNumber;
    size_t size = 0;
    const unsigned char* blob = query.Blob(12, size);  // sets `size`, so it must come first
    WordReader reader(blob, size);
    if (!ReadPins(reader, c, d)) return false;
    d.comps.push_back(c);
  }
  return query.Finished();
}

// SQLite zero-fills what is missing at the end of a short file, so a cut that only removes the
// tail of the last page would pass unnoticed: compare the size with the page count of the header.
bool SizeMatchesHeader(const std::string& file, std::string& error) {
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  if (!in) return true;  // SQLite reports what is wrong with the file
  std::streamoff size = in.tellg();
  unsigned char header[100];
  in.seekg(0);
  if (size < 100 || !in.read(reinterpret_cast<char*>(header), sizeof header)) return true;
  if (std::memcmp(header, "SQLite format 3", 16) != 0) return true;
  auto bigEndian = [&](int at, int bytes) {
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i) value = value << 8 | header[at + i];
    return value;
  };
  uint32_t pageSize = bigEndian(16, 2) == 1 ? 65536 : bigEndian(16, 2);
  // The page count is only kept up to date when the two change counters agree.
  if (bigEndian(24, 4) != bigEndian(92, 4)) return true;
  if (static_cast<int64_t>(pageSize) * bigEndian(28, 4) == size) return true;
  error = "the file is " + std::to_string(size) + " bytes long but its pages make " +
          std::to_string(static_cast<int64_t>(pageSize) * bigEndian(28, 4));
  return false;
}

// One table read of the load: whether it worked, and SQLite's message when it did not,
// taken at once, before the connection's next call replaces it.
struct TableRead {
  bool ok = true;
  std::string message;
  bool Run(SqliteDb& db, bool (*load)(SqliteDb&, Design&), Design& design) {
    ok = load(db, design);
    if (!ok) message = db.Message();
    return ok;
  }
};

// The components and their pins, on a connection of their own: they are the largest table,
// and the other tables are read meanwhile. They fill only comps, pins and links; the blocks
// they are checked against are read before and no longer change.
void ReadComponents(const std::string& file, Design& design, TableRead& read) {
  SqliteDb db;
  if (!db.Open(file, false)) {
    read.ok = false;
    read.message = db.Message();
    return;
  }
  read.Run(db, LoadComps, design);
}

// ReadComponents on its own thread: what it throws (memory running out) is kept and thrown
// again on the caller's thread once the thread has ended.
void ReadComponentsKeepingFailure(const std::string& file, Design& design, TableRead& read,
                                  std::exception_ptr& failure) {
  try {
    ReadComponents(file, design, read);
  } catch (...) {
    read.ok = false;
    failure = std::current_exception();
  }
}

}  // namespace

bool LoadDesign(const std::string& file, Design& design, std::string& error) {
  if (!SizeMatchesHeader(file, error)) return false;
  SqliteDb db;
  if (!db.Open(file, false)) {
    error = db.Message();
    return false;
  }
  // Read through SQLite's small page cache rather than a mapping of the whole file, which would
  // count the file once more in the memory of the run while the tables are copied out. The
  // tables are taken in this order; the first that fails is the one reported.
  enum { kMeta, kStrings, kAttrs, kBlocks, kSmall, kNets, kPorts, kComps, kTables };
  TableRead reads[kTables];
  // The blocks are read ahead of their turn: the components need them, and they need nothing
  // but their own table. The components are then read on a second thread.
  const bool metaOk = reads[kMeta].Run(db, LoadMeta, design);
  const bool blocksOk = metaOk && reads[kBlocks].Run(db, LoadBlocks, design);
  std::thread components;
  std::exception_ptr componentsFailure;
  if (blocksOk) {
    try {
      components = std::thread(ReadComponentsKeepingFailure, std::cref(file), std::ref(design),
                               std::ref(reads[kComps]), std::ref(componentsFailure));
    } catch (const std::system_error&) {
      // No second thread: the components are read behind the other tables.
    }
  }
  // The thread must end before anything leaves this function, a throw included.
  struct Joiner {
    std::thread& thread;
    ~Joiner() {
      if (thread.joinable()) thread.join();
    }
  } joiner{components};
  std::vector<uint32_t> portLinks;
  bool ok = metaOk && reads[kStrings].Run(db, LoadStrings, design) && reads[kAttrs].Run(db, LoadAttrLists, design) &&
            blocksOk && reads[kSmall].Run(db, LoadSmallTables, design) && reads[kNets].Run(db, LoadNets, design);
  if (ok && !LoadPorts(db, design, portLinks)) {
    reads[kPorts].ok = ok = false;
    reads[kPorts].message = db.Message();
  }
  if (components.joinable()) {
    components.join();
    if (componentsFailure) std::rethrow_exception(componentsFailure);
  } else if (ok) {
    ReadComponents(file, design, reads[kComps]);
  }
  for (const TableRead& read : reads) {
    if (read.ok) continue;
    const std::string& message = read.message;
    error = message.empty() || message == "not an error" ? "not a design database of this program" : message;
    return false;
  }
  // The ports' links stand behind the pins'.
  const uint32_t pinLinks = static_cast<uint32_t>(design.links.size());
  for (PortRec& port : design.ports) port.netsBegin += pinLinks;
  design.links.insert(design.links.end(), portLinks.begin(), portLinks.end());
  design.strings.ReleaseIndex();
  // Their sizes were not known ahead: give back what the growth left over, as the design
  // stays in memory for the whole walk.
  design.pins.shrink_to_fit();
  design.links.shrink_to_fit();
  uint32_t comps = design.blocks.empty() ? 0 : design.blocks.back().compsEnd;
  uint32_t nets = design.blocks.empty() ? 0 : design.blocks.back().netsEnd;
  if (comps != design.comps.size() || nets != design.nets.size()) {
    error = "the tables do not match the blocks";
    return false;
  }
  return CheckDesign(design, error);
}

}  // namespace vdb
