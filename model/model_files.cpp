// Model files: .model cards in memory and "-param.txt" sections, written once the walk is done.
#include "model/model_files.h"

#include <limits.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <unordered_map>

#include "design/platform.h"
#include "expr/text.h"
#include "model/parameter_file.h"

namespace {

// A parameter file as this run has it: read on first use, changed in memory, written on flush.
struct HeldFile {
  std::string writePath;
  bool exists = false;
  bool readable = true;
  bool dirty = false;
  ParameterFile text;
};

using HeldFiles = std::unordered_map<std::string, std::unique_ptr<HeldFile>>;

HeldFiles& Files() {
  static HeldFiles files;
  static bool registered = false;
  if (!registered) {
    registered = true;
    std::atexit(FlushParameterFiles);
  }
  return files;
}

std::string WorkingFolder() {
  char buffer[PATH_MAX];
  return ::getcwd(buffer, sizeof buffer) ? buffer : "";
}

// Windows names files ignoring case, so "sym\Amp-param.txt" and "sym\amp-param.txt" are one file.
std::string FileKey(const std::string& folder, const std::string& fileName) {
  std::string key = LowerText(fileName);
  for (char& c : key)
    if (c == '\\') c = '/';
  return folder + '\n' + key;
}

HeldFile& Held(const std::string& fileName) {
  const std::string folder = WorkingFolder();
  std::unique_ptr<HeldFile>& held = Files()[FileKey(folder, fileName)];
  if (held) return *held;
  held = std::make_unique<HeldFile>();
  std::string fsPath = FileSystemPath(fileName);
  held->writePath = !fsPath.empty() && fsPath[0] == '/' ? fsPath : folder + "/" + fsPath;
  held->exists = FileExists(fileName);
  std::string text;
  if (held->exists) held->readable = ReadWholeFile(fileName, text);
  if (held->readable) held->text.Append(text);
  return *held;
}

bool IsSubcircuitType(const std::string& modelType) {
  return modelType == "Subckt" || modelType == "ZQA-Subckt";
}

const std::string& FirstNonEmpty(const std::string& a, const std::string& b) { return a.empty() ? b : a; }

void WriteSection(SpiceComp& comp, const std::string& model) {
  const std::string paramFile = "sym\\" + model + "-param.txt";
  const std::string lowerModel = LowerText(model);
  const std::string instance = LowerText(comp.InternalName());
  const std::string section = ParameterSectionText(comp.Model(), lowerModel, instance);
  HeldFile& held = Held(paramFile);
  if (!held.readable) return;
  if (!held.exists || !held.text.ReplaceSection(lowerModel, instance, section)) held.text.Append(section);
  held.exists = true;
  held.dirty = true;
}

}  // namespace

std::string ModelCardText(const ModelData& data, const std::string& model, const std::string& modelType) {
  std::string card = ".model " + model + " " + modelType + "\n";
  for (const auto& [key, generic] : data.modelGenerics) {
    const std::string& value =
        FirstNonEmpty(generic->attributeValue, FirstNonEmpty(generic->content, generic->defaultValue));
    card += "+ " + generic->name + "=" + value + "\n";
  }
  size_t paren = modelType.find('(');
  if (paren != std::string::npos && paren > 0) card += " )\n";
  return card;
}

std::string ParameterSectionText(const ModelData& data, const std::string& lowerModel,
                                 const std::string& lowerInstance) {
  std::string section = "\n*" + lowerModel + " " + lowerInstance + "\n";
  for (const auto& [key, generic] : data.modelGenerics) {
    const std::string& value = FirstNonEmpty(generic->attributeValue, generic->content);
    if (!value.empty()) section += "+ " + generic->name + "=" + value + "\n";
  }
  return section + "*end";
}

void WriteModelData(SpiceComp& comp, std::string modelType, const std::string& model, bool overridden) {
  modelType = Trim(modelType);
  if (IsSubcircuitType(modelType)) {
    WriteSection(comp, model);
    return;
  }
  if (!overridden || modelType.empty()) return;
  comp.MutableModel().modelCards[LowerText(model)] = ModelCardText(comp.Model(), model, modelType);
}

bool FilterOtherSections(const std::string& text, std::string model, std::string internalName,
                         std::string& kept) {
  model = LowerText(model);
  internalName = LowerText(internalName);
  kept.clear();
  bool found = false;
  bool inSection = false;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    const std::string line = text.substr(start, end - start);
    start = end + 1;
    if (line.empty()) continue;
    if (IsSectionHead(line, model, internalName)) {
      found = inSection = true;
    } else if (inSection && line.find("*end") != std::string::npos) {
      inSection = false;
    } else if (!inSection || line.find('+') == std::string::npos) {
      kept += line + "\n";
    }
  }
  return found;
}

bool ReadOtherSections(const std::string& fileName, const std::string& model, const std::string& internalName,
                       std::string& kept) {
  kept.clear();
  HeldFile& held = Held(fileName);
  if (!held.exists || !held.readable) return false;
  return FilterOtherSections(held.text.Text(), model, internalName, kept);
}

void WriteParameterFile(const std::string& fileName, bool replace, const std::string& kept,
                        const std::string& section) {
  HeldFile& held = Held(fileName);
  if (replace) {
    held.text.Assign(kept + section);
  } else {
    held.text.Append(section);
  }
  held.exists = held.readable = held.dirty = true;
}

void FlushParameterFiles() {
  for (auto& [key, held] : Files()) {
    if (!held->dirty) continue;
    held->dirty = false;
    ReplaceFile(held->writePath, held->text.Text());
  }
}

void ResetParameterFiles() {
  FlushParameterFiles();
  Files().clear();
}
