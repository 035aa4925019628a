// Parameters of sub-circuit instances from the files sym\<model>.par and
// sym\<model>-param.txt.
#pragma once

#include <string>
#include <unordered_map>

/// For an instance line of `modelName`, the sub-circuit the line calls: replaces that word
/// by the model name of the .par file and returns the lines to write behind the instance line
/// (the matching -param.txt section, else the rest of the .par file). Empty, and the
/// line untouched, when neither file exists. `internalNames` maps lower-case instance
/// names to internal names; `currentInstance` is emptied once a file is found.
std::string LoadInstanceParameters(std::string instanceName, const std::string& modelName, std::string& line,
                                   const std::unordered_map<std::string, std::string>& internalNames,
                                   std::string& currentInstance);

/// Appends to `text` the "+" lines of every section of `fileName` whose "*" head holds
/// the lower-cased model and internal names as whole words; true when at least one line was kept.
bool ReadParameterSection(const std::string& fileName, std::string modelName, std::string internalName,
                          std::string& text);
