// What surrounds the component lines: the comment header, .global lines, model includes.
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>

#include "design/platform.h"
#include "gen/spice_gen.h"
#include "model/spice_reader.h"

namespace {

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// The creation time as ctime writes it (with its own line end); SOURCE_DATE_EPOCH, when
// set, stands for the current time so that decks can be reproduced.
std::string CreationTime() {
  std::time_t now = std::time(nullptr);
  const std::string epoch = GetEnv("SOURCE_DATE_EPOCH");
  if (!epoch.empty()) now = static_cast<std::time_t>(std::strtoll(epoch.c_str(), nullptr, 10));
  const char* text = std::ctime(&now);
  return text ? text : "\n";
}

// The model a model file stands for: its name without folder and ".mod", lower case.
std::string ModelOfPath(const std::string& path) {
  size_t slash = path.find_last_of("\\/");
  std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (name.size() >= 4 && Lower(name.substr(name.size() - 4)) == ".mod") name.erase(name.size() - 4);
  return Lower(name);
}

bool CanOpen(const std::string& path) {
  std::ifstream in(FileSystemPath(path));
  return static_cast<bool>(in);
}

}  // namespace

void CSpiceGen::WriteHeader(const SpiceBlock& root) {
  out << "* Project " << root.name << "\n";
  out << "* Norvane Wirelist Created with Version "
      << "6.4.002"
      << "\n";
  out << "* File created " << CreationTime() << "\n";
  out << "* Inifile   :  "
      << "\n";
  out << "* ConfigFile:  " << configFile << "\n";
  out << "* Options   :  " << optionsString << "\n";
  out << "* Levels    :  "
      << "\n";
  out << "*\n";
  if (headerFile.empty()) return;
  std::string text;
  if (!ReadWholeFile(headerFile, text)) {
    std::cout << "Warning: No Header File Found \n";
    return;
  }
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    size_t stop = (end > pos && text[end - 1] == '\r') ? end - 1 : end;
    out << std::string_view(text).substr(pos, stop - pos) << "\n";
    pos = end + 1;
  }
}

void CSpiceGen::WriteGlobals() {
  if (!globalNets.empty()) out << "\n*Globals \n";
  for (const auto& entry : globalNets) out << ".global " << entry.second << "\n";
}

void CSpiceGen::RegisterModel(std::string model, const SpiceComp& comp) {
  std::string lower = Lower(model);
  if (comp.model) {
    auto card = comp.model->modelCards.find(lower);
    if (card != comp.model->modelCards.end()) modelFiles[lower] = card->second;
  }
  if (usedModelsLower.insert(lower).second) usedModels.push_back(model);
}

void CSpiceGen::CollectModelFiles(const SpiceReader& reader, const SpiceSubckt* subckt,
                                  const std::string& directory, std::set<std::string>& files) {
  if (!subckt) return;
  for (const std::string& called : subckt->calledNames) {
    // A file already listed has had its calls followed; this also ends call cycles.
    if (!files.insert(directory + "\\" + called + ".mod").second) continue;
    CollectModelFiles(reader, reader.FindSubcktByName(called), directory, files);
  }
}

void CSpiceGen::WriteModelIncludes() {
  if (!readModFiles) return;
  std::set<std::string> files;
  for (const std::string& name : usedModels) {
    if (name.empty()) continue;
    const std::string path = "sym\\" + name + ".mod";
    SpiceReader reader;
    reader.MorvaFile(path, 0);
    CollectModelFiles(reader, reader.FindSubcktByName(Lower(name)), "sym", files);
    files.insert(path);
  }
  for (const std::string& path : files) WriteModelInclude(path);
  out << "\n";
}

void CSpiceGen::WriteModelInclude(const std::string& path) {
  if (!CanOpen(path)) {
    const std::string warning = "\n*Warning: Could not open data file " + path;
    std::cout << warning;
    out << warning;
    return;
  }
  auto card = modelFiles.find(ModelOfPath(path));
  if (card != modelFiles.end()) {
    out << "\n" << card->second << "\n";
    return;
  }
  out << "\n.include \"" << SimulatorPath(path, "..\\..\\") << "\"\n";
}

std::string CSpiceGen::DeckFolder() const {
  size_t slash = circuitPath.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : circuitPath.substr(0, slash);
}

std::string CSpiceGen::SimulatorPath(const std::string& projectPath, const std::string& classicPrefix) const {
  if (WindowsPaths()) return classicPrefix + projectPath;
  return RelativePath(projectPath, DeckFolder());
}

void CSpiceGen::WriteHdlIncludes(std::string name) {
  const std::string stem = "genhdl\\" + name + "\\" + name;
  const std::string sources = stem + (hdlSpiceSources ? "_sources.spi" : "_sources.cir");
  const bool haveSources = FileExists(sources);
  const bool haveBoundaries = !hdlSpiceSources && FileExists(stem + "_boundaries.cir");
  if (!haveSources && !haveBoundaries) return;
  if (includeSources) {
    const std::string included = SimulatorPath(sources, "..\\..\\");
    if (hdlSpiceSources)
      out << ".include \"" << included << "\"\n";
    else
      out << ".include " << included << "\n";
  }
  if (haveBoundaries) out << ".include " << SimulatorPath(stem + "_boundaries.cir", "..\\..\\") << "\n";
}
