// Writes the compact design as a JSON design description that imports back to the same design.
#include "design/db/json_writer.h"

#include <cstdio>

namespace vdb {

namespace {

class Writer {
 public:
  explicit Writer(const Design& d) : d_(d) {}
  std::string Run();

 private:
  void Text(std::string_view text);
  void Id(uint32_t id) { Text(d_.strings.View(id)); }
  void Key(const char* key) {
    out_ += '"';
    out_ += key;
    out_ += "\": ";
  }
  void Attributes(uint32_t list);
  void Links(uint32_t begin, uint32_t count, uint32_t bus, uint32_t width, bool connected);
  void GroupAndNumber(uint32_t group, bool hasNumber, int32_t number);
  void Port(const PortRec& port);
  void Net(const NetRec& net);
  void Pin(const PinRec& pin);
  void Comp(const CompRec& comp);
  void Block(const BlockRec& block);
  void Header();

  const Design& d_;
  std::string out_;
};

void Writer::Text(std::string_view text) {
  out_ += '"';
  for (char ch : text) {
    unsigned char c = static_cast<unsigned char>(ch);
    if (c == '"' || c == '\\') {
      out_ += '\\';
      out_ += ch;
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out_ += escaped;
    } else {
      out_ += ch;
    }
  }
  out_ += '"';
}

void Writer::Attributes(uint32_t list) {
  out_ += '{';
  for (uint32_t i = 0; i < d_.attrs.PairCount(list); ++i) {
    if (i) out_ += ", ";
    Id(d_.attrs.Key(list, i));
    out_ += ": ";
    Id(d_.attrs.Value(list, i));
  }
  out_ += '}';
}

void Writer::Links(uint32_t begin, uint32_t count, uint32_t bus, uint32_t width, bool connected) {
  if (count > 0) {
    out_ += ", ";
    Key("nets");
    out_ += '[';
    for (uint32_t i = 0; i < count; ++i) {
      if (i) out_ += ", ";
      Id(d_.nets[d_.links[begin + i]].label);
    }
    out_ += ']';
  }
  if (bus != 0) {
    out_ += ", ";
    Key("bus");
    Id(bus);
  }
  if (width != (count > 0 ? count : 1)) out_ += ", \"width\": " + std::to_string(width);
  if (connected != (count > 0 || bus != 0))
    out_ += connected ? ", \"connected\": true" : ", \"connected\": false";
}

void Writer::GroupAndNumber(uint32_t group, bool hasNumber, int32_t number) {
  if (group != kNone) {
    out_ += ", ";
    Key("group");
    Id(d_.groups[group].name);
  }
  if (hasNumber) out_ += ", \"number\": " + std::to_string(number);
}

void Writer::Port(const PortRec& port) {
  out_ += "        {";
  Key("name");
  Id(port.name);
  Links(port.netsBegin, port.netsCount, port.bus, port.width, port.connected);
  if (port.attrs != 0) {
    out_ += ", ";
    Key("attributes");
    Attributes(port.attrs);
  }
  out_ += '}';
}

void Writer::Net(const NetRec& net) {
  out_ += "        {";
  Key("label");
  Id(net.label);
  if (net.global) out_ += ", \"global\": true";
  if (net.attrs != 0) {
    out_ += ", ";
    Key("attributes");
    Attributes(net.attrs);
  }
  GroupAndNumber(net.group, net.hasNumber, net.number);
  out_ += '}';
}

void Writer::Pin(const PinRec& pin) {
  out_ += '{';
  Key("name");
  Id(pin.name);
  Links(pin.netsBegin, pin.netsCount, pin.bus, pin.width, pin.connected);
  out_ += '}';
}

void Writer::Comp(const CompRec& c) {
  out_ += "        {";
  Key("label");
  Id(c.label);
  out_ += ", ";
  Key("name");
  Id(c.name);
  if (c.partition != 0) {
    out_ += ", ";
    Key("partition");
    Id(c.partition);
  }
  out_ += ", \"type\": " + std::to_string(c.type);
  if (c.child != kNone) {
    out_ += ", ";
    Key("child");
    Id(d_.blocks[c.child].name);
  }
  if (c.instAttrs != 0) {
    out_ += ", ";
    Key("attributes");
    Attributes(c.instAttrs);
  }
  if (c.ownDefinition) {
    out_ += ", ";
    Key("definition");
    Attributes(c.defAttrs);
  }
  GroupAndNumber(c.group, c.hasNumber, c.number);
  out_ += ", \"pins\": [";
  for (uint32_t p = c.pinsBegin; p < c.pinsBegin + c.pinsCount; ++p) {
    if (p != c.pinsBegin) out_ += ", ";
    Pin(d_.pins[p]);
  }
  out_ += "]}";
}

// Writes one list of a block, one entry a line.
template <class Rec, class Fn>
void List(std::string& out, const char* key, const std::vector<Rec>& recs, uint32_t begin, uint32_t end,
          Fn fn) {
  out += ",\n      \"";
  out += key;
  out += "\": [";
  for (uint32_t i = begin; i < end; ++i) {
    out += i == begin ? "\n" : ",\n";
    fn(recs[i]);
  }
  out += begin == end ? "]" : "\n      ]";
}

void Writer::Block(const BlockRec& b) {
  out_ += "    {\n      ";
  Key("name");
  Id(b.name);
  List(out_, "ports", d_.ports, b.portsBegin, b.portsEnd, [this](const PortRec& r) { Port(r); });
  List(out_, "nets", d_.nets, b.netsBegin, b.netsEnd, [this](const NetRec& r) { Net(r); });
  List(out_, "components", d_.comps, b.compsBegin, b.compsEnd, [this](const CompRec& r) { Comp(r); });
  out_ += "\n    }";
}

void Writer::Header() {
  out_ += "{\n  ";
  Key("snapshot");
  Text(d_.snapshot);
  out_ += ",\n  \"groups\": {";
  for (size_t g = 0; g < d_.groups.size(); ++g) {
    out_ += g ? ",\n    " : "\n    ";
    Id(d_.groups[g].name);
    out_ += ": {\"internal_id\": ";
    Id(d_.groups[g].internalId);
    out_ += ", \"type\": " + std::to_string(d_.groups[g].type) + "}";
  }
  out_ += d_.groups.empty() ? "},\n  \"symbols\": {" : "\n  },\n  \"symbols\": {";
  for (size_t s = 0; s < d_.symbols.size(); ++s) {
    out_ += s ? ",\n    " : "\n    ";
    Id(d_.symbols[s].first);
    out_ += ": ";
    Attributes(d_.symbols[s].second);
  }
  out_ += d_.symbols.empty() ? "},\n  \"testbenches\": {" : "\n  },\n  \"testbenches\": {";
  for (size_t t = 0; t < d_.testbenches.size(); ++t) {
    out_ += t ? ",\n    " : "\n    ";
    Id(d_.testbenches[t].first);
    out_ += ": ";
    Id(d_.blocks[d_.testbenches[t].second].name);
  }
  out_ += d_.testbenches.empty() ? "},\n" : "\n  },\n";
}

std::string Writer::Run() {
  Header();
  out_ += "  \"blocks\": [";
  for (size_t b = 0; b < d_.blocks.size(); ++b) {
    out_ += b ? ",\n" : "\n";
    Block(d_.blocks[b]);
  }
  out_ += d_.blocks.empty() ? "]\n}\n" : "\n  ]\n}\n";
  return std::move(out_);
}

}  // namespace

std::string WriteDescription(const Design& design) { return Writer(design).Run(); }

}  // namespace vdb
