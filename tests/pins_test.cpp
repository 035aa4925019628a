// Pin lists: pin order, No Pins, unconnected pins, the bracket rule and node lists.
#include <gtest/gtest.h>

#include "gen/spice_gen.h"
#include "tests/gen_test_support.h"

using gentest::Comp;

namespace {

class Pins : public ::testing::Test {
 protected:
  void SetUp() override { gentest::Ready(gen); }
  std::string Write(const SpiceComp& comp, bool group = false) {
    gen.WritePins(comp, group);
    return gen.out.Text();
  }
  CSpiceGen gen;
};

TEST_F(Pins, NoPinsAttributeDecides) {
  EXPECT_EQ(Write(Comp("R1", {{"NO PINS", "true"}}, {{"1", "A"}})), "");
  EXPECT_EQ(Write(Comp("R1", {{"NO_PINS", "Yes"}}, {{"1", "A"}})), "");
  EXPECT_EQ(Write(Comp("R1", {{"NO PINS", "0"}}, {{"1", "A"}})), " 1");
  EXPECT_EQ(Write(Comp("R2", {{"NO_PINS", "FALSE"}}, {{"1", "B"}})), " 1 2");
}

TEST_F(Pins, NoAttributesNoNodes) {
  SpiceComp comp = Comp("R1", {}, {{"1", "A"}});
  comp.hasAttributes = false;
  EXPECT_EQ(Write(comp), "");
}

TEST_F(Pins, PinOrderPutsThePinsInItsOrder) {
  EXPECT_EQ(Write(Comp("R1", {{"PINORDER", "B A"}}, {{"A", "NA"}, {"B", "GND"}})), " 0 1");
  EXPECT_TRUE(gen.groundSeen);
  EXPECT_TRUE(gen.dictionaryLines.Contains("* NA = 1"));
  EXPECT_TRUE(gen.dictionaryLines.Contains("* GND = 0"));
}

TEST_F(Pins, PinOrderStopsAtAnEmptyWord) {
  EXPECT_EQ(Write(Comp("R1", {{"PIN ORDER", "A  B"}}, {{"A", "X"}, {"B", "Y"}})), " 1");
  gentest::Ready(gen);
  EXPECT_EQ(Write(Comp("R1", {{"PIN ORDER", " "}}, {{"A", "X"}, {"B", "Y"}})), " 1 2");
}

TEST_F(Pins, UnconnectedPinsGetInventedNodesAndNotes) {
  EXPECT_EQ(Write(Comp("R1", {{"PINORDER", "A B C"}}, {{"A", ""}, {"B", ""}, {"C", "N"}})), " N0 N1 1");
  EXPECT_EQ(gen.notes,
            (std::vector<std::string>{"* Pin R1.A is not connected", "* Pin R1.B is not connected"}));
  gen.notes.clear();
  SpiceBlock block;
  gen.BeginBlock(block);
  gen.out.OpenInMemory();
  EXPECT_EQ(Write(Comp("R2", {{"X", ""}}, {{"A", ""}, {"B", "GND"}})), " N0 0");
  EXPECT_EQ(gen.notes, std::vector<std::string>{"* Pin  is not connected"});
}

TEST_F(Pins, PinOrderNameWithoutPinIsInventedQuietly) {
  EXPECT_EQ(Write(Comp("R1", {{"PINORDER", "A Z"}}, {{"A", "GND"}})), " 0 N0");
  EXPECT_TRUE(gen.notes.empty());
}

TEST_F(Pins, InventedNodeSkipsNumbersInUse) {
  gen.nodes["N0"] = "7";
  EXPECT_EQ(Write(Comp("R1", {{"X", ""}}, {{"A", ""}})), " N1");
}

TEST_F(Pins, ModelPinListComesFirst) {
  SpiceComp comp = Comp("U1", {{"PINORDER", "A B"}}, {{"A", "NA"}, {"B", "NB"}});
  comp.model = std::make_shared<ModelData>();
  comp.model->hasModelPins = true;
  comp.model->modelPinList = "B A";
  EXPECT_EQ(Write(comp), " 1 2");
  EXPECT_EQ(gen.nodes["NB"], "1");
}

TEST_F(Pins, GroupedBusBitsAreBracketed) {
  SpiceComp comp = Comp("U1", {{"PINORDER", "D0 D1 D2"}}, {{"D0", "A"}, {"D1", "B"}, {"D2", "C"}});
  comp.pinNets[0].net.busBit = comp.pinNets[0].net.firstBit = true;
  comp.pinNets[1].net.busBit = true;
  comp.pinNets[2].net.busBit = comp.pinNets[2].net.lastBit = true;
  EXPECT_EQ(Write(comp, true), " ( 1 2 3 )");
  gentest::Ready(gen);
  EXPECT_EQ(Write(comp, false), " 1 2 3");
}

TEST_F(Pins, NetListAtOnePinIsMappedAndBracketedInGroups) {
  SpiceComp comp = Comp("U1", {{"X", ""}}, {{"D", "A B GND"}});
  EXPECT_EQ(Write(comp, true), " ( 1 2 0 )");
  EXPECT_TRUE(gen.dictionaryLines.Contains("* A B GND = 1 2 0"));
  gentest::Ready(gen);
  EXPECT_EQ(Write(comp, false), " 1 2 0");
}

TEST_F(Pins, MapNodeListKeepsOneTrailingBlank) {
  gen.useNodeNames = true;
  EXPECT_EQ(gen.MapNodeList("A GND B"), "A 0 B ");
  EXPECT_EQ(gen.MapNodeList(""), "");
}

TEST_F(Pins, NodeNamesNeedNoDictionaryEntry) {
  gen.useNodeNames = true;
  EXPECT_EQ(Write(Comp("R1", {{"X", ""}}, {{"1", "A"}, {"2", "GND"}})), " A 0");
  EXPECT_EQ(gen.dictionaryLines.Size(), 1u);
}

}  // namespace
