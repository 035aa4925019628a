// The design database through the Tessel interface: fields and their defaults, nets that the
// description leaves undeclared, attributes, groups, test benches and snapshots.
#include <gtest/gtest.h>

#include "tests/database_fixture.h"

namespace {

using Tessel::IComp;
using Tessel::INet;
using Tessel::IPin;
using Tessel::IPort;
using Tessel::IteratorT;
using Tessel::String;
using Strings = std::vector<std::string>;

std::string Str(const String& text) { return text.str(); }

// "w=<width> c=<connected> nets=<labels,> bus=<label or ->" of a pin (width) or a port.
template <class T>
std::string Connection(const IteratorT<const T>& it) {
  const T& object = *it.operator->();
  bool connected = false;
  object.IsConnected(connected);
  std::string text;
  if constexpr (std::is_same_v<T, IPin>) {
    int width = -1;
    object.GetWidth(width);
    text = "w=" + std::to_string(width) + " ";
  }
  text += "c=" + std::to_string(connected) + " nets=";
  IteratorT<const INet> nets;
  String label;
  for (object.GetIterNetsConnected(nets); nets->IsValid(); nets++) {
    nets->GetLabel(label);
    text += Str(label) + ",";
  }
  IteratorT<const Tessel::IBus> buses;
  object.GetIterBusesConnected(buses);
  if (!buses.IsValid()) return text + " bus=-";
  buses->GetLabel(label);
  text += " bus=" + Str(label);
  buses++;
  return buses.IsValid() || buses->IsValid() ? text + "+more" : text;
}

// ---- Defaults and connections

TEST_F(DatabaseTest, ObjectsWithOnlyANameHaveEveryDefault) {
  Open(R"({"blocks": [{"name": "EMPTY"}, {"name": "TOP",
    "ports": [{"name": "P"}], "nets": [{"label": "N"}],
    "components": [{"label": "U1", "pins": [{"name": "A"}]}]}]})");
  BlockHandle empty = Block("EMPTY");
  ASSERT_TRUE(Usable(empty));
  IteratorT<const IComp> comps;
  empty->GetIterComps(comps, Tessel::eCompAll);
  IteratorT<const INet> nets;
  empty->GetIterNets(nets);
  IteratorT<const IPort> ports;
  empty->GetIterPorts(ports);
  EXPECT_FALSE(comps->IsValid() || nets->IsValid() || ports->IsValid());

  BlockHandle top = Block("TOP");
  IteratorT<const IComp> comp = Comp(top, "U1");
  ASSERT_TRUE(comp->IsValid());
  String name("x"), partition("x");
  comp->GetName(name);
  comp->GetPartitionName(partition);
  EXPECT_EQ(Str(name) + Str(partition), "");
  Tessel::BitContainerT<Tessel::ECompType, 1> type;
  comp->GetType(type);
  EXPECT_EQ(type.Bits(), 1u);
  BlockHandle child, parent;
  comp->GetChildBlock(child);
  EXPECT_FALSE(Usable(child));
  comp->GetParentBlock(parent);
  EXPECT_EQ(NameOf(*parent), "TOP");
  Tessel::ListAttribute attributes;
  comp->GetAttributes(attributes);
  EXPECT_TRUE(attributes.IsEmpty());
  Tessel::ListT<Tessel::GroupInfo> groups;
  comp->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
  int count = -1;
  comp->GetPinsCount(count);
  EXPECT_EQ(count, 1);
  IteratorT<const IPin> pin;
  comp->GetIterPins(pin);
  EXPECT_EQ(NameOf(*pin.operator->()), "A");
  EXPECT_EQ(Connection(pin), "w=1 c=0 nets= bus=-");

  IteratorT<const IPort> port = Port(top, "P");
  EXPECT_EQ(Connection(port), "c=0 nets= bus=-");
  String value("x");
  EXPECT_FALSE(port->GetAttribute("SIGNAL", value, 2));
  EXPECT_EQ(Str(value), "");

  IteratorT<const INet> net = Net(top, "N");
  bool global = true;
  net->IsGlobal(global);
  EXPECT_FALSE(global);
  value = "x";
  EXPECT_FALSE(net->GetAttribute("PROBE", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "");
  net->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
}

TEST_F(DatabaseTest, PinsAndPortsCarryTheirNetsInBitOrderTheirBusesAndFlags) {
  Open(R"({"blocks": [{"name": "TOP",
    "ports": [{"name": "IN", "net": "IN"}, {"name": "D[1:0]", "bus": "D", "nets": ["D1", "D0"]},
              {"name": "B", "bus": "BB"}],
    "components": [{"label": "U1", "pins": [
      {"name": "Q[2:0]", "nets": ["D1", "D0", "IN"]}, {"name": "W", "width": 4, "bus": "D"},
      {"name": "C", "net": "IN", "connected": false}, {"name": "E", "connected": true}]}]}]})");
  BlockHandle top = Block("TOP");
  IteratorT<const IPin> pin;
  Comp(top, "U1")->GetIterPins(pin);
  Strings pins;
  for (; pin->IsValid(); pin++) pins.push_back(NameOf(*pin.operator->()) + " " + Connection(pin));
  EXPECT_EQ(pins, (Strings{"Q[2:0] w=3 c=1 nets=D1,D0,IN, bus=-", "W w=4 c=1 nets= bus=D",
                           "C w=1 c=0 nets=IN, bus=-", "E w=1 c=1 nets= bus=-"}));
  IteratorT<const IPort> ports;
  top->GetIterPorts(ports);
  EXPECT_EQ(Names(ports), (Strings{"IN", "D[1:0]", "B"}));
  EXPECT_EQ(Connection(Port(top, "D[1:0]")), "c=1 nets=D1,D0, bus=D");
  EXPECT_EQ(Connection(Port(top, "B")), "c=1 nets= bus=BB");
}

// ---- Undeclared nets

TEST_F(DatabaseTest, UndeclaredNetsFollowTheDeclaredOnesInOrderOfFirstMention) {
  Open(R"({"blocks": [{"name": "TOP",
    "components": [
      {"label": "U1", "pins": [{"name": "A", "net": "Y"}, {"name": "B", "net": "B"},
                               {"name": "C", "nets": ["X", "Z"]}]},
      {"label": "U2", "pins": [{"name": "A", "net": "W"}, {"name": "B", "net": "Y"}]}],
    "nets": [{"label": "B", "global": true}, {"label": "A"}],
    "ports": [{"name": "P", "net": "X"}, {"name": "Q", "nets": ["V", "A"]}]}]})");
  IteratorT<const INet> nets;
  Block("TOP")->GetIterNets(nets);
  EXPECT_EQ(Names(nets), (Strings{"B", "A", "X", "V", "Y", "Z", "W"}));
}

TEST_F(DatabaseTest, AnUndeclaredNetIsPlainAndPinsThatNameItShareIt) {
  Open(R"({"groups": {"G": {"internal_id": "1"}}, "blocks": [
    {"name": "OTHER", "nets": [{"label": "Y", "global": true}]},
    {"name": "TOP",
    "nets": [{"label": "X", "global": true, "attributes": {"PROBE": ""}, "group": "G", "number": 4}],
    "components": [{"label": "U1", "pins": [{"name": "A", "net": "Y"}, {"name": "B", "net": "Y"},
                                            {"name": "C", "net": "X"}]}]}]})");
  BlockHandle top = Block("TOP");
  IteratorT<const INet> y = Net(top, "Y");
  ASSERT_TRUE(y->IsValid());
  bool global = true;
  y->IsGlobal(global);
  EXPECT_FALSE(global);  // not even when a net of that label is global in another block
  BlockHandle parent;
  y->GetParentBlock(parent);
  EXPECT_EQ(NameOf(*parent), "TOP");
  String value;
  EXPECT_FALSE(y->GetAttribute("PROBE", value, Tessel::eAttrInstance));
  Tessel::ListT<Tessel::GroupInfo> groups;
  y->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());

  // Every pin that names a label reaches the one net of that label.
  Tessel::Index yIndex, xIndex;
  y->GetInstanceIndex(yIndex);
  Net(top, "X")->GetInstanceIndex(xIndex);
  IteratorT<const IPin> pin;
  Comp(top, "U1")->GetIterPins(pin);
  for (const Tessel::Index& expected : {yIndex, yIndex, xIndex}) {
    IteratorT<const INet> at;
    pin->GetIterNetsConnected(at);
    Tessel::Index index;
    at->GetInstanceIndex(index);
    EXPECT_TRUE(index.word0 == expected.word0 && index.word1 == expected.word1);
    pin++;
  }
}

// ---- Attributes

const char* kAttributes = R"({
  "symbols": {"RES.1": {"PREFIX": "R", "ORDER": "VALUE$"}},
  "blocks": [{"name": "TOP",
    "ports": [{"name": "IN", "net": "IN", "attributes": {"SIGNAL": "A", "BLANK": ""}}],
    "nets": [{"label": "IN", "attributes": {"PROBE": "", "Probe": "x"}}],
    "components": [
      {"label": "R1", "name": "RES.1",
       "attributes": {"VALUE": "1K", "$$Kept": "k", "value": "lower", "EMPTY": ""},
       "definition": {"ORDER": "VALUE$", "VALUE": "2K"}},
      {"label": "R2", "name": "RES.1", "attributes": {"VALUE": "3K"}},
      {"label": "R3", "name": "RES.1", "definition": {}},
      {"label": "C1", "name": "CAP.1"},
      {"label": "A", "attributes": {"K": "1", "L": "2"}},
      {"label": "B", "attributes": {"K": "1", "L": "2"}},
      {"label": "C", "attributes": {"L": "2", "K": "1"}}]}]})";

TEST_F(DatabaseTest, AllAttributesListTheInstanceLevelFirstThenTheDefinitionOrTheSymbols) {
  Open(kAttributes);
  BlockHandle top = Block("TOP");
  const std::pair<const char*, const char*> expected[] = {
      {"R1", "VALUE=1K@2 $$Kept=k@2 value=lower@2 EMPTY=@2 ORDER=VALUE$@1 VALUE=2K@1 "},
      {"R2", "VALUE=3K@2 PREFIX=R@1 ORDER=VALUE$@1 "},  // no definition: the symbol's
      {"R3", ""},                                       // an empty definition hides the symbol's
      {"C1", ""},                                       // an unknown symbol gives none
      // Equal lists share storage; each component still reads its own.
      {"A", "K=1@2 L=2@2 "},
      {"B", "K=1@2 L=2@2 "},
      {"C", "L=2@2 K=1@2 "}};
  for (const auto& [label, list] : expected) {
    Tessel::ListAttribute attributes;
    Comp(top, label)->GetAttributes(attributes);
    std::string text;
    for (auto it = attributes.GetIterator(); it.IsValid(); it++)
      text += Str(it->name) + "=" + Str(it->value) + "@" + std::to_string(it->level) + " ";
    EXPECT_EQ(text, list) << label;
  }
}

TEST_F(DatabaseTest, OneAttributeIsAnExactKeyAtTheLevelAskedFor) {
  Open(kAttributes);
  IteratorT<const IComp> r1 = Comp(Block("TOP"), "R1");
  struct Case {
    const char* key;
    Tessel::EAttributeType level;
    bool found;
    const char* value;
  };
  for (const Case& c : {Case{"VALUE", Tessel::eAttrInstance, true, "1K"},
                        {"VALUE", Tessel::eAttrDefinition, true, "2K"},
                        {"value", Tessel::eAttrInstance, true, "lower"},
                        {"$$Kept", Tessel::eAttrInstance, true, "k"},
                        {"EMPTY", Tessel::eAttrInstance, true, ""},
                        // No match across levels, in another case, or without the $$ prefix.
                        {"ORDER", Tessel::eAttrInstance, false, ""},
                        {"value", Tessel::eAttrDefinition, false, ""},
                        {"Value", Tessel::eAttrInstance, false, ""},
                        {"Kept", Tessel::eAttrInstance, false, ""},
                        {"$$KEPT", Tessel::eAttrInstance, false, ""},
                        {"VALUE ", Tessel::eAttrInstance, false, ""}}) {
    String value("stale");
    EXPECT_EQ(r1->GetAttribute(c.key, value, c.level), c.found) << c.key;
    EXPECT_EQ(Str(value), c.value) << c.key;
  }
}

TEST_F(DatabaseTest, NetAndPortAttributesAreExactKeysAndMayBeEmpty) {
  Open(kAttributes);
  BlockHandle top = Block("TOP");
  String value("x");
  EXPECT_TRUE(Net(top, "IN")->GetAttribute("PROBE", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "");
  EXPECT_TRUE(Net(top, "IN")->GetAttribute("Probe", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "x");
  EXPECT_FALSE(Net(top, "IN")->GetAttribute("probe", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "");
  value = "x";
  EXPECT_TRUE(Port(top, "IN")->GetAttribute("BLANK", value, 2));
  EXPECT_EQ(Str(value), "");
  EXPECT_TRUE(Port(top, "IN")->GetAttribute("SIGNAL", value, 2));
  EXPECT_EQ(Str(value), "A");
}

// ---- Groups and views

const char* kGroups = R"({
  "groups": {"G1": {"internal_id": "7A", "type": 2}, "G3": {"internal_id": "9", "type": 3},
             "GD": {}},
  "blocks": [{"name": "TOP",
    "nets": [{"label": "N1", "group": "G1", "number": 3}, {"label": "N2", "group": "G1"},
             {"label": "N3", "group": "G3", "number": 5}, {"label": "N4"}, {"label": "N5", "group": "GD"}],
    "components": [{"label": "R1", "group": "G1", "number": 12}, {"label": "R2", "group": "G3", "number": 1},
                   {"label": "R3"}, {"label": "R4", "group": "GD"}, {"label": "R5", "group": "G1"}]}]})";

TEST_F(DatabaseTest, AGroupOfTheTypeAskedForCarriesItsInternalIdAlone) {
  Open(kGroups);
  BlockHandle top = Block("TOP");
  // The internal ids of the groups of type `type` that a component or net lists.
  auto ids = [&](const auto& object, int type) {
    Tessel::ListT<Tessel::GroupInfo> groups;
    object->GetListGroups(groups, static_cast<Tessel::EGroupType>(type));
    std::string text;
    for (auto it = groups.GetIterator(); it.IsValid(); it++) {
      Tessel::ContainerT<const Tessel::IGroup> group;
      uid_.GetGroup(group, *it.operator->());
      String id("x"), other("x");
      group->GetAttribute("$$Internal_ID", id);
      group->GetAttribute("$$INTERNAL_ID", other);  // the one name it answers, exactly
      text += "[" + Str(id) + Str(other) + "]";
    }
    return text;
  };
  EXPECT_EQ(ids(Comp(top, "R1"), 2), "[7A]");
  EXPECT_EQ(ids(Comp(top, "R4"), 2), "[]");  // the type defaults to 2, the id to empty
  EXPECT_EQ(ids(Comp(top, "R2"), 2), "");
  EXPECT_EQ(ids(Comp(top, "R2"), 3), "[9]");
  EXPECT_EQ(ids(Comp(top, "R3"), 2), "");
  EXPECT_EQ(ids(Net(top, "N1"), 2), "[7A]");
  EXPECT_EQ(ids(Net(top, "N3"), 2), "");
  EXPECT_EQ(ids(Net(top, "N4"), 2), "");
}

TEST_F(DatabaseTest, TheViewThroughAGroupNumbersItsMembers) {
  Open(kGroups);
  BlockHandle top = Block("TOP");
  Tessel::ListT<Tessel::GroupInfo> groups;
  Comp(top, "R1")->GetListGroups(groups, Tessel::eGroupInternal);
  Tessel::ContainerT<const Tessel::IGroup> group;
  uid_.GetGroup(group, groups.GetIterator()->index);
  Tessel::ContainerT<const Tessel::IBlockViewQor> view;
  Tessel::IBlockViewQor::Init(view, *top, *group);
  ASSERT_FALSE(view.Empty());
  auto compNumber = [&](const char* label) {
    Tessel::CompDataQor data;
    data.number = -7;
    return view->GetCompData(*Comp(top, label).operator->(), data) ? std::to_string(data.number) : "-";
  };
  auto netNumber = [&](const char* label) {
    IteratorT<const Tessel::INetQor> qor;
    view->GetIterNetsQor(*Net(top, label).operator->(), qor);
    if (!qor) return std::string("-");
    Tessel::NetDataQor data;
    qor->GetData(data);
    return std::to_string(data.number);
  };
  EXPECT_EQ(compNumber("R1"), "12");
  EXPECT_EQ(compNumber("R5"), "0");  // a member without a number
  EXPECT_EQ(compNumber("R2"), "-");  // a member of another group
  EXPECT_EQ(netNumber("N1"), "3");
  EXPECT_EQ(netNumber("N2"), "-");  // no number: no net in the view
  EXPECT_EQ(netNumber("N3"), "-");
  EXPECT_EQ(netNumber("N4"), "-");
}

// ---- Test benches and block lookup

TEST_F(DatabaseTest, BlockLookupFindsStoredNamesFirstThenTestBenchesAndCountsCase) {
  Open(R"({"testbenches": {"mydesign": "TOP", "SUB": "TOP", "other": "(lib)_SUB"},
    "blocks": [{"name": "TOP"}, {"name": "SUB"}, {"name": "(lib)_SUB"}]})");
  EXPECT_EQ(NameOf(*Block("mydesign")), "TOP");
  EXPECT_EQ(NameOf(*Block("other")), "(lib)_SUB");
  EXPECT_EQ(NameOf(*Block("(lib)_SUB")), "(lib)_SUB");
  EXPECT_EQ(NameOf(*Block("SUB")), "SUB");
  for (const char* name : {"top", "MYDESIGN", "Sub", "", "(LIB)_SUB", "TOP "}) {
    Tessel::ListT<Tessel::BlockInfo> hits;
    EXPECT_FALSE(snapshot_->FindBlock(hits, name, Tessel::eSearchPlain)) << name;
    EXPECT_TRUE(hits.IsEmpty()) << name;
  }
  // An index that names no block leaves the handle empty.
  BlockHandle block;
  Tessel::Index index;
  for (uint32_t word : {99u, 0u}) {
    index.word0 = word;
    snapshot_->GetBlock(block, index);
    EXPECT_TRUE(block.Empty());
    EXPECT_FALSE(block.IsValid());
  }
  // The default config by name follows test benches.
  Tessel::ContainerT<const Tessel::IConfig> config;
  snapshot_->GetDefaultConfig(config, "mydesign");
  ASSERT_FALSE(config.Empty());
  IteratorT<const Tessel::IPath> paths;
  config->GetIterPaths(paths);
  paths->GetBlock(block);
  EXPECT_EQ(NameOf(*block), "TOP");
}

// ---- Snapshots and opening

TEST_F(DatabaseTest, TheSnapshotIsQorUnlessTheDescriptionOrTheImportNamesOne) {
  Import(R"({"snapshot": "Nightly", "blocks": [{"name": "TOP"}]})");
  Tessel::Result qor = OpenAt(Location(), "Qor");
  EXPECT_FALSE(qor);
  std::string description = qor.GetDescription(false).operator const char*();
  EXPECT_NE(description.find("snapshot \"Qor\""), std::string::npos) << description;
  EXPECT_NE(description.find(Location()), std::string::npos) << description;
  EXPECT_TRUE(OpenAt(Location(), "Nightly"));
  EXPECT_EQ(NameOf(*Block("TOP")), "TOP");

  Import(R"({"snapshot": "Nightly", "blocks": [{"name": "TOP"}]})", "Monday");
  EXPECT_FALSE(OpenAt(Location(), "Nightly"));
  EXPECT_FALSE(OpenAt(Location(), "MONDAY"));
  EXPECT_TRUE(OpenAt(Location(), "Monday"));
}

TEST_F(DatabaseTest, AMissingDatabaseSaysSoAndWhere) {
  Tessel::Result result = OpenAt(Location());
  EXPECT_FALSE(result);
  EXPECT_EQ(result.success, 0);
  std::string description = result.GetDescription(false).operator const char*();
  EXPECT_NE(description.find("No design database"), std::string::npos) << description;
  EXPECT_NE(description.find(Location()), std::string::npos) << description;
  EXPECT_TRUE(snapshot_.Empty());

  // A folder without the database file is no database either.
  std::filesystem::create_directories(Location());
  description = OpenAt(Location()).GetDescription(false).operator const char*();
  EXPECT_NE(description.find("No design database"), std::string::npos) << description;
}

TEST_F(DatabaseTest, ARelativeLocationIsTakenFromTheWorkingFolder) {
  Import(R"({"blocks": [{"name": "TOP"}]})");
  std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(folder_);
  Tessel::Result result = OpenAt("database");
  std::filesystem::current_path(previous);
  EXPECT_TRUE(result);
  EXPECT_EQ(NameOf(*Block("TOP")), "TOP");
}

}  // namespace
