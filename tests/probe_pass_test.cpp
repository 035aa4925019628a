// The probe pass over deck texts: markers, joins, blank lines, duplicates, analyses and the
// statements put ahead of "*.END". Each dialect's form of them is pinned by the deck probe tests.
#include "post/probe_pass.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

class ProbePassTest : public ::testing::Test {
 protected:
  std::string Pass(const std::string& text) {
    state_ = ProbePassState();
    console_.str("");
    return ProbeProcessText(text, state_, settings_, console_);
  }

  ProbePassState state_;
  PrintSettings settings_;
  std::ostringstream console_;
};

// Two levels of subcircuits, a probe in each level, one top-level instance.
const char kNestedDeck[] =
    "* header\n"
    "\n"
    "*Definition For Project B\n"
    ".SUBCKT B 1 2\n"
    "* voltage probe on node :  N5\n"
    " * next line is a current sense\n"
    "R1 N5 2 1K\n"
    ".ENDS\n"
    "\n"
    "*Definition For Project A\n"
    ".SUBCKT A 1 2\n"
    "X2 1 2 B\n"
    "* voltage probe on node :  7 8\n"
    ".ENDS\n"
    "\n"
    "X1 IN OUT A\n"
    "* voltage probe on node :  OUT\n"
    "%s\n"
    "*.END\n";

std::string NestedDeck(const std::string& analysis) {
  std::string deck = kNestedDeck;
  return deck.replace(deck.find("%s"), 2, analysis);
}

std::string NestedResult(const std::string& analysis, const std::string& statements) {
  return "* header\n"
         "*Definition For Project B\n"
         ".SUBCKT B 1 2\n"
         "R1 N5 2 1K\n"
         ".ENDS\n"
         "\n"
         "*Definition For Project A\n"
         ".SUBCKT A 1 2\n"
         "X2 1 2 B\n"
         ".ENDS\n"
         "\n"
         "X1 IN OUT A\n" +
         analysis + "\n" + statements +
         "\n"
         "*.END\n"
         " \n";
}

TEST_F(ProbePassTest, PspiceTranProbesWithInstancePaths) {
  EXPECT_EQ(Pass(NestedDeck(".tran 1n 10u")), NestedResult(".tran 1n 10u",
                                                           ".PROBE V([OUT])\n"
                                                           ".PROBE V(X1.7)\n"
                                                           ".PROBE V([X1.X2.N5])\n"
                                                           ".PROBE I(X1.X2.R1)\n"));
  EXPECT_TRUE(state_.hasTranAnalysis);
  EXPECT_FALSE(state_.hasAcAnalysis);
  EXPECT_EQ(console_.str(), "");
}

TEST_F(ProbePassTest, UpperCaseAnalysisSetsNothing) {
  EXPECT_EQ(Pass(NestedDeck(".TRAN 1n 10u")), NestedResult(".TRAN 1n 10u", ""));
  EXPECT_FALSE(state_.hasTranAnalysis);
}

TEST_F(ProbePassTest, MonteCarloLineSetsTheAnalysisItNames) {
  EXPECT_EQ(Pass(NestedDeck(".mc 10 tran V(OUT) YMAX")),
            NestedResult(".mc 10 tran V(OUT) YMAX",
                         ".PROBE V([OUT])\n.PROBE V(X1.7)\n.PROBE V([X1.X2.N5])\n.PROBE I(X1.X2.R1)\n"));
  Pass(NestedDeck(".mc 5 .AC V(OUT)"));
  EXPECT_TRUE(state_.hasAcAnalysis);
  Pass(NestedDeck(".mc 5 Dc V(OUT)"));
  EXPECT_TRUE(state_.hasDcAnalysis);
  Pass(NestedDeck(".mc 5 noise V(OUT)"));
  EXPECT_FALSE(state_.hasAcAnalysis || state_.hasDcAnalysis || state_.hasTranAnalysis);
  Pass(NestedDeck(".mcx 5 tran"));
  EXPECT_FALSE(state_.hasTranAnalysis);
}

TEST_F(ProbePassTest, EveryTopLevelInstanceIsReached) {
  const std::string deck =
      ".SUBCKT A 1\n"
      "* voltage probe on node :  N1\n"
      ".ENDS\n"
      "X1 IN A\n"
      "X2 OUT A\n"
      ".tran 1n 1u\n"
      "X3 MID A\n"
      "*.END\n";
  EXPECT_EQ(Pass(deck),
            ".SUBCKT A 1\n"
            ".ENDS\n"
            "\n"
            "X1 IN A\n"
            "X2 OUT A\n"
            ".tran 1n 1u\n"
            "X3 MID A\n"
            ".PROBE V([X1.N1])\n"
            ".PROBE V([X2.N1])\n"
            ".PROBE V([X3.N1])\n"
            "\n"
            "*.END\n"
            " \n");
}

TEST_F(ProbePassTest, CalledSubcircuitBeforeParametersAndContinuations) {
  const std::string deck =
      ".SUBCKT AMP 1\n"
      "* voltage probe on node :  N1\n"
      ".ENDS\n"
      "X1 IN OUT\n"
      "+ AMP PARAMS: GAIN=2\n"
      "X2 IN OUT AMP GAIN = 3\n"
      "X3 IN OUT AMP G=1\n"
      ".tran 1n 1u\n"
      "*.END\n";
  EXPECT_EQ(Pass(deck),
            ".SUBCKT AMP 1\n"
            ".ENDS\n"
            "\n"
            "X1 IN OUT\n"
            "+ AMP PARAMS: GAIN=2\n"
            "X2 IN OUT AMP GAIN = 3\n"
            "X3 IN OUT AMP G=1\n"
            ".tran 1n 1u\n"
            ".PROBE V([X1.N1])\n"
            ".PROBE V([X2.N1])\n"
            ".PROBE V([X3.N1])\n"
            "\n"
            "*.END\n"
            " \n");
}

TEST_F(ProbePassTest, ProbeItemsComeBackAheadOfEnd) {
  const std::string deck =
      ".probe/csdf V(1)\n"
      "+ V(2)\n"
      ".probe/csdf V(1)\n"
      ".probe/csdf I(R1)\n"
      "*.end\n";
  EXPECT_EQ(Pass(deck),
            "+ V(2)\n"
            ".PROBE  I(R1)\n"
            ".PROBE  V(1)\n"
            ".PROBE  V(1)  V(2)\n"
            "\n"
            "*.end\n"
            " \n");
}

TEST_F(ProbePassTest, ProbeItemsUnderPrintNeedAnAnalysis) {
  settings_.printWord = ".PRINT";
  EXPECT_EQ(Pass(".probe/csdf V(1)\n*.END\n"), "\n*.END\n \n");
  EXPECT_EQ(Pass(".probe/csdf V(1)\n.ac dec 1 1 10\n*.END\n"),
            ".ac dec 1 1 10\n.PRINT AC  V(1)\n\n*.END\n \n");
}

TEST_F(ProbePassTest, BlankLinesAlternate) {
  EXPECT_EQ(Pass("A\n\n\n\n\nB\n"), "A\n\n\nB\n \n");
  EXPECT_EQ(Pass("A\n\n\n\nB\n"), "A\n\nB\n \n");
}

TEST_F(ProbePassTest, EndsIsFollowedByOneEmptyLine) {
  EXPECT_EQ(Pass(".SUBCKT A 1\nR1 1 0 1\n.ENDS\n\nR2 1 0 1\n"),
            ".SUBCKT A 1\nR1 1 0 1\n.ENDS\n\nR2 1 0 1\n \n");
  EXPECT_EQ(Pass(".subckt A 1\n.ends\nR2 1 0 1"), ".subckt A 1\n.ends\n\nR2 1 0 1\n \n");
}

TEST_F(ProbePassTest, CarriageReturnsReadAsLineEnds) {
  EXPECT_EQ(Pass("R1 1 0 1\r\n\r\n\r\nR2 1 0 1\r\n"), "R1 1 0 1\n\nR2 1 0 1\n \n");
}

TEST_F(ProbePassTest, EmptyDeckGivesTheFinalBlankLine) { EXPECT_EQ(Pass(""), " \n"); }

TEST_F(ProbePassTest, ModelCardLosesCommentLinesOnly) {
  const std::string deck =
      ".model X NPN (BF=100) * comment\n"
      "* note\n"
      "; other note\n"
      "+ IS=1E-15\n"
      "* still inside the card\n"
      "R1 1 0 1\n"
      "* after the card\n";
  EXPECT_EQ(Pass(deck),
            ".model X NPN (BF=100) * comment\n"
            "+ IS=1E-15\n"
            "R1 1 0 1\n"
            "* after the card\n"
            " \n");
  EXPECT_TRUE(state_.modelNames.Contains("X"));
}

TEST_F(ProbePassTest, DuplicatesAreReportedByFullPath) {
  const std::string deck =
      ".SUBCKT A 1\n"
      ".model Q1 NPN (BF=100)\n"
      ".model Q1 NPN (BF=100)\n"
      ".ENDS\n"
      ".SUBCKT B 1\n"
      ".model Q1 NPN (BF=100)\n"
      ".ENDS\n"
      ".SUBCKT A 1\n"
      ".ENDS\n"
      ".model Q1 NPN\n"
      ".MODEL Q1 PNP\n"
      ".model E\n"
      ".model E\n";
  const std::string output = Pass(deck);
  EXPECT_EQ(console_.str(),
            "Duplicate sub-circuit definition: A\n"
            "Duplicate model definition: \n"
            "Duplicate model definition: Q1\n"
            "Duplicate model definition: A.Q1\n");
  EXPECT_NE(output.find(".MODEL Q1 PNP\n"), std::string::npos);
  EXPECT_TRUE(state_.duplicateModels.Empty());
  EXPECT_TRUE(state_.duplicateSubckts.Empty());
}

TEST_F(ProbePassTest, DeckWithoutEndWritesNoStatements) {
  EXPECT_EQ(Pass(".SUBCKT A 1\n.ENDS\n.SUBCKT A 1\n.ENDS\n* voltage probe on node :  OUT\n.tran 1n 1u\n"),
            ".SUBCKT A 1\n.ENDS\n\n.SUBCKT A 1\n.ENDS\n\n.tran 1n 1u\n \n");
  EXPECT_EQ(console_.str(), "Duplicate sub-circuit definition: A\n");
}

TEST_F(ProbePassTest, DeckWithoutAnalysisWritesNoStatements) {
  EXPECT_EQ(Pass("* voltage probe on node :  OUT\nX1 1 A\n*.END\n"), "X1 1 A\n\n*.END\n \n");
}

TEST_F(ProbePassTest, NestedDefinitionsKeepTheirPath) {
  const std::string deck =
      ".SUBCKT OUTER 1\n"
      ".SUBCKT INNER 1\n"
      ".model M D\n"
      ".ENDS\n"
      ".model M D\n"
      ".model M D\n"
      ".ENDS\n"
      ".SUBCKT INNER 1\n"
      ".ENDS\n";
  Pass(deck);
  EXPECT_EQ(console_.str(), "Duplicate model definition: OUTER.M\n");
  EXPECT_TRUE(state_.subcktNames.Contains("OUTER.INNER"));
  EXPECT_TRUE(state_.modelNames.Contains("OUTER.INNER.M"));
  EXPECT_TRUE(state_.subcktNames.Contains("INNER"));
}

TEST(CalledSubckt, LastWordThatIsNotAParameter) {
  EXPECT_EQ(CalledSubckt("X1 N1 N2 AMP"), "AMP");
  EXPECT_EQ(CalledSubckt("X1 N1 N2 AMP PARAMS: GAIN=2"), "AMP");
  EXPECT_EQ(CalledSubckt("X1 N1 N2 AMP params: GAIN=2"), "AMP");
  EXPECT_EQ(CalledSubckt("X1 N1 N2 AMP GAIN=2 W=1"), "AMP");
  EXPECT_EQ(CalledSubckt("X1 N1 N2 AMP GAIN =2"), "AMP");
  EXPECT_EQ(CalledSubckt("X1 N1 N2 AMP GAIN = 2"), "AMP");
  EXPECT_EQ(CalledSubckt("X1  N1\tAMP "), "AMP");
  EXPECT_EQ(CalledSubckt("X1"), "");
  EXPECT_EQ(CalledSubckt("X1 GAIN=2"), "");
}

TEST(ScopeChain, ProbeStaysInAnUnnamedOrSameScope) {
  ProbePassState state;
  ProbeScope* first = state.NewProbeScope();
  EXPECT_EQ(AddScopeProbe(state, "v", "N1", "A", first), first);
  EXPECT_EQ(first->name, "A");
  EXPECT_EQ(AddScopeProbe(state, "c", "N1", "A", first), first);
  EXPECT_EQ(first->probes.at("N1"), "c");
  ProbeScope* second = AddScopeProbe(state, "v", "N2", "", first);
  ASSERT_NE(second, first);
  EXPECT_EQ(first->next, second);
  EXPECT_EQ(second->prev, first);
  EXPECT_EQ(second->name, "");
  EXPECT_EQ(AddScopeProbe(state, "v", "N3", "", second), second);
}

TEST(ScopeChain, TopLevelInstanceAlwaysOpensAScope) {
  ProbePassState state;
  ProbeScope* first = state.NewProbeScope();
  ProbeScope* a = AddScopeInstance(state, "X1", "", "A", first);
  ASSERT_NE(a, first);
  ProbeScope* b = AddScopeInstance(state, "X2", "", "A", a);
  ASSERT_NE(b, a);
  EXPECT_EQ(b->instances.at("X2"), "A");
  ProbeScope* c = AddScopeInstance(state, "X3", "S", "A", b);
  EXPECT_EQ(AddScopeInstance(state, "X4", "S", "B", c), c);
  EXPECT_EQ(c->instances.size(), 2u);
  EXPECT_EQ(state.scopes.size(), 4u);
}

}  // namespace
