// Model files: the .model cards and "-param.txt" sections that a mapped model gives rise to.
#pragma once

#include <string>

#include "design/model_data.h"
#include "design/spice_comp.h"

/// Makes the model's parameters reach the simulator: a primitive model with an overridden
/// parameter gets a .model card in the component's modelCards; a sub-circuit model
/// ("Subckt", "ZQA-Subckt") gets this instance's section in "sym\<model>-param.txt".
void WriteModelData(SpiceComp& comp, std::string modelType, const std::string& model, bool overridden);

/// The .model card: its head line, one "+ NAME=VALUE" line per generic in key order, and
/// " )" when the type word holds "(" behind its first character.
std::string ModelCardText(const ModelData& data, const std::string& model, const std::string& modelType);
/// One instance's section: "\n*<model> <instance>\n", its "+" lines, "*end".
std::string ParameterSectionText(const ModelData& data, const std::string& lowerModel,
                                 const std::string& lowerInstance);

/// Keeps in `kept` every line of `text` but the empty ones and the sections of that model
/// and instance (each kept line ending in "\n"); true when such a section was there.
bool FilterOtherSections(const std::string& text, std::string model, std::string internalName,
                         std::string& kept);
/// FilterOtherSections over the parameter file as the run has it; false and an empty
/// `kept` when the file does not exist or does not open.
bool ReadOtherSections(const std::string& fileName, const std::string& model, const std::string& internalName,
                       std::string& kept);
/// With `replace` the file becomes `kept` and `section`; without it `section` is appended.
void WriteParameterFile(const std::string& fileName, bool replace, const std::string& kept,
                        const std::string& section);

/// Parameter files are held in memory during the design walk and written here, each as a
/// whole through a file beside it; also called when the process ends.
void FlushParameterFiles();
/// Flushes, then forgets the files held (tests that change them on disk).
void ResetParameterFiles();
