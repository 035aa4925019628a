// Legal names for each simulator where the deck name tests do not reach, invented nodes that
// skip texts in use, and probe texts.
#include "design/node_names.h"

#include <gtest/gtest.h>

#include <tuple>

#include "design/probe_text.h"

namespace {

WireOptions Kind(int32_t kind, bool names) {
  WireOptions o;
  o.wirelistKind = kind;
  o.useNodeNames = names;
  return o;
}

TEST(LegalizeName, EachDialectsCharacters) {
  WireOptions dracula = Kind(kHspice, true);
  dracula.dracula = true;
  WireOptions analog = Kind(kPspice, true);
  analog.analogDeps = true;
  WireOptions cut = Kind(kPspice, true);
  cut.maxNameChars = 3;
  WireOptions none = Kind(kPspice, true);
  none.maxNameChars = 0;
  const std::tuple<WireOptions, const char*, const char*> cases[] = {
      // Pspice keeps letters, digits and later underscores.
      {Kind(kPspice, true), "", ""},
      {Kind(kPspice, true), "_A_B", "A_B"},
      {Kind(kPspice, true), "R\\X1\\2", "RX12"},
      {Kind(kPspice, true), "A$12I3", "A12I3"},
      // "$" with no digits before N/I/T: the letter behind it goes as well.
      {Kind(kPspice, true), "$NET", "ET"},
      {Kind(kPspice, true), "$G_", "$G_"},
      {Kind(kPspice, true), "$d_", "$d_"},
      {Kind(kPspice, true), "$G_VDD", "G_VDD"},  // only a rest of exactly three characters
      // Dracula puts N in front of a non-letter, with node names only.
      {dracula, "A B-C_D.E", "A B-C_DE"},
      {Kind(kHspice, true), "_IO_X", "_IO_X"},
      {Kind(kHspice, true), "_X", "N_X"},
      {Kind(kHspice, true), "A*+-/:;#.[]!_% B@&", "A*+-/:;#.[]!_% B"},
      {Kind(kHspice, false), "1A", "1A"},
      {Kind(kKelpo, true), "X1\\N3", "X1N3"},
      {Kind(kBerkeley, false), "1A/B_C", "1ABC"},
      {analog, "+A", "PA"},  // the sign does not count as the first character
      {analog, "+1", "NP1"},
      // The cut comes after filtering.
      {cut, "A.B.C.D", "ABC"},
      {none, "ABC", ""},
  };
  for (const auto& [options, name, legal] : cases) EXPECT_EQ(LegalizeName(options, name), legal) << name;
  dracula.useNodeNames = false;
  EXPECT_EQ(LegalizeName(dracula, "1A"), "1A");
}

TEST(NodeName, InventedNodesSkipTextsInUseAndAreNotEntered) {
  WireOptions o = Kind(kPspice, false);
  inventedNodes = 0;
  NodeTable table{{"N0", "5"}, {"n2", "6"}, {"3", "7"}, {"N4", ""}, {"GND1", "8"}};
  EXPECT_EQ(NodeName(o, "", table), "N1");
  EXPECT_EQ(NodeName(o, "", table), "N4");  // N2 by its lower case, 3 by its number; empty counts as absent
  EXPECT_EQ(NodeName(o, "", table), "N5");
  EXPECT_EQ(table.count("N1"), 0u);
  EXPECT_EQ(NodeName(o, "GND1", table), "0");  // overrides what the table said
}

TEST(NodeName, GroundIsALabelThatBeginsWithGndAndInAFlatDeckTheLastPartOfAFlatName) {
  WireOptions flat = Kind(kPspice, false);
  flat.flatten = 1;
  WireOptions hierarchical = Kind(kPspice, false);
  hierarchical.flatten = 0;
  const std::tuple<const char*, bool, bool> cases[] = {
      // name, ground in a flat deck, ground in a hierarchical deck
      {"GND", true, true},        {"GNDA", true, true},         {"gnd", false, false},
      {"AGND", false, false},     {"X1\\GND", true, false},     {"X1\\X2\\GNDA", true, false},
      {"X1\\AGND", false, false}, {"X1\\GND\\B", false, false}, {"X1\\", false, false},
  };
  for (const auto& [name, inFlat, inHierarchical] : cases) {
    EXPECT_EQ(IsGroundName(flat, name), inFlat) << name;
    EXPECT_EQ(IsGroundName(hierarchical, name), inHierarchical) << name;
  }
}

TEST(NodeName, AGlobalNetIsNamedAsUnderNodeNamesWhateverTheDeckNumbers) {
  WireOptions dracula = Kind(kHspice, false);
  dracula.dracula = true;
  const std::tuple<WireOptions, const char*, const char*> cases[] = {
      {Kind(kPspice, false), "VDD", "$G_VDD"}, {Kind(kPspice, true), "V.REF", "$G_VREF"},
      {Kind(kPspice, false), "5V", "$G_5V"},   {Kind(kBerkeley, false), "V.REF", "V.REF"},
      {Kind(kBerkeley, false), "5V", "N5V"},   {Kind(kHspice, false), "VDD", "VDD"},
      {Kind(kKelpo, false), "VDD", "VDD"},     {dracula, "1V", "N1V"},
  };
  for (const auto& [options, label, node] : cases) EXPECT_EQ(GlobalNodeName(options, label), node) << label;
}

TEST(ProbeText, PspiceBracketsNamedNodes) {
  WireOptions o;
  EXPECT_EQ(ProbeExpression(o, "", "OUT"), "V([OUT])");
  EXPECT_EQ(ProbeExpression(o, "", "12"), "V(12)");
  EXPECT_EQ(ProbeExpression(o, "DB", "[A]"), "VDB([A])");
  EXPECT_EQ(ProbeExpression(o, "VDB", "A"), "VDB([A])");
  EXPECT_EQ(ProbeExpression(o, "I", "A"), "VI([A])");
  EXPECT_EQ(ProbeDifferenceExpression(o, "", "A", "B"), "V([A],B)");
  o.analogDeps = true;
  EXPECT_EQ(ProbeExpression(o, "", "OUT"), "V(OUT)");
  EXPECT_EQ(ProbeExpression(Kind(kHspice, true), "P", "OUT"), "VP(OUT)");
}

}  // namespace
