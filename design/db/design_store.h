// Writes the compact design to its SQLite file and reads it back.
#pragma once

#include <string>

#include "design/db/design_model.h"

namespace vdb {

/// The name of the SQLite file inside the folder `database`.
constexpr const char* kDatabaseFile = "design.sqlite";

/// Texts (and attribute lists) per row of the strings (and attr_lists) table.
constexpr uint32_t kChunkItems = 65536;

/// Writes `design` into a new SQLite file `file` (which must not exist); false with a reason.
bool SaveDesign(const Design& design, const std::string& file, std::string& error);

/// Reads the SQLite file `file` into `design` and checks it; false with a reason when the file is
/// not a design database or is damaged.
bool LoadDesign(const std::string& file, Design& design, std::string& error);

}  // namespace vdb
