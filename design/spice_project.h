// SpiceProject: owns the open database and what the walk of the design produces.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "design/spice_block.h"
#include "design/tessel.h"
#include "design/wire_options.h"

class SpiceProject {
 public:
  SpiceProject();
  /// A copy holds only the database name, the root block and the sub-blocks; it must
  /// not ask the database anything.
  SpiceProject(const SpiceProject& other);
  SpiceProject& operator=(const SpiceProject&) = delete;

  bool Open(std::string location);
  void SetOptions(WireOptions options);
  /// Finds the root block and loads it; without `scanNodes` its ports and nets are left for
  /// ScanRootNodes, which may then run beside a flat walk.
  SpiceBlock& FindRoot(std::string group, Tessel::ContainerT<const Tessel::IBlock>& block,
                       std::string& rootPath, bool scanNodes = true, bool collectComponents = true);
  void ScanRootNodes();
  /// The root's components, left by FindRoot without `collectComponents`, handed to `sink`
  /// as they load (see SpiceBlock::StreamComponents).
  bool StreamRootComponents(ComponentSink* sink);
  void WalkHierarchy(Tessel::ContainerT<const Tessel::IBlock> block, std::string name);
  /// The flat walk: every primitive below the root, into the root's component list or, with a
  /// sink, handed to the sink one at a time (the root's list stays empty).
  void WalkFlat(Tessel::ContainerT<const Tessel::IBlock> block, std::string name,
                ComponentSink* sink = nullptr);

  /// Drops what only the walk needs once it is done: every handle into the database and the
  /// instance names given out. The generators write from the walked blocks alone, and a
  /// large design's memory is better spent on the deck.
  void ReleaseWalkState();
  SpiceBlock& Root() { return rootBlock; }
  std::vector<SpiceBlock>& SubBlocks() { return subBlocks; }

  std::string databaseName;
  Tessel::ProjectData projectData;
  Tessel::ContainerT<const Tessel::ISnapshot> snapshot;
  Tessel::TesselPI db;
  SpiceBlock rootBlock;
  std::vector<std::string> visitedBlocks;
  std::unordered_set<std::string> visitedIndex;  // the names of visitedBlocks, for lookup
  std::optional<Tessel::Index> lastVisitedChild;  // a block of visitedBlocks, by its index
  WireOptions options;
  std::string currentInstancePath;
  std::shared_ptr<std::vector<std::string>> skippedBlocks = std::make_shared<std::vector<std::string>>();
  std::unordered_set<std::string> skippedIndex;  // the names of skippedBlocks, for lookup
  Tessel::IUIDManager* uidManager = nullptr;
  Tessel::IUIDManager uidManagerObject;
  std::vector<SpiceBlock> subBlocks;
  /// Global nets and the net dictionary of all blocks, for the generator.
  WalkTables tables;
  /// Where FindRoot found the root's components, for StreamRootComponents.
  Tessel::ContainerT<const Tessel::IPath> rootOccurrence;
  bool rootByPath = false;
  /// Maps the HDL models of components while they load (Kelpo); set by run/.
  ModelMapper modelMapper = nullptr;
  /// The deck's names of nodes and components (gen/); set by run/.
  const DeckNaming* naming = nullptr;

 private:
  void VisitInstance(const Tessel::IteratorT<const Tessel::IComp>& instance, const std::string& name);
  /// False when a sink has stopped taking components.
  bool VisitOccurrence(const Tessel::IteratorT<const Tessel::IComp>& occurrence, ComponentSink* sink);
};

/// Rewrites `path` relative to the project folder (CURRENT_PROJECT_PATH or the working
/// folder): ".\lib\a.txt" for a path inside it; other paths stay.
void MakeRelativeToProject(std::string& path);

/// Expands ${NAME} references; unknown names become %NAME%. Without a "}" nothing expands.
std::string ExpandEnvironmentInPath(std::string path);
