// Writes large design descriptions for the benchmarks: a flat design of N primitives, or a top that
// places many instances of a few blocks, each of which places a leaf block.
//
//   make_design flat N out.json
//   make_design hier BLOCKS PER_BLOCK out.json
//
// The designs are deterministic. They mix resistors, capacitors, sources, MOS devices with models and
// pin orders, voltage probes, analysis generators, global nets, numbered nets, nets with probes and
// initial conditions, and repeated labels, so that the benchmarks pass through node names, the
// dictionary, the templates, the model lines and the probe statements.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// A small linear congruential generator, so that every run writes the same design.
class Lcg {
 public:
  uint32_t Next(uint32_t bound) {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<uint32_t>(state_ >> 33) % bound;
  }

 private:
  uint64_t state_ = 42;
};

/// Buffered output of JSON text with a comma between the items of the list being written.
class JsonOut {
 public:
  explicit JsonOut(FILE* file) : file_(file) { buffer_.reserve(1 << 20); }
  ~JsonOut() { Flush(); }
  JsonOut& operator<<(const std::string& text) {
    buffer_ += text;
    if (buffer_.size() > (1 << 20)) Flush();
    return *this;
  }
  JsonOut& operator<<(const char* text) { return *this << std::string(text); }
  JsonOut& operator<<(uint64_t number) { return *this << std::to_string(number); }
  /// Starts an item of a list: a comma unless it is the first.
  void Item(bool& first) {
    if (!first) buffer_ += ",\n";
    first = false;
  }
  void Flush() {
    fwrite(buffer_.data(), 1, buffer_.size(), file_);
    buffer_.clear();
  }

 private:
  FILE* file_;
  std::string buffer_;
};

const char* kSymbols = R"(  "symbols": {
    "RES.1":  { "PREFIX": "R", "ORDER": "VALUE$ TC=" },
    "CAP.1":  { "PREFIX": "C", "ORDER": "VALUE$ IC=" },
    "VSRC.1": { "PREFIX": "V", "ORDER": "\"DC\" VALUE$ AC=" },
    "ISRC.1": { "PREFIX": "I", "ORDER": "\"DC\" DCVAL$" },
    "NMOS.1": { "PREFIX": "M", "ORDER": "MODEL$ L$ W$ AD= AS=", "PINORDER": "D G S B" },
    "PMOS.1": { "PREFIX": "M", "ORDER": "MODEL$ L$ W$", "PINORDER": "D G S B" },
    "DIODE.1": { "PREFIX": "D", "ORDER": "MODEL$ AREA$" },
    "VCVS.1": { "PREFIX": "E", "ORDER": "CP[ CN[ GAIN$" },
    "VPROBE.1": { "PREFIX": "P" },
    "TRAN.1": { "ORDER": "TSTEP$ TSTOP$" }
  },
)";

struct Pin {
  const char* name;
  std::string net;
};

void WritePins(JsonOut& out, std::initializer_list<Pin> pins) {
  out << ", \"pins\": [";
  bool first = true;
  for (const Pin& pin : pins) {
    if (!first) out << ", ";
    first = false;
    out << "{ \"name\": \"" << pin.name << "\"";
    if (!pin.net.empty()) out << ", \"net\": \"" << pin.net << "\"";
    out << " }";
  }
  out << "] }";
}

/// Writes primitive number `i` between nets `a` and `b`, with `c` a third net for four-pin devices.
/// `labelBase` numbers the labels, so that blocks can repeat labels on purpose.
void WritePrimitive(JsonOut& out, Lcg& rng, uint64_t i, uint64_t label, const std::string& a,
                    const std::string& b, const std::string& c) {
  std::string tag = std::to_string(label);
  switch (i % 10) {
    case 0:
    case 1:
    case 2:
      out << "{ \"label\": \"R" << tag << "\", \"name\": \"RES.1\", \"attributes\": { \"VALUE\": \""
          << uint64_t(1 + rng.Next(99)) << "K\"" << (i % 7 == 0 ? ", \"TC\": \"0.001\"" : "") << " }";
      WritePins(out, {{"A", a}, {"B", b}});
      return;
    case 3:
    case 4:
      out << "{ \"label\": \"C" << tag << "\", \"name\": \"CAP.1\", \"attributes\": { \"VALUE\": \""
          << uint64_t(1 + rng.Next(999)) << "F\"" << (i % 9 == 0 ? ", \"IC\": \"0\"" : "") << " }";
      WritePins(out, {{"A", a}, {"B", i % 3 == 0 ? std::string("GND") : b}});
      return;
    case 5:
      out << "{ \"label\": \"M" << tag << "\", \"name\": \"NMOS.1\", \"attributes\": { \"MODEL\": \"NCH"
          << uint64_t(rng.Next(4)) << "\", \"L\": \"0.18U\", \"W\": \"" << uint64_t(1 + rng.Next(20))
          << "U\", \"AD\": \"1P\" }";
      WritePins(out, {{"D", a}, {"G", c}, {"S", "GND"}, {"B", "GND"}});
      return;
    case 6:
      out << "{ \"label\": \"M" << tag << "\", \"name\": \"PMOS.1\", \"attributes\": { \"MODEL\": \"PCH"
          << uint64_t(rng.Next(4)) << "\", \"L\": \"0.18U\", \"W\": \"@WP\" }";
      WritePins(out, {{"D", b}, {"G", c}, {"S", "VDD"}, {"B", "VDD"}});
      return;
    case 7:
      if (i % 100 == 7) {
        out << "{ \"label\": \"V" << tag << "\", \"name\": \"VSRC.1\", \"attributes\": { \"VALUE\": \"1.8\", "
            << "\"AC\": \"1\" }";
        WritePins(out, {{"P", a}, {"N", "GND"}});
      } else if (i % 100 == 17) {
        out << "{ \"label\": \"I" << tag
            << "\", \"name\": \"ISRC.1\", \"attributes\": { \"DCVAL\": \"10U\" }";
        WritePins(out, {{"P", a}, {"N", b}});
      } else {
        out << "{ \"label\": \"D" << tag
            << "\", \"name\": \"DIODE.1\", \"attributes\": { \"MODEL\": \"DMOD\", "
            << "\"AREA\": \"2\" }";
        WritePins(out, {{"A", a}, {"K", b}});
      }
      return;
    case 8:
      if (i % 1000 == 8) {
        out << "{ \"label\": \"P" << tag
            << "\", \"name\": \"VPROBE.1\", \"attributes\": { \"PROBE\": \"V\" }";
        WritePins(out, {{"A", a}});
      } else if (i % 1000 == 18) {
        out << "{ \"label\": \"R" << tag << "\", \"name\": \"RES.1\", \"attributes\": { \"VALUE\": \"1\", "
            << "\"PROBE\": \"i\" }";
        WritePins(out, {{"A", a}, {"B", b}});
      } else {
        out << "{ \"label\": \"E" << tag << "\", \"name\": \"VCVS.1\", \"attributes\": { \"GAIN\": \"10\" }";
        WritePins(out, {{"P", a}, {"N", "GND"}, {"CP", b}, {"CN", i % 5 == 0 ? std::string() : c}});
      }
      return;
    default:
      out << "{ \"label\": \"R" << tag
          << "\", \"name\": \"RES.1\", \"attributes\": { \"VALUE\": \"{RLOAD}\" }";
      WritePins(out, {{"A", b}, {"B", "VDD"}});
      return;
  }
}

/// The analysis generators: a transient and an AC analysis.
void WriteGenerators(JsonOut& out, bool& first) {
  out.Item(first);
  out << "{ \"label\": \"TR1\", \"name\": \"TRAN.1\", \"attributes\": { \"GENERATOR\": \".TRAN\", "
      << "\"TSTEP\": \"1N\", \"TSTOP\": \"1U\" } }";
  out.Item(first);
  out << "{ \"label\": \"AC1\", \"name\": \"AC.1\", \"attributes\": { \"GENERATOR\": \".AC\", "
      << "\"ORDER\": \"\\\"DEC\\\" NPTS$ FSTART$ FSTOP$\", \"NPTS\": \"10\", \"FSTART\": \"1\", "
      << "\"FSTOP\": \"1G\" } }";
}

std::string NetName(uint64_t n) {
  // A few spellings that the name rules treat differently.
  switch (n % 20) {
    case 3:
      return "OUT_" + std::to_string(n);
    case 11:
      return "a/b" + std::to_string(n);
    case 13:
      return "GND_" + std::to_string(n);
    default:
      return "N" + std::to_string(n);
  }
}

/// The declared nets of a flat design: globals, and every tenth signal net with attributes.
void WriteFlatNets(JsonOut& out, uint64_t netCount) {
  out << "\"nets\": [\n{ \"label\": \"GND\", \"global\": true },\n{ \"label\": \"VDD\", \"global\": true }";
  for (uint64_t n = 0; n < netCount; n += 10) {
    out << ",\n{ \"label\": \"" << NetName(n) << "\"";
    if (n % 1000 == 0) out << ", \"attributes\": { \"PROBE\": \"" << (n % 3000 == 0 ? "DB" : "") << "\" }";
    if (n % 1000 == 500) out << ", \"attributes\": { \"NODESET\": \"0.9\" }";
    if (n % 30 == 0) out << ", \"group\": \"G1\", \"number\": " << n;
    out << " }";
  }
  out << "],\n";
}

void WriteFlat(JsonOut& out, uint64_t count) {
  Lcg rng;
  uint64_t netCount = count / 2 + 2;
  out << "{\n  \"groups\": { \"G1\": { \"internal_id\": \"7A\", \"type\": 2 } },\n" << kSymbols;
  out << "  \"testbenches\": { \"bench\": \"TOP\" },\n  \"blocks\": [\n{ \"name\": \"TOP\",\n";
  WriteFlatNets(out, netCount);
  out << "\"components\": [\n";
  bool first = true;
  WriteGenerators(out, first);
  for (uint64_t i = 0; i < count; ++i) {
    uint64_t a = i / 2, b = (a + 1 + rng.Next(50)) % netCount, c = rng.Next(static_cast<uint32_t>(netCount));
    out.Item(first);
    // One label in a thousand repeats an earlier one, which the unique-name rule must resolve.
    uint64_t label = i % 1000 == 999 ? i / 2 : i;
    WritePrimitive(out, rng, i, label, NetName(a), NetName(b), NetName(c));
  }
  out << "]\n}\n]\n}\n";
}

/// A leaf block with three primitives between its ports A and B.
void WriteLeaf(JsonOut& out) {
  out << ",\n{ \"name\": \"LEAF\", \"ports\": [ { \"name\": \"A\", \"net\": \"A\" }, "
      << "{ \"name\": \"B\", \"net\": \"B\" } ],\n"
      << "\"nets\": [ { \"label\": \"GND\", \"global\": true }, { \"label\": \"M\", \"attributes\": { "
         "\"IC\": \"0\" } } ],\n"
      << "\"components\": [\n";
  Lcg rng;
  bool first = true;
  const char* nets[][2] = {{"A", "M"}, {"M", "B"}, {"B", "GND"}};
  for (uint64_t i = 0; i < 3; ++i) {
    out.Item(first);
    WritePrimitive(out, rng, i, i + 1, nets[i][0], nets[i][1], "A");
  }
  out << "]\n}";
}

/// Cell number `k` of the three: `perBlock` primitives in all, three of them in the leaf it places.
void WriteCell(JsonOut& out, int k, uint64_t perBlock) {
  out << ",\n{ \"name\": \"CELL" << uint64_t(k) << "\", \"ports\": [ { \"name\": \"IN\", \"net\": \"IN\" }, "
      << "{ \"name\": \"OUT\", \"net\": \"OUT\" }, { \"name\": \"BIAS\", \"net\": \"BIAS\" } ],\n"
      << "\"nets\": [ { \"label\": \"GND\", \"global\": true }, { \"label\": \"VDD\", \"global\": true }, "
      << "{ \"label\": \"OUT\", \"attributes\": { \"PROBE\": \"V\" } }, "
      << "{ \"label\": \"S1\", \"attributes\": { \"NODESET\": \"0.5\" } } ],\n\"components\": [\n";
  Lcg rng;
  bool first = true;
  uint64_t own = perBlock > 3 ? perBlock - 3 : 1;
  for (uint64_t i = 0; i < own; ++i) {
    out.Item(first);
    std::string a = i == 0 ? "IN" : "S" + std::to_string(i),
                b = i + 1 == own ? "OUT" : "S" + std::to_string(i + 1);
    WritePrimitive(out, rng, i + k, i + 1, a, b, "BIAS");
  }
  out.Item(first);
  out << "{ \"label\": \"XL\", \"name\": \"LEAF.1\", \"type\": 2, \"child\": \"LEAF\", "
      << "\"attributes\": { \"ORDER\": \"K=\", \"K\": \"2\" }";
  WritePins(out, {{"A", "OUT"}, {"B", "BIAS"}});
  out << "\n]\n}";
}

void WriteHier(JsonOut& out, uint64_t blocks, uint64_t perBlock) {
  out << "{\n"
      << kSymbols << "  \"blocks\": [\n{ \"name\": \"TOP\",\n"
      << "\"nets\": [ { \"label\": \"GND\", \"global\": true }, { \"label\": \"VDD\", \"global\": true }, "
      << "{ \"label\": \"T0\", \"attributes\": { \"PROBE\": \"V\" } } ],\n\"components\": [\n";
  bool first = true;
  WriteGenerators(out, first);
  out.Item(first);
  out << "{ \"label\": \"V1\", \"name\": \"VSRC.1\", \"attributes\": { \"VALUE\": \"1.8\" }";
  WritePins(out, {{"P", "VDD"}, {"N", "GND"}});
  for (uint64_t i = 0; i < blocks; ++i) {
    out.Item(first);
    int k = static_cast<int>(i % 3);
    out << "{ \"label\": \"X" << i << "\", \"name\": \"CELL" << uint64_t(k)
        << ".1\", \"type\": 2, \"child\": \"CELL" << uint64_t(k)
        << "\", \"attributes\": { \"ORDER\": \"GAIN=\", \"GAIN\": \"" << uint64_t(1 + i % 5) << "\" }";
    WritePins(out, {{"IN", "T" + std::to_string(i)},
                    {"OUT", "T" + std::to_string(i + 1)},
                    {"BIAS", "B" + std::to_string(i % 64)}});
  }
  out << "]\n}";
  for (int k = 0; k < 3; ++k) WriteCell(out, k, perBlock);
  WriteLeaf(out);
  out << "\n]\n}\n";
}

int Usage() {
  fprintf(stderr, "usage: make_design flat N out.json\n       make_design hier BLOCKS PER_BLOCK out.json\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return Usage();
  std::string kind = argv[1];
  bool flat = kind == "flat" && argc == 4, hier = kind == "hier" && argc == 5;
  if (!flat && !hier) return Usage();
  FILE* file = fopen(argv[argc - 1], "wb");
  if (!file) {
    fprintf(stderr, "make_design: cannot write %s\n", argv[argc - 1]);
    return 1;
  }
  {
    JsonOut out(file);
    if (flat) {
      WriteFlat(out, strtoull(argv[2], nullptr, 10));
    } else {
      WriteHier(out, strtoull(argv[2], nullptr, 10), strtoull(argv[3], nullptr, 10));
    }
  }
  return fclose(file) == 0 ? 0 : 1;
}
