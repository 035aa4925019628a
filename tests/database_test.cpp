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

// ---- Defaults

const char* kBare = R"({"blocks": [{"name": "TOP",
  "ports": [{"name": "P"}],
  "nets": [{"label": "N"}],
  "components": [{"label": "U1", "pins": [{"name": "A"}]}]}]})";

TEST_F(DatabaseTest, ABlockWithOnlyANameHasNothingInIt) {
  Open(R"({"blocks": [{"name": "EMPTY"}]})");
  BlockHandle block = Block("EMPTY");
  ASSERT_TRUE(Usable(block));
  EXPECT_EQ(NameOf(*block), "EMPTY");
  IteratorT<const IComp> comps;
  block->GetIterComps(comps, Tessel::eCompAll);
  IteratorT<const INet> nets;
  block->GetIterNets(nets);
  IteratorT<const IPort> ports;
  block->GetIterPorts(ports);
  EXPECT_FALSE(comps->IsValid());
  EXPECT_FALSE(nets->IsValid());
  EXPECT_FALSE(ports->IsValid());
}

TEST_F(DatabaseTest, AComponentWithOnlyALabelHasEveryDefault) {
  Open(kBare);
  IteratorT<const IComp> comp = Comp(Block("TOP"), "U1");
  ASSERT_TRUE(comp->IsValid());
  String name("x"), partition("x");
  comp->GetName(name);
  comp->GetPartitionName(partition);
  EXPECT_EQ(Str(name), "");
  EXPECT_EQ(Str(partition), "");
  Tessel::BitContainerT<Tessel::ECompType, 1> type;
  comp->GetType(type);
  EXPECT_EQ(type.Bits(), 1u);
  BlockHandle child;
  comp->GetChildBlock(child);
  EXPECT_FALSE(Usable(child));
  Tessel::ListAttribute attributes;
  comp->GetAttributes(attributes);
  EXPECT_TRUE(attributes.IsEmpty());
  Tessel::ListT<Tessel::GroupInfo> groups;
  comp->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
  BlockHandle parent;
  comp->GetParentBlock(parent);
  ASSERT_TRUE(Usable(parent));
  EXPECT_EQ(NameOf(*parent), "TOP");
}

TEST_F(DatabaseTest, APinWithOnlyANameIsOneBitWideAndOpen) {
  Open(kBare);
  IteratorT<const IComp> comp = Comp(Block("TOP"), "U1");
  int count = -1;
  comp->GetPinsCount(count);
  EXPECT_EQ(count, 1);
  IteratorT<const IPin> pin;
  comp->GetIterPins(pin);
  ASSERT_TRUE(pin->IsValid());
  EXPECT_EQ(NameOf(*pin.operator->()), "A");
  int width = 0;
  bool connected = true;
  pin->GetWidth(width);
  pin->IsConnected(connected);
  EXPECT_EQ(width, 1);
  EXPECT_FALSE(connected);
  IteratorT<const INet> nets;
  pin->GetIterNetsConnected(nets);
  EXPECT_FALSE(nets->IsValid());
  IteratorT<const Tessel::IBus> buses;
  pin->GetIterBusesConnected(buses);
  EXPECT_FALSE(buses.IsValid());
}

TEST_F(DatabaseTest, APortWithOnlyANameIsOpenAndHasNoAttributes) {
  Open(kBare);
  IteratorT<const IPort> port = Port(Block("TOP"), "P");
  ASSERT_TRUE(port->IsValid());
  bool connected = true;
  port->IsConnected(connected);
  EXPECT_FALSE(connected);
  String value("x");
  EXPECT_FALSE(port->GetAttribute("SIGNAL", value, 2));
  EXPECT_EQ(Str(value), "");
  IteratorT<const INet> nets;
  port->GetIterNetsConnected(nets);
  EXPECT_FALSE(nets->IsValid());
  IteratorT<const Tessel::IBus> buses;
  port->GetIterBusesConnected(buses);
  EXPECT_FALSE(buses.IsValid());
}

TEST_F(DatabaseTest, ANetWithOnlyALabelIsPlain) {
  Open(kBare);
  IteratorT<const INet> net = Net(Block("TOP"), "N");
  ASSERT_TRUE(net->IsValid());
  bool global = true;
  net->IsGlobal(global);
  EXPECT_FALSE(global);
  String value("x");
  EXPECT_FALSE(net->GetAttribute("PROBE", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "");
  Tessel::ListT<Tessel::GroupInfo> groups;
  net->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
}

// ---- Connections

const char* kConnections = R"({"blocks": [{"name": "TOP",
  "ports": [{"name": "IN", "net": "IN"},
            {"name": "D[1:0]", "bus": "D", "nets": ["D1", "D0"]},
            {"name": "B", "bus": "BB"}],
  "components": [
    {"label": "U1", "pins": [
      {"name": "Q[2:0]", "nets": ["D1", "D0", "IN"]},
      {"name": "W", "width": 4, "bus": "D"},
      {"name": "C", "net": "IN", "connected": false},
      {"name": "E", "connected": true}]}]}]})";

TEST_F(DatabaseTest, ABusPinCarriesItsNetsInBitOrderAndItsWidth) {
  Open(kConnections);
  IteratorT<const IPin> pin;
  Comp(Block("TOP"), "U1")->GetIterPins(pin);
  EXPECT_EQ(NameOf(*pin.operator->()), "Q[2:0]");
  int width = 0;
  bool connected = false;
  pin->GetWidth(width);
  pin->IsConnected(connected);
  EXPECT_EQ(width, 3);
  EXPECT_TRUE(connected);
  IteratorT<const INet> nets;
  pin->GetIterNetsConnected(nets);
  EXPECT_EQ(Names(nets), (Strings{"D1", "D0", "IN"}));
  IteratorT<const Tessel::IBus> buses;
  pin->GetIterBusesConnected(buses);
  EXPECT_FALSE(buses.IsValid());
}

TEST_F(DatabaseTest, ABusAloneConnectsAPinAndAGivenWidthStands) {
  Open(kConnections);
  IteratorT<const IPin> pin;
  Comp(Block("TOP"), "U1")->GetIterPins(pin);
  pin++;
  int width = 0;
  bool connected = false;
  pin->GetWidth(width);
  pin->IsConnected(connected);
  EXPECT_EQ(width, 4);
  EXPECT_TRUE(connected);
  IteratorT<const Tessel::IBus> buses;
  pin->GetIterBusesConnected(buses);
  ASSERT_TRUE(buses.IsValid());
  EXPECT_EQ(NameOf(*buses.operator->()), "D");
  buses++;
  EXPECT_FALSE(buses.IsValid());
  EXPECT_FALSE(buses->IsValid());
}

TEST_F(DatabaseTest, AGivenConnectedFlagOverridesTheDefault) {
  Open(kConnections);
  IteratorT<const IPin> pin;
  Comp(Block("TOP"), "U1")->GetIterPins(pin);
  pin++;
  pin++;
  bool connected = true;
  pin->IsConnected(connected);
  EXPECT_FALSE(connected);
  IteratorT<const INet> nets;
  pin->GetIterNetsConnected(nets);
  EXPECT_EQ(Names(nets), (Strings{"IN"}));
  pin++;
  connected = false;
  pin->IsConnected(connected);
  EXPECT_TRUE(connected);
  pin->GetIterNetsConnected(nets);
  EXPECT_FALSE(nets->IsValid());
}

TEST_F(DatabaseTest, PortsCarryTheirNetsAndBuses) {
  Open(kConnections);
  BlockHandle top = Block("TOP");
  IteratorT<const IPort> ports;
  top->GetIterPorts(ports);
  EXPECT_EQ(Names(ports), (Strings{"IN", "D[1:0]", "B"}));
  IteratorT<const INet> nets;
  Port(top, "D[1:0]")->GetIterNetsConnected(nets);
  EXPECT_EQ(Names(nets), (Strings{"D1", "D0"}));
  IteratorT<const Tessel::IBus> buses;
  Port(top, "B")->GetIterBusesConnected(buses);
  ASSERT_TRUE(buses.IsValid());
  EXPECT_EQ(NameOf(*buses.operator->()), "BB");
  bool connected = false;
  Port(top, "B")->IsConnected(connected);
  EXPECT_TRUE(connected);
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
  Open(R"({"groups": {"G": {"internal_id": "1"}}, "blocks": [{"name": "TOP",
    "nets": [{"label": "X", "global": true, "attributes": {"PROBE": ""}, "group": "G", "number": 4}],
    "components": [{"label": "U1", "pins": [{"name": "A", "net": "Y"}, {"name": "B", "net": "Y"},
                                            {"name": "C", "net": "X"}]}]}]})");
  BlockHandle top = Block("TOP");
  IteratorT<const INet> y = Net(top, "Y");
  ASSERT_TRUE(y->IsValid());
  bool global = true;
  y->IsGlobal(global);
  EXPECT_FALSE(global);
  String value;
  EXPECT_FALSE(y->GetAttribute("PROBE", value, Tessel::eAttrInstance));
  Tessel::ListT<Tessel::GroupInfo> groups;
  y->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());

  // Every pin that names a label reaches the one net of that label.
  Tessel::Index yIndex, first, second, third, xIndex;
  y->GetInstanceIndex(yIndex);
  Net(top, "X")->GetInstanceIndex(xIndex);
  IteratorT<const IPin> pin;
  Comp(top, "U1")->GetIterPins(pin);
  IteratorT<const INet> at;
  pin->GetIterNetsConnected(at);
  at->GetInstanceIndex(first);
  pin++;
  pin->GetIterNetsConnected(at);
  at->GetInstanceIndex(second);
  pin++;
  pin->GetIterNetsConnected(at);
  at->GetInstanceIndex(third);
  EXPECT_TRUE(first.word0 == yIndex.word0 && first.word1 == yIndex.word1);
  EXPECT_TRUE(second.word0 == yIndex.word0 && second.word1 == yIndex.word1);
  EXPECT_TRUE(third.word0 == xIndex.word0 && third.word1 == xIndex.word1);
  bool xGlobal = false;
  at->IsGlobal(xGlobal);
  EXPECT_TRUE(xGlobal);
}

TEST_F(DatabaseTest, NetsOfOneLabelInTwoBlocksAreTwoNets) {
  Open(R"({"blocks": [
    {"name": "A", "nets": [{"label": "N", "global": true}]},
    {"name": "B", "components": [{"label": "U", "pins": [{"name": "P", "net": "N"}]}]}]})");
  IteratorT<const INet> net = Net(Block("B"), "N");
  ASSERT_TRUE(net->IsValid());
  bool global = true;
  net->IsGlobal(global);
  EXPECT_FALSE(global);
  BlockHandle parent;
  net->GetParentBlock(parent);
  EXPECT_EQ(NameOf(*parent), "B");
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
      {"label": "C1", "name": "CAP.1"}]}]})";

std::string AttributeList(const IteratorT<const IComp>& comp) {
  Tessel::ListAttribute list;
  comp->GetAttributes(list);
  std::string text;
  for (auto it = list.GetIterator(); it.IsValid(); it++)
    text += Str(it->name) + "=" + Str(it->value) + "@" + std::to_string(it->level) + " ";
  return text;
}

TEST_F(DatabaseTest, AllAttributesListTheInstanceLevelFirstThenTheDefinitionLevel) {
  Open(kAttributes);
  EXPECT_EQ(AttributeList(Comp(Block("TOP"), "R1")),
            "VALUE=1K@2 $$Kept=k@2 value=lower@2 EMPTY=@2 ORDER=VALUE$@1 VALUE=2K@1 ");
}

TEST_F(DatabaseTest, AComponentWithoutADefinitionTakesItsSymbols) {
  Open(kAttributes);
  EXPECT_EQ(AttributeList(Comp(Block("TOP"), "R2")), "VALUE=3K@2 PREFIX=R@1 ORDER=VALUE$@1 ");
}

TEST_F(DatabaseTest, AnEmptyDefinitionOfItsOwnHidesTheSymbols) {
  Open(kAttributes);
  EXPECT_EQ(AttributeList(Comp(Block("TOP"), "R3")), "");
}

TEST_F(DatabaseTest, AComponentOfAnUnknownSymbolHasNoDefinition) {
  Open(kAttributes);
  EXPECT_EQ(AttributeList(Comp(Block("TOP"), "C1")), "");
}

TEST_F(DatabaseTest, OneAttributeIsAnExactKeyAtTheLevelAskedFor) {
  Open(kAttributes);
  IteratorT<const IComp> r1 = Comp(Block("TOP"), "R1");
  String value;
  EXPECT_TRUE(r1->GetAttribute("VALUE", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "1K");
  EXPECT_TRUE(r1->GetAttribute("VALUE", value, Tessel::eAttrDefinition));
  EXPECT_EQ(Str(value), "2K");
  EXPECT_TRUE(r1->GetAttribute("value", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "lower");
  EXPECT_TRUE(r1->GetAttribute("$$Kept", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "k");

  // No match across levels, in another case, or without the $$ prefix.
  for (auto [key, level] : {std::pair<const char*, Tessel::EAttributeType>{"ORDER", Tessel::eAttrInstance},
                            {"value", Tessel::eAttrDefinition},
                            {"Value", Tessel::eAttrInstance},
                            {"Kept", Tessel::eAttrInstance},
                            {"$$KEPT", Tessel::eAttrInstance},
                            {"VALUE ", Tessel::eAttrInstance}}) {
    value = "stale";
    r1->GetAttribute(key, value, level);
    EXPECT_EQ(Str(value), "") << key;
  }
}

TEST_F(DatabaseTest, AnEmptyValueIsPresentAtEveryKindOfObject) {
  Open(kAttributes);
  BlockHandle top = Block("TOP");
  String value("x");
  EXPECT_TRUE(Comp(top, "R1")->GetAttribute("EMPTY", value, Tessel::eAttrInstance));
  EXPECT_EQ(Str(value), "");
  value = "x";
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

TEST_F(DatabaseTest, EqualAttributeListsStayIndependentValues) {
  // Two components with the same attributes share storage; each still reads its own list.
  Open(R"({"blocks": [{"name": "TOP", "components": [
    {"label": "A", "attributes": {"K": "1", "L": "2"}},
    {"label": "B", "attributes": {"K": "1", "L": "2"}},
    {"label": "C", "attributes": {"L": "2", "K": "1"}}]}]})");
  BlockHandle top = Block("TOP");
  EXPECT_EQ(AttributeList(Comp(top, "A")), "K=1@2 L=2@2 ");
  EXPECT_EQ(AttributeList(Comp(top, "B")), "K=1@2 L=2@2 ");
  EXPECT_EQ(AttributeList(Comp(top, "C")), "L=2@2 K=1@2 ");
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

TEST_F(DatabaseTest, AGroupOfTheTypeAskedForCarriesItsInternalId) {
  Open(kGroups);
  Tessel::ListT<Tessel::GroupInfo> groups;
  Comp(Block("TOP"), "R1")->GetListGroups(groups, Tessel::eGroupInternal);
  ASSERT_FALSE(groups.IsEmpty());
  auto first = groups.GetIterator();
  Tessel::ContainerT<const Tessel::IGroup> group;
  uid_.GetGroup(group, *first.operator->());
  ASSERT_FALSE(group.Empty());
  String id;
  group->GetAttribute("$$Internal_ID", id);
  EXPECT_EQ(Str(id), "7A");
  first++;
  EXPECT_FALSE(first.IsValid());
}

TEST_F(DatabaseTest, AGroupTypeDefaultsToTwoAndItsInternalIdToEmpty) {
  Open(kGroups);
  Tessel::ListT<Tessel::GroupInfo> groups;
  Comp(Block("TOP"), "R4")->GetListGroups(groups, Tessel::eGroupInternal);
  ASSERT_FALSE(groups.IsEmpty());
  Tessel::ContainerT<const Tessel::IGroup> group;
  uid_.GetGroup(group, groups.GetIterator()->index);
  String id("x");
  group->GetAttribute("$$Internal_ID", id);
  EXPECT_EQ(Str(id), "");
}

TEST_F(DatabaseTest, AGroupOfAnotherTypeOrNoGroupListsNothing) {
  Open(kGroups);
  BlockHandle top = Block("TOP");
  Tessel::ListT<Tessel::GroupInfo> groups;
  Comp(top, "R2")->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
  Comp(top, "R2")->GetListGroups(groups, static_cast<Tessel::EGroupType>(3));
  EXPECT_FALSE(groups.IsEmpty());
  Comp(top, "R3")->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
  Net(top, "N3")->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
  Net(top, "N4")->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
  Net(top, "N1")->GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_FALSE(groups.IsEmpty());
}

TEST_F(DatabaseTest, TheGroupAnswersOnlyItsInternalId) {
  Open(kGroups);
  Tessel::ListT<Tessel::GroupInfo> groups;
  Comp(Block("TOP"), "R1")->GetListGroups(groups, Tessel::eGroupInternal);
  Tessel::ContainerT<const Tessel::IGroup> group;
  uid_.GetGroup(group, groups.GetIterator()->index);
  String value("x");
  group->GetAttribute("$$INTERNAL_ID", value);
  EXPECT_EQ(Str(value), "");
}

// The view's number of a component, or "-" when the view has none for it.
std::string CompNumber(const Tessel::IBlockViewQor& view, const IteratorT<const IComp>& comp) {
  Tessel::CompDataQor data;
  data.number = -7;
  if (!view.GetCompData(*comp.operator->(), data)) return "-";
  return std::to_string(data.number);
}
std::string NetNumber(const Tessel::IBlockViewQor& view, const IteratorT<const INet>& net) {
  IteratorT<const Tessel::INetQor> qor;
  view.GetIterNetsQor(*net.operator->(), qor);
  if (!qor) return "-";
  Tessel::NetDataQor data;
  qor->GetData(data);
  return std::to_string(data.number);
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
  EXPECT_EQ(CompNumber(*view, Comp(top, "R1")), "12");
  EXPECT_EQ(CompNumber(*view, Comp(top, "R5")), "0");  // a member without a number
  EXPECT_EQ(CompNumber(*view, Comp(top, "R2")), "-");  // a member of another group
  EXPECT_EQ(NetNumber(*view, Net(top, "N1")), "3");
  EXPECT_EQ(NetNumber(*view, Net(top, "N2")), "-");  // no number: no net in the view
  EXPECT_EQ(NetNumber(*view, Net(top, "N3")), "-");
  EXPECT_EQ(NetNumber(*view, Net(top, "N4")), "-");
}

// ---- Test benches and block lookup

const char* kBenches = R"({
  "testbenches": {"mydesign": "TOP", "SUB": "TOP", "other": "(lib)_SUB"},
  "blocks": [{"name": "TOP"}, {"name": "SUB"}, {"name": "(lib)_SUB"}]})";

TEST_F(DatabaseTest, ATestBenchNameFindsItsBlock) {
  Open(kBenches);
  EXPECT_EQ(NameOf(*Block("mydesign")), "TOP");
  EXPECT_EQ(NameOf(*Block("other")), "(lib)_SUB");
  EXPECT_EQ(NameOf(*Block("(lib)_SUB")), "(lib)_SUB");
}

TEST_F(DatabaseTest, AStoredBlockNameGoesBeforeATestBenchOfThatName) {
  Open(kBenches);
  EXPECT_EQ(NameOf(*Block("SUB")), "SUB");
}

TEST_F(DatabaseTest, BlockLookupCountsCase) {
  Open(kBenches);
  for (const char* name : {"top", "MYDESIGN", "Sub", "", "(LIB)_SUB", "TOP "}) {
    Tessel::ListT<Tessel::BlockInfo> hits;
    EXPECT_FALSE(snapshot_->FindBlock(hits, name, Tessel::eSearchPlain)) << name;
    EXPECT_TRUE(hits.IsEmpty()) << name;
  }
}

TEST_F(DatabaseTest, AnIndexThatNamesNoBlockLeavesTheHandleEmpty) {
  Open(kBenches);
  BlockHandle block;
  Tessel::Index index;
  index.word0 = 99;
  snapshot_->GetBlock(block, index);
  EXPECT_TRUE(block.Empty());
  EXPECT_FALSE(block.IsValid());
  index.word0 = 0;
  snapshot_->GetBlock(block, index);
  EXPECT_TRUE(block.Empty());
}

TEST_F(DatabaseTest, TheDefaultConfigByNameFollowsTestBenches) {
  Open(kBenches);
  Tessel::ContainerT<const Tessel::IConfig> config;
  snapshot_->GetDefaultConfig(config, "mydesign");
  ASSERT_FALSE(config.Empty());
  IteratorT<const Tessel::IPath> paths;
  config->GetIterPaths(paths);
  BlockHandle block;
  paths->GetBlock(block);
  EXPECT_EQ(NameOf(*block), "TOP");
}

// ---- Snapshots and opening

TEST_F(DatabaseTest, TheSnapshotIsQorUnlessTheDescriptionNamesOne) {
  Import(R"({"snapshot": "Nightly", "blocks": [{"name": "TOP"}]})");
  Tessel::Result qor = OpenAt(Location(), "Qor");
  EXPECT_FALSE(qor);
  std::string description = qor.GetDescription(false).operator const char*();
  EXPECT_NE(description.find("snapshot"), std::string::npos) << description;
  EXPECT_NE(description.find("\"Qor\""), std::string::npos) << description;
  EXPECT_NE(description.find(Location()), std::string::npos) << description;
  EXPECT_TRUE(OpenAt(Location(), "Nightly"));
  EXPECT_EQ(NameOf(*Block("TOP")), "TOP");
}

TEST_F(DatabaseTest, AnImportSnapshotOverridesTheDescriptions) {
  Import(R"({"snapshot": "Nightly", "blocks": [{"name": "TOP"}]})", "Monday");
  EXPECT_FALSE(OpenAt(Location(), "Nightly"));
  EXPECT_FALSE(OpenAt(Location(), "Qor"));
  EXPECT_TRUE(OpenAt(Location(), "Monday"));
}

TEST_F(DatabaseTest, SnapshotNamesCountCase) {
  Import(R"({"blocks": [{"name": "TOP"}]})");
  EXPECT_TRUE(OpenAt(Location(), "Qor"));
  EXPECT_FALSE(OpenAt(Location(), "QOR"));
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
  result = OpenAt(Location());
  EXPECT_FALSE(result);
  description = result.GetDescription(false).operator const char*();
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
