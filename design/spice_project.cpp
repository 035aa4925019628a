// SpiceProject: opening the database, finding the root block, and the two walks.
#include "design/spice_project.h"

#include <unistd.h>

#include <cctype>
#include <iostream>

#include "design/platform.h"
#include "expr/text.h"

namespace {

void ReplaceAll(std::string& text, char from, char to) {
  for (char& c : text)
    if (c == from) c = to;
}

// An instance's LEVEL, at instance level first, in either spelling of the key.
std::string ReadLevel(const Tessel::IComp& comp) {
  const Tessel::EAttributeType levels[] = {Tessel::eAttrInstance, Tessel::eAttrDefinition};
  for (Tessel::EAttributeType level : levels) {
    for (const char* key : {"Level", "LEVEL"}) {
      Tessel::String value;
      comp.GetAttribute(key, value, level);
      if (!value.IsEmpty()) return value.str();
    }
  }
  return "";
}

std::string NameOf(const Tessel::ContainerT<const Tessel::IBlock>& block) {
  Tessel::String name;
  if (!block.Empty()) block->GetName(name);
  return name.str();
}

bool SameIndex(const Tessel::Index& a, const Tessel::Index& b) { return a.word0 == b.word0 && a.word1 == b.word1; }

std::string ParentBlockName(const Tessel::IComp& comp) {
  Tessel::ContainerT<const Tessel::IBlock> parent;
  comp.GetParentBlock(parent);
  return NameOf(parent);
}

std::string WorkingFolder() {
  std::string folder(4096, '\0');
  if (!::getcwd(&folder[0], folder.size())) return "";
  folder.resize(folder.find('\0'));
  return folder;
}

// The path of a config whose hierarchical name ("A!B") is `subPath`; `block` follows
// the paths walked, so that a missing sub-path leaves the last one.
bool FindSubPath(Tessel::IUIDManager* uidManager, Tessel::ContainerT<const Tessel::IBlock>& block,
                 const std::string& subPath, Tessel::ContainerT<const Tessel::IPath>& path) {
  if (block.Empty() || !uidManager) return false;
  Tessel::Index configIndex;
  block->GetDefaultConfigIndex(configIndex);
  Tessel::ContainerT<const Tessel::IConfig> config;
  uidManager->GetConfig(config, configIndex);
  if (config.Empty()) return false;
  Tessel::IteratorT<const Tessel::IPath> paths;
  config->GetIterPaths(paths);
  for (; paths->IsValid(); paths++) {
    Tessel::Index index;
    paths->GetIndex(index);
    config->GetPath(path, index);
    if (path.Empty()) continue;
    path->GetBlock(block);
    Tessel::String hierName;
    path->GetHierarchicalName(hierName, '!');
    if (hierName.str() == subPath) return true;
  }
  return false;
}

}  // namespace

SpiceProject::SpiceProject() = default;

SpiceProject::SpiceProject(const SpiceProject& other)
    : databaseName(other.databaseName), rootBlock(other.rootBlock), subBlocks(other.subBlocks) {}

bool SpiceProject::Open(std::string location) {
  databaseName = std::move(location);
  projectData.location = "database";
  projectData.flag = 0;
  projectData.clientName = "QorSimNetlister";
  db.OpenTessel(projectData);
  Tessel::Result result = db.GetSnapshotByName(snapshot, "Qor");
  if (!snapshot.Empty()) snapshot->GetUIDManager(uidManagerObject);
  uidManager = &uidManagerObject;
  if (!result) {
    std::cout << "Couldn't Open TESSEL DataBase"
              << "\n"
              << result.GetDescription(false) << "\n";
  }
  return result.success != 0;
}

void SpiceProject::ReleaseWalkState() {
  auto release = [](SpiceBlock& block) {
    block.block = Tessel::ContainerT<const Tessel::IBlock>();
    block.compIter = Tessel::IteratorT<const Tessel::IComp>();
    block.gatheredAttributes = GatheredAttributesCache();
  };
  release(rootBlock);
  for (SpiceBlock& block : subBlocks) release(block);
  snapshot = Tessel::ContainerT<const Tessel::ISnapshot>();
  uidManagerObject.impl.reset();
  db.Release();
  if (options.usedNames) options.usedNames->Clear();
}

void SpiceProject::SetOptions(WireOptions newOptions) { options = std::move(newOptions); }

SpiceBlock& SpiceProject::FindRoot(std::string group, Tessel::ContainerT<const Tessel::IBlock>& block,
                                   std::string& rootPath, bool scanNodes, bool collectComponents) {
  std::string path = rootPath;
  ReplaceAll(path, '/', '\\');
  size_t last = path.rfind('\\');
  std::string leaf = last == std::string::npos ? path : path.substr(last + 1);
  if (EqualsIgnoringCase(leaf, group)) path = last == std::string::npos ? "" : path.substr(0, last);
  size_t first = path.find('\\');
  std::string head = first == std::string::npos ? "" : path.substr(0, first);
  std::string tail = first == std::string::npos ? path : path.substr(first + 1);
  ReplaceAll(tail, '\\', '!');

  Tessel::ListT<Tessel::BlockInfo> hits;
  Tessel::Result found = Tessel::Result::Fail("not open");
  if (!snapshot.Empty()) found = snapshot->FindBlock(hits, head.empty() ? group : head, Tessel::eSearchPlain);
  if (!found || hits.IsEmpty()) {
    std::cout << "Testbench does not exist \n";
    return rootBlock;
  }
  snapshot->GetBlock(block, hits.GetIterator()->index);

  rootOccurrence = Tessel::ContainerT<const Tessel::IPath>();
  const bool byPath = !tail.empty() && FindSubPath(uidManager, block, tail, rootOccurrence);
  rootByPath = byPath;
  rootBlock.uidManager = uidManager;
  rootBlock.tables = &tables;
  rootBlock.modelMapper = modelMapper;
  rootBlock.naming = naming;
  rootBlock.LoadComponents(block, rootOccurrence, options, "", byPath, collectComponents);
  if (scanNodes) ScanRootNodes();
  return rootBlock;
}

bool SpiceProject::StreamRootComponents(ComponentSink* sink) {
  return rootBlock.StreamComponents(rootOccurrence, rootByPath, sink);
}

void SpiceProject::ScanRootNodes() {
  rootBlock.ScanNodes();
  options.inventedNodes = rootBlock.options.inventedNodes;
}

void SpiceProject::WalkHierarchy(Tessel::ContainerT<const Tessel::IBlock> block, std::string name) {
  if (block.Empty()) return;
  Tessel::IteratorT<const Tessel::IComp> it;
  block->GetIterComps(it, Tessel::eCompHierarchical);
  for (; it->IsValid(); it++) VisitInstance(it, name);
}

void SpiceProject::VisitInstance(const Tessel::IteratorT<const Tessel::IComp>& instance,
                                 const std::string& name) {
  const Tessel::IComp& comp = *instance.operator->();
  Tessel::ContainerT<const Tessel::IBlock> child;
  comp.GetChildBlock(child);
  // A block already loaded makes the visit end without a trace, whatever the instance says:
  // the many placements of one block are passed over without reading their attributes, and
  // those that follow one another without reading its name.
  Tessel::Index childIndex;
  const bool indexed = !child.Empty() && child->GetIndex(childIndex).success;
  if (indexed && lastVisitedChild && SameIndex(*lastVisitedChild, childIndex)) return;
  std::string childName = NameOf(child);
  if (visitedIndex.count(childName)) {
    if (indexed) lastVisitedChild = childIndex;
    return;
  }
  std::string parentName = ParentBlockName(comp);
  if (options.HasLevel(ReadLevel(comp))) return;
  if (!EqualsIgnoringCase(name, parentName)) return;

  // The path holds the chain from the root to this instance while its block is loaded.
  size_t pathLength = currentInstancePath.size();
  if (!currentInstancePath.empty()) currentInstancePath += "\\";
  currentInstancePath += ComponentInternalName(comp, uidManager);
  if (visitedIndex.insert(childName).second) {
    visitedBlocks.push_back(childName);
    SpiceBlock definition;
    definition.uidManager = uidManager;
    definition.tables = &tables;
    definition.modelMapper = modelMapper;
    definition.naming = naming;
    Tessel::ContainerT<const Tessel::IPath> noPath;
    definition.Load(child, noPath, options, currentInstancePath, false);
    // The count of invented nodes runs on over the blocks of the walk.
    options.inventedNodes = definition.options.inventedNodes;
    WalkHierarchy(child, childName);
    Tessel::IteratorT<const Tessel::IPin> pins;
    comp.GetIterPins(pins);
    for (; pins->IsValid(); pins++) definition.ports.emplace_back(pins);
    subBlocks.push_back(std::move(definition));
  }
  currentInstancePath.resize(pathLength);
}

void SpiceProject::WalkFlat(Tessel::ContainerT<const Tessel::IBlock>, std::string name,
                            ComponentSink* sink) {
  if (snapshot.Empty()) return;
  Tessel::ContainerT<const Tessel::IConfig> config;
  snapshot->GetDefaultConfig(config, name);
  if (config.Empty()) return;
  Tessel::IteratorT<const Tessel::IComp> it;
  config->GetIterComps(it);
  if (!sink) {
    // Counted first so that the component list is allocated once at its full size: growing a
    // list of a million components by doubling would hold one and a half lists at the last step.
    size_t occurrences = 0;
    for (Tessel::IteratorT<const Tessel::IComp> count(it); count->IsValid(); count++) ++occurrences;
    rootBlock.comps.reserve(rootBlock.comps.size() + occurrences);
  }
  for (; it->IsValid(); it++)
    if (!VisitOccurrence(it, sink)) return;
}

bool SpiceProject::VisitOccurrence(const Tessel::IteratorT<const Tessel::IComp>& occurrence,
                                   ComponentSink* sink) {
  const Tessel::IComp& comp = *occurrence.operator->();
  Tessel::BitContainerT<Tessel::ECompType, 1> type;
  comp.GetType(type);
  if (!skippedIndex.empty() && skippedIndex.count(ParentBlockName(comp))) return true;
  if (type & Tessel::eCompHierarchical) {
    if (options.HasLevel(ReadLevel(comp))) {
      // A stopped instance leaves out its block's contents wherever they occur.
      Tessel::ContainerT<const Tessel::IBlock> child;
      comp.GetChildBlock(child);
      std::string childName = NameOf(child);
      if (skippedIndex.insert(childName).second) skippedBlocks->push_back(childName);
      return true;
    }
    rootBlock.AddFlatInstance(occurrence);
    return true;
  }
  if (type & Tessel::eCompPrimitive) return rootBlock.AddFlatComp(occurrence, sink);
  return true;
}

void MakeRelativeToProject(std::string& path) {
  std::string folder = GetEnv("CURRENT_PROJECT_PATH");
  if (folder.empty()) folder = WorkingFolder();
  std::string spelled = path;
  ReplaceAll(spelled, '/', '\\');
  ReplaceAll(folder, '/', '\\');
  while (!folder.empty() && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  if (UpperText(spelled).compare(0, folder.size(), UpperText(folder)) != 0) return;
  path = "." + spelled.substr(folder.size());
}

std::string ExpandEnvironmentInPath(std::string path) {
  // Room for 259 characters and the end mark, as the expansion buffer had.
  const size_t kRoom = 259;
  std::string work = path;
  size_t from = 0;
  for (size_t dollar; (dollar = work.find('$', from)) != std::string::npos;) {
    size_t close = work.find('}', dollar);
    if (close == std::string::npos) return path;
    std::string variable;
    for (size_t i = dollar; i <= close; ++i)
      if (work[i] != '$' && work[i] != '{' && work[i] != '}') variable += work[i];
    std::string expansion = ExpandPercentEnvironment("%" + variable + "%");
    if (expansion.size() > kRoom) expansion.resize(kRoom);
    work = work.substr(0, dollar) + expansion + work.substr(close + 1);
    // Go on behind the expansion: a value that holds "$" is not expanded again.
    from = dollar + expansion.size();
  }
  return work;
}
