// The flat and hierarchical walks over a small design: what the walks hand to the deck writers
// (pin-node tables, instance paths, node tables) beyond what whole decks show.
#include "tests/design_fixture.h"

namespace {

// TOP places MID as X1, MID places LEAF as X2; GND is global inside LEAF.
const char* const kTwoLevels = R"({
  "groups": { "G1": { "internal_id": "7A" } },
  "symbols": { "RES.1": { "PREFIX": "R" }, "CAP.1": { "PREFIX": "C" } },
  "blocks": [
    { "name": "TOP",
      "components": [
        { "label": "X1", "name": "MID.1", "type": 2, "child": "MID", "group": "G1", "number": 12,
          "pins": [ { "name": "P", "net": "IN-" }, { "name": "Q", "net": "2OUT" } ] },
        { "label": "R1", "name": "RES.1", "group": "G1", "number": 13,
          "pins": [ { "name": "A", "net": "2OUT" }, { "name": "B", "net": "GND" } ] },
        { "label": "X3", "name": "OTHER.1", "type": 2, "child": "(lib)_OTHER", "group": "G1", "number": 9,
          "pins": [ { "name": "Z", "net": "IN-" } ] }
      ] },
    { "name": "MID",
      "ports": [ { "name": "P", "net": "P" }, { "name": "Q", "net": "Q" } ],
      "components": [
        { "label": "R2", "name": "RES.1",
          "pins": [ { "name": "A", "net": "P" }, { "name": "B", "net": "M" } ] },
        { "label": "X2", "name": "LEAF.1", "type": 2, "child": "LEAF", "group": "G1", "number": 5,
          "attributes": { "LEVEL": "" }, "definition": { "LEVEL": "SIM" },
          "pins": [ { "name": "A", "net": "M" }, { "name": "B", "net": "Q" } ] }
      ] },
    { "name": "LEAF",
      "ports": [ { "name": "A", "net": "A" }, { "name": "B", "net": "B" } ],
      "nets": [ { "label": "GND", "global": true } ],
      "components": [
        { "label": "C1", "name": "CAP.1", "group": "G1", "number": 3,
          "pins": [ { "name": "A", "net": "A" }, { "name": "B", "net": "GND" } ] },
        { "label": "R3", "name": "RES.1",
          "pins": [ { "name": "A", "net": "B" }, { "name": "B", "net": "T.1" } ] }
      ] },
    { "name": "(lib)_OTHER",
      "ports": [ { "name": "Z", "net": "Z" } ],
      "components": [
        { "label": "R1", "name": "RES.1", "pins": [ { "name": "A", "net": "Z" }, { "name": "B" } ] },
        { "label": "R1", "name": "RES.1", "pins": [ { "name": "A", "net": "Z" }, { "name": "B", "net": "GND" } ] }
      ] }
  ]
})";

TEST_F(DesignFixture, FlatWalkPassesNamesDownThroughPins) {
  Import(kTwoLevels);
  SpiceProject& project = Walk("TOP", WireOptions());
  SpiceBlock& root = project.Root();
  EXPECT_TRUE(project.SubBlocks().empty());
  ASSERT_EQ(root.comps.size(), 6u);
  EXPECT_EQ(RefNames(root), "RX12 CX1X21 RX1X23 R1 RX31 R0");
  EXPECT_EQ(Pins(root.comps[0]), "A=IN- B=X1\\M");
  EXPECT_EQ(Pins(root.comps[1]), "A=X1\\M B=GND");
  EXPECT_EQ(Pins(root.comps[2]), "A=2OUT B=X1\\X2\\T.1");
  EXPECT_EQ(Pins(root.comps[3]), "A=2OUT B=GND");
  EXPECT_EQ(Pins(root.comps[4]), "A=IN- B=");
  EXPECT_FALSE(root.comps[4].PinNets()[1].net.IsConnected());
  EXPECT_EQ(Pins(root.comps[5]), "A=IN- B=X3\\GND");  // not global in that block
  EXPECT_EQ(root.comps[2].hierName, "X1\\X2");
  EXPECT_EQ(root.comps[3].hierName, "");
  for (const SpiceComp& comp : root.comps) EXPECT_EQ(comp.Kind(), 1);
}

TEST_F(DesignFixture, FlatWalkKeysThePinNodeTableByInstanceOccurrence) {
  Import(kTwoLevels);
  SpiceProject& project = Walk("TOP", WireOptions());
  const PinNodeTable& table = *project.Root().pinNodes;
  ASSERT_EQ(table.size(), 3u);
  std::map<std::string, std::string> byValue;
  for (const auto& entry : table) byValue[entry.second] = entry.first;
  ASSERT_EQ(byValue.count("P,IN-;Q,2OUT;"), 1u);
  ASSERT_EQ(byValue.count("A,X1\\M;B,2OUT;"), 1u);
  ASSERT_EQ(byValue.count("Z,IN-;"), 1u);
  const std::string& x2 = byValue["A,X1\\M;B,2OUT;"];
  EXPECT_EQ(x2.substr(x2.size() - 2), "X1");  // "%d%d%d" of the Index, then the path's name
}

TEST_F(DesignFixture, HierarchicalWalkGivesEachBlockItsInstancePath) {
  Import(kTwoLevels);
  SpiceProject& project = Walk("TOP", Hierarchical());
  std::vector<SpiceBlock>& blocks = project.SubBlocks();
  ASSERT_EQ(blocks.size(), 3u);
  EXPECT_EQ(blocks[0].comps[0].InternalName(), "$7AI3");
  EXPECT_EQ(blocks[0].comps[0].InstancePath(), "$7AI12\\$7AI5\\$7AI3");
  EXPECT_EQ(blocks[0].comps[1].InstancePath(), "$7AI12\\$7AI5\\");
  EXPECT_EQ(blocks[1].comps[1].InstancePath(), "$7AI12\\$7AI5");
  // A later sibling's path does not hold the earlier one.
  EXPECT_EQ(blocks[2].comps[0].InstancePath(), "$7AI9\\");
  EXPECT_EQ(project.Root().comps[0].InstancePath(), "$7AI12");
  EXPECT_EQ(project.currentInstancePath, "");
}

TEST_F(DesignFixture, HierarchicalNodeTablesStartWithThePorts) {
  Import(kTwoLevels);
  SpiceProject& project = Walk("TOP", Hierarchical());
  SpiceBlock& mid = project.SubBlocks()[1];
  EXPECT_EQ(Nodes(mid), (std::map<std::string, std::string>{{"P", "1"}, {"Q", "2"}}));
  EXPECT_EQ(mid.nextNode, 2);
  SpiceBlock& leaf = project.SubBlocks()[0];
  EXPECT_EQ(Nodes(leaf), (std::map<std::string, std::string>{{"A", "1"}, {"B", "2"}, {"GND", "0"}}));
  EXPECT_EQ(globalNets["GND"], "0");
  EXPECT_EQ(Nodes(project.Root()), (std::map<std::string, std::string>{{"GND", "0"}}));
  EXPECT_EQ(netDictionary.count("MID/1"), 1u);
  EXPECT_EQ(netDictionary.count("MID/"), 1u);  // M has no node yet
}

}  // namespace
