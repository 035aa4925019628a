// Differential test of whole decks: seeded random circuits of R, V, I, E and G in blocks nested up
// to three deep are written by vesk in every plain flavour, flat and hierarchical, with numbers and
// with names; ngspice must find at each root net the voltage of a flat deck that the test writes
// itself for the same circuit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/deck_harness.h"
#include "tests/sim_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace {

struct Value {
  const char* text;  // as the designer types it
  double number;
};

const Value kResistances[] = {{"1K", 1e3},  {"2.2k", 2.2e3},   {"4.7K", 4.7e3}, {"10K", 1e4},
                              {"330", 330}, {"1.5MEG", 1.5e6}, {"0.1meg", 1e5}, {"22K", 2.2e4}};
const Value kVoltages[] = {{"5", 5},     {"-2.5", -2.5}, {"1.2", 1.2},     {"0", 0},
                           {"-12", -12}, {"3300M", 3.3}, {"-0.75K", -750}, {"15", 15}};
const Value kCurrents[] = {{"1M", 1e-3}, {"-0.5M", -5e-4}, {"100U", 1e-4}, {"-20u", -2e-5}, {"2.5m", 2.5e-3}};
const Value kGains[] = {{"0.5", 0.5}, {"-0.25", -0.25}, {"0.8", 0.8}, {"0.125", 0.125}};
const Value kTransconductances[] = {{"1M", 1e-3}, {"-0.2M", -2e-4}, {"50U", 5e-5}};

enum class NetKind { Ground, LocalGround, Global, Port, Inner, Driven };

struct Net {
  std::string label;
  NetKind kind;
  int rail = -1;  // Global: index of the design's rail
};

struct Primitive {
  char letter;  // R V I E G
  std::string label;
  std::vector<int> nets;  // in the simulator's order: + - (control + control -)
  Value value;
};

struct Instance {
  std::string label;
  int child;
  std::vector<int> nets;  // the parent's net at each port of the child
  bool bare;              // no attributes at all
};

struct Block {
  std::string name;
  int ports = 0;  // nets[0 .. ports) are the ports
  std::vector<Net> nets;
  // Components in the block's order: >= 0 a primitive, < 0 the instance -1 - index.
  std::vector<int> order;
  std::vector<Primitive> primitives;
  std::vector<Instance> instances;
};

struct Design {
  std::string testBench;  // the group that vesk is run with
  std::vector<std::string> rails;
  std::vector<Block> blocks;  // blocks[0] is the root
};

/// A small deterministic generator: mt19937's output is the same on every platform.
class Dice {
 public:
  explicit Dice(uint32_t seed) : engine_(seed) {}
  int Below(int n) { return static_cast<int>(engine_() % static_cast<uint32_t>(n)); }
  int Between(int low, int high) { return low + Below(high - low + 1); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <typename T, size_t N>
  const T& Pick(const T (&items)[N]) {
    return items[Below(static_cast<int>(N))];
  }

 private:
  std::mt19937 engine_;
};

/// Builds a random design. Every label is unique in the design, and stays unique in every
/// flavour's legal form: a label is all digits, or "n", its number and a letter that ends the
/// number, with `/`, `-` and `.` around; instance labels end in "Q" so that flat names, which
/// join the labels of a path, cannot run into one another.
class DesignMaker {
 public:
  explicit DesignMaker(uint32_t seed) : dice_(seed), seed_(seed) {}

  Design Make() {
    int depth = dice_.Between(1, 3);
    int railCount = dice_.Between(1, 2);
    for (int i = 0; i < railCount; ++i)
      design_.rails.push_back(dice_.Chance(50) ? std::to_string(90000 + Next()) : "vdd" + Number() + ".rail");
    design_.blocks.emplace_back();
    design_.blocks[0].name = "TOP" + std::to_string(seed_);
    design_.testBench = dice_.Chance(50) ? design_.blocks[0].name : "bench" + std::to_string(seed_);
    std::vector<int> below;
    for (int level = depth; level >= 1; --level) below = MakeLevel(below);
    FillRoot(below);
    return design_;
  }

 private:
  int Next() { return ++counter_; }
  std::string Number() { return std::to_string(Next()); }

  std::string NetLabel() {
    static const char* const kTails[] = {"/a", "-b", ".c", "x_a.rather-long/net_label_of_many_characters"};
    std::string k = Number();
    int shape = dice_.Below(6);
    return shape < 2 ? k : "n" + k + kTails[shape - 2];
  }

  int AddNet(Block& block, NetKind kind, std::string label = "") {
    block.nets.push_back({label.empty() ? NetLabel() : label, kind});
    return static_cast<int>(block.nets.size()) - 1;
  }

  // One level of blocks, each placing the blocks of the level below.
  std::vector<int> MakeLevel(const std::vector<int>& below) {
    std::vector<int> level;
    int count = dice_.Between(1, 2);
    for (int i = 0; i < count; ++i) {
      design_.blocks.emplace_back();
      int index = static_cast<int>(design_.blocks.size()) - 1;
      Block& block = design_.blocks[index];
      block.name = "BLK" + Number();
      block.ports = dice_.Between(2, 3);
      for (int p = 0; p < block.ports; ++p) AddNet(block, NetKind::Port);
      FillBlock(index, below);
      HideLabelInFirstPort(design_.blocks[index]);
      level.push_back(index);
    }
    return level;
  }

  // Makes the first port's label end in the label of another net of the block, all digits: a
  // lookup that matched labels as substrings of the instance's pin list would take the one for the other.
  void HideLabelInFirstPort(Block& block) {
    if (!dice_.Chance(60)) return;
    std::vector<int> others;
    for (int i = 1; i < static_cast<int>(block.nets.size()); ++i)
      if (IsNode(block, i)) others.push_back(i);
    int other = others[dice_.Below(static_cast<int>(others.size()))];
    block.nets[other].label = Number();
    block.nets[0].label = "n" + Number() + "z/" + block.nets[other].label;
  }

  // The block's GND, or one of its local nets whose label makes them ground.
  int GroundOf(Block& block) {
    std::vector<int> grounds;
    bool hasGnd = false;
    for (int i = 0; i < static_cast<int>(block.nets.size()); ++i) {
      if (block.nets[i].kind == NetKind::LocalGround) grounds.push_back(i);
      if (block.nets[i].kind == NetKind::Ground) grounds.push_back(i), hasGnd = true;
    }
    if (!hasGnd && (grounds.empty() || dice_.Chance(30))) return AddNet(block, NetKind::Ground, "GND");
    return grounds[dice_.Below(static_cast<int>(grounds.size()))];
  }

  int RailOf(Block& block) {
    int rail = dice_.Below(static_cast<int>(design_.rails.size()));
    for (int i = 0; i < static_cast<int>(block.nets.size()); ++i)
      if (block.nets[i].kind == NetKind::Global && block.nets[i].rail == rail) return i;
    int net = AddNet(block, NetKind::Global, design_.rails[rail]);
    block.nets[net].rail = rail;
    return net;
  }

  void AddPrimitive(Block& block, char letter, std::vector<int> nets, const Value& value) {
    block.order.push_back(static_cast<int>(block.primitives.size()));
    block.primitives.push_back({letter, std::string(1, letter) + Number(), std::move(nets), value});
  }

  // Any net of the block, ground and rails included.
  int AnyNet(Block& block) {
    int pick = dice_.Below(static_cast<int>(block.nets.size()) + 2);
    if (pick == static_cast<int>(block.nets.size())) return GroundOf(block);
    if (pick > static_cast<int>(block.nets.size())) return RailOf(block);
    return pick;
  }

  // A net that carries a node of its own: a port, an inner or a driven net.
  bool IsNode(const Block& block, int net) {
    NetKind kind = block.nets[net].kind;
    return kind == NetKind::Port || kind == NetKind::Inner || kind == NetKind::Driven;
  }

  void FillBlock(int index, const std::vector<int>& below) {
    Block& block = design_.blocks[index];
    if (dice_.Chance(50)) AddNet(block, NetKind::LocalGround, "GND_" + Number());
    if (dice_.Chance(30)) AddNet(block, NetKind::LocalGround, "GND" + Number());
    for (int i = dice_.Between(1, 2); i > 0; --i) AddNet(block, NetKind::Inner);
    FillComponents(index, below, 1);
  }

  void FillRoot(const std::vector<int>& below) {
    Block& root = design_.blocks[0];
    int ground = AddNet(root, NetKind::Ground, "GND");
    for (int rail = 0; rail < static_cast<int>(design_.rails.size()); ++rail) {
      int net = AddNet(root, NetKind::Global, design_.rails[rail]);
      root.nets[net].rail = rail;
      AddPrimitive(root, 'V', {net, ground}, dice_.Pick(kVoltages));
    }
    for (int i = dice_.Between(2, 4); i > 0; --i) AddNet(root, NetKind::Inner);
    FillComponents(0, below, 1);
  }

  // Leaks to ground for every node, a driven net or two, random parts and the placed children.
  void FillComponents(int index, const std::vector<int>& below, int minPlacements) {
    Block& block = design_.blocks[index];
    for (int i = dice_.Below(2); i > 0; --i) {
      int driven = AddNet(block, NetKind::Driven);
      int ground = GroundOf(block);
      if (dice_.Chance(50))
        AddPrimitive(block, 'V', {driven, ground}, dice_.Pick(kVoltages));
      else
        AddPrimitive(block, 'E', {driven, ground, AnyNet(block), AnyNet(block)}, dice_.Pick(kGains));
    }
    int nodes = static_cast<int>(block.nets.size());
    for (int net = 0; net < nodes; ++net)
      if (IsNode(block, net)) AddPrimitive(block, 'R', {net, GroundOf(block)}, dice_.Pick(kResistances));
    for (int i = dice_.Between(1, 3); i > 0; --i) {
      int a = AnyNet(block), b = AnyNet(block);
      if (a != b) AddPrimitive(block, 'R', {a, b}, dice_.Pick(kResistances));
    }
    if (dice_.Chance(60)) AddPrimitive(block, 'I', {AnyNet(block), AnyNet(block)}, dice_.Pick(kCurrents));
    if (dice_.Chance(60))
      AddPrimitive(block, 'G', {AnyNet(block), AnyNet(block), AnyNet(block), AnyNet(block)},
                   dice_.Pick(kTransconductances));
    if (!below.empty()) PlaceChildren(index, below, minPlacements);
    Shuffle(design_.blocks[index].order);
  }

  void PlaceChildren(int index, const std::vector<int>& below, int minPlacements) {
    int placements = std::max(minPlacements, dice_.Between(1, 3));
    for (int i = 0; i < placements; ++i) {
      // Every block of the level below is placed at least once, by the first parent.
      int child =
          i < static_cast<int>(below.size()) ? below[i] : below[dice_.Below(static_cast<int>(below.size()))];
      Instance instance{(dice_.Chance(50) ? "X" : "U") + Number() + "Q", child, {}, dice_.Chance(40)};
      for (int p = 0; p < design_.blocks[child].ports; ++p)
        instance.nets.push_back(AnyNet(design_.blocks[index]));
      Block& block = design_.blocks[index];
      block.order.push_back(-1 - static_cast<int>(block.instances.size()));
      block.instances.push_back(instance);
    }
    if (placements < static_cast<int>(below.size()))
      PlaceChildren(index, std::vector<int>(below.begin() + placements, below.end()), 1);
  }

  void Shuffle(std::vector<int>& order) {
    for (int i = static_cast<int>(order.size()) - 1; i > 0; --i)
      std::swap(order[i], order[dice_.Below(i + 1)]);
  }

  Dice dice_;
  uint32_t seed_;
  int counter_ = 0;
  Design design_;
};

using Json = nlohmann::ordered_json;

Json Symbols() {
  return {{"RES.1", {{"PREFIX", "R"}, {"ORDER", "VALUE$"}}},
          {"VSRC.1", {{"PREFIX", "V"}, {"ORDER", "\"DC\" VALUE$"}}},
          {"ISRC.1", {{"PREFIX", "I"}, {"ORDER", "\"DC\" VALUE$"}}},
          {"VCVS.1", {{"PREFIX", "E"}, {"ORDER", "VALUE$"}, {"PINORDER", "P N CP CN"}}},
          {"VCCS.1", {{"PREFIX", "G"}, {"ORDER", "VALUE$"}, {"PINORDER", "P N CP CN"}}},
          {"SUB.1", {{"PREFIX", "X"}}}};
}

Json PrimitiveJson(const Block& block, const Primitive& part) {
  static const std::map<char, std::string> kSymbolOf = {
      {'R', "RES.1"}, {'V', "VSRC.1"}, {'I', "ISRC.1"}, {'E', "VCVS.1"}, {'G', "VCCS.1"}};
  static const char* const kPins[] = {"P", "N", "CP", "CN"};
  // Controlled sources list their control pins first: the pin order attribute must put them last.
  std::vector<size_t> pinOrder = {0, 1};
  if (part.nets.size() == 4) pinOrder = {2, 3, 0, 1};
  Json pins = Json::array();
  for (size_t pin : pinOrder)
    pins.push_back({{"name", kPins[pin]}, {"net", block.nets[part.nets[pin]].label}});
  return {{"label", part.label},
          {"name", kSymbolOf.at(part.letter)},
          {"attributes", {{"VALUE", part.value.text}}},
          {"pins", pins}};
}

Json InstanceJson(const Design& design, const Block& block, const Instance& instance) {
  const Block& child = design.blocks[instance.child];
  Json pins = Json::array();
  for (int p = 0; p < child.ports; ++p)
    pins.push_back({{"name", child.nets[p].label}, {"net", block.nets[instance.nets[p]].label}});
  return {{"label", instance.label},
          {"name", instance.bare ? "BARE.1" : "SUB.1"},
          {"type", 2},
          {"child", child.name},
          {"pins", pins}};
}

Json BlockJson(const Design& design, const Block& block) {
  Json ports = Json::array(), nets = Json::array(), components = Json::array();
  for (int p = 0; p < block.ports; ++p)
    ports.push_back({{"name", block.nets[p].label}, {"net", block.nets[p].label}});
  for (const Net& net : block.nets)
    nets.push_back({{"label", net.label}, {"global", net.kind == NetKind::Global || net.label == "GND"}});
  for (int item : block.order)
    components.push_back(item >= 0 ? PrimitiveJson(block, block.primitives[item])
                                   : InstanceJson(design, block, block.instances[-1 - item]));
  return {{"name", block.name}, {"ports", ports}, {"nets", nets}, {"components", components}};
}

std::string DesignJson(const Design& design) {
  Json blocks = Json::array();
  for (const Block& block : design.blocks) blocks.push_back(BlockJson(design, block));
  return Json{{"symbols", Symbols()},
              {"testbenches", {{design.testBench, design.blocks[0].name}}},
              {"blocks", blocks}}
      .dump(1);
}

/// Writes the flat reference deck: every occurrence of every primitive, on nodes named by the test.
class ReferenceWriter {
 public:
  explicit ReferenceWriter(const Design& design) : design_(design) {}

  /// The deck, and in `rootNodes` the reference node of each root net that is not ground.
  std::string Write(std::map<std::string, std::string>& rootNodes) {
    deck_ << "* flat reference\n";
    const Block& root = design_.blocks[0];
    std::vector<std::string> nodes;
    for (size_t n = 0; n < root.nets.size(); ++n) {
      nodes.push_back(NodeOf(root.nets[n], "r" + std::to_string(n)));
      if (nodes.back() != "0") rootNodes[root.nets[n].label] = nodes.back();
    }
    WriteBlock(root, nodes, "t");
    deck_ << ".op\n.end\n";
    return deck_.str();
  }

 private:
  std::string NodeOf(const Net& net, const std::string& local) {
    switch (net.kind) {
      case NetKind::Ground:
      case NetKind::LocalGround:
        return "0";
      case NetKind::Global:
        return "rail" + std::to_string(net.rail);
      default:
        return local;
    }
  }

  void WriteBlock(const Block& block, const std::vector<std::string>& nodes, const std::string& prefix) {
    for (const Primitive& part : block.primitives) {
      deck_ << part.letter << ++elements_;
      for (int net : part.nets) deck_ << " " << nodes[net];
      deck_ << (part.letter == 'V' || part.letter == 'I' ? " DC " : " ") << part.value.number << "\n";
    }
    for (size_t i = 0; i < block.instances.size(); ++i) {
      const Instance& instance = block.instances[i];
      const Block& child = design_.blocks[instance.child];
      std::string inner = prefix + "_" + std::to_string(i);
      std::vector<std::string> childNodes;
      for (size_t n = 0; n < child.nets.size(); ++n)
        childNodes.push_back(static_cast<int>(n) < child.ports
                                 ? nodes[instance.nets[n]]
                                 : NodeOf(child.nets[n], inner + "_" + std::to_string(n)));
      WriteBlock(child, childNodes, inner);
    }
  }

  const Design& design_;
  std::ostringstream deck_;
  int elements_ = 0;
};

class RandomCircuitTest : public ::testing::TestWithParam<uint32_t> {
 protected:
  void TearDown() override { RemoveScratch(folder_); }
  std::string folder_;
};

TEST_P(RandomCircuitTest, EveryDeckHasTheReferenceOperatingPoint) {
  if (FindOnPath("ngspice").empty())
    GTEST_SKIP() << "ngspice is not installed (scripts/setup installs it): decks not simulated";
  Design design = DesignMaker(GetParam()).Make();
  folder_ = MakeScratch("random");
  std::string designJson = DesignJson(design);
  WriteText(folder_ + "/design.json", designJson);
  WriteText(folder_ + "/galt/standard/vesk.cfg",
            ReadText(std::string(VESK_SOURCE_DIR) + "/examples/standard/vesk.cfg"));
  WriteText(folder_ + "/analyses.inc", ".OP\n");
  const std::map<std::string, std::string>& env = ProjectEnvironment();
  std::string output, errors;
  ASSERT_EQ(RunProgram(BinaryDir() + "/vesk-db", "import design.json", folder_, env, output, errors), 0)
      << errors << designJson;

  std::map<std::string, std::string> rootNodes;
  WriteText(folder_ + "/reference.cir", ReferenceWriter(design).Write(rootNodes));
  SimResult reference = RunNgspice(folder_, "reference.cir", "");
  ASSERT_EQ(reference.rc, 0) << reference.transcript;
  std::map<std::string, double> expected = reference.OperatingPoint();
  ASSERT_FALSE(expected.empty()) << reference.transcript;

  for (const DeckForm& form : PlainDeckForms()) {
    SCOPED_TRACE(form.testName + " (vesk " + form.switches + ")");
    std::string deckName = form.testName;
    std::string args = form.switches + " -ganalyses.inc -!" + deckName + " " + design.testBench;
    int rc = RunProgram(BinaryDir() + "/vesk", args, folder_, env, output, errors);
    ASSERT_EQ(rc, 0) << output << errors;
    std::string deck = ReadText(folder_ + "/" + deckName + ".cir");
    SimResult run = RunNgspice(folder_, deckName + ".cir", form.ngBehavior);
    EXPECT_EQ(run.rc, 0) << run.transcript << "\ndesign:\n" << designJson;
    std::map<std::string, double> actual = run.OperatingPoint();
    std::map<std::string, std::string> dictionary = RootDictionary(deck);
    int wrong = 0;
    for (const auto& [net, referenceNode] : rootNodes) {
      double want = expected[referenceNode];
      auto found = actual.find(NodeOfNet(dictionary, net));
      if (found == actual.end()) {
        ADD_FAILURE() << "root net " << net << " (node " << NodeOfNet(dictionary, net)
                      << ") not in the operating point";
        ++wrong;
      } else if (std::fabs(found->second - want) > 1e-6 * std::max(1.0, std::fabs(want))) {
        ADD_FAILURE() << "root net " << net << ": " << found->second << " V, reference " << want << " V";
        ++wrong;
      }
    }
    if (wrong)
      ADD_FAILURE() << run.transcript << "\nreference:\n"
                    << ReadText(folder_ + "/reference.cir") << "\ndesign:\n"
                    << designJson;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCircuitTest, ::testing::Range<uint32_t>(1, 25));

}  // namespace
