// Parameters of sub-circuit instances from the files sym\<model>.par and
// sym\<model>-param.txt.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

/// The parameter files of one model as read by the first instance of it.
struct ParameterFiles {
  struct File {
    bool read = false;  // opened and read
    std::string text;
  };
  bool any = false;  // either file is there
  File par;          // sym\<model>.par
  File param;        // sym\<model>-param.txt
};
/// Model name -> its parameter files, kept for one pass over a deck.
using ParameterFileCache = std::unordered_map<std::string, ParameterFiles>;

/// For an instance line of `modelName`, the sub-circuit the line calls: replaces that word
/// by the model name of the .par file and returns the lines to write behind the instance line
/// (the matching -param.txt section, else the rest of the .par file). Empty, and the
/// line untouched, when neither file exists. `internalNames` maps lower-case instance
/// names to internal names; `currentInstance` is emptied once a file is found. The files
/// are read through `cache`.
std::string LoadInstanceParameters(const std::string& instanceName, const std::string& modelName, std::string& line,
                                   const std::unordered_map<std::string, std::string>& internalNames,
                                   std::string& currentInstance, ParameterFileCache& cache);

/// Whether the folder sym holds a file that an instance could take parameters from: a name
/// ending in ".par" or "-param.txt", in any case. True too when sym cannot be read.
bool SymHoldsParameterFiles();

/// Appends to `text` the "+" lines of every section of `fileName` whose "*" head holds
/// the lower-cased model and internal names as whole words; true when at least one line was kept.
bool ReadParameterSection(const std::string& fileName, std::string modelName, std::string internalName,
                          std::string& text);

/// ReadParameterSection on the text of a file.
bool ParameterSection(std::string_view contents, std::string modelName, std::string internalName,
                      std::string& text);
