// Netlist -> vesk-db import-spice -> vesk deck -> ngspice: the deck must simulate like the netlist
// it came from, at the operating point of every top-level node and in one analysis.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "design/db/spice_netlist_reader.h"
#include "tests/deck_harness.h"
#include "tests/sim_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace fs = std::filesystem;

namespace {

struct RoundTrip {
  std::string testName;
  fs::path folder;       // tests/spice/roundtrip/<case>: netlist.cir, the files beside it, analysis
  std::string netlist;   // the file netlist.cir; its stem gives the top block
  std::string analysis;  // control lines; "%NODE%" stands for the deck's node of the net NODE
  std::string result;    // the expression printed as "result"
};

void PrintTo(const RoundTrip& c, std::ostream* out) { *out << c.folder.string(); }

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
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

// The operating point and the analysis, each written to the raw file that RunNgspice reads back.
std::string Control(const RoundTrip& c, const std::map<std::string, std::string>& nodeOf,
                    const std::string& raw) {
  return ".control\nset appendwrite\nop\nwrite " + raw + " all\n" + Substitute(c.analysis, nodeOf) +
         "\nlet result = " + Substitute(c.result, nodeOf) + "\nwrite " + raw +
         " result\nquit 0\n.endc\n.end\n";
}

// The netlist without its .end, so that the control block can follow.
std::string WithoutEnd(const std::string& netlist) {
  std::string kept, line;
  std::istringstream lines(netlist);
  while (std::getline(lines, line) && Lower(line) != ".end") kept += line + "\n";
  return kept;
}

// The node voltages of the operating point and, as "result", the value the analysis printed.
std::map<std::string, double> Simulate(const fs::path& folder, const std::string& file,
                                       const std::string& behavior, std::string& transcript) {
  const SimResult sim = RunNgspice(folder.string(), file, behavior);
  transcript = sim.transcript;
  EXPECT_EQ(sim.rc, 0) << transcript;
  std::map<std::string, double> values = sim.OperatingPoint();
  const auto* result = sim.plots.empty() ? nullptr : sim.plots.back().Vector("v(result)");
  if (result && !result->empty()) values["result"] = result->front().real();
  return values;
}

struct Dialect {
  std::string switches;
  std::string behavior;
};

const Dialect kDialects[] = {{"-s", ""},    {"-s -h", ""},    {"-s -n", ""}, {"-s -h -n", ""},
                             {"-p", "psa"}, {"-p -h", "psa"}, {"-m", "hsa"}, {"-m -h", "hsa"}};

class SpiceRoundTripTest : public ::testing::TestWithParam<RoundTrip> {};

TEST_P(SpiceRoundTripTest, DecksSimulateLikeTheNetlist) {
  if (FindOnPath("ngspice").empty()) GTEST_SKIP() << "ngspice is not installed (scripts/setup installs it)";
  const RoundTrip& c = GetParam();
  const fs::path scratch = MakeScratch("spice");
  struct Remove {
    std::string folder;
    ~Remove() { RemoveScratch(folder); }
  } remove{scratch.string()};
  fs::path source = scratch / "source", project = scratch / "project";
  fs::create_directories(source);
  for (const auto& file : fs::directory_iterator(c.folder))
    if (file.path().filename() != "analysis") fs::copy_file(file.path(), source / file.path().filename());
  fs::create_directories(project / "deck" / "run");

  std::string output, errors, transcript;
  int rc = RunProgram(
      BinaryDir() + "/vesk-db",
      "import-spice --project " + project.string() + " --top TOP " + (source / "netlist.cir").string(),
      scratch.string(), {}, output, errors);
  ASSERT_EQ(rc, 0) << output << errors;
  ASSERT_NE(output.find("Wrote " + project.string() + "/TOP.inc"), std::string::npos) << output;

  // The netlist itself, beside its own files.
  std::set<std::string> nodes = TopNodes(c.netlist);
  ASSERT_FALSE(nodes.empty());
  WriteText(source / "original.cir", WithoutEnd(c.netlist) + Control(c, {}, "original.cir.raw"));
  std::map<std::string, double> expected = Simulate(source, "original.cir", "", transcript);
  ASSERT_TRUE(expected.count("result")) << transcript;

  std::string config = std::string(VESK_SOURCE_DIR) + "/examples/standard/vesk.cfg";
  for (const Dialect& dialect : kDialects) {
    SCOPED_TRACE("vesk " + dialect.switches);
    std::string args = dialect.switches + " -k" + config + " -gTOP.inc -%deck\\run TOP";
    rc = RunProgram(BinaryDir() + "/vesk", args, project.string(), {}, output, errors);
    ASSERT_EQ(rc, 0) << output << errors;
    fs::path run = project / "deck" / "run";
    std::string deck = ReadText(run / "TOP.cir");
    ASSERT_FALSE(deck.empty()) << output;
    std::map<std::string, std::string> dictionary, nodeOf;
    for (const auto& [net, node] : RootDictionary(deck)) dictionary[Lower(net)] = Lower(node);
    for (const std::string& node : nodes) nodeOf[node] = dictionary.count(node) ? dictionary[node] : node;
    // The deck as written, with the analysis appended; its includes are relative to its folder.
    WriteText(run / "sim.cir", deck + Control(c, nodeOf, "sim.cir.raw"));
    std::map<std::string, double> got = Simulate(run, "sim.cir", dialect.behavior, transcript);
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

std::vector<RoundTrip> FindCases() {
  std::vector<RoundTrip> cases;
  const fs::path root = fs::path(VESK_SOURCE_DIR) / "tests" / "spice" / "roundtrip";
  if (!fs::is_directory(root)) return cases;
  for (const auto& entry : fs::directory_iterator(root)) {
    std::istringstream analysis(ReadText(entry.path() / "analysis"));
    RoundTrip c{entry.path().filename().string(), entry.path(), ReadText(entry.path() / "netlist.cir"), "",
                ""};
    std::getline(analysis, c.analysis);
    std::getline(analysis, c.result);
    cases.push_back(c);
  }
  std::sort(cases.begin(), cases.end(),
            [](const RoundTrip& a, const RoundTrip& b) { return a.folder < b.folder; });
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Netlists, SpiceRoundTripTest, ::testing::ValuesIn(FindCases()),
                         [](const ::testing::TestParamInfo<RoundTrip>& info) { return info.param.testName; });

}  // namespace
