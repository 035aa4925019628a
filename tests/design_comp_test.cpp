// The component view without a database: attribute table, block prefixes, and the corners of the
// deck-name rule that whole decks leave out (blank prefixes, -y on each kind, designators).
#include <gtest/gtest.h>

#include "design/spice_comp.h"

namespace {

TEST(AttributeTable, ReadsNeverAddAndKeysStaySorted) {
  AttributeTable table;
  EXPECT_EQ(table.Get("VALUE"), "");
  EXPECT_TRUE(table.Empty());
  table.Set("VALUE", "1K");
  table.Set("ORDER", "VALUE$");
  table.SetIfEmpty("VALUE", "2K");
  table.Set("PREFIX", "");
  table.SetIfEmpty("PREFIX", "R");
  ASSERT_EQ(table.Entries().size(), 3u);
  EXPECT_EQ(table.Entries()[0].first, "ORDER");
  EXPECT_EQ(table.Entries()[1].first, "PREFIX");
  EXPECT_EQ(table.Get("VALUE"), "1K");
  EXPECT_EQ(table.Get("PREFIX"), "R");
}

TEST(StripBlockPrefix, OnlyAQualifierFollowedByUnderscoreGoes) {
  EXPECT_EQ(StripBlockPrefix("(lib)_TOP"), "TOP");
  EXPECT_EQ(StripBlockPrefix("(lib)TOP"), "(lib)TOP");
  EXPECT_EQ(StripBlockPrefix("(lib)"), "(lib)");
  EXPECT_EQ(StripBlockPrefix("(a)_(b)_C"), "(b)_C");
  EXPECT_EQ(StripBlockPrefix("TOP(x)_"), "TOP(x)_");
  EXPECT_EQ(StripBlockPrefix(""), "");
}

class DeckName : public ::testing::Test {
 protected:
  // A fresh component of `kind` with `label` and the attribute pairs given.
  SpiceComp Comp(int32_t kind, const std::string& label,
                 std::initializer_list<std::pair<const char*, const char*>> attributes = {}) {
    SpiceComp comp;
    comp.kind = kind;
    comp.label = label;
    for (const auto& a : attributes) comp.attrs.Set(a.first, a.second);
    return comp;
  }
  std::string Name(SpiceComp comp) {
    comp.FormDeckName(options);
    return comp.RefName();
  }
  WireOptions options;
};

TEST_F(DeckName, PrimitiveWithoutPrefixKeepsItsLabel) {
  EXPECT_EQ(Name(Comp(1, "Q7")), "Q7");
  EXPECT_EQ(Name(Comp(1, "Q8", {{"PREFIX", " "}})), "Q8");  // " \Q8", filtered
}

TEST_F(DeckName, FirstPrefixOptionNamesTheAttributeToUse) {
  options.flatten = 0;
  options.firstPrefix = "spice_prefix";
  EXPECT_EQ(Name(Comp(1, "A1", {{"PREFIX", "R"}, {"SPICE_PREFIX", "M"}})), "MA1");
  EXPECT_EQ(Name(Comp(1, "A2", {{"PREFIX", "R"}})), "RA2");
  EXPECT_EQ(Name(Comp(3, "A3", {{"SPICE_PREFIX", "U"}})), "UA3");
  // An instance of kind 2 does not look at -y.
  EXPECT_EQ(Name(Comp(2, "A4", {{"SPICE_PREFIX", "U"}})), "XA4");
}

TEST_F(DeckName, AutomaticLabelsGiveWayToDesignators) {
  options.flatten = 0;
  EXPECT_EQ(Name(Comp(1, "$1I23", {{"PREFIX", "U"}, {"REF DESIGNATOR", "U5"}})), "UU5");
  EXPECT_EQ(Name(Comp(1, "$1I24", {{"PREFIX", "U"}, {"REF DESIGNATOR", "U?"}})), "U1I24");
  EXPECT_EQ(Name(Comp(1, "$1I25", {{"PREFIX", "U"}, {"REFDES", "?A"}})), "UA");
  EXPECT_EQ(Name(Comp(1, "$1I26", {{"PREFIX", "U"}, {"REFDES", "V7"}})), "UV7");
  EXPECT_EQ(Name(Comp(1, "K1", {{"PREFIX", "U"}, {"REFDES", "V8"}})), "UK1");
}

TEST(SpiceCompPins, FindPinFindsTheLastEntryWithTheKey) {
  SpiceComp comp;
  SpiceNet a;
  a.name = "first";
  SpiceNet b;
  b.name = "second";
  comp.AddPin("P", a);
  comp.AddPin("P", b);
  ASSERT_NE(comp.FindPin("P"), nullptr);
  EXPECT_EQ(comp.FindPin("P")->Name(), "second");
  EXPECT_EQ(comp.FindPin("Q"), nullptr);
  for (int i = 0; i < 40; ++i) comp.AddPin("D[" + std::to_string(i) + "]", a);
  comp.AddPin("D[3]", b);
  SpiceComp copy = comp;
  EXPECT_EQ(copy.FindPin("D[3]")->Name(), "second");
  EXPECT_EQ(copy.FindPin("D[4]")->Name(), "first");
  EXPECT_EQ(copy.FindPin("P")->Name(), "second");
  EXPECT_EQ(copy.FindPin("D[40]"), nullptr);
}

TEST(SpiceCompAttributes, QualifiedNameAndBareKeys) {
  SpiceComp comp;
  comp.name = "RES.1";
  EXPECT_EQ(comp.QualifiedName(), "RES.1");
  comp.partitionName = "analog";
  EXPECT_EQ(comp.QualifiedName(), "analog:RES.1");
  comp.bareKeys = {"TOL", "ABS", "TOL"};
  EXPECT_EQ(comp.BareAttributes(), (std::vector<std::string>{"ABS", "TOL"}));
  comp.attrs.Set("VALUE", "1K");
  EXPECT_EQ(comp.Attribute("value"), "1K");
}

}  // namespace
