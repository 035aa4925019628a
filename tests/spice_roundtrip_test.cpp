// Netlist -> vesk-db import-spice -> vesk deck -> ngspice: the deck must simulate like the netlist
// it came from, at the operating point of every top-level node and in one analysis.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "design/db/spice_netlist_reader.h"
#include "tests/deck_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace fs = std::filesystem;

namespace {

struct RoundTrip {
  std::string testName;
  std::string netlist;                       // the file netlist.cir; its stem gives the top block
  std::map<std::string, std::string> files;  // further files beside it
  std::string analysis;  // control lines; "%NODE%" stands for the deck's node of the net NODE
  std::string result;    // the expression printed as "result"
};

void PrintTo(const RoundTrip& c, std::ostream* out) { *out << c.testName; }

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void WriteFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::string FindNgspice() {
  for (const char* folder : {"/usr/bin", "/usr/local/bin"}) {
    std::string candidate = std::string(folder) + "/ngspice";
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return "";
}

/// "name = number" lines of ngspice's print, lower case, "v(x)" read as "x".
std::map<std::string, double> ParsePrinted(const std::string& output) {
  std::map<std::string, double> values;
  std::istringstream lines(output);
  std::string line, name, equals, rest;
  double value;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    if (!(words >> name >> equals >> value) || equals != "=" || (words >> rest)) continue;
    name = Lower(name);
    if (name.size() > 3 && name.compare(0, 2, "v(") == 0 && name.back() == ')')
      name = name.substr(2, name.size() - 3);
    values[name] = value;
  }
  return values;
}

/// Net label to node of the root's dictionary ("* NET=node" lines behind "* Dictionary n").
std::map<std::string, std::string> RootDictionary(const std::string& deck) {
  std::map<std::string, std::string> entries;
  size_t at = deck.find("* Dictionary ");
  if (at == std::string::npos) return entries;
  std::istringstream lines(deck.substr(at));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line) && line.rfind("* ", 0) == 0 && line.find('=') != std::string::npos) {
    std::string net = line.substr(2, line.find('=') - 2), node = line.substr(line.find('=') + 1);
    auto trim = [](std::string s) {
      s.erase(0, s.find_first_not_of(' '));
      s.erase(s.find_last_not_of(' ') + 1);
      return s;
    };
    entries[Lower(trim(net))] = Lower(trim(node));
  }
  return entries;
}

/// The top-level nodes of a netlist, lower case, ground left out.
std::set<std::string> TopNodes(const std::string& text) {
  vdb::SpiceNetlist netlist;
  std::string error;
  auto none = [](const std::string&, std::string&) { return false; };
  std::set<std::string> nodes;
  // Included files are not needed for the nodes of the top level.
  std::string top;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line))
    if (Lower(line).rfind(".lib", 0) != 0 && Lower(line).rfind(".include", 0) != 0) top += line + "\n";
  if (!vdb::ReadSpiceNetlist(top, "netlist.cir", none, netlist, error)) return nodes;
  for (const vdb::SpiceElement& e : netlist.topElements)
    for (const std::string& node : e.nodes)
      if (Lower(node) != "0" && Lower(node) != "gnd") nodes.insert(Lower(node));
  return nodes;
}

std::string Substitute(std::string text, const std::map<std::string, std::string>& nodeOf) {
  for (size_t open = text.find('%'); open != std::string::npos; open = text.find('%', open)) {
    size_t close = text.find('%', open + 1);
    std::string name = Lower(text.substr(open + 1, close - open - 1));
    auto found = nodeOf.find(name);
    std::string node = found == nodeOf.end() ? name : found->second;
    text.replace(open, close - open + 1, node);
    open += node.size();
  }
  return text;
}

std::string Control(const RoundTrip& c, const std::map<std::string, std::string>& nodeOf) {
  return ".control\nset numdgt=12\nop\nprint all\n" + Substitute(c.analysis, nodeOf) +
         "\nlet result = " + Substitute(c.result, nodeOf) + "\nprint result\nquit 0\n.endc\n.end\n";
}

// The netlist without its .end, so that the control block can follow.
std::string WithoutEnd(const std::string& netlist) {
  std::string kept, line;
  std::istringstream lines(netlist);
  while (std::getline(lines, line) && Lower(line) != ".end") kept += line + "\n";
  return kept;
}

class Scratch {
 public:
  Scratch() {
    char pattern[] = "/tmp/vesk-spice-XXXXXX";
    path = ::mkdtemp(pattern);
  }
  ~Scratch() {
    std::error_code ignored;
    if (!std::getenv("VESK_KEEP")) fs::remove_all(path, ignored);
  }
  fs::path path;
};

std::map<std::string, double> Simulate(const std::string& ngspice, const fs::path& folder,
                                       const std::string& file, const std::string& behavior,
                                       std::string& transcript) {
  WriteFile(folder / ".spiceinit", behavior.empty() ? "" : "set ngbehavior=" + behavior + "\n");
  std::string output, errors;
  int rc = RunProgram(ngspice, "-b " + file, folder.string(), {}, output, errors);
  transcript = file + ":\n" + ReadFile(folder / file) + "\nngspice:\n" + output + errors;
  EXPECT_EQ(rc, 0) << transcript;
  return ParsePrinted(output);
}

struct Dialect {
  std::string switches;
  std::string behavior;
};

const Dialect kDialects[] = {{"-s", ""},    {"-s -h", ""},    {"-s -n", ""}, {"-s -h -n", ""},
                             {"-p", "psa"}, {"-p -h", "psa"}, {"-m", "hsa"}, {"-m -h", "hsa"}};

class SpiceRoundTripTest : public ::testing::TestWithParam<RoundTrip> {};

TEST_P(SpiceRoundTripTest, DecksSimulateLikeTheNetlist) {
  std::string ngspice = FindNgspice();
  if (ngspice.empty()) GTEST_SKIP() << "ngspice is not installed (scripts/setup installs it)";
  const RoundTrip& c = GetParam();
  Scratch scratch;
  fs::path source = scratch.path / "source", project = scratch.path / "project";
  WriteFile(source / "netlist.cir", c.netlist);
  for (const auto& [name, text] : c.files) WriteFile(source / name, text);
  fs::create_directories(project / "deck" / "run");

  std::string output, errors, transcript;
  int rc = RunProgram(
      BinaryDir() + "/vesk-db",
      "import-spice --project " + project.string() + " --top TOP " + (source / "netlist.cir").string(),
      scratch.path.string(), {}, output, errors);
  ASSERT_EQ(rc, 0) << output << errors;
  ASSERT_NE(output.find("Wrote " + project.string() + "/TOP.inc"), std::string::npos) << output;

  // The netlist itself, beside its own files.
  std::set<std::string> nodes = TopNodes(c.netlist);
  ASSERT_FALSE(nodes.empty());
  WriteFile(source / "original.cir", WithoutEnd(c.netlist) + Control(c, {}));
  std::map<std::string, double> expected = Simulate(ngspice, source, "original.cir", "", transcript);
  ASSERT_TRUE(expected.count("result")) << transcript;

  std::string config = std::string(VESK_SOURCE_DIR) + "/examples/standard/vesk.cfg";
  for (const Dialect& dialect : kDialects) {
    SCOPED_TRACE("vesk " + dialect.switches);
    std::string args = dialect.switches + " -k" + config + " -gTOP.inc -%deck\\run TOP";
    rc = RunProgram(BinaryDir() + "/vesk", args, project.string(), {}, output, errors);
    ASSERT_EQ(rc, 0) << output << errors;
    fs::path run = project / "deck" / "run";
    std::string deck = ReadFile(run / "TOP.cir");
    ASSERT_FALSE(deck.empty()) << output;
    std::map<std::string, std::string> dictionary = RootDictionary(deck), nodeOf;
    for (const std::string& node : nodes) nodeOf[node] = dictionary.count(node) ? dictionary[node] : node;
    // The deck as written, with the analysis appended; its includes are relative to its folder.
    WriteFile(run / "sim.cir", deck + Control(c, nodeOf));
    std::map<std::string, double> got = Simulate(ngspice, run, "sim.cir", dialect.behavior, transcript);
    for (const std::string& node : nodes) {
      ASSERT_TRUE(expected.count(node)) << node << "\n" << transcript;
      ASSERT_TRUE(got.count(nodeOf[node])) << node << " as " << nodeOf[node] << "\n" << transcript;
      EXPECT_NEAR(got[nodeOf[node]], expected[node], 1e-6 * std::fabs(expected[node]) + 1e-12) << node << "\n"
                                                                                               << transcript;
    }
    ASSERT_TRUE(got.count("result")) << transcript;
    EXPECT_NEAR(got["result"], expected["result"], 1e-6 * std::fabs(expected["result"]) + 1e-15)
        << transcript;
  }
}

const RoundTrip kCases[] = {
    {"RcLadder",
     "RC ladder, three sections\n"
     "V1 in 0 DC 1 AC 1\n"
     "R1 in n1 1k\n"
     "C1 n1 0 1n\n"
     "R2 n1 n2 2.2k ; second section\n"
     "C2 n2 gnd 470p\n"
     "R3 n2 out 4.7k\n"
     "+ tc1=0.001\n"
     "C3 out 0 100p\n"
     "RL out 0 100k\n"
     ".ac dec 10 1k 1meg\n"
     ".end\n",
     {},
     "ac lin 1 100k 100k",
     "mag(v(%out%))"},
    {"BjtAmplifier",
     "Common-emitter amplifier\n"
     "VCC vcc 0 12\n"
     "VIN in 0 DC 0 AC 1m\n"
     "RS in b1 1k\n"
     "C1 b1 base 10u\n"
     "R1 vcc base 47k\n"
     "R2 base 0 10k\n"
     "RC vcc coll 4.7k\n"
     "RE emit 0 1k\n"
     "CE emit 0 100u\n"
     "Q1 coll base emit q2n2222\n"
     ".model Q2N2222 NPN(IS=1e-14 BF=200 VAF=100\n"
     "+ CJE=8p CJC=3p)\n"
     ".options reltol=1e-6\n"
     ".end\n",
     {},
     "ac lin 1 10k 10k",
     "mag(v(%coll%))"},
    {"MosInverter",
     "CMOS inverter\n"
     "VDD vdd 0 3.3\n"
     "VIN in 0 1.2\n"
     "M1 out in vdd vdd pch W=2u L=0.5u\n"
     "M2 out in 0 0 nch W=1u L=0.5u\n"
     "CL out 0 10f\n"
     ".model nch nmos level=1 vto=0.7 kp=100u\n"
     ".model pch pmos level=1 vto=-0.7 kp=40u\n"
     ".dc vin 0 3.3 0.1\n"
     ".end\n",
     {},
     "dc vin 0 3.3 0.1",
     "v(%out%)[14]"},
    {"ControlledSources",
     "E, F, G and H sources\n"
     "V1 in 0 2\n"
     "R1 in a 1k\n"
     "Vsense a b 0\n"
     "R2 b 0 1k\n"
     ".param gain=2.5\n"
     "E1 e 0 in 0 {gain}\n"
     "E2 p 0 poly(2) in 0 e 0 0 1 0.5\n"
     "RP p 0 1k\n"
     "G2 0 q poly(1) in 0 0 2m\n"
     "RQ q 0 1k\n"
     "B1 bo 0 I={3m}\n"
     "RB bo 0 1k\n"
     "RE e 0 10k\n"
     "G1 0 g in 0 1m\n"
     "RG g 0 2k\n"
     "F1 0 f Vsense 3\n"
     "RF f 0 500\n"
     "H1 h 0 Vsense 200\n"
     "RH h 0 1k\n"
     ".end\n",
     {},
     "dc v1 0 2 1",
     "v(%h%)[1]"},
    {"HierarchyWithParameters",
     "Three levels, parameters at the bottom\n"
     "V1 in 0 DC 5 AC 1\n"
     "X1 in mid stage\n"
     "X2 mid out stage\n"
     "RL out 0 10k\n"
     ".subckt stage a b\n"
     "X1 a m half\n"
     "X2 m b half\n"
     "Xp b 0 leaf r=20k\n"
     ".ends stage\n"
     ".subckt half p q\n"
     "R1 p q 1k\n"
     "C1 q 0 1n\n"
     ".ends\n"
     ".subckt leaf t u params: r=10k\n"
     "R1 t u {r}\n"
     ".ends\n"
     ".end\n",
     {},
     "ac lin 1 50k 50k",
     "mag(v(%out%))"},
    {"CoupledInductors",
     "Transformers, at the top and inside a sub-circuit\n"
     "V1 in 0 AC 1\n"
     "R1 in p 50\n"
     "LP p 0 1m\n"
     "LS s 0 4m\n"
     "K1 LP LS 0.99\n"
     "X1 s out xf\n"
     "RL out 0 1k\n"
     ".subckt xf a b\n"
     "L1 a 0 1m\n"
     "L2 b 0 1m\n"
     "K1 L1 L2 0.9\n"
     ".ends\n",
     {},
     "ac lin 1 10k 10k",
     "mag(v(%out%))"},
    {"LibrarySection",
     "Models from a .lib section\n"
     ".lib 'models.lib' typ\n"
     "V1 in 0 1\n"
     "R1 in a 1k\n"
     "D1 a 0 dmod\n"
     "X1 a b buf\n"
     "R2 b 0 2k\n"
     ".end\n",
     {{"models.lib",
       "* corners\n"
       ".lib typ\n"
       ".model dmod d is=1e-14 n=1.05\n"
       ".subckt buf i o\n"
       "E1 o 0 i 0 0.5\n"
       "R1 o 0 1meg\n"
       ".ends\n"
       ".endl typ\n"
       ".lib fast\n"
       ".model dmod d is=1e-13\n"
       ".endl\n"}},
     "dc v1 0 1 0.5",
     "v(%b%)[1]"},
};

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceRoundTripTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<RoundTrip>& info) { return info.param.testName; });

}  // namespace
