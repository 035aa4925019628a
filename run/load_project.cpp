// LoadProject: opens the design database, finds the root block and walks the design.
#include <exception>

#include "gen/spice_gen.h"

bool CSpiceGen::LoadProject(std::string group, SpiceProject& project, WireOptions options) {
  try {
    loadFailure = kExitNoDatabase;
    if (!project.Open(databaseName)) return false;
    project.SetOptions(options);
    Tessel::ContainerT<const Tessel::IBlock> block;
    project.FindRoot(group, block, options.rootPath);
    loadFailure = kExitNoGroup;
    if (!block.IsValid()) return false;
    loadFailure = kExitNoDatabase;
    // The definitions hang below the block itself, whatever name (a test bench's) found it.
    Tessel::String rootName;
    block->GetName(rootName);
    if (options.flatten == 0)
      project.WalkHierarchy(block, rootName.str());
    else
      project.WalkFlat(block, group);
    loadFailure = kExitDeckWritten;
    return true;
  } catch (...) {
    // A failure inside the database or a walk means that no design was loaded: the database
    // could not be read as a design.
    return false;
  }
}
