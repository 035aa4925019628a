// Reading the .par and -param.txt files of a model for its instance lines.
#include "post/instance_parameters.h"

#include <cctype>
#include <filesystem>
#include <system_error>
#include <string_view>

#include "design/platform.h"
#include "design/section_head.h"
#include "expr/text.h"

namespace {

// Calls `take` for each line of `text` as a text-mode read gives it: without its
// line end (a "\r" before it included), and no empty line behind a final line end.
template <typename Take>
void ForEachLine(std::string_view text, Take take) {
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!take(line)) return;
    start = end + 1;
  }
}

bool Holds(std::string_view line, std::string_view part) { return line.find(part) != std::string_view::npos; }

// Replaces the model word of an instance line, its last whole blank-separated occurrence of
// `model` (parameters behind it keep their place), by `replacement`. A line that does not hold
// the word gets the replacement behind one blank.
void ReplaceModelWord(std::string& line, const std::string& model, const std::string& replacement) {
  size_t end = line.find_last_not_of(" \t\r\n");
  line.erase(end == std::string::npos ? 0 : end + 1);
  for (size_t pos = line.rfind(model); pos != std::string::npos && !model.empty();
       pos = pos == 0 ? std::string::npos : line.rfind(model, pos - 1)) {
    const size_t after = pos + model.size();
    const bool whole = (pos == 0 || line[pos - 1] == ' ' || line[pos - 1] == '\t') &&
                       (after == line.size() || line[after] == ' ' || line[after] == '\t');
    if (!whole) continue;
    line.replace(pos, model.size(), replacement);
    return;
  }
  line += ' ';
  line += replacement;
}

// The .par file: its first line names the replacement model (behind the first "*");
// the other lines go into `result` unless `firstOnly`. False when there is no first line.
bool ReadParFile(const ParameterFiles::File& file, bool firstOnly, std::string& replacement,
                 std::string& result) {
  const std::string& text = file.text;
  if (!file.read || text.empty()) return false;
  bool first = true;
  ForEachLine(text, [&](std::string_view line) {
    if (first) {
      size_t star = line.find('*');
      replacement = std::string(star == std::string_view::npos ? line : line.substr(star + 1));
      first = false;
      return !firstOnly;
    }
    result.append(line);
    result += '\n';
    return true;
  });
  return true;
}

// Reads a file once: whether it is there, and its text.
ParameterFiles::File ReadOnce(const std::string& fileName, bool wanted) {
  ParameterFiles::File file;
  file.read = wanted && ReadWholeFile(fileName, file.text);
  return file;
}

}  // namespace

bool ReadParameterSection(const std::string& fileName, std::string modelName, std::string internalName,
                          std::string& text) {
  std::string contents;
  if (!ReadWholeFile(fileName, contents)) return false;
  return ParameterSection(contents, std::move(modelName), std::move(internalName), text);
}

bool ParameterSection(std::string_view contents, std::string modelName, std::string internalName,
                      std::string& text) {
  modelName = LowerText(modelName);
  internalName = LowerText(internalName);
  bool inSection = false, kept = false;
  ForEachLine(contents, [&](std::string_view line) {
    if (line.empty()) return true;
    if (IsSectionHead(std::string(line), modelName, internalName)) {
      inSection = true;
    } else if (inSection && Holds(line, "*end")) {
      inSection = false;
    } else if (inSection && Holds(line, "+")) {
      kept = true;
      text.append(line);
      text += '\n';
    }
    return true;
  });
  return kept;
}

bool SymHoldsParameterFiles() {
  namespace fs = std::filesystem;
  std::error_code error;
  const std::string folder = FileSystemPath("sym");
  if (!fs::is_directory(folder, error)) return error && error != std::errc::no_such_file_or_directory;
  fs::directory_iterator it(folder, error), end;
  if (error) return true;
  for (; it != end; it.increment(error)) {
    if (error) return true;
    const std::string name = LowerText(it->path().filename().string());
    const auto endsWith = [&name](std::string_view tail) {
      return name.size() >= tail.size() && name.compare(name.size() - tail.size(), tail.size(), tail) == 0;
    };
    if (endsWith(".par") || endsWith("-param.txt")) return true;
  }
  return error.value() != 0;
}

std::string LoadInstanceParameters(const std::string& instanceName, const std::string& modelName, std::string& line,
                                   const std::unordered_map<std::string, std::string>& internalNames,
                                   std::string& currentInstance, ParameterFileCache& cache) {
  if (modelName.empty()) return std::string();
  // A deck places the same model many times: each model's files are looked for and read once.
  auto [entry, added] = cache.try_emplace(modelName);
  ParameterFiles& files = entry->second;
  if (added) {
    const std::string parFile = "sym\\" + modelName + ".par";
    const std::string paramFile = "sym\\" + modelName + "-param.txt";
    files.any = FileExists(parFile) || FileExists(paramFile);
    files.par = ReadOnce(parFile, files.any);
    files.param = ReadOnce(paramFile, files.any);
  }
  if (!files.any) return std::string();
  const std::string instance = LowerText(instanceName);
  currentInstance.clear();
  // The internal name picks a -param.txt section; without that file nothing asks for it, and
  // a pass running beside the generator must not read the map the generator is filling.
  std::string result;
  bool fromSection = false;
  if (files.param.read) {
    auto found = internalNames.find(instance);
    const std::string internalName = found == internalNames.end() ? std::string() : found->second;
    fromSection = ParameterSection(files.param.text, modelName, internalName, result);
  }
  if (!fromSection) result.clear();
  std::string replacement;
  if (ReadParFile(files.par, fromSection, replacement, result))
    ReplaceModelWord(line, modelName, replacement);
  return result;
}
