// Streams a JSON design description into a DesignBuilder, one component at a time.
#pragma once

#include <string>

#include "design/db/design_builder.h"

namespace vdb {

/// Parses `text` and hands its pieces to `builder`; false with "WHERE: WHAT" in `error` on bad input.
/// Only one item of a block is held as a document tree at a time, so large designs stay cheap.
bool ReadDescription(const std::string& text, DesignBuilder& builder, std::string& error);

}  // namespace vdb
