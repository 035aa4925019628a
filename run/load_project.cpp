// LoadProject: opens the design database, finds the root block and walks the design.
#include <exception>

#include "gen/deck_naming.h"
#include "gen/spice_gen.h"
#include "model/model_mapping.h"

bool CSpiceGen::LoadProject(std::string group, SpiceProject& project, WireOptions options) {
  try {
    if (!project.Open(databaseName)) return false;
    project.SetOptions(options);
    project.modelMapper = &MapComponentModel;
    project.naming = &SpiceDeckNaming();
    Tessel::ContainerT<const Tessel::IBlock> block;
    project.FindRoot(group, block, options.rootPath);
    if (!block.IsValid()) return false;
    if (options.flatten == 0)
      project.WalkHierarchy(block, group);
    else
      project.WalkFlat(block, group);
    return true;
  } catch (...) {
    // A failure inside the database or a walk means that no design was loaded.
    return false;
  }
}
