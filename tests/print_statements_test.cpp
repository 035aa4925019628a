// The walk through the scope chain of a hierarchical deck where whole decks do not reach:
// definitions met twice, unknown subcircuits, named starts, empty items. Each dialect's form of
// the statements is pinned by the deck probe tests.
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
  void Flags(bool ac, bool dc, bool tran) {
    state_.hasAcAnalysis = ac;
    state_.hasDcAnalysis = dc;
    state_.hasTranAnalysis = tran;
  }

  ProbePassState state_;
  PrintSettings settings_;
  ProbeScope* tail_ = nullptr;
};

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
  std::string text = "before\n";
  state_.probeItems.Add("");  // an empty item is skipped
  ItemStatements(state_, settings_, text);
  EXPECT_EQ(text, "before\n\n");
}

}  // namespace
