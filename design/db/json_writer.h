// Writes the compact design as a JSON design description that imports back to the same design.
#pragma once

#include <string>

#include "design/db/design_model.h"

namespace vdb {

/// The description of `design`: every net is written as declared, in order.
std::string WriteDescription(const Design& design);

}  // namespace vdb
