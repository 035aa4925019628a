// Whole decks of component lines: ORDER templates, defaults, values, references and units.
#include <gtest/gtest.h>

#include <string>

#include "tests/deck_expect.h"
#include "tests/deck_harness.h"

using deckexpect::Head;
using deckexpect::TopDesign;

namespace {

// A component of block TOP as JSON; `attributes` and `definition` are object bodies.
std::string Comp(const std::string& label, const std::string& name, const std::string& attributes,
                 const std::string& definition, const std::string& pins) {
  return R"({ "label": ")" + label + R"(", "name": ")" + name + R"(", "attributes": { )" + attributes +
         R"( }, "definition": { )" + definition + R"( }, "pins": [ )" + pins + " ] }";
}

// Pins A and B (or the names given) on two nets.
std::string Pins(const std::string& a, const std::string& b, const char* first = "A",
                 const char* second = "B") {
  return R"({ "name": ")" + std::string(first) + R"(", "net": ")" + a + R"(" }, { "name": ")" + second +
         R"(", "net": ")" + b + R"(" })";
}

TEST(DeckLines, QuotedTextIsUpperCasedWithEscapesAndAnUnclosedQuoteRunsToTheEnd) {
  std::string design = TopDesign(
      Comp("C1", "CAP.1", R"("VALUE": "1N", "V0": "5")", R"("ORDER": "VALUE$ \"ic=\" V0$")",
           Pins("IN", "GND")) +
      ", " +
      Comp("R1", "RES.1", R"("VALUE": "1K")", R"("ORDER": "VALUE$ \"a\\tb\" \"x\\\"y\" \"tail")",
           Pins("IN", "OUT")) +
      ", " +
      Comp("R2", "RES.1", R"("VALUE": "2K")", R"("ORDER": "VALUE$ \"\\n+ tc=1\"")", Pins("OUT", "GND")));
  VeskRun run = RunVesk(design, "TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // The quoted "IC=" and its value meet at the "=" in the post-process pass; "\n" starts a
  // continuation line of the same statement.
  EXPECT_EQ(run.deck, Head("TOP") +
                          "C1 1 0 1000.000000P IC=5.000000\nR1 1 2 1000.000000 A\tB X\"Y TAIL\n"
                          "R2 2 0 2.000000K\n+ TC=1\n* Dictionary 3\n* OUT=2\n* GND=0\n* IN = 1\n\n"
                          "*.END\n");
}

TEST(DeckLines, ValueTokensDefaultToZeroWithANoteAndDistributionFillsInTheValue) {
  const std::string source = R"("ORDER": "\"dc\" DCVAL$ \"ac\" ACMAG$")";
  std::string design = TopDesign(
      Comp("V1", "VSRC.1", "", source, Pins("IN", "GND", "P", "N")) + ", " +
      Comp("V2", "VSRC.1", R"("DCVAL": "5", "ACMAG": " ")", source, Pins("IN", "GND", "P", "N")) + ", " +
      Comp("R1", "RES.1", R"("VALUE": "2K", "TC": "1")", R"("ORDER": "VALUE$ TOL$ TC$")", Pins("IN", "OUT")) +
      ", " +
      Comp("R2", "RES.1", R"("Distribution": "Value$ DEV=5%", "Value": "1K")", R"("ORDER": "Distribution$")",
           Pins("OUT", "GND")) +
      ", " +
      Comp("R3", "RES.1", R"("Distribution": "Value$ DEV=5%")", R"("ORDER": "Distribution$")",
           Pins("OUT", "GND")) +
      ", " + Comp("R4", "RES.1", "", R"("ORDER": "VALUE$")", Pins("OUT", "GND")));
  VeskRun run = RunVesk(design, "TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  EXPECT_EQ(run.deck, Head("TOP") +
                          "V1 1 0 DC 0 AC 0\n*Warning: No value for V1. Defaulting to 0\n"
                          "*Warning: No value for V1. Defaulting to 0\nV2 1 0 DC 5.000000 AC 0\n"
                          "*Warning: No value for V2. Defaulting to 0\nR1 1 2 2.000000K 1.000000\n"
                          "R2 2 0 1K DEV=5%\nR3 2 0 0\n*Warning: No value for R3. Defaulting to 0\n"
                          "R4 2 0 0\n*Warning: No value for R4. Defaulting to 0\n* Dictionary 3\n"
                          "* OUT=2\n* GND=0\n* IN = 1\n\n*.END\n");
  EXPECT_EQ(run.output,
            "*Warning: No value for V1. Defaulting to 0\n*Warning: No value for V1. Defaulting to 0\n"
            "*Warning: No value for V2. Defaulting to 0\n*Warning: No value for R3. Defaulting to 0\n"
            "*Warning: No value for R4. Defaulting to 0\n");
}

TEST(DeckLines, PinTokensWriteNodesBehindThePinOrder) {
  const std::string pins = Pins("OUT", "GND", "P", "N") + R"(, { "name": "CP", "net": "IN" })";
  std::string design = TopDesign(
      Comp("E1", "VCVS.1", R"("VALUE": "10")", R"("PINORDER": "P N", "ORDER": "CP[ CN[ VALUE$")",
           pins + R"(, { "name": "CN", "net": "REF" })") +
      ", " +
      Comp("E2", "VCVS.1", R"("VALUE": "2")", R"("PINORDER": "P N", "ORDER": "CP[ XX[ VALUE$")", pins));
  VeskRun run = RunVesk(design, "TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // A pin the component lacks gets an invented node, and its entry has an empty net name.
  EXPECT_EQ(run.deck, Head("TOP") +
                          "E1 1 0 2 3 10.000000\nE2 1 0 2 N0 2.000000\n* Dictionary 5\n*=N0\n* REF=3\n"
                          "* IN=2\n* GND=0\n* OUT = 1\n\n*.END\n");
}

TEST(DeckLines, FirstOrderSwitchPicksAnotherTemplateAndFallsBack) {
  std::string design =
      TopDesign(Comp("R1", "RES.1", R"("VALUE": "1K", "MYORDER": "\"r=\" VALUE$")", R"("ORDER": "VALUE$")",
                     Pins("IN", "GND")) +
                ", " + Comp("R2", "RES.1", R"("VALUE": "2K")", R"("ORDER": "VALUE$")", Pins("IN", "GND")));
  const std::string tail = "R2 1 0 2.000000K\n* Dictionary 2\n* GND=0\n* IN = 1\n\n*.END\n";
  VeskRun chosen = RunVesk(design, "-omyorder TOP");
  EXPECT_EQ(chosen.deck, Head("-omyorder TOP") + "R1 1 0 R=1000.000000\n" + tail);
  VeskRun external = RunVesk(design, "-oEXT=MYORDER TOP");
  EXPECT_EQ(external.deck, Head("-oEXT=MYORDER TOP") + "R1 1 0 1000.000000\n" + tail);
}

// Components whose template gives nothing: bare attributes first, then the prefix letter.
std::string DefaultsDesign() {
  return TopDesign(
      Comp("R1", "RES.1", R"("RSPEC": "")", R"("ORDER": "FOO$")", Pins("IN", "GND")) + ", " +
      Comp("Q1", "NPN.1", R"("MODEL": "")", R"("ORDER": "MODEL$")",
           R"({ "name": "C", "net": "OUT" }, { "name": "B", "net": "IN" }, { "name": "E", "net": "GND" })") +
      ", " + Comp("R2", "RES.1", R"("PREFIX": "R")", "", Pins("IN", "OUT")) + ", " +
      Comp("D1", "DIODE.1", R"("PREFIX": "D")", "", Pins("OUT", "GND", "A", "K")) + ", " +
      Comp("U1", "OPAMP.1", R"("PREFIX": "U")", "", Pins("IN", "OUT")));
}

TEST(DeckLines, BareAttributesAndPrefixLettersGiveDefaultBodies) {
  VeskRun run = RunVesk(DefaultsDesign(), "TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // D1 defaults to the model part of its name, which the includes look for; the post-process
  // pass reduces the doubled blanks of the notes.
  EXPECT_EQ(run.deck, Head("TOP") +
                          "R1 1 0 RSPEC\nQ1 2 1 0 MODEL\n"
                          "*Error : No Model attribute found for component Q1\nR2 1 2 0\n"
                          "*Warning: No Value For R2.Defaulting to 0\nD1 2 0 DIODE\n"
                          "*Warning: No Model For D1.Defaulting to DIODE\nU1 1 2\n"
                          "*Warning: No Value For U1.No Default\n* Dictionary 3\n* OUT=2\n* GND=0\n"
                          "* IN = 1\n\n*Warning: Could not open data file sym\\DIODE.mod\n*.END\n");
  EXPECT_EQ(run.output,
            "*Error : No Model attribute found for component Q1\n"
            "*Warning: No Value For R2.Defaulting  to 0\n*Warning: No Model For D1.Defaulting  to DIODE\n"
            "*Warning: No Value For U1.No Default\n\n*Warning: Could not open data file sym\\DIODE.mod");
}

TEST(DeckLines, AlienSimulatorGetsNoDefaults) {
  VeskRun run = RunVesk(DefaultsDesign(), "-a TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  EXPECT_EQ(run.deck, Head("-a TOP") +
                          "R1 1 0\nQ1 2 1 0\nR2 1 2\nD1 2 0\nU1 1 2\n* Dictionary 3\n* OUT=2\n* GND=0\n"
                          "* IN = 1\n\n*.END\n");
  EXPECT_EQ(run.output, "");
}

// Values that refer to other attributes with "@", written for three dialects.
std::string ReferencesDesign() {
  const std::string value = R"("ORDER": "VALUE$")";
  const std::string withTc = R"("ORDER": "VALUE$ TC=")";
  return TopDesign(
      Comp("R1", "RES.1", R"("VALUE": "@A*2", "@A": "3")", value, Pins("IN", "GND")) + ", " +
      Comp("R2", "RES.1", R"("VALUE": "@B*2")", value, Pins("IN", "GND")) + ", " +
      Comp("R3", "RES.1", R"("VALUE": "'@A+1'", "@A": "3")", value, Pins("IN", "GND")) + ", " +
      Comp("R4", "RES.1", R"("VALUE": "@A + @C", "@A": "3", "@C": "4")", value, Pins("IN", "GND")) + ", " +
      Comp("R5", "RES.1", R"("VALUE": "1K", "TC": "@NAME")", withTc, Pins("IN", "GND")) + ", " +
      Comp("R6", "RES.1", R"("VALUE": "1K", "TC": "@B*2")", withTc, Pins("IN", "GND")) + ", " +
      Comp("R7", "RES.1", R"("VALUE": "1K", "W": "@WW", "@WW": "2")", R"("ORDER": "VALUE$ W=")",
           Pins("IN", "GND")));
}

// The lines of ReferencesDesign between the header and the dictionary.
// A quote next to a reference hides it: the quotes go only after the references are replaced.
std::string ReferenceLines(const std::string& r2, const std::string& r3, const std::string& r5,
                           const std::string& r6) {
  return "R1 1 0 6.000000\n"
         "R2 1 0 " +
         r2 + "\nR3 1 0 " + r3 + "\nR4 1 0 7.000000\nR5 1 0 1000.000000 TC=" + r5 +
         "\nR6 1 0 1000.000000 TC=" + r6 +
         "\nR7 1 0 1000.000000 W=2.000000U\n* Dictionary 2\n* GND=0\n* IN = 1\n\n";
}

TEST(DeckLines, ReferencesEvaluateOrStayAsExpressionsOfTheDialect) {
  // Pspice braces what does not evaluate, and quotes a word parameter in the post-process pass.
  VeskRun pspice = RunVesk(ReferencesDesign(), "TOP");
  EXPECT_EQ(pspice.deck, Head("TOP") + ReferenceLines("{B*2}", "{A+1}", "{NAME}", "{B*2}") + "*.END\n");
  // HSPICE leaves expressions bare and quotes parameter values with apostrophes.
  VeskRun hspice = RunVesk(ReferencesDesign(), "-m TOP");
  EXPECT_EQ(hspice.deck, Head("-m TOP") + ReferenceLines("B*2", "A+1", "'NAME'", "'B*2'") +
                             ".OPTIONS INGOLD=2 CSDF=2\n*.END\n");
  // Berkeley SPICE braces like Pspice but quotes nothing.
  VeskRun berkeley = RunVesk(ReferencesDesign(), "-s TOP");
  EXPECT_EQ(berkeley.deck, Head("-s TOP") + ReferenceLines("{B*2}", "{A+1}", "NAME", "{B*2}") + "*.END\n");
}

// MOS devices and resistors whose values take units by the parameter's name.
std::string UnitsDesign() {
  const std::string mosPins =
      R"({ "name": "D", "net": "OUT" }, { "name": "G", "net": "IN" }, { "name": "S", "net": "GND" },)"
      R"( { "name": "B", "net": "GND" })";
  std::string resistors;
  int index = 1;
  for (const char* value : {"2MIL", "10 K", "1G", "0.001", "2*3", "ABC"})
    resistors +=
        ", " + Comp("R" + std::to_string(index++), "RES.1", R"("VALUE": ")" + std::string(value) + "\"",
                    R"("ORDER": "VALUE$")", Pins("IN", "GND"));
  return TopDesign(
      Comp("M1", "NMOS.1", R"("MODEL": "NCH", "L": "1", "W": "10")", R"("ORDER": "MODEL$ W$ L$")", mosPins) +
      ", " +
      Comp("M2", "NMOS.1", R"("MODEL": "NCH", "L": "2U", "W": "4", "AS": "3", "AD": "5P", "M": "2")",
           R"("ORDER": "MODEL$ L= W= AS= AD= M=")", mosPins) +
      resistors);
}

TEST(DeckLines, UnitsFollowTheParameterNameAndValuesTakeEngineeringForm) {
  VeskRun run = RunVesk(UnitsDesign(), "-z TOP");
  ASSERT_EQ(run.rc, 0) << run.output;
  // Length comes ahead of width behind the model. Under -z nothing stands between the
  // dictionary and the end mark, so its last entry loses its blanks too.
  EXPECT_EQ(run.deck, Head("-z TOP") +
                          "M1 1 2 0 0 NCH 1000.000000N 10.000000U\n"
                          "M2 1 2 0 0 NCH L=2.000000U W=4.000000U AS=3.000000P AD=5.000000P M=2.000000U\n"
                          "R1 2 0 50.800000U\nR2 2 0 10.000000K\nR3 2 0 1000.000000MEG\n"
                          "R4 2 0 1000.000000U\nR5 2 0 6.000000\nR6 2 0 ABC\n* Dictionary 3\n* GND=0\n"
                          "* IN=2\n* OUT=1\n*.END\n");
}

}  // namespace
