// Pin lists where whole decks do not reach: an empty word in the pin order, model pin lists,
// the bracket rule of grouped buses and node lists. The deck pin tests pin the rest.
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

TEST_F(Pins, PinOrderStopsAtAnEmptyWord) {
  EXPECT_EQ(Write(Comp("R1", {{"PIN ORDER", "A  B"}}, {{"A", "X"}, {"B", "Y"}})), " 1");
  gentest::Ready(gen);
  EXPECT_EQ(Write(Comp("R1", {{"PIN ORDER", " "}}, {{"A", "X"}, {"B", "Y"}})), " 1 2");
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

}  // namespace
