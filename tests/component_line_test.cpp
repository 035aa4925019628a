// Component lines that whole decks leave out: keyword tokens, models named twice in one template,
// several bare attributes, and primitive subcircuits, which a flat deck gives no component name.
#include <gtest/gtest.h>

#include "gen/spice_gen.h"
#include "tests/gen_test_support.h"

using gentest::Comp;

namespace {

TEST(ComponentLine, TemplatesAndDefaultBodies) {
  const gentest::Pairs pins{{"1", "A"}, {"2", "GND"}};
  struct Case {
    SpiceComp comp;
    const char* line;
    std::vector<std::string> models;  // registered for the include lines (an empty one counts as none)
  };
  SpiceComp bare = Comp("R1", {{"X", ""}}, pins);
  bare.bareKeys = {"FAST", "SLOW"};
  SpiceComp xModel = Comp("X1", {{"ORDER", "MODEL$"}, {"MODEL", "AMP"}}, pins);
  xModel.name = "OPAMP.1";
  SpiceComp xDefault = Comp("X1", {{"X", ""}}, pins);
  xDefault.name = "OPAMP.1";
  const Case cases[] = {
      {Comp("Q1", {{"ORDER", "MODEL AREA OFF"}, {"MODEL", "QN"}, {"AREA", "BIG"}}, pins),
       "Q1 1 0 MODEL QN AREA BIG\n", {"QN"}},
      {Comp("Q1", {{"ORDER", "MODEL$ MODEL="}, {"MODEL", "QN"}}, pins), "Q1 1 0 QN  MODEL=QN\n", {"QN"}},
      {bare, "R1 1 0  SLOW\n", {}},
      {xModel, "X1 1 0 AMP\n", {"AMP"}},
      {xDefault, "X1 1 0 OPAMP  OPAMP\n*Warning: No Model For X1.Defaulting  to OPAMP\n", {"OPAMP"}},
  };
  for (const Case& c : cases) {
    CSpiceGen gen;
    gentest::Ready(gen);
    SpiceComp comp = c.comp;
    gen.EmitComponent(comp);
    EXPECT_EQ(gen.out.Text(), c.line);
    std::vector<std::string> models;
    for (const std::string& model : gen.usedModels)
      if (!model.empty()) models.push_back(model);
    EXPECT_EQ(models, c.models) << c.line;
  }
}

}  // namespace
