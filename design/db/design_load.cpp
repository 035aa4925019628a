// Reads a design back from its SQLite file with one sequential scan per table.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fstream>
#include <functional>
#include <system_error>
#include <thread>

#include "design/db/design_store.h"
#include "design/db/sqlite_handle.h"

namespace vdb {

namespace {

constexpr const char* kFormat = "vesk-design 1";
// From this many components on, the table is read in two stretches at once.
constexpr uint32_t kTwoStretches = 1 << 15;

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

// The components of one stretch of the table, with their pins and links: numbered from the
// starts of the lists given, which are the design's own for the first stretch.
template <class List>
void ShrinkWhenWasteful(List& list) {
  if (list.capacity() - list.size() > list.size() / 8) list.shrink_to_fit();
}

struct CompStretch {
  uint32_t first = 0;  // the id of the first row
  bool toEnd = true;   // true: every row from `first` on; false: the rows below `end`
  uint32_t end = 0;
  std::vector<CompRec>* comps;
  std::vector<PinRec>* pins;
  std::vector<uint32_t>* links;
};

bool ReadPins(WordReader& reader, CompRec& c, const CompStretch& to) {
  c.pinsBegin = static_cast<uint32_t>(to.pins->size());
  while (!reader.Done()) {
    PinRec pin;
    uint32_t connected = 0, count = 0;
    if (!reader.Word(pin.name) || !reader.Word(pin.bus) || !reader.Word(pin.width) ||
        !reader.Word(connected) || !reader.Word(count) || count >= kMaxPinsOrNets)
      return false;
    pin.connected = connected != 0;
    pin.netsCount = count;
    pin.netsBegin = static_cast<uint32_t>(to.links->size());
    if (!ReadLinks(reader, pin.netsCount, *to.links)) return false;
    to.pins->push_back(pin);
  }
  if (to.pins->size() - c.pinsBegin >= kMaxPinsOrNets) return false;
  c.pinsCount = static_cast<uint32_t>(to.pins->size() - c.pinsBegin);
  return true;
}

bool LoadComps(SqliteDb& db, const Design& d, const CompStretch& to) {
  // The stretches split the table by id and together take every row (the first from the
  // lowest id there is, the last to the highest): a row that no block owns is refused,
  // wherever it stands.
  const std::string sql = std::string(
                              "SELECT id, block, label, name, partition, type, child, inst_attrs, def_attrs, "
                              "own_definition, grp, number, pins FROM comps WHERE ") +
                          (to.toEnd ? "id >= ?1" : "id >= ?1 AND id < ?2") + " ORDER BY id";
  SqliteStmt query(db, sql.c_str());
  query.Bind(1, to.first == 0 ? INT64_MIN : static_cast<int64_t>(to.first));
  if (!to.toEnd) query.Bind(2, static_cast<int64_t>(to.end));
  while (query.Row()) {
    uint32_t index = to.first + static_cast<uint32_t>(to.comps->size());
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
    if (!ReadPins(reader, c, to)) return false;
    to.comps->push_back(c);
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

// A table read on a connection of its own, so that it goes on while the other tables are
// read: the components with their pins (the largest table, read in two stretches at once)
// and the nets. Each fills only its own lists, and checks against the blocks, which are read
// before and no longer change.
using TableLoad = std::function<bool(SqliteDb&)>;

void ReadOnOwnConnection(const std::string& file, const TableLoad& load, TableRead& read) {
  SqliteDb db;
  if (!db.Open(file, false)) {
    read.ok = false;
    read.message = db.Message();
    return;
  }
  read.ok = load(db);
  if (!read.ok) read.message = db.Message();
}

// A table read beside the others, on a thread of its own when one can be had. What it throws
// (memory running out) is kept and thrown again by Finish, once the thread has ended.
class SideRead {
 public:
  SideRead(const std::string& file, TableLoad load) : file_(file), load_(std::move(load)) {}
  ~SideRead() {
    if (thread_.joinable()) thread_.join();
  }
  SideRead(const SideRead&) = delete;
  SideRead& operator=(const SideRead&) = delete;
  void Start() {
    try {
      thread_ = std::thread([this] {
        try {
          ReadOnOwnConnection(file_, load_, read);
        } catch (...) {
          read.ok = false;
          failure_ = std::current_exception();
        }
      });
    } catch (const std::system_error&) {
      // No thread: Finish reads the table.
    }
  }
  /// Waits for the read, or reads the table here when no thread took it and `readHere`.
  void Finish(bool readHere) {
    if (thread_.joinable()) {
      thread_.join();
      if (failure_) std::rethrow_exception(failure_);
    } else if (readHere) {
      ReadOnOwnConnection(file_, load_, read);
    }
  }
  TableRead read;

 private:
  const std::string& file_;
  TableLoad load_;
  std::thread thread_;
  std::exception_ptr failure_;
};

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
  // The blocks are read ahead of their turn: the components and the nets need them, and they
  // need nothing but their own table. The components (in two stretches) and the nets are then
  // read on threads of their own while this one reads the rest.
  const bool metaOk = reads[kMeta].Run(db, LoadMeta, design);
  const bool blocksOk = metaOk && reads[kBlocks].Run(db, LoadBlocks, design);
  const uint32_t compCount = design.blocks.empty() ? 0 : design.blocks.back().compsEnd;
  const bool twoStretches = compCount >= kTwoStretches;
  std::vector<CompRec> laterComps;
  std::vector<PinRec> laterPins;
  std::vector<uint32_t> laterLinks;
  const CompStretch firstStretch{0, !twoStretches, compCount / 2, &design.comps, &design.pins, &design.links};
  const CompStretch laterStretch{compCount / 2, true, 0, &laterComps, &laterPins, &laterLinks};
  SideRead firstComps(file, [&](SqliteDb& side) { return LoadComps(side, design, firstStretch); });
  SideRead laterCompsRead(file, [&](SqliteDb& side) { return LoadComps(side, design, laterStretch); });
  SideRead netsRead(file, [&](SqliteDb& side) { return LoadNets(side, design); });
  if (blocksOk) {
    firstComps.Start();
    if (twoStretches) laterCompsRead.Start();
    netsRead.Start();
  }
  std::vector<uint32_t> portLinks;
  bool ok = metaOk && reads[kStrings].Run(db, LoadStrings, design) &&
            reads[kAttrs].Run(db, LoadAttrLists, design) && blocksOk &&
            reads[kSmall].Run(db, LoadSmallTables, design);
  netsRead.Finish(ok);
  if (ok) reads[kNets] = netsRead.read;
  ok = ok && netsRead.read.ok;
  if (ok && !LoadPorts(db, design, portLinks)) {
    reads[kPorts].ok = ok = false;
    reads[kPorts].message = db.Message();
  }
  firstComps.Finish(ok);
  if (twoStretches) laterCompsRead.Finish(ok && firstComps.read.ok);
  // The first stretch's failure is the one reading the table in order would meet first.
  if (ok) reads[kComps] = !firstComps.read.ok ? firstComps.read : laterCompsRead.read;
  if (ok && reads[kComps].ok && twoStretches) {
    // The later stretch stands behind the first: its pins and links are numbered on.
    const uint32_t pinBase = static_cast<uint32_t>(design.pins.size());
    const uint32_t linkBase = static_cast<uint32_t>(design.links.size());
    for (CompRec& c : laterComps) c.pinsBegin += pinBase;
    for (PinRec& pin : laterPins) pin.netsBegin += linkBase;
    design.comps.insert(design.comps.end(), laterComps.begin(), laterComps.end());
    design.pins.insert(design.pins.end(), laterPins.begin(), laterPins.end());
    design.links.insert(design.links.end(), laterLinks.begin(), laterLinks.end());
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
  // stays in memory for the whole walk. The guess is usually close, and a copy of a list
  // that is nearly full would cost more than it gives back.
  ShrinkWhenWasteful(design.pins);
  ShrinkWhenWasteful(design.links);
  uint32_t comps = design.blocks.empty() ? 0 : design.blocks.back().compsEnd;
  uint32_t nets = design.blocks.empty() ? 0 : design.blocks.back().netsEnd;
  if (comps != design.comps.size() || nets != design.nets.size()) {
    error = "the tables do not match the blocks";
    return false;
  }
  return CheckDesign(design, error);
}

}  // namespace vdb
