// LoadProject: opens the design database, finds the root block and walks the design.
#include <exception>

#include "gen/deck_naming.h"
#include "gen/spice_gen.h"
#include "model/model_mapping.h"

bool CSpiceGen::OpenDesign(const std::string& group, SpiceProject& project, const WireOptions& options,
                           Tessel::ContainerT<const Tessel::IBlock>& block, bool scanRootNodes,
                           bool collectRootComponents) {
  try {
    loadFailure = kExitNoDatabase;
    if (!project.Open(databaseName)) return false;
    project.SetOptions(options);
    project.modelMapper = &MapComponentModel;
    project.naming = &SpiceDeckNaming();
    std::string rootPath = options.rootPath;
    project.FindRoot(group, block, rootPath, scanRootNodes, collectRootComponents);
    loadFailure = kExitNoGroup;
    if (!block.IsValid()) return false;
    loadFailure = kExitDeckWritten;
    return true;
  } catch (...) {
    // A failure inside the database means that no design was loaded: the database could not
    // be read as a design.
    loadFailure = kExitNoDatabase;
    return false;
  }
}

bool CSpiceGen::WalkDesign(const std::string& group, SpiceProject& project,
                           Tessel::ContainerT<const Tessel::IBlock>& block, ComponentSink* sink) {
  try {
    loadFailure = kExitNoDatabase;
    // The definitions hang below the block itself, whatever name (a test bench's) found it.
    Tessel::String rootName;
    block->GetName(rootName);
    if (project.options.flatten == 0)
      project.WalkHierarchy(block, rootName.str());
    else
      project.WalkFlat(block, group, sink);
    loadFailure = kExitDeckWritten;
    return true;
  } catch (...) {
    return false;
  }
}

bool CSpiceGen::LoadProject(std::string group, SpiceProject& project, WireOptions options) {
  Tessel::ContainerT<const Tessel::IBlock> block;
  return OpenDesign(group, project, options, block) && WalkDesign(group, project, block, nullptr);
}
