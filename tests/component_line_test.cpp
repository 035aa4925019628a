// Component lines: the ORDER template language, the defaults, probes, generators, notes.
#include <gtest/gtest.h>

#include "gen/spice_gen.h"
#include "tests/gen_test_support.h"

using gentest::Comp;
using gentest::Pairs;

namespace {

class ComponentLine : public ::testing::Test {
 protected:
  void SetUp() override { gentest::Ready(gen); }
  std::string Emit(SpiceComp comp) {
    gen.EmitComponent(comp);
    return gen.out.Text();
  }
  std::string Eval(const std::string& name, const std::string& value) {
    return gen.EvaluateAttributeValue(SpiceComp(), name, value);
  }
  CSpiceGen gen;
  const Pairs pinsAGnd{{"1", "A"}, {"2", "GND"}};
};

TEST_F(ComponentLine, ValueIsEvaluated) {
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "VALUE$"}, {"VALUE", "1K"}}, pinsAGnd)), "R1 1 0 1000.000000\n");
}

TEST_F(ComponentLine, MissingValueDefaultsToZeroWithNote) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "VALUE$"}}, pinsAGnd)),
            "R1 1 0 0\n*Warning: No value for R1. Defaulting to 0\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "*Warning: No value for R1. Defaulting to 0\n");
}

TEST_F(ComponentLine, DcvalAndAcmagDefaultLikeValue) {
  EXPECT_EQ(Emit(Comp("V1", {{"ORDER", "\"DC\" DCVAL$ \"AC\" ACMAG$"}, {"DCVAL", " "}}, pinsAGnd)),
            "V1 1 0 DC 0 AC 0\n*Warning: No value for V1. Defaulting to 0\n"
            "*Warning: No value for V1. Defaulting to 0\n");
}

TEST_F(ComponentLine, NothingGivenFallsBackOnThePrefix) {
  EXPECT_EQ(Emit(Comp("R1", {{"X", ""}}, pinsAGnd)),
            "R1 1 0  0\n*Warning: No Value For R1.Defaulting  to 0\n");
}

TEST_F(ComponentLine, ModelLettersDefaultToTheNameAndRegisterIt) {
  SpiceComp diode = Comp("D1", {{"X", ""}}, {{"1", "A"}, {"2", "B"}});
  diode.name = "DIODE.2";
  EXPECT_EQ(Emit(diode), "D1 1 2  DIODE\n*Warning: No Model For D1.Defaulting  to DIODE\n");
  // The empty MODEL of the "Model$" template is registered too, and counts as nothing.
  EXPECT_EQ(gen.usedModels, (std::vector<std::string>{"", "DIODE"}));
}

TEST_F(ComponentLine, OtherLettersHaveNoDefault) {
  EXPECT_EQ(Emit(Comp("Z1", {{"X", ""}}, pinsAGnd)), "Z1 1 0 \n*Warning: No Value For Z1.No Default\n");
}

TEST_F(ComponentLine, AlienLeavesTheBodyEmpty) {
  gen.alien = true;
  EXPECT_EQ(Emit(Comp("R1", {{"X", ""}}, pinsAGnd)), "R1 1 0 \n");
}

TEST_F(ComponentLine, BareAttributeIsTheDefaultBody) {
  SpiceComp comp = Comp("R1", {{"X", ""}}, pinsAGnd);
  comp.bareKeys = {"FAST", "SLOW"};
  EXPECT_EQ(Emit(comp), "R1 1 0  SLOW\n");
}

TEST_F(ComponentLine, BareModelWordRaisesTheError) {
  SpiceComp comp = Comp("Q1", {{"X", ""}}, pinsAGnd);
  comp.bareKeys = {"Model"};
  EXPECT_EQ(Emit(comp), "Q1 1 0  Model\n*Error : No Model attribute found for component Q1\n");
}

TEST_F(ComponentLine, LengthAndWidthFollowTheModel) {
  const std::string out =
      Emit(Comp("M1", {{"ORDER", "MODEL$ W$ L$"}, {"MODEL", "NMOS"}, {"W", "3"}, {"L", "2"}},
                {{"D", "A"}, {"G", "B"}}));
  EXPECT_EQ(out, "M1 1 2 NMOS " + Eval("L", "2") + " " + Eval("W", "3") + "\n");
  EXPECT_EQ(gen.usedModels, std::vector<std::string>{"NMOS"});
}

TEST_F(ComponentLine, QuotedTextIsUpperCasedWithEscapes) {
  EXPECT_EQ(Emit(Comp("C1", {{"ORDER", "\"ic=\" V0$"}, {"V0", "ABC"}}, pinsAGnd)), "C1 1 0 IC= ABC\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("C1", {{"ORDER", "\"a\\tb\" \"open"}}, pinsAGnd)), "C1 1 0 A\tB OPEN\n");
}

TEST_F(ComponentLine, NamedParameterOnlyWithItsAttribute) {
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "VALUE$ TC="}, {"VALUE", "ABC"}}, pinsAGnd)), "R1 1 0 ABC\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "VALUE$ TC=$"}, {"VALUE", "ABC"}, {"TC", "XY"}}, pinsAGnd)),
            "R1 1 0 ABC  TC=XY\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "TC="}, {"VALUE", "ABC"}, {"TC", "XY"}}, pinsAGnd)), "R1 1 0 TC=XY\n");
}

TEST_F(ComponentLine, KeywordWritesNameAndValue) {
  EXPECT_EQ(Emit(Comp("Q1", {{"ORDER", "MODEL AREA OFF"}, {"MODEL", "QN"}, {"AREA", "BIG"}}, pinsAGnd)),
            "Q1 1 0 MODEL QN AREA BIG\n");
  EXPECT_EQ(gen.usedModels, std::vector<std::string>{"QN"});
}

TEST_F(ComponentLine, ModelIsRegisteredOnce) {
  EXPECT_EQ(Emit(Comp("Q1", {{"ORDER", "MODEL$ MODEL="}, {"MODEL", "QN"}}, pinsAGnd)),
            "Q1 1 0 QN  MODEL=QN\n");
  EXPECT_EQ(gen.usedModels, std::vector<std::string>{"QN"});
}

TEST_F(ComponentLine, PinTokenWritesTheNodeAndItsDictionaryEntry) {
  EXPECT_EQ(Emit(Comp("E1", {{"ORDER", "CP[ CN["}, {"PINORDER", "1 2"}},
                      {{"1", "A"}, {"2", "GND"}, {"CP", "IN"}, {"CN", "GND"}})),
            "E1 1 0 2 0\n");
  EXPECT_TRUE(gen.dictionaryLines.Contains("* IN = 2"));
  EXPECT_TRUE(gen.dictionaryLines.Contains("* GND = 0"));
}

TEST_F(ComponentLine, DistributionFillsInTheValue) {
  EXPECT_EQ(
      Emit(Comp("R1",
                {{"ORDER", "Distribution$"}, {"DISTRIBUTION", "GAUSS Value$ 5% Value$"}, {"VALUE", "10"}},
                pinsAGnd)),
      "R1 1 0 GAUSS 10 5% 10\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "Distribution$"}, {"DISTRIBUTION", "GAUSS"}}, pinsAGnd)),
            "R1 1 0 0\n*Warning: No value for R1. Defaulting to 0\n");
}

TEST_F(ComponentLine, FirstOrderSwitchPicksAnotherTemplate) {
  gen.firstOrder = "MYORDER";
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "VALUE$"}, {"MYORDER", "\"MINE\""}, {"VALUE", "ABC"}}, pinsAGnd)),
            "R1 1 0 MINE\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("R2", {{"ORDER", "VALUE$"}, {"VALUE", "ABC"}}, pinsAGnd)), "R2 1 0 ABC\n");
  gentest::Ready(gen);
  gen.firstOrder = "EXT=MYORDER";
  EXPECT_EQ(Emit(Comp("R1", {{"ORDER", "VALUE$"}, {"EXT=MYORDER", "\"MINE\""}, {"VALUE", "ABC"}}, pinsAGnd)),
            "R1 1 0 ABC\n");
}

TEST_F(ComponentLine, PrimitiveSubcircuitNamesItsModelTwice) {
  SpiceComp comp = Comp("X1", {{"X", ""}}, pinsAGnd);
  comp.name = "OPAMP.1";
  EXPECT_EQ(Emit(comp), "X1 1 0 OPAMP  OPAMP\n*Warning: No Model For X1.Defaulting  to OPAMP\n");
}

TEST_F(ComponentLine, XWithModelInTheTemplateNamesNothingAhead) {
  SpiceComp comp = Comp("X1", {{"ORDER", "MODEL$"}, {"MODEL", "AMP"}}, pinsAGnd);
  comp.name = "OPAMP.1";
  EXPECT_EQ(Emit(comp), "X1 1 0 AMP\n");
}

TEST_F(ComponentLine, HierarchicalInstanceNamesItsBlock) {
  SpiceComp comp = Comp("X1", {{"X", ""}}, pinsAGnd, 2);
  comp.childBlockName = "AMP";
  EXPECT_EQ(Emit(comp), "X1 1 0 AMP \n");
  gentest::Ready(gen);
  gen.wirelistKind = kBerkeley;
  EXPECT_EQ(Emit(comp), "X1 1 0 AMP\n");
  gentest::Ready(gen);
  comp.attrs.Set("COMPOSITE_ORDER", "\"IGNORED\"");
  comp.attrs.Set("ORDER", "\"P=1\"");
  EXPECT_EQ(Emit(comp), "X1 1 0 AMP P=1\n");
}

TEST_F(ComponentLine, SkippedAndSilentComponents) {
  testing::internal::CaptureStdout();
  SpiceComp stopped = Comp("", {{"X", ""}}, pinsAGnd, 3);
  stopped.label = "U7";
  EXPECT_EQ(Emit(stopped), "*Note : Skipping Component U7\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "*Note : Skipping Component U7\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("", {{"X", ""}}, pinsAGnd, 1)), "");
  SpiceComp bare = Comp("R1", {}, pinsAGnd);
  bare.hasAttributes = false;
  EXPECT_EQ(Emit(bare), "");
}

TEST_F(ComponentLine, VoltageProbeIsACommentAndGeneratorIsSilent) {
  EXPECT_EQ(Emit(Comp("P1", {{"PROBE", "V"}}, {{"1", "A"}})), "* voltage probe on node :  1\n");
  gentest::Ready(gen);
  EXPECT_EQ(Emit(Comp("G1", {{"GENERATOR", ".TRAN"}, {"ORDER", "\"1N 1U\""}}, pinsAGnd)), "");
  EXPECT_EQ(gen.generatorComps.count(".TRAN"), 1u);
}

TEST_F(ComponentLine, InternalNameIsRecordedUnderTheLowerCaseName) {
  SpiceComp comp = Comp("R1", {{"ORDER", "VALUE$"}, {"VALUE", "ABC"}}, pinsAGnd);
  comp.internalName = "$1I23";
  Emit(comp);
  EXPECT_EQ(gen.internalNames["r1"], "$1I23");
}

}  // namespace
