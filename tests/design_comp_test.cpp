// Block prefixes and the corners of the deck-name rule that whole decks leave out: blank
// prefixes, -y on each kind, designators of automatic labels.
#include <gtest/gtest.h>

#include "design/spice_comp.h"
#include "gen/deck_naming.h"

namespace {

TEST(StripBlockPrefix, OnlyAQualifierFollowedByUnderscoreGoes) {
  const std::pair<const char*, const char*> cases[] = {{"(lib)_TOP", "TOP"},   {"(lib)TOP", "(lib)TOP"},
                                                       {"(lib)", "(lib)"},     {"(a)_(b)_C", "(b)_C"},
                                                       {"TOP(x)_", "TOP(x)_"}, {"", ""}};
  for (const auto& [name, stripped] : cases) EXPECT_EQ(StripBlockPrefix(name), stripped) << name;
}

TEST(DeckName, PrefixesAndDesignators) {
  struct Case {
    CompKind kind;
    const char* label;
    std::vector<std::pair<const char*, const char*>> attributes;
    const char* name;
  };
  const Case cases[] = {
      {kPrimitive, "Q8", {{"PREFIX", " "}}, "Q8"},  // " \Q8", filtered
      {kPrimitive, "A1", {{"PREFIX", "R"}, {"SPICE_PREFIX", "M"}}, "MA1"},
      {kPrimitive, "A2", {{"PREFIX", "R"}}, "RA2"},
      {kStoppedInstance, "A3", {{"SPICE_PREFIX", "U"}}, "UA3"},
      {kInstance, "A4", {{"SPICE_PREFIX", "U"}}, "XA4"},  // an instance does not look at -y
      {kPrimitive, "$1I25", {{"PREFIX", "U"}, {"REFDES", "?A"}}, "UA"},
      {kPrimitive, "$1I26", {{"PREFIX", "U"}, {"REFDES", "V7"}}, "UV7"},
      {kPrimitive, "K1", {{"PREFIX", "U"}, {"REFDES", "V8"}}, "UK1"},
  };
  WireOptions options;
  options.flatten = 0;
  options.firstPrefix = "spice_prefix";
  for (const Case& c : cases) {
    SpiceComp comp;
    comp.kind = c.kind;
    comp.label = c.label;
    for (const auto& [key, value] : c.attributes) comp.attrs.Set(key, value);
    comp.FormDeckName(options, SpiceDeckNaming());
    EXPECT_EQ(comp.RefName(), c.name) << c.label;
  }
}

}  // namespace
