// The design database through the Tessel interface: the answers a deck depends on. Walk order and
// hierarchical names, the component filter, attribute levels and order, nets that the description
// leaves undeclared, and block lookup through test benches.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "design/db/design_import.h"
#include "design/tessel.h"
#include "tests/deck_harness.h"

namespace {

using Tessel::IComp;
using Tessel::INet;
using Tessel::IPath;
using Tessel::IteratorT;
using Tessel::String;
using Strings = std::vector<std::string>;
using BlockHandle = Tessel::ContainerT<const Tessel::IBlock>;

// The label of a component or net, the name of anything else.
template <class T>
std::string NameOf(const T& object) {
  String text;
  if constexpr (std::is_base_of_v<IComp, T> || std::is_base_of_v<INet, T>)
    object.GetLabel(text);
  else
    object.GetName(text);
  return text.str();
}

// The name (or label) of each object that `it` yields, walking a copy of it.
template <class T>
Strings Names(IteratorT<T> it) {
  Strings names;
  for (; it->IsValid(); it++) names.push_back(NameOf(*it.operator->()));
  return names;
}

std::string HierName(const IPath& path, char separator) {
  String name("stale");
  path.GetHierarchicalName(name, separator);
  return name.str();
}

// "BLOCK@name" for each path of a config, with the separator given.
Strings PathList(const Tessel::IConfig& config, char separator) {
  Strings list;
  IteratorT<const IPath> paths;
  for (config.GetIterPaths(paths); paths->IsValid(); paths++)
    list.push_back(NameOf(*paths.operator->()) + "@" + HierName(*paths.operator->(), separator));
  return list;
}

// "LABEL@path" for each component that `it` yields, the path by its hierarchical name.
Strings Occurrences(IteratorT<const IComp> it) {
  Strings list;
  for (; it->IsValid(); it++) {
    Tessel::ContainerT<const IPath> path;
    it->GetPath(path);
    list.push_back(NameOf(*it.operator->()) + "@" + (path.Empty() ? "<none>" : HierName(*path, '\\')));
  }
  return list;
}

// A design imported into a temporary folder and opened as snapshot "Qor".
class DatabaseTest : public ::testing::Test {
 protected:
  void SetUp() override { folder_ = MakeScratch("db-test"); }
  void TearDown() override {
    snapshot_ = {};
    uid_ = {};
    tessel_.reset();
    RemoveScratch(folder_.string());
  }

  void Open(const std::string& json) {
    std::string error;
    ASSERT_TRUE(ImportDesign(json, folder_.string(), error)) << error;
    std::string location = (folder_ / "database").string();
    tessel_ = std::make_unique<Tessel::TesselPI>();
    Tessel::ProjectData data;
    data.location = location.c_str();
    tessel_->OpenTessel(data);
    Tessel::Result result = tessel_->GetSnapshotByName(snapshot_, "Qor");
    ASSERT_TRUE(result) << result.GetDescription(false).operator const char*();
    snapshot_->GetUIDManager(uid_);
  }

  /// The block that a search for `name` finds first; an empty handle when there is none.
  BlockHandle Block(const std::string& name) {
    Tessel::ListT<Tessel::BlockInfo> hits;
    BlockHandle block;
    if (!snapshot_->FindBlock(hits, name.c_str(), Tessel::eSearchPlain) || hits.IsEmpty()) return block;
    snapshot_->GetBlock(block, hits.GetIterator()->index);
    return block;
  }

  /// The default config of a block, through its config index and the UID manager.
  Tessel::ContainerT<const Tessel::IConfig> Config(const BlockHandle& block) {
    Tessel::Index index;
    block->GetDefaultConfigIndex(index);
    Tessel::ContainerT<const Tessel::IConfig> config;
    uid_.GetConfig(config, index);
    return config;
  }

  static IteratorT<const IComp> Comp(const BlockHandle& block, const std::string& label) {
    IteratorT<const IComp> it;
    block->GetIterComps(it, Tessel::eCompAll);
    while (it->IsValid() && NameOf(*it.operator->()) != label) it++;
    return it;
  }

  std::filesystem::path folder_;
  std::unique_ptr<Tessel::TesselPI> tessel_;
  Tessel::ContainerT<const Tessel::ISnapshot> snapshot_;
  Tessel::IUIDManager uid_;
};

// ---- Walk order and hierarchical names

// TOP places MID through X1 and LEAF three times: through X2, through X3 (type bits 3) and, inside
// MID, through XL. XP holds a child but is no hierarchical instance; XN is one without a child.
TEST_F(DatabaseTest, ConfigsWalkTheTreeDepthFirstNamePathsWithTheCallersSeparatorAndFilterByTypeBitTwo) {
  Open(SourceText("tests/vesk_db/tree.json"));
  auto config = Config(Block("TOP"));
  ASSERT_FALSE(config.Empty());
  EXPECT_EQ(PathList(*config, '\\'), (Strings{"TOP@", "MID@X1", "LEAF@X1\\XL", "LEAF@X2", "LEAF@X3"}));
  EXPECT_EQ(PathList(*config, '!'), (Strings{"TOP@", "MID@X1", "LEAF@X1!XL", "LEAF@X2", "LEAF@X3"}));
  EXPECT_EQ(PathList(*Config(Block("MID")), '.'), (Strings{"MID@", "LEAF@XL"}));

  // Component occurrences: the inside of an instance right behind it.
  IteratorT<const IComp> comps;
  config->GetIterComps(comps);
  EXPECT_EQ(Occurrences(comps), (Strings{"R1@", "X1@", "RM@X1", "XL@X1", "RL@X1\\XL", "RM2@X1", "R2@", "X2@",
                                         "RL@X2", "XP@", "XN@", "X3@", "RL@X3", "Z0@"}));
  IteratorT<const IPath> paths;
  config->GetIterPaths(paths);
  paths++;
  paths->GetIterComps(comps);
  EXPECT_EQ(Occurrences(comps), (Strings{"RM@X1", "XL@X1", "RM2@X1"}));
  // A component reached through its block has no path.
  Block("MID")->GetIterComps(comps, Tessel::eCompAll);
  Tessel::ContainerT<const IPath> path;
  comps->GetPath(path);
  EXPECT_TRUE(path.Empty() || !path->IsValid());

  // Filter 2 keeps only the components with type bit 2.
  Block("TOP")->GetIterComps(comps, Tessel::eCompHierarchical);
  EXPECT_EQ(Names(comps), (Strings{"X1", "X2", "XN", "X3"}));
  Block("TOP")->GetIterComps(comps, Tessel::eCompAll);
  EXPECT_EQ(Names(comps), (Strings{"R1", "X1", "R2", "X2", "XP", "XN", "X3", "Z0"}));
}

// ---- Attributes

TEST_F(DatabaseTest, AttributesListInstanceLevelThenDefinitionOrSymbolAndOneIsAnExactKeyAtItsLevel) {
  Open(SourceText("tests/vesk_db/attributes.json"));
  BlockHandle top = Block("TOP");
  const std::pair<const char*, const char*> expected[] = {
      {"R1", "VALUE=1K@2 $$Kept=k@2 value=lower@2 EMPTY=@2 ORDER=VALUE$@1 VALUE=2K@1 "},
      {"R2", "VALUE=3K@2 PREFIX=R@1 ORDER=VALUE$@1 "},  // no definition: the symbol's
      {"R3", ""},                                       // an empty definition hides the symbol's
      {"C1", ""},                                       // an unknown symbol gives none
      // Equal lists share storage; each component still reads its own.
      {"A", "K=1@2 L=2@2 "},
      {"B", "K=1@2 L=2@2 "},
      {"C", "L=2@2 K=1@2 "}};
  for (const auto& [label, list] : expected) {
    Tessel::ListAttribute attributes;
    Comp(top, label)->GetAttributes(attributes);
    std::string text;
    for (auto it = attributes.GetIterator(); it.IsValid(); it++)
      text += it->name.str() + "=" + it->value.str() + "@" + std::to_string(it->level) + " ";
    EXPECT_EQ(text, list) << label;
  }

  // Reading one attribute finds only an exact key at the level asked for.
  IteratorT<const IComp> r1 = Comp(top, "R1");
  struct Case {
    const char* key;
    Tessel::EAttributeType level;
    bool found;
    const char* value;
  };
  for (const Case& c : {Case{"VALUE", Tessel::eAttrInstance, true, "1K"},
                        {"VALUE", Tessel::eAttrDefinition, true, "2K"},
                        {"value", Tessel::eAttrInstance, true, "lower"},
                        {"$$Kept", Tessel::eAttrInstance, true, "k"},
                        {"EMPTY", Tessel::eAttrInstance, true, ""},
                        // No match across levels, in another case, or without the $$ prefix.
                        {"ORDER", Tessel::eAttrInstance, false, ""},
                        {"value", Tessel::eAttrDefinition, false, ""},
                        {"Value", Tessel::eAttrInstance, false, ""},
                        {"Kept", Tessel::eAttrInstance, false, ""},
                        {"VALUE ", Tessel::eAttrInstance, false, ""}}) {
    String value("stale");
    EXPECT_EQ(r1->GetAttribute(c.key, value, c.level), c.found) << c.key;
    EXPECT_EQ(value.str(), c.value) << c.key;
  }
}

// ---- Undeclared nets

TEST_F(DatabaseTest, UndeclaredNetsArePlainSharedAndFollowTheDeclaredOnesInOrderOfFirstMention) {
  Open(R"({"blocks": [{"name": "OTHER", "nets": [{"label": "Y", "global": true}]}, {"name": "TOP",
    "components": [
      {"label": "U1", "pins": [{"name": "A", "net": "Y"}, {"name": "B", "net": "B"},
                               {"name": "C", "nets": ["X", "Z"]}]},
      {"label": "U2", "pins": [{"name": "A", "net": "W"}, {"name": "B", "net": "Y"}]}],
    "nets": [{"label": "B", "global": true}, {"label": "A"}],
    "ports": [{"name": "P", "net": "X"}, {"name": "Q", "nets": ["V", "A"]}]}]})");
  BlockHandle top = Block("TOP");
  IteratorT<const INet> nets;
  top->GetIterNets(nets);
  EXPECT_EQ(Names(nets), (Strings{"B", "A", "X", "V", "Y", "Z", "W"}));
  while (nets->IsValid() && NameOf(*nets.operator->()) != "Y") nets++;
  bool global = true;
  nets->IsGlobal(global);
  EXPECT_FALSE(global);  // not even when a net of that label is global in another block

  // Every pin that names a label reaches the one net of that label.
  auto netIndex = [&](const char* comp, int pin) {
    IteratorT<const Tessel::IPin> pins;
    Comp(top, comp)->GetIterPins(pins);
    while (pin-- > 0) pins++;
    IteratorT<const INet> net;
    pins->GetIterNetsConnected(net);
    Tessel::Index index;
    net->GetInstanceIndex(index);
    return std::make_pair(index.word0, index.word1);
  };
  EXPECT_EQ(netIndex("U1", 0), netIndex("U2", 1));
  EXPECT_NE(netIndex("U1", 0), netIndex("U2", 0));
}

// ---- Block lookup

TEST_F(DatabaseTest, BlockLookupFindsStoredNamesFirstThenTestBenchesAndCountsCase) {
  Open(R"({"testbenches": {"mydesign": "TOP", "SUB": "TOP", "other": "(lib)_SUB"},
    "blocks": [{"name": "TOP"}, {"name": "SUB"}, {"name": "(lib)_SUB"}]})");
  EXPECT_EQ(NameOf(*Block("mydesign")), "TOP");
  EXPECT_EQ(NameOf(*Block("other")), "(lib)_SUB");
  EXPECT_EQ(NameOf(*Block("(lib)_SUB")), "(lib)_SUB");
  EXPECT_EQ(NameOf(*Block("SUB")), "SUB");
  for (const char* name : {"top", "MYDESIGN", "Sub", "", "(LIB)_SUB", "TOP "}) {
    Tessel::ListT<Tessel::BlockInfo> hits;
    EXPECT_FALSE(snapshot_->FindBlock(hits, name, Tessel::eSearchPlain)) << name;
    EXPECT_TRUE(hits.IsEmpty()) << name;
  }
  // The default config by name follows test benches.
  Tessel::ContainerT<const Tessel::IConfig> config;
  snapshot_->GetDefaultConfig(config, "mydesign");
  ASSERT_FALSE(config.Empty());
  EXPECT_EQ(PathList(*config, '\\'), (Strings{"TOP@"}));
}

}  // namespace
