// Building the design database of a project from a JSON description, and describing it back.
#pragma once

#include <string>

/// Builds <projectDir>/database from a JSON design description (text). On bad input returns false and sets
/// `error` to "WHERE: WHAT" (WHERE a JSON path like blocks[1].components[4].pins[0]); never leaves a
/// half-built database: the new file is built beside the old one and renamed over it.
bool ImportDesign(const std::string& jsonText, const std::string& projectDir, std::string& error,
                  const std::string& snapshot = "");

/// The description of <projectDir>/database as JSON text; false + error when it cannot be read.
bool ExportDesign(const std::string& projectDir, std::string& jsonText, std::string& error);

/// Builds <projectDir>/database from a SPICE netlist (text, read from `fileName`), with the top block
/// named `topName`, then writes the model files and the header beside it. Adds one line to `written`
/// for each file written. On bad input returns false with "FILE:LINE: WHAT" in `error`, and the old
/// database and side files are left as they were.
bool ImportSpiceDesign(const std::string& text, const std::string& fileName, const std::string& projectDir,
                       const std::string& topName, std::string& written, std::string& error);
