// The vesk-db program: the export/import round trip, replacing a database, and the one-line
// report of bad input that leaves an existing database as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "design/tessel.h"
#include "tests/deck_harness.h"

namespace fs = std::filesystem;

namespace {

class VeskDbTool : public ::testing::Test {
 protected:
  void SetUp() override { folder_ = MakeScratch("db-tool"); }
  void TearDown() override { RemoveScratch(folder_.string()); }

  void Write(const std::string& relative, const std::string& text) {
    WriteText((folder_ / relative).string(), text);
  }

  int Run(const std::string& args) {
    return RunProgram(BinaryDir() + "/vesk-db", args, folder_.string(), {}, out_, err_);
  }

  /// Writes `json` to design.json and imports it; fails the test when the import fails.
  void Import(const std::string& json, const std::string& args = "import design.json") {
    Write("design.json", json);
    ASSERT_EQ(Run(args), 0) << err_;
    EXPECT_EQ(err_, "");
  }

  /// Every file below the test folder but the input, with its bytes.
  std::string FolderBytes() const {
    std::string all;
    for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
      if (entry.is_directory() || entry.path().filename() == "bad.json") continue;
      all += entry.path().string() + ":" + ReadText(entry.path().string()) + "\n";
    }
    return all;
  }

  fs::path folder_;
  std::string out_, err_;
};

// ---- Round trip

// tests/vesk_db/rich.json uses every field with a value other than its default, and leans on every default.
std::string Rich() { return SourceText("tests/vesk_db/rich.json"); }

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
  // "c=<connected> <net labels,> bus=<label>|nobus" of a port or pin.
  auto connection = [](const auto& object) {
    bool connected = false;
    object.IsConnected(connected);
    std::string text = "c=" + std::to_string(connected) + " ";
    IteratorT<const INet> nets;
    String label;
    for (object.GetIterNetsConnected(nets); nets->IsValid(); nets++)
      text += (nets->GetLabel(label), label.str()) + ",";
    IteratorT<const IBus> bus;
    object.GetIterBusesConnected(bus);
    if (bus.IsValid()) bus->GetLabel(label);
    return text + (bus.IsValid() ? " bus=" + label.str() : std::string(" nobus"));
  };
  // The groups of both types that the object lists, each with the object's number in its view.
  auto groups = [&](const auto& object, const IBlock& block) {
    for (int type : {2, -3}) {
      ListT<GroupInfo> list;
      object.GetListGroups(list, static_cast<EGroupType>(type));
      for (auto it = list.GetIterator(); it.IsValid(); it++) {
        ContainerT<const IGroup> group;
        uid.GetGroup(group, *it.operator->());
        String id;
        group->GetAttribute("$$Internal_ID", id);
        ContainerT<const IBlockViewQor> view;
        IBlockViewQor::Init(view, block, *group);
        std::string number = "none";
        if constexpr (std::is_same_v<std::decay_t<decltype(object)>, INet>) {
          IteratorT<const INetQor> qor;
          view->GetIterNetsQor(object, qor);
          NetDataQor netData;
          if (qor) number = (qor->GetData(netData), std::to_string(netData.number));
        } else {
          CompDataQor compData;
          if (view->GetCompData(object, compData)) number = std::to_string(compData.number);
        }
        out << " group(" << type << ")=" << id.str() << "#" << number;
      }
    }
  };
  for (const char* name : {"(lib)_TOP", "SUB", "LONELY", "mydesign", "sub"}) {
    ListT<BlockInfo> hits;
    snapshot->FindBlock(hits, name, eSearchPlain);
    ContainerT<const IBlock> block;
    if (!hits.IsEmpty()) snapshot->GetBlock(block, hits.GetIterator()->index);
    String text;
    if (!block.Empty()) block->GetName(text);
    out << "block " << name << " -> " << text.str() << "\n";
    if (block.Empty()) continue;
    IteratorT<const IPort> ports;
    for (block->GetIterPorts(ports); ports->IsValid(); ports++) {
      String signal, blank;
      ports->GetName(text);
      bool hasSignal = ports->GetAttribute("SIGNAL", signal, 2),
           hasBlank = ports->GetAttribute("BLANK", blank, 2);
      out << " port " << text.str() << " " << connection(*ports.operator->()) << " SIGNAL" << hasSignal << "="
          << signal.str() << " BLANK" << hasBlank << "\n";
    }
    IteratorT<const INet> it;
    for (block->GetIterNets(it); it->IsValid(); it++) {
      bool global = false;
      String probe;
      it->GetLabel(text);
      it->IsGlobal(global);
      bool hasProbe = it->GetAttribute("PROBE", probe, eAttrInstance);
      out << " net " << text.str() << " g=" << global << " PROBE" << hasProbe;
      groups(*it.operator->(), *block);
      out << "\n";
    }
    IteratorT<const IComp> comps;
    for (block->GetIterComps(comps, eCompAll); comps->IsValid(); comps++) {
      String label, compName, partition, childName;
      comps->GetLabel(label);
      comps->GetName(compName);
      comps->GetPartitionName(partition);
      BitContainerT<ECompType, 1> type;
      comps->GetType(type);
      ContainerT<const IBlock> child;
      comps->GetChildBlock(child);
      if (!child.Empty()) child->GetName(childName);
      out << " comp " << label.str() << " name=" << compName.str() << " part=" << partition.str()
          << " type=" << type.Bits() << " child=" << childName.str() << "\n  attrs:";
      ListAttribute attributes;
      comps->GetAttributes(attributes);
      for (auto at = attributes.GetIterator(); at.IsValid(); at++)
        out << " " << at->name.str() << "=" << at->value.str() << "@" << at->level;
      out << "\n  groups:";
      groups(*comps.operator->(), *block);
      out << "\n";
      IteratorT<const IPin> pins;
      for (comps->GetIterPins(pins); pins->IsValid(); pins++) {
        int width = 0;
        pins->GetName(text);
        pins->GetWidth(width);
        out << "  pin " << text.str() << " w=" << width << " " << connection(*pins.operator->()) << "\n";
      }
    }
  }
  return out.str();
}

TEST_F(VeskDbTool, ExportThenImportGivesTheSameDesign) {
  Import(Rich());
  std::string original = Dump((folder_ / "database").string());
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
    EXPECT_NE(original.find(line), std::string::npos) << line << "\nin:\n" << original;
  }
  ASSERT_EQ(Run("export"), 0) << err_;
  std::string first = out_;
  Write("again/design.json", first);
  ASSERT_EQ(Run("import --project again again/design.json"), 0) << err_;
  EXPECT_EQ(Dump((folder_ / "again/database").string()), original);
  ASSERT_EQ(Run("export again"), 0) << err_;
  EXPECT_EQ(out_, first);
}

TEST_F(VeskDbTool, ANewImportReplacesTheDatabaseUnderTheSnapshotAskedFor) {
  Import(R"({"snapshot": "Given", "blocks": [{"name": "OLD"}]})");
  Import(R"({"snapshot": "Given", "blocks": [{"name": "NEW"}]})", "import --snapshot Mine design.json");
  ASSERT_EQ(Run("export"), 0);
  EXPECT_NE(out_.find("\"snapshot\": \"Mine\""), std::string::npos) << out_;
  EXPECT_EQ(out_.find("\"OLD\""), std::string::npos);
  EXPECT_NE(out_.find("\"NEW\""), std::string::npos);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "database"), fs::directory_iterator()), 1);
}

// ---- Bad input

TEST_F(VeskDbTool, BadInputIsReportedOnOneLineAndLeavesTheOldDatabaseByteForByte) {
  Import(Rich());
  std::string before = FolderBytes();
  const auto badInputs = ReadCaseTable("tests/vesk_db/bad_inputs.txt");
  EXPECT_GE(badInputs.size(), 13u);
  for (const auto& [json, where] : badInputs) {
    Write("bad.json", json);
    EXPECT_EQ(Run("import bad.json"), 2) << json;
    EXPECT_EQ(out_, "") << json;
    std::string prefix = "vesk-db: bad.json: " + where;
    EXPECT_EQ(err_.rfind(prefix, 0), 0u) << json << "\n" << err_;
    EXPECT_GT(err_.size(), prefix.size() + 3) << json << "\n" << err_;
    EXPECT_EQ(err_.find('\n'), err_.size() - 1) << json << "\n" << err_;
    EXPECT_EQ(err_.find('\r'), std::string::npos) << json << "\n" << err_;
    EXPECT_TRUE(FolderBytes() == before) << json;
  }
  EXPECT_EQ(Run("import missing.json"), 2);
  EXPECT_EQ(err_.rfind("vesk-db: missing.json: ", 0), 0u) << err_;
  EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
  EXPECT_TRUE(FolderBytes() == before);
}

}  // namespace
