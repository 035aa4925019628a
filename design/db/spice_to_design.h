// Turns a SPICE netlist into a design whose components make vesk write the same element lines,
// plus the model files and the header file that the deck takes from beside the database.
#pragma once

#include <string>
#include <vector>

#include "design/db/design_model.h"
#include "design/db/spice_netlist_reader.h"

namespace vdb {

/// A file that goes beside the database: `path` relative to the project folder.
struct SpiceSideFile {
  std::string path;
  std::string text;
};

/// Builds `design` from `netlist`, with `topName` the name of the top block, and lists the model
/// files (sym/<model>.mod) and the header (<top>.inc) in `files`. False with "FILE:LINE: WHAT"
/// in `error` on bad input (a sub-circuit that calls itself, a port count that differs).
bool SpiceToDesign(const SpiceNetlist& netlist, const std::string& topName, Design& design,
                   std::vector<SpiceSideFile>& files, std::string& error);

/// The whole way from netlist text to a checked design: ReadSpiceNetlist, then SpiceToDesign.
bool DesignFromSpiceText(const std::string& text, const std::string& fileName, const SpiceFileLoader& load,
                         const std::string& topName, Design& design, std::vector<SpiceSideFile>& files,
                         std::string& error);

}  // namespace vdb
