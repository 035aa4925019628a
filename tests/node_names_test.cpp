// Node texts, legal names for each simulator, unique instance names and probe texts.
#include "design/node_names.h"

#include <gtest/gtest.h>

#include "design/probe_text.h"

namespace {

WireOptions Pspice(bool names) {
  WireOptions o;
  o.useNodeNames = names;
  return o;
}

WireOptions Dracula() {  // -e
  WireOptions o;
  o.wirelistKind = kHspice;
  o.dracula = true;
  o.useNodeNames = true;
  return o;
}

WireOptions Kind(int32_t kind, bool names) {
  WireOptions o;
  o.wirelistKind = kind;
  o.useNodeNames = names;
  return o;
}

TEST(NodeName, NumbersCountFromTheOptionsAndRepeatForTheSameNet) {
  WireOptions o = Pspice(false);
  NodeTable table;
  EXPECT_EQ(NodeName(o, "A", table), "1");
  EXPECT_EQ(NodeName(o, "B", table), "2");
  EXPECT_EQ(NodeName(o, "A", table), "1");
  EXPECT_EQ(o.nextNodeNumber, 2);
  EXPECT_EQ(table.at("B"), "2");
}

TEST(NodeName, GroundIsAnyNameBeginningWithGnd) {
  WireOptions o = Pspice(false);
  NodeTable table{{"GND1", "7"}};
  EXPECT_EQ(NodeName(o, "GND", table), "0");
  EXPECT_EQ(NodeName(o, "GND_ANALOG", table), "0");
  EXPECT_EQ(NodeName(o, "GND1", table), "0");  // overrides what the table said
  EXPECT_EQ(NodeName(o, "AGND", table), "1");
  EXPECT_EQ(NodeName(o, "gnd", table), "2");
}

TEST(NodeName, NamesAreLegalizedAndEntered) {
  WireOptions o = Pspice(true);
  NodeTable table;
  EXPECT_EQ(NodeName(o, "A.B", table), "AB");
  EXPECT_EQ(table.at("A.B"), "AB");
  EXPECT_EQ(o.nextNodeNumber, 0);
}

TEST(NodeName, InventedNodesSkipTextsInUseAndAreNotEntered) {
  WireOptions o = Pspice(false);
  inventedNodes = 0;
  NodeTable table{{"N0", "5"}, {"n2", "6"}, {"3", "7"}, {"N4", ""}};
  EXPECT_EQ(NodeName(o, "", table), "N1");
  EXPECT_EQ(NodeName(o, "", table), "N4");  // N2 by its lower case, 3 by its number; empty counts as absent
  EXPECT_EQ(NodeName(o, "", table), "N5");
  EXPECT_EQ(table.count("N1"), 0u);
}

TEST(LegalizeName, PspiceKeepsLettersDigitsAndLaterUnderscores) {
  WireOptions o = Pspice(true);
  EXPECT_EQ(LegalizeName(o, ""), "");
  EXPECT_EQ(LegalizeName(o, "A.B"), "AB");
  EXPECT_EQ(LegalizeName(o, "_A_B"), "A_B");
  EXPECT_EQ(LegalizeName(o, "R\\X1\\2"), "RX12");
  EXPECT_EQ(LegalizeName(o, "$1N23"), "1N23");
  EXPECT_EQ(LegalizeName(o, "A$12I3"), "A12I3");
  // "$" with no digits before N/I/T: the letter behind it goes as well.
  EXPECT_EQ(LegalizeName(o, "$NET"), "ET");
  EXPECT_EQ(LegalizeName(o, "$G_"), "$G_");
  EXPECT_EQ(LegalizeName(o, "$d_"), "$d_");
  EXPECT_EQ(LegalizeName(o, "$G_VDD"), "G_VDD");  // only a rest of exactly three characters
}

TEST(LegalizeName, DraculaPutsNInFrontOfANonLetter) {
  WireOptions o = Dracula();
  EXPECT_EQ(LegalizeName(o, "1A"), "N1A");
  EXPECT_EQ(LegalizeName(o, "A/B"), "AB");
  EXPECT_EQ(LegalizeName(o, "A B-C_D.E"), "A B-C_DE");
  o.useNodeNames = false;
  EXPECT_EQ(LegalizeName(o, "1A"), "1A");
}

TEST(LegalizeName, HspiceAndKelpoKeepPunctuation) {
  WireOptions o = Kind(kHspice, true);
  EXPECT_EQ(LegalizeName(o, "A/B"), "A/B");
  EXPECT_EQ(LegalizeName(o, "/A"), "/A");
  EXPECT_EQ(LegalizeName(o, "1A"), "N1A");
  EXPECT_EQ(LegalizeName(o, "_IO_X"), "_IO_X");
  EXPECT_EQ(LegalizeName(o, "_X"), "N_X");
  EXPECT_EQ(LegalizeName(o, "A*+-/:;#.[]!_% B@&"), "A*+-/:;#.[]!_% B");
  EXPECT_EQ(LegalizeName(Kind(kKelpo, true), "X1\\N3"), "X1N3");
  EXPECT_EQ(LegalizeName(Kind(kHspice, false), "1A"), "1A");
}

TEST(LegalizeName, BerkeleyDependsOnNodeNames) {
  EXPECT_EQ(LegalizeName(Kind(kBerkeley, true), "1A/B"), "N1A/B");
  EXPECT_EQ(LegalizeName(Kind(kBerkeley, false), "1A/B_C"), "1ABC");
}

TEST(LegalizeName, AnalogDependenciesSpellPlusAndMinus) {
  WireOptions o = Pspice(true);
  o.analogDeps = true;
  EXPECT_EQ(LegalizeName(o, "IN+"), "INP");
  EXPECT_EQ(LegalizeName(o, "IN-"), "INN");
  EXPECT_EQ(LegalizeName(o, "+A"), "PA");  // the sign does not count as the first character
  EXPECT_EQ(LegalizeName(o, "+1"), "NP1");
}

TEST(LegalizeName, CutsToMaxNameCharsAfterFiltering) {
  WireOptions o = Pspice(true);
  o.maxNameChars = 3;
  EXPECT_EQ(LegalizeName(o, "A.B.C.D"), "ABC");
  o.maxNameChars = 0;
  EXPECT_EQ(LegalizeName(o, "ABC"), "");
}

TEST(UniqueName, CountsFromZeroOnEachCallWithinOneList) {
  WireOptions o;
  EXPECT_EQ(UniqueName(o, "R1"), "R1");
  EXPECT_EQ(UniqueName(o, "R1"), "R0");
  EXPECT_EQ(UniqueName(o, "R1"), "R2");
  EXPECT_EQ(UniqueName(o, "R7"), "R7");
  EXPECT_EQ(UniqueName(o, "R0"), "R3");
  EXPECT_EQ(UniqueName(o, "C1"), "C1");
  EXPECT_EQ(UniqueName(o, "C1"), "C0");
  EXPECT_EQ(UniqueName(o, "R"), "R");
  EXPECT_EQ(UniqueName(o, "R"), "R4");
}

TEST(UniqueName, CopiesShareTheListUntilItIsCleared) {
  WireOptions o;
  WireOptions copy = o;
  EXPECT_EQ(UniqueName(o, "X1"), "X1");
  EXPECT_EQ(UniqueName(copy, "X1"), "X0");
  o.usedNames->Clear();
  EXPECT_EQ(UniqueName(copy, "X1"), "X1");
  EXPECT_EQ(UniqueName(copy, "X1"), "X0");
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
  EXPECT_TRUE(IsAllDigits(""));
  EXPECT_FALSE(IsAllDigits("1a"));
}

}  // namespace
