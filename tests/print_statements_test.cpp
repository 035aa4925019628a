// Print statements of hierarchical decks: each dialect's form, the walk through the
// scope chain, and the statements of .probe/csdf items.
#include "post/print_statements.h"

#include <gtest/gtest.h>

namespace {

// Builds a scope chain by hand, oldest first.
class ScopeChainTest : public ::testing::Test {
 protected:
  ProbeScope* Add(const std::string& name) {
    ProbeScope* scope = state_.NewProbeScope();
    scope->name = name;
    if (tail_) {
      tail_->next = scope;
      scope->prev = tail_;
    }
    tail_ = scope;
    return scope;
  }
  std::string Walk(const ProbeScope* from) {
    std::string text;
    WalkProbeScopes(from, "", "", state_, settings_, text);
    return text;
  }
  std::string Scope(const ProbeScope& scope, const std::string& prefix) {
    std::string text;
    ScopeStatements(scope, prefix, state_, settings_, text);
    return text;
  }
  void Flags(bool ac, bool dc, bool tran) {
    state_.hasAcAnalysis = ac;
    state_.hasDcAnalysis = dc;
    state_.hasTranAnalysis = tran;
  }

  ProbePassState state_;
  PrintSettings settings_;
  ProbeScope* tail_ = nullptr;
};

TEST_F(ScopeChainTest, PspiceProbeBracketsNamedNodesOnly) {
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}, {"15", "v"}, {"R1", "c"}};
  Flags(false, false, true);
  EXPECT_EQ(Scope(*top, "X1."),
            ".PROBE V(X1.15)\n"
            ".PROBE V([X1.OUT])\n"
            ".PROBE I(X1.R1)\n");
}

TEST_F(ScopeChainTest, PspiceProbeAcIsCsdfWithDecibelAndPhase) {
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}};
  Flags(true, false, true);
  EXPECT_EQ(Scope(*top, ""),
            ".PROBE/CSDF\n VDB([OUT]) VP([OUT])\n"
            ".PROBE V([OUT])\n");
}

TEST_F(ScopeChainTest, PspicePrintWritesEachAnalysis) {
  settings_.printWord = ".PRINT";
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}, {"R1", "c"}};
  Flags(true, true, true);
  EXPECT_EQ(Scope(*top, ""),
            ".PRINT AC VDB([OUT]) VP([OUT])\n"
            ".PRINT DC V([OUT])\n"
            ".PRINT TRAN V([OUT])\n"
            ".PRINT AC IDB(R1) IP(R1)\n"
            ".PRINT DC I(R1)\n"
            ".PRINT TRAN I(R1)\n");
}

TEST_F(ScopeChainTest, PspiceAnalogDepsDropsPlainProbeLines) {
  settings_.analogDeps = true;
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}};
  Flags(false, true, true);
  EXPECT_EQ(Scope(*top, ""), "");
  Flags(true, false, false);
  EXPECT_EQ(Scope(*top, ""), ".PROBE/CSDF\n VDB([OUT]) VP([OUT])\n");
}

TEST_F(ScopeChainTest, KelpoAndHspiceWriteDecibelAndPhaseOnEveryAnalysis) {
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}, {"R1", "c"}};
  Flags(true, false, true);
  const std::string expected =
      ".PROBE AC VDB(OUT) VP(OUT)\n"
      ".PROBE TRAN VDB(OUT) VP(OUT)\n"
      ".PROBE AC IDB(R1) IP(R1)\n"
      ".PROBE TRAN IDB(R1) IP(R1)\n";
  settings_.wirelistKind = kKelpo;
  EXPECT_EQ(Scope(*top, ""), expected);
  settings_.wirelistKind = kHspice;
  EXPECT_EQ(Scope(*top, ""), expected);
}

TEST_F(ScopeChainTest, BerkeleyWritesPlainPrintLines) {
  settings_.wirelistKind = kBerkeley;
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}, {"R1", "c"}};
  Flags(true, true, false);
  EXPECT_EQ(Scope(*top, "X1."),
            ".PRINT AC V(X1.OUT)\n"
            ".PRINT DC V(X1.OUT)\n"
            ".PRINT AC I(X1.R1)\n"
            ".PRINT DC I(X1.R1)\n");
}

TEST_F(ScopeChainTest, NoAnalysisFlagNoStatement) {
  ProbeScope* top = Add("");
  top->probes = {{"OUT", "v"}};
  EXPECT_EQ(Scope(*top, ""), "");
}

TEST_F(ScopeChainTest, WalkFollowsNestedInstances) {
  Add("B")->probes = {{"N5", "v"}};
  ProbeScope* a = Add("A");
  a->instances = {{"X2", "B"}};
  a->probes = {{"M", "v"}};
  ProbeScope* top = Add("");
  top->instances = {{"X1", "A"}};
  Flags(false, false, true);
  EXPECT_EQ(Walk(top),
            ".PROBE V([X1.M])\n"
            ".PROBE V([X1.X2.N5])\n");
}

TEST_F(ScopeChainTest, WalkReachesEveryTopLevelInstance) {
  Add("B")->probes = {{"N5", "v"}};
  Add("A")->instances = {{"X2", "B"}};
  Add("")->instances = {{"X1", "A"}};
  ProbeScope* analysis = Add("");
  analysis->instances = {{"X3", "A"}};
  analysis->probes = {{"OUT", "v"}};
  Add("")->instances = {{"X4", "B"}};
  Flags(false, false, true);
  EXPECT_EQ(Walk(analysis),
            ".PROBE V([X1.X2.N5])\n"
            ".PROBE V([OUT])\n"
            ".PROBE V([X3.X2.N5])\n"
            ".PROBE V([X4.N5])\n");
}

TEST_F(ScopeChainTest, WalkWritesEachProbeOnce) {
  Add("")->probes = {{"OUT", "v"}};
  ProbeScope* second = Add("");
  second->probes = {{"OUT", "v"}, {"IN", "v"}};
  Flags(false, false, true);
  EXPECT_EQ(Walk(second),
            ".PROBE V([OUT])\n"
            ".PROBE V([IN])\n");
}

TEST_F(ScopeChainTest, InstanceFindsTheNearestEarlierDefinition) {
  Add("A")->probes = {{"OLD", "v"}};
  Add("A")->probes = {{"NEW", "v"}};
  Add("")->instances = {{"X1", "A"}};
  Add("A")->probes = {{"LATER", "v"}};
  Flags(false, false, true);
  EXPECT_EQ(Walk(tail_), ".PROBE V([X1.NEW])\n");
}

TEST_F(ScopeChainTest, InstanceOfUnknownOrEmptySubcircuitGivesNothing) {
  Add("")->instances = {{"X1", "NOPE"}, {"X2", ""}};
  Flags(false, false, true);
  EXPECT_EQ(Walk(tail_), "");
}

TEST_F(ScopeChainTest, NamedWalkStartsAtTheMatchingScope) {
  Add("B")->probes = {{"N5", "v"}};
  Add("A")->instances = {{"X2", "B"}};
  Add("")->instances = {{"X1", "A"}};
  Flags(false, false, true);
  std::string text;
  WalkProbeScopes(tail_, "Y.", "A", state_, settings_, text);
  EXPECT_EQ(text, ".PROBE V([Y.X2.N5])\n");
}

TEST_F(ScopeChainTest, NullScopeGivesNothing) {
  Flags(true, true, true);
  EXPECT_EQ(Walk(nullptr), "");
}

class ItemStatementsTest : public ::testing::Test {
 protected:
  std::string Items() {
    std::string text = "before\n";
    ItemStatements(state_, settings_, text);
    return text;
  }
  ProbePassState state_;
  PrintSettings settings_;
};

TEST_F(ItemStatementsTest, ProbeWordWritesItemsNewestFirst) {
  state_.probeItems.Add(" V(1)");
  state_.probeItems.Add(" I(R2)");
  EXPECT_EQ(Items(), "before\n.PROBE  I(R2)\n.PROBE  V(1)\n\n");
}

TEST_F(ItemStatementsTest, PrintWordNeedsAnAnalysisFlag) {
  settings_.printWord = ".PRINT";
  state_.probeItems.Add(" V(1)");
  EXPECT_EQ(Items(), "before\n\n");
  state_.hasAcAnalysis = state_.hasTranAnalysis = true;
  EXPECT_EQ(Items(), "before\n.PRINT AC  V(1)\n.PRINT TRAN  V(1)\n\n");
}

TEST_F(ItemStatementsTest, AnalogDepsOpensCsdfAndDropsItems) {
  settings_.analogDeps = true;
  state_.probeItems.Add(" V(1)");
  EXPECT_EQ(Items(), "before\n.PROBE/CSDF\n\n");
}

TEST_F(ItemStatementsTest, EmptyItemsAreSkipped) {
  state_.probeItems.Add("");
  EXPECT_EQ(Items(), "before\n\n");
}

}  // namespace
