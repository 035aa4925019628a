// The vesk-db program: import, export, the round trip between them, the project and snapshot
// options, and the one-line report of bad input that leaves an existing database as it was.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "design/tessel.h"
#include "tests/deck_harness.h"

namespace fs = std::filesystem;

namespace {

class VeskDbTool : public ::testing::Test {
 protected:
  void SetUp() override {
    static int serial = 0;
    folder_ = fs::temp_directory_path() /
              ("vesk-db-tool-" + std::to_string(::getpid()) + "-" + std::to_string(serial++));
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  void Write(const std::string& relative, const std::string& text) {
    fs::path path = folder_ / relative;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }
  std::string Read(const std::string& relative) const {
    std::ifstream in(folder_ / relative, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  /// Runs vesk-db with `args` in `subfolder` of the test folder.
  int Run(const std::string& args, const std::string& subfolder = "") {
    fs::path where = folder_ / subfolder;
    fs::create_directories(where);
    return RunProgram(BinaryDir() + "/vesk-db", args, where.string(), {}, out_, err_);
  }

  /// Writes `json` to design.json and imports it; fails the test when the import fails.
  void Import(const std::string& json, const std::string& args = "import design.json") {
    Write("design.json", json);
    ASSERT_EQ(Run(args), 0) << err_;
    EXPECT_EQ(err_, "");
  }

  /// The files of the database folder and the bytes of each.
  std::string DatabaseBytes(const std::string& relative = "database") const {
    std::string all;
    if (!fs::exists(folder_ / relative)) return "<no database>";
    for (const auto& entry : fs::directory_iterator(folder_ / relative)) {
      std::string name = entry.path().filename().string();
      all += name + ":" + Read(relative + "/" + name) + "\n";
    }
    return all;
  }

  fs::path folder_;
  std::string out_, err_;
};

// ---- Round trip

// Uses every field with a value other than its default, and leans on every default.
const char* kRich = R"({
  "snapshot": "Qor",
  "groups": {"G1": {"internal_id": "7A", "type": 2}, "G3": {"internal_id": "x\"y\\z", "type": -3},
             "GD": {}},
  "symbols": {"RES.1": {"PREFIX": "R", "ORDER": "VALUE$"}, "EMPTY.1": {}},
  "testbenches": {"mydesign": "(lib)_TOP", "sub": "SUB"},
  "blocks": [
    {"name": "(lib)_TOP",
     "ports": [
       {"name": "IN", "net": "IN", "attributes": {"SIGNAL": "A", "BLANK": ""}},
       {"name": "D[1:0]", "bus": "D", "nets": ["D1", "D0"]},
       {"name": "W", "bus": "WB", "width": 8, "connected": false},
       {"name": "SPARE"}],
     "nets": [
       {"label": "IN", "global": false, "attributes": {"PROBE": ""}, "group": "G1", "number": 3},
       {"label": "GND", "global": true},
       {"label": "N\tTAB", "group": "G3"},
       {"label": "NEG", "group": "GD", "number": -5}],
     "components": [
       {"label": "R1", "name": "RES.1", "partition": "analog", "type": 1,
        "attributes": {"VALUE": "1K", "$$Own": "é ü \u0001"},
        "definition": {"ORDER": "VALUE$"},
        "pins": [{"name": "A", "net": "IN"}, {"name": "B", "net": "GND"}],
        "group": "G1", "number": 12},
       {"label": "R2", "name": "RES.1", "pins": [{"name": "A", "net": "OUT"}, {"name": "B"}]},
       {"label": "R3", "name": "RES.1", "definition": {}},
       {"label": "E1", "name": "EMPTY.1", "type": 0},
       {"label": "X1", "name": "SUB.1", "type": 2, "child": "SUB",
        "pins": [{"name": "P", "net": "IN"}, {"name": "Q", "connected": true},
                 {"name": "B[3:0]", "nets": ["B3", "B2", "B1", "B0"], "bus": "B", "width": 4},
                 {"name": "E", "nets": []}]},
       {"label": "X$2", "type": 3, "child": "SUB", "group": "GD"}]},
    {"name": "SUB", "ports": [{"name": "P", "net": "P"}], "components": []},
    {"name": "LONELY"}]})";

// The rich design as the interface reads it, with everything that can be listed.
std::string Dump(const std::string& location) {
  using namespace Tessel;
  TesselPI db;
  ProjectData data;
  data.location = location.c_str();
  db.OpenTessel(data);
  ContainerT<const ISnapshot> snapshot;
  Result opened = db.GetSnapshotByName(snapshot, "Qor");
  if (!opened) return std::string("cannot open: ") + opened.GetDescription(false).operator const char*();
  IUIDManager uid;
  snapshot->GetUIDManager(uid);
  std::ostringstream out;
  // The groups of both types that the design uses, each with the object's number in its view.
  auto groupText = [&](auto listGroups, const IBlock& block, auto number) {
    for (int type : {2, -3}) {
      ListT<GroupInfo> groups;
      listGroups(groups, static_cast<EGroupType>(type));
      for (auto it = groups.GetIterator(); it.IsValid(); it++) {
        ContainerT<const IGroup> group;
        uid.GetGroup(group, *it.operator->());
        String id;
        group->GetAttribute("$$Internal_ID", id);
        ContainerT<const IBlockViewQor> view;
        IBlockViewQor::Init(view, block, *group);
        out << " group(" << type << ")=" << id.str() << "#" << number(*view);
      }
    }
  };
  auto netsText = [&](IteratorT<const INet> nets) {
    std::string text;
    for (; nets->IsValid(); nets++) {
      String label;
      nets->GetLabel(label);
      text += label.str() + ",";
    }
    return text;
  };
  auto busText = [&](IteratorT<const IBus> buses) {
    String label;
    if (buses.IsValid()) buses->GetLabel(label);
    return buses.IsValid() ? "bus=" + label.str() : std::string("nobus");
  };
  for (const char* name : {"(lib)_TOP", "SUB", "LONELY", "mydesign", "sub"}) {
    ListT<BlockInfo> hits;
    snapshot->FindBlock(hits, name, eSearchPlain);
    ContainerT<const IBlock> block;
    if (!hits.IsEmpty()) snapshot->GetBlock(block, hits.GetIterator()->index);
    String blockName;
    if (!block.Empty()) block->GetName(blockName);
    out << "block " << name << " -> " << blockName.str() << "\n";
    if (block.Empty()) continue;
    IteratorT<const IPort> ports;
    for (block->GetIterPorts(ports); ports->IsValid(); ports++) {
      String portName, signal, blank;
      bool connected = false;
      ports->GetName(portName);
      ports->IsConnected(connected);
      bool hasSignal = ports->GetAttribute("SIGNAL", signal, 2);
      bool hasBlank = ports->GetAttribute("BLANK", blank, 2);
      IteratorT<const INet> nets;
      ports->GetIterNetsConnected(nets);
      IteratorT<const IBus> buses;
      ports->GetIterBusesConnected(buses);
      out << " port " << portName.str() << " c=" << connected << " " << netsText(nets) << " "
          << busText(buses) << " SIGNAL" << hasSignal << "=" << signal.str() << " BLANK" << hasBlank << "\n";
    }
    IteratorT<const INet> nets;
    for (block->GetIterNets(nets); nets->IsValid(); nets++) {
      String label, probe;
      bool global = false;
      nets->GetLabel(label);
      nets->IsGlobal(global);
      bool hasProbe = nets->GetAttribute("PROBE", probe, eAttrInstance);
      out << " net " << label.str() << " g=" << global << " PROBE" << hasProbe;
      const INet& net = *nets.operator->();
      groupText([&](ListT<GroupInfo>& groups, EGroupType type) { net.GetListGroups(groups, type); }, *block,
                [&](const IBlockViewQor& view) {
                  IteratorT<const INetQor> qor;
                  view.GetIterNetsQor(net, qor);
                  NetDataQor data;
                  if (qor) qor->GetData(data);
                  return qor ? std::to_string(data.number) : std::string("none");
                });
      out << "\n";
    }
    IteratorT<const IComp> comps;
    for (block->GetIterComps(comps, eCompAll); comps->IsValid(); comps++) {
      String label, compName, partition;
      comps->GetLabel(label);
      comps->GetName(compName);
      comps->GetPartitionName(partition);
      BitContainerT<ECompType, 1> type;
      comps->GetType(type);
      ContainerT<const IBlock> child;
      comps->GetChildBlock(child);
      String childName;
      if (!child.Empty()) child->GetName(childName);
      out << " comp " << label.str() << " name=" << compName.str() << " part=" << partition.str()
          << " type=" << type.Bits() << " child=" << childName.str() << "\n  attrs:";
      ListAttribute attributes;
      comps->GetAttributes(attributes);
      for (auto it = attributes.GetIterator(); it.IsValid(); it++)
        out << " " << it->name.str() << "=" << it->value.str() << "@" << it->level;
      out << "\n  groups:";
      const IComp& comp = *comps.operator->();
      groupText([&](ListT<GroupInfo>& groups, EGroupType type) { comp.GetListGroups(groups, type); }, *block,
                [&](const IBlockViewQor& view) {
                  CompDataQor data;
                  return view.GetCompData(comp, data) ? std::to_string(data.number) : std::string("none");
                });
      out << "\n";
      IteratorT<const IPin> pins;
      for (comps->GetIterPins(pins); pins->IsValid(); pins++) {
        String pinName;
        int width = 0;
        bool connected = false;
        pins->GetName(pinName);
        pins->GetWidth(width);
        pins->IsConnected(connected);
        IteratorT<const INet> pinNets;
        pins->GetIterNetsConnected(pinNets);
        IteratorT<const IBus> buses;
        pins->GetIterBusesConnected(buses);
        out << "  pin " << pinName.str() << " w=" << width << " c=" << connected << " " << netsText(pinNets)
            << " " << busText(buses) << "\n";
      }
    }
  }
  return out.str();
}

TEST_F(VeskDbTool, ExportThenImportGivesTheSameDesign) {
  Import(kRich);
  std::string original = Dump((folder_ / "database").string());
  ASSERT_EQ(Run("export"), 0) << err_;
  std::string first = out_;
  Write("again/design.json", first);
  ASSERT_EQ(Run("import design.json", "again"), 0) << err_;
  EXPECT_EQ(Dump((folder_ / "again/database").string()), original);
  ASSERT_EQ(Run("export again"), 0) << err_;
  EXPECT_EQ(out_, first);
}

TEST_F(VeskDbTool, TheDumpOfTheRichDesignReadsAsDescribed) {
  Import(kRich);
  std::string dump = Dump((folder_ / "database").string());
  // Spot checks that the round trip compares something real.
  for (const char* line :
       {"block mydesign -> (lib)_TOP\n", "block sub -> SUB\n", " net IN g=0 PROBE1 group(2)=7A#3\n",
        " net N\tTAB g=0 PROBE0 group(-3)=x\"y\\z#none\n", " net NEG g=0 PROBE0 group(2)=#-5\n",
        " net OUT g=0 PROBE0\n", " port W c=0  bus=WB SIGNAL0= BLANK0\n",
        " port IN c=1 IN, nobus SIGNAL1=A BLANK1\n", "  pin B[3:0] w=4 c=1 B3,B2,B1,B0, bus=B\n",
        "  pin E w=0 c=0  nobus\n", "  pin Q w=1 c=1  nobus\n",
        "  attrs: VALUE=1K@2 $$Own=é ü \x01@2 ORDER=VALUE$@1\n",
        " comp R2 name=RES.1 part= type=1 child=\n"
        "  attrs: PREFIX=R@1 ORDER=VALUE$@1\n"}) {
    EXPECT_NE(dump.find(line), std::string::npos) << line << "\nin:\n" << dump;
  }
}

TEST_F(VeskDbTool, ExportWithoutAFolderReadsTheWorkingFolder) {
  Import(R"({"blocks": [{"name": "TOP", "components": [{"label": "R1"}]}]})");
  ASSERT_EQ(Run("export"), 0) << err_;
  std::string here = out_;
  ASSERT_EQ(Run("export ."), 0) << err_;
  EXPECT_EQ(out_, here);
  EXPECT_NE(here.find("\"R1\""), std::string::npos);
  EXPECT_EQ(err_, "");
}

TEST_F(VeskDbTool, TheExportOfADescriptionWithEveryDefaultImportsBack) {
  Import(R"({"blocks": [{"name": "A"}]})");
  ASSERT_EQ(Run("export"), 0);
  std::string first = out_;
  Write("b/design.json", first);
  ASSERT_EQ(Run("import design.json", "b"), 0) << err_;
  ASSERT_EQ(Run("export b"), 0);
  EXPECT_EQ(out_, first);
}

// ---- Options

TEST_F(VeskDbTool, TheProjectOptionBuildsTheDatabaseInThatFolder) {
  Write("design.json", R"({"blocks": [{"name": "TOP"}]})");
  fs::create_directories(folder_ / "proj");
  ASSERT_EQ(Run("import --project proj design.json"), 0) << err_;
  EXPECT_TRUE(fs::exists(folder_ / "proj/database"));
  EXPECT_FALSE(fs::exists(folder_ / "database"));
  ASSERT_EQ(Run("export proj"), 0) << err_;
  EXPECT_NE(out_.find("\"TOP\""), std::string::npos);
  EXPECT_NE(Run("export"), 0);
}

TEST_F(VeskDbTool, TheSnapshotOptionNamesTheStoredSnapshot) {
  Write("design.json", R"({"snapshot": "Given", "blocks": [{"name": "TOP"}]})");
  ASSERT_EQ(Run("import --snapshot Mine design.json"), 0) << err_;
  ASSERT_EQ(Run("export"), 0);
  EXPECT_NE(out_.find("\"snapshot\": \"Mine\""), std::string::npos) << out_;
  ASSERT_EQ(Run("import --project p --snapshot Other design.json"), 0) << err_;
  ASSERT_EQ(Run("export p"), 0);
  EXPECT_NE(out_.find("\"snapshot\": \"Other\""), std::string::npos) << out_;
  ASSERT_EQ(Run("import --project q design.json"), 0) << err_;
  ASSERT_EQ(Run("export q"), 0);
  EXPECT_NE(out_.find("\"snapshot\": \"Given\""), std::string::npos) << out_;
}

TEST_F(VeskDbTool, ANewImportReplacesTheDatabase) {
  Import(R"({"blocks": [{"name": "OLD"}]})");
  Import(R"({"blocks": [{"name": "NEW"}]})");
  ASSERT_EQ(Run("export"), 0);
  EXPECT_EQ(out_.find("\"OLD\""), std::string::npos);
  EXPECT_NE(out_.find("\"NEW\""), std::string::npos);
  EXPECT_EQ(fs::directory_iterator(folder_ / "database")->path().filename(), "design.sqlite");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "database"), fs::directory_iterator()), 1);
}

TEST_F(VeskDbTool, AMisusedCommandLineShowsTheUsage) {
  for (const char* args : {"", "import", "frobnicate x.json", "import --project", "import a.json b.json",
                           "export a b", "import --bogus a.json"}) {
    EXPECT_EQ(Run(args), 1) << args;
    EXPECT_NE(err_.find("usage: vesk-db"), std::string::npos) << args;
    EXPECT_EQ(out_, "") << args;
  }
}

TEST_F(VeskDbTool, ExportOfAFolderWithoutADatabaseFailsOnOneLine) {
  EXPECT_EQ(Run("export nowhere"), 2);
  EXPECT_EQ(out_, "");
  ASSERT_FALSE(err_.empty());
  EXPECT_EQ(err_.rfind("vesk-db: ", 0), 0u) << err_;
  EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
}

// ---- Bad input

struct BadInput {
  const char* json;
  const char* where;  // the JSON path that the report names
};

// Every bad description, with the path that the one-line report must name.
const BadInput kBadInputs[] = {
    {R"({"blocks": [)", "line 1, column "},
    {"", "line 1, column "},
    {R"({"blocks": []} trailing)", "line 1, column "},
    {R"([])", ""},
    {R"({})", "blocks"},
    {R"({"blocks": {}})", "blocks"},
    {R"({"blocks": [5]})", "blocks[0]"},
    {R"({"blocks": [{}]})", "blocks[0].name"},
    {R"({"blocks": [{"name": 5}]})", "blocks[0].name"},
    {R"({"blocks": [{"name": "A", "components": {}}]})", "blocks[0].components"},
    {R"({"blocks": [{"name": "A", "nets": "N"}]})", "blocks[0].nets"},
    {R"({"blocks": [{"name": "A", "ports": [{"net": "N"}]}]})", "blocks[0].ports[0].name"},
    {R"({"blocks": [{"name": "A", "ports": [{"name": "P", "attributes": {"S": 1}}]}]})",
     "blocks[0].ports[0].attributes.S"},
    {R"({"blocks": [{"name": "A", "nets": [{"global": true}]}]})", "blocks[0].nets[0].label"},
    {R"({"blocks": [{"name": "A", "nets": [{"label": "N", "global": "yes"}]}]})", "blocks[0].nets[0].global"},
    {R"({"blocks": [{"name": "A", "nets": [{"label": "N", "number": "3"}]}]})", "blocks[0].nets[0].number"},
    {R"({"blocks": [{"name": "A", "nets": [{"label": "N", "number": 3000000000}]}]})",
     "blocks[0].nets[0].number"},
    {R"({"blocks": [{"name": "A", "nets": [{"label": "N", "group": "G"}]}]})", "blocks[0].nets[0].group"},
    {R"({"blocks": [{"name": "A", "nets": [{"label": "N", "attributes": ["x"]}]}]})",
     "blocks[0].nets[0].attributes"},
    {R"({"blocks": [{"name": "A", "components": [7]}]})", "blocks[0].components[0]"},
    {R"({"blocks": [{"name": "A", "components": [{"name": "R"}]}]})", "blocks[0].components[0].label"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "type": "1"}]}]})",
     "blocks[0].components[0].type"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "type": 1.5}]}]})",
     "blocks[0].components[0].type"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "type": -1}]}]})",
     "blocks[0].components[0].type"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "partition": null}]}]})",
     "blocks[0].components[0].partition"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "attributes": {"V": 1}}]}]})",
     "blocks[0].components[0].attributes.V"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "definition": "x"}]}]})",
     "blocks[0].components[0].definition"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": {}}]}]})",
     "blocks[0].components[0].pins"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": ["A"]}]}]})",
     "blocks[0].components[0].pins[0]"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": [{"net": "N"}]}]}]})",
     "blocks[0].components[0].pins[0].name"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": [{"name": "P", "net": 1}]}]}]})",
     "blocks[0].components[0].pins[0].net"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": [{"name": "P", "nets": ["a", 2]}]}]}]})",
     "blocks[0].components[0].pins[0].nets[1]"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": [{"name": "P", "width": -1}]}]}]})",
     "blocks[0].components[0].pins[0].width"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": [{"name": "P", "connected": 1}]}]}]})",
     "blocks[0].components[0].pins[0].connected"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "pins": [{"name": "P", "bus": ["B"]}]}]}]})",
     "blocks[0].components[0].pins[0].bus"},
    {R"({"blocks": [{"name": "A"}, {"name": "B", "components": [{"label": "R1"}, {"label": "R2"}, {"label": "R3"},
        {"label": "R4"}, {"label": "R5", "pins": [{"name": 4}]}]}]})",
     "blocks[1].components[4].pins[0].name"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R"}, {"label": "X", "child": "NONE"}]}]})",
     "blocks[0].components[1].child"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "X", "type": 2, "child": "A"}]}]})",
     "blocks[0].components[0].child"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "group": "G"}]}]})",
     "blocks[0].components[0].group"},
    {R"({"blocks": [{"name": "A"}, {"name": "B"}, {"name": "A"}]})", "blocks[2].name"},
    {R"({"snapshot": 1, "blocks": []})", "snapshot"},
    {R"({"groups": [], "blocks": []})", "groups"},
    {R"({"groups": {"G": 2}, "blocks": []})", "groups.G"},
    {R"({"groups": {"G": {"internal_id": 7}}, "blocks": []})", "groups.G.internal_id"},
    {R"({"groups": {"G": {"type": "2"}}, "blocks": []})", "groups.G.type"},
    {R"({"symbols": {"S": []}, "blocks": []})", "symbols.S"},
    {R"({"symbols": {"S": {"K": 1}}, "blocks": []})", "symbols.S.K"},
    {R"({"testbenches": {"tb": 1}, "blocks": []})", "testbenches.tb"},
    {R"({"testbenches": {"tb": "NONE"}, "blocks": [{"name": "A"}]})", "testbenches.tb"},
    {R"({"testbenches": {"tb": "a"}, "blocks": [{"name": "A"}]})", "testbenches.tb"},
    {R"({"blocks": [{"name": "A"}], "blocks": [{"name": "B"}]})", "blocks"},
    {R"({"blocks": [{"name": "A", "name": "B"}]})", "blocks[0].name"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "label": "S"}]}]})",
     "blocks[0].components[0].label"},
    {R"({"blocks": [{"name": "A", "components": [{"label": "R", "attributes": {"V": "1", "V": "2"}}]}]})",
     "blocks[0].components[0].attributes.V"},
};

TEST_F(VeskDbTool, BadInputIsReportedOnOneLineWithItsPlace) {
  for (const BadInput& bad : kBadInputs) {
    Write("bad.json", bad.json);
    EXPECT_EQ(Run("import bad.json"), 2) << bad.json;
    EXPECT_EQ(out_, "") << bad.json;
    std::string prefix = "vesk-db: bad.json: " + std::string(bad.where);
    EXPECT_EQ(err_.rfind(prefix, 0), 0u) << bad.json << "\n" << err_;
    if (*bad.where && std::string(bad.where).find("line") != 0 && err_.size() > prefix.size()) {
      EXPECT_EQ(err_.compare(prefix.size(), 2, ": "), 0) << bad.json << "\n" << err_;
    }
    EXPECT_GT(err_.size(), prefix.size() + 3) << bad.json << "\n" << err_;
    EXPECT_EQ(err_.find('\n'), err_.size() - 1) << bad.json << "\n" << err_;
    EXPECT_FALSE(fs::exists(folder_ / "database")) << bad.json;
  }
}

TEST_F(VeskDbTool, BadInputLeavesAnExistingDatabaseByteForByte) {
  Import(kRich);
  std::string before = DatabaseBytes();
  for (const BadInput& bad : kBadInputs) {
    Write("bad.json", bad.json);
    EXPECT_EQ(Run("import bad.json"), 2) << bad.json;
    EXPECT_TRUE(DatabaseBytes() == before) << bad.json;
  }
}

TEST_F(VeskDbTool, ABlockThatPlacesItselfThroughOthersIsReported) {
  Write("bad.json", R"({"blocks": [
    {"name": "TOP", "components": [{"label": "XA", "type": 2, "child": "A"}]},
    {"name": "A", "components": [{"label": "R"}, {"label": "XB", "type": 2, "child": "B"}]},
    {"name": "B", "components": [{"label": "XC", "type": 2, "child": "C"}]},
    {"name": "C", "components": [{"label": "XA", "type": 2, "child": "A"}]}]})");
  EXPECT_EQ(Run("import bad.json"), 2);
  EXPECT_EQ(err_.rfind("vesk-db: bad.json: blocks[", 0), 0u) << err_;
  EXPECT_NE(err_.find("].child: "), std::string::npos) << err_;
  EXPECT_NE(err_.find("\"A\""), std::string::npos) << err_;
  EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
}

TEST_F(VeskDbTool, NamesWithLineBreaksStillGiveOneLine) {
  Write("bad.json", R"({"groups": {"a\nb": 5}, "blocks": []})");
  EXPECT_EQ(Run("import bad.json"), 2);
  EXPECT_EQ(err_.rfind("vesk-db: bad.json: groups.a", 0), 0u) << err_;
  EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
  Write("bad.json", R"({"blocks": [{"name": "A\r\nB", "components": [{"label": "X", "child": "A\r\nB"}]}]})");
  EXPECT_EQ(Run("import bad.json"), 2);
  EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
  EXPECT_EQ(err_.find('\r'), std::string::npos) << err_;
}

TEST_F(VeskDbTool, AFileThatCannotBeReadIsReportedOnOneLine) {
  Import(kRich);
  std::string before = DatabaseBytes();
  EXPECT_EQ(Run("import missing.json"), 2);
  EXPECT_EQ(err_.rfind("vesk-db: missing.json: ", 0), 0u) << err_;
  EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
  EXPECT_TRUE(DatabaseBytes() == before);
}

TEST_F(VeskDbTool, UnknownFieldsAreIgnored) {
  Import(R"({"comment": "x", "blocks": [{"name": "TOP", "note": 1,
    "components": [{"label": "R1", "extra": [1, 2]}]}]})");
  ASSERT_EQ(Run("export"), 0);
  EXPECT_NE(out_.find("\"R1\""), std::string::npos);
}

}  // namespace
