// The design database through the Tessel interface: configs, paths and component occurrences,
// the component filter, indexes, and how iterators and handles behave.
#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "tests/database_fixture.h"

namespace {

using Tessel::IComp;
using Tessel::IConfig;
using Tessel::INet;
using Tessel::IPath;
using Tessel::IPin;
using Tessel::IPort;
using Tessel::IteratorT;
using Tessel::String;
using Strings = std::vector<std::string>;

// TOP places MID through X1 and LEAF three times: through X2, through X3 (type bits 3) and, inside
// MID, through XL. XP holds a child but is no hierarchical instance; XN is one without a child.
const char* kTree = R"({"blocks": [
  {"name": "LEAF", "ports": [{"name": "P", "net": "P"}], "components": [{"label": "RL", "pins": [{"name": "A", "net": "P"}]}]},
  {"name": "MID", "components": [
    {"label": "RM"}, {"label": "XL", "type": 2, "child": "LEAF"}, {"label": "RM2"}]},
  {"name": "TOP",
   "nets": [{"label": "N1"}, {"label": "N2"}],
   "ports": [{"name": "A", "net": "N1"}, {"name": "B", "net": "N2"}],
   "components": [
    {"label": "R1", "pins": [{"name": "A", "net": "N1"}, {"name": "B", "net": "N2"}]},
    {"label": "X1", "type": 2, "child": "MID"},
    {"label": "R2"},
    {"label": "X2", "type": 2, "child": "LEAF", "pins": [{"name": "P", "net": "N1"}]},
    {"label": "XP", "type": 1, "child": "LEAF"},
    {"label": "XN", "type": 2},
    {"label": "X3", "type": 3, "child": "LEAF"},
    {"label": "Z0", "type": 0}]}]})";

std::string HierName(const IPath& path, char separator) {
  String name("stale");
  path.GetHierarchicalName(name, separator);
  return name.str();
}

// "BLOCK@name" for each path of a config, with the separator given.
Strings PathList(const IConfig& config, char separator) {
  Strings list;
  IteratorT<const IPath> paths;
  config.GetIterPaths(paths);
  for (; paths->IsValid(); paths++) {
    String block;
    paths->GetName(block);
    list.push_back(block.str() + "@" + HierName(*paths.operator->(), separator));
  }
  return list;
}

// "LABEL@path" for each component that `it` yields, the path by its hierarchical name.
Strings Occurrences(IteratorT<const IComp> it) {
  Strings list;
  for (; it->IsValid(); it++) {
    Tessel::ContainerT<const IPath> path;
    it->GetPath(path);
    String label;
    it->GetLabel(label);
    list.push_back(label.str() + "@" + (path.Empty() ? std::string("<none>") : HierName(*path, '\\')));
  }
  return list;
}

bool Same(const Tessel::Index& a, const Tessel::Index& b) { return a.word0 == b.word0 && a.word1 == b.word1; }

// ---- Configs and paths

TEST_F(DatabaseTest, EachBlocksDefaultConfigListsEveryOccurrenceDepthFirst) {
  Open(kTree);
  auto config = Config(Block("TOP"));
  ASSERT_FALSE(config.Empty());
  EXPECT_EQ(PathList(*config, '\\'), (Strings{"TOP@", "MID@X1", "LEAF@X1\\XL", "LEAF@X2", "LEAF@X3"}));
  // Hierarchical names use the separator of the caller.
  EXPECT_EQ(PathList(*config, '!'), (Strings{"TOP@", "MID@X1", "LEAF@X1!XL", "LEAF@X2", "LEAF@X3"}));
  EXPECT_EQ(PathList(*Config(Block("MID")), '.'), (Strings{"MID@", "LEAF@XL"}));
  EXPECT_EQ(PathList(*Config(Block("LEAF")), '\\'), (Strings{"LEAF@"}));
  Tessel::ContainerT<const IConfig> byName;
  snapshot_->GetDefaultConfig(byName, "MID");
  EXPECT_EQ(PathList(*byName, '\\'), (Strings{"MID@", "LEAF@XL"}));
}

TEST_F(DatabaseTest, APathKnowsItsBlockAndTheInstanceThatPlacesIt) {
  Open(kTree);
  auto config = Config(Block("TOP"));
  IteratorT<const IPath> paths;
  config->GetIterPaths(paths);
  Tessel::ContainerT<const IComp> parent;
  paths->GetParentComp(parent);
  EXPECT_TRUE(parent.Empty() || !parent->IsValid());  // the root has none
  paths++;
  paths++;  // LEAF through X1\XL
  Tessel::ContainerT<const Tessel::IBlock> block;
  paths->GetBlock(block);
  EXPECT_EQ(NameOf(*block), "LEAF");
  paths->GetParentComp(parent);
  ASSERT_TRUE(Usable(parent));
  EXPECT_EQ(NameOf(*parent), "XL");
  Tessel::ContainerT<const IPath> parentPath;
  parent->GetPath(parentPath);
  ASSERT_TRUE(Usable(parentPath));
  EXPECT_EQ(HierName(*parentPath, '\\'), "X1");
  Tessel::ContainerT<const Tessel::IBlock> holder;
  parent->GetParentBlock(holder);
  EXPECT_EQ(NameOf(*holder), "MID");
}

TEST_F(DatabaseTest, APathIndexFetchesThatPathFromItsOwnConfigOnly) {
  Open(kTree);
  auto config = Config(Block("TOP"));
  auto mid = Config(Block("MID"));
  IteratorT<const IPath> paths;
  config->GetIterPaths(paths);
  std::set<std::pair<uint32_t, uint32_t>> seen;
  for (int at = 0; paths->IsValid(); paths++, at++) {
    Tessel::Index index;
    paths->GetIndex(index);
    seen.insert({index.word0, index.word1});
    Tessel::ContainerT<const IPath> fetched;
    config->GetPath(fetched, index);
    ASSERT_TRUE(Usable(fetched));
    EXPECT_EQ(HierName(*fetched, '!'), HierName(*paths.operator->(), '!'));
    EXPECT_EQ(NameOf(*fetched), NameOf(*paths.operator->()));
    if (at == 3) {  // LEAF through X2: MID's config has no fourth path
      mid->GetPath(fetched, index);
      EXPECT_FALSE(Usable(fetched));
    }
  }
  EXPECT_EQ(seen.size(), 5u);
}

// ---- Component occurrences

TEST_F(DatabaseTest, AConfigListsComponentOccurrencesWithTheInsideOfAnInstanceRightBehindIt) {
  Open(kTree);
  IteratorT<const IComp> comps;
  Config(Block("TOP"))->GetIterComps(comps);
  EXPECT_EQ(Occurrences(comps), (Strings{"R1@", "X1@", "RM@X1", "XL@X1", "RL@X1\\XL", "RM2@X1", "R2@", "X2@",
                                         "RL@X2", "XP@", "XN@", "X3@", "RL@X3", "Z0@"}));
  // Occurrences of one component share its instance index.
  std::vector<Tessel::Index> indexes;
  for (; comps->IsValid(); comps++) {
    if (NameOf(*comps.operator->()) != "RL") continue;
    indexes.emplace_back();
    comps->GetInstanceIndex(indexes.back());
  }
  ASSERT_EQ(indexes.size(), 3u);
  EXPECT_TRUE(Same(indexes[0], indexes[1]) && Same(indexes[1], indexes[2]));
  // The components of one path know that path.
  IteratorT<const IPath> paths;
  Config(Block("TOP"))->GetIterPaths(paths);
  paths++;
  paths->GetIterComps(comps);
  EXPECT_EQ(Occurrences(comps), (Strings{"RM@X1", "XL@X1", "RM2@X1"}));
  // A component reached through its block has no path.
  Block("MID")->GetIterComps(comps, Tessel::eCompAll);
  Tessel::ContainerT<const IPath> path;
  comps->GetPath(path);
  EXPECT_FALSE(Usable(path));
}

// ---- Filter

TEST_F(DatabaseTest, FilterTwoKeepsOnlyComponentsWithTypeBitTwoAndAnyComponentMayNameAChild) {
  Open(kTree);
  BlockHandle top = Block("TOP");
  IteratorT<const IComp> comps;
  top->GetIterComps(comps, Tessel::eCompHierarchical);
  EXPECT_EQ(Names(comps), (Strings{"X1", "X2", "XN", "X3"}));
  top->GetIterComps(comps, Tessel::eCompAll);
  EXPECT_EQ(Names(comps), (Strings{"R1", "X1", "R2", "X2", "XP", "XN", "X3", "Z0"}));
  BlockHandle child;
  Comp(top, "XP")->GetChildBlock(child);
  ASSERT_TRUE(Usable(child));
  EXPECT_EQ(NameOf(*child), "LEAF");
  Comp(top, "XN")->GetChildBlock(child);
  EXPECT_FALSE(Usable(child));
  EXPECT_FALSE(child.IsValid());  // the handle's own test says so as well
}

TEST_F(DatabaseTest, TypeBitsAreStoredAsGiven) {
  Open(R"({"blocks": [{"name": "TOP", "components": [{"label": "U", "type": 4294967295}]}]})");
  Tessel::BitContainerT<Tessel::ECompType, 1> type;
  Comp(Block("TOP"), "U")->GetType(type);
  EXPECT_EQ(type.Bits(), 4294967295u);
}

// ---- Indexes

TEST_F(DatabaseTest, IndexesOfOneBlockAreDistinctAndFetchTheirObjects) {
  Open(kTree);
  BlockHandle top = Block("TOP");
  std::set<std::pair<uint32_t, uint32_t>> seen;
  size_t objects = 0;
  IteratorT<const IComp> comps;
  for (top->GetIterComps(comps, Tessel::eCompAll); comps->IsValid(); comps++, objects++) {
    Tessel::Index index, instance;
    comps->GetIndex(index);
    comps->GetInstanceIndex(instance);
    EXPECT_TRUE(Same(index, instance));
    seen.insert({index.word0, index.word1});
    Tessel::ContainerT<const IComp> fetched;
    top->GetComp(fetched, instance);
    ASSERT_TRUE(Usable(fetched));
    EXPECT_EQ(NameOf(*fetched), NameOf(*comps.operator->()));
    IteratorT<const IPin> pins;
    for (comps->GetIterPins(pins); pins->IsValid(); pins++, objects++) {
      pins->GetIndex(index);
      seen.insert({index.word0, index.word1});
    }
  }
  IteratorT<const INet> nets;
  for (top->GetIterNets(nets); nets->IsValid(); nets++, objects++) {
    Tessel::Index index;
    nets->GetInstanceIndex(index);
    seen.insert({index.word0, index.word1});
    Tessel::ContainerT<const INet> fetched;
    top->GetNet(fetched, index);
    ASSERT_TRUE(Usable(fetched));
    EXPECT_EQ(NameOf(*fetched), NameOf(*nets.operator->()));
  }
  IteratorT<const IPort> ports;
  for (top->GetIterPorts(ports); ports->IsValid(); ports++, objects++) {
    Tessel::Index index;
    ports->GetIndex(index);
    seen.insert({index.word0, index.word1});
  }
  EXPECT_EQ(objects, 8u + 3u + 2u + 2u);
  EXPECT_EQ(seen.size(), objects);
}

TEST_F(DatabaseTest, AnIndexFromAnotherBlockOrOfAnotherKindFetchesNothing) {
  Open(kTree);
  BlockHandle top = Block("TOP"), mid = Block("MID");
  Tessel::Index rm, n1;
  Comp(mid, "RM")->GetInstanceIndex(rm);
  Net(top, "N1")->GetInstanceIndex(n1);
  Tessel::ContainerT<const IComp> comp;
  top->GetComp(comp, rm);
  EXPECT_FALSE(Usable(comp));
  top->GetComp(comp, n1);  // a net's index names no component
  EXPECT_FALSE(Usable(comp));
  Tessel::ContainerT<const INet> net;
  mid->GetNet(net, n1);
  EXPECT_FALSE(Usable(net));
  Tessel::Index far = n1;
  far.word1 += 100;
  top->GetNet(net, far);
  EXPECT_FALSE(Usable(net));
}

TEST_F(DatabaseTest, AConfigIndexFetchesTheConfigOfItsBlockThroughAFilledManagerOnly) {
  Open(kTree);
  Tessel::Index index;
  Block("MID")->GetDefaultConfigIndex(index);
  Tessel::ContainerT<const IConfig> config;
  uid_.GetConfig(config, index);
  EXPECT_EQ(PathList(*config, '\\'), (Strings{"MID@", "LEAF@XL"}));
  Tessel::Index bad = index;
  bad.word0 = 77;
  Tessel::IUIDManager empty;
  for (bool filled : {true, false}) {
    config = {};
    EXPECT_FALSE(filled ? uid_.GetConfig(config, bad) : empty.GetConfig(config, index)) << filled;
    IteratorT<const IPath> paths;
    if (!config.Empty()) config->GetIterPaths(paths);
    EXPECT_FALSE(paths->IsValid());
  }
  Tessel::ContainerT<const Tessel::IGroup> group;
  EXPECT_FALSE(empty.GetGroup(group, index));
  if (!group.Empty()) {
    String value("x");
    group->GetAttribute("$$Internal_ID", value);
    EXPECT_EQ(value.str(), "");
  }
}

// ---- Iterators

TEST_F(DatabaseTest, AFinishedIteratorYieldsAnInvalidObjectOfEveryKind) {
  Open(kTree);
  BlockHandle top = Block("TOP");
  IteratorT<const IComp> comps;
  top->GetIterComps(comps, Tessel::eCompAll);
  while (comps) comps++;
  ASSERT_NE(comps.operator->(), nullptr);
  EXPECT_FALSE(comps->IsValid());
  EXPECT_FALSE(comps.IsValid());
  String label("stale");
  comps->GetLabel(label);
  EXPECT_EQ(label.str(), "stale");
  comps++;  // stepping past the end stays at the end
  EXPECT_FALSE(comps->IsValid());

  IteratorT<const INet> nets;
  top->GetIterNets(nets);
  while (nets) nets++;
  EXPECT_FALSE(nets->IsValid());
  IteratorT<const IPort> ports;
  top->GetIterPorts(ports);
  while (ports) ports++;
  EXPECT_FALSE(ports->IsValid());
  IteratorT<const IPin> pins;
  Comp(top, "R1")->GetIterPins(pins);
  while (pins) pins++;
  EXPECT_FALSE(pins->IsValid());
  IteratorT<const IPath> paths;
  Config(top)->GetIterPaths(paths);
  while (paths) paths++;
  EXPECT_FALSE(paths->IsValid());
  IteratorT<const IComp> occurrences;
  Config(top)->GetIterComps(occurrences);
  while (occurrences) occurrences++;
  EXPECT_FALSE(occurrences->IsValid());

  // A default iterator is finished as well.
  IteratorT<const IComp> fresh;
  IteratorT<const Tessel::IBus> buses;
  EXPECT_FALSE(fresh->IsValid() || IteratorT<const INet>()->IsValid() || IteratorT<const IPin>()->IsValid() ||
               IteratorT<const IPort>()->IsValid() || IteratorT<const IPath>()->IsValid());
  EXPECT_FALSE(buses->IsValid() || buses.IsValid());
  fresh++;
  EXPECT_FALSE(fresh);
}

TEST_F(DatabaseTest, AnInvalidObjectAnswersNothing) {
  Open(kTree);
  IteratorT<const IComp> comps;
  Block("TOP")->GetIterComps(comps, Tessel::eCompAll);
  while (comps) comps++;
  const IComp& dead = *comps.operator->();
  IteratorT<const IPin> pins;
  dead.GetIterPins(pins);
  EXPECT_FALSE(pins->IsValid());
  BlockHandle block;
  dead.GetParentBlock(block);
  EXPECT_FALSE(Usable(block));
  Tessel::ContainerT<const IPath> path;
  dead.GetPath(path);
  EXPECT_FALSE(Usable(path));
  String value("x");
  dead.GetAttribute("VALUE", value, Tessel::eAttrInstance);
  EXPECT_EQ(value.str(), "");
  Tessel::ListAttribute attributes;
  dead.GetAttributes(attributes);
  EXPECT_TRUE(attributes.IsEmpty());
  Tessel::ListT<Tessel::GroupInfo> groups;
  dead.GetListGroups(groups, Tessel::eGroupInternal);
  EXPECT_TRUE(groups.IsEmpty());
}

// Walks its own copy to the end.
size_t CountRest(IteratorT<const IComp> it) {
  size_t count = 0;
  for (; it->IsValid(); it++) ++count;
  return count;
}

TEST_F(DatabaseTest, ACopyOfAnIteratorWalksOnIndependently) {
  Open(kTree);
  IteratorT<const IComp> comps;
  Block("TOP")->GetIterComps(comps, Tessel::eCompAll);
  comps++;
  EXPECT_EQ(CountRest(comps), 7u);
  EXPECT_EQ(NameOf(*comps.operator->()), "X1");
  IteratorT<const IComp> copy = comps;
  copy++;
  copy++;
  EXPECT_EQ(NameOf(*copy.operator->()), "X2");
  EXPECT_EQ(NameOf(*comps.operator->()), "X1");
  comps++;
  EXPECT_EQ(NameOf(*copy.operator->()), "X2");
  EXPECT_EQ(NameOf(*comps.operator->()), "R2");
  copy = comps;
  comps++;
  EXPECT_EQ(NameOf(*copy.operator->()), "R2");
}

TEST_F(DatabaseTest, ACopyOfAnOccurrenceIteratorKeepsItsPlaceInTheTree) {
  Open(kTree);
  IteratorT<const IComp> comps;
  Config(Block("TOP"))->GetIterComps(comps);
  for (int i = 0; i < 4; ++i) comps++;  // RL inside X1\XL
  IteratorT<const IComp> copy = comps;
  EXPECT_EQ(CountRest(comps), 10u);
  while (copy) copy++;
  EXPECT_EQ(Occurrences(comps).front(), "RL@X1\\XL");
  comps++;
  EXPECT_EQ(Occurrences(comps).front(), "RM2@X1");
}

TEST_F(DatabaseTest, ObjectsHandedOutByAnIteratorDoNotMoveWithIt) {
  // The object that operator-> gives is read at once; a handle fetched from it stays its own.
  Open(kTree);
  BlockHandle top = Block("TOP");
  IteratorT<const IComp> comps;
  top->GetIterComps(comps, Tessel::eCompAll);
  BlockHandle parent;
  comps->GetParentBlock(parent);
  Tessel::Index first;
  comps->GetInstanceIndex(first);
  comps++;
  Tessel::ContainerT<const IComp> fetched;
  top->GetComp(fetched, first);
  EXPECT_EQ(NameOf(*fetched), "R1");
  EXPECT_EQ(NameOf(*parent), "TOP");
}

// ---- Lifetime

TEST_F(DatabaseTest, HandlesStayValidWhileTheRootObjectLives) {
  Open(kTree);
  std::vector<IteratorT<const IComp>> kept;
  Tessel::ContainerT<const IPath> path;
  BlockHandle mid;
  {
    BlockHandle top = Block("TOP");
    IteratorT<const IComp> comps;
    for (top->GetIterComps(comps, Tessel::eCompAll); comps->IsValid(); comps++) kept.push_back(comps);
    auto config = Config(top);
    IteratorT<const IPath> paths;
    config->GetIterPaths(paths);
    paths++;
    config->GetPath(path, [&] {
      Tessel::Index index;
      paths->GetIndex(index);
      return index;
    }());
    Comp(top, "X1")->GetChildBlock(mid);
  }
  // The snapshot and the manager go; the root object stays.
  snapshot_ = {};
  uid_ = {};
  ASSERT_EQ(kept.size(), 8u);
  EXPECT_EQ(NameOf(*kept[3].operator->()), "X2");
  IteratorT<const IPin> pins;
  kept[3]->GetIterPins(pins);
  IteratorT<const INet> nets;
  pins->GetIterNetsConnected(nets);
  EXPECT_EQ(Names(nets), (Strings{"N1"}));
  EXPECT_EQ(HierName(*path, '\\'), "X1");
  IteratorT<const IComp> inside;
  path->GetIterComps(inside);
  EXPECT_EQ(Occurrences(inside), (Strings{"RM@X1", "XL@X1", "RM2@X1"}));
  EXPECT_EQ(NameOf(*mid), "MID");
  kept[1]++;
  EXPECT_EQ(NameOf(*kept[1].operator->()), "R2");
}

}  // namespace
