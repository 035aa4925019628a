// Building the design database of a project from a JSON description, and describing it back.
#include "design/db/design_import.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "design/db/design_builder.h"
#include "design/db/design_store.h"
#include "design/db/json_reader.h"
#include "design/db/json_writer.h"
#include "design/db/spice_to_design.h"
#include "design/platform.h"

namespace {

std::string DatabaseFolder(const std::string& projectDir) {
  return FileSystemPath(projectDir.empty() ? "database" : projectDir + "/database");
}

// Writes the design into `folder` under a temporary name and renames it over the database file.
bool StoreDesign(const vdb::Design& design, const std::string& folder, std::string& error) {
  bool created = !PathExists(folder);
  if (created) {
    // The project folder itself is made as well when it is new.
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
  }
  std::string file = folder + "/" + vdb::kDatabaseFile;
  std::string temp = file + ".new-" + std::to_string(getpid());
  std::remove(temp.c_str());
  std::string reason;
  bool ok = vdb::SaveDesign(design, temp, reason);
  if (ok && std::rename(temp.c_str(), file.c_str()) != 0) {
    ok = false;
    reason = "cannot replace " + file;
  }
  if (ok) return true;
  std::remove(temp.c_str());
  if (created) rmdir(folder.c_str());
  error = "(database): " + reason;
  return false;
}

}  // namespace

bool ImportDesign(const std::string& jsonText, const std::string& projectDir, std::string& error,
                  const std::string& snapshot) {
  vdb::Design design;
  vdb::DesignBuilder builder(design);
  if (!vdb::ReadDescription(jsonText, builder, error)) return false;
  if (!builder.Finish(snapshot)) {
    error = builder.Error();
    return false;
  }
  return StoreDesign(design, DatabaseFolder(projectDir), error);
}

bool ExportDesign(const std::string& projectDir, std::string& jsonText, std::string& error) {
  std::string folder = DatabaseFolder(projectDir);
  std::string file = folder + "/" + vdb::kDatabaseFile;
  if (!FileExists(file)) {
    error = "no design database in " + folder;
    return false;
  }
  vdb::Design design;
  std::string reason;
  if (!vdb::LoadDesign(file, design, reason)) {
    error = file + ": " + reason;
    return false;
  }
  jsonText = vdb::WriteDescription(design);
  return true;
}

bool ImportSpiceDesign(const std::string& text, const std::string& fileName, const std::string& projectDir,
                       const std::string& topName, std::string& written, std::string& error) {
  vdb::Design design;
  std::vector<vdb::SpiceSideFile> files;
  auto load = [](const std::string& path, std::string& contents) { return ReadWholeFile(path, contents); };
  if (!vdb::DesignFromSpiceText(text, fileName, load, topName, design, files, error)) return false;
  std::string folder = DatabaseFolder(projectDir);
  if (!StoreDesign(design, folder, error)) return false;
  written += "Wrote " + folder + " (" + std::to_string(design.blocks.size()) + " blocks, " +
             std::to_string(design.comps.size()) + " components)\n";
  std::string base = projectDir.empty() ? "" : projectDir + "/";
  for (const vdb::SpiceSideFile& file : files) {
    if (file.path.rfind("sym/", 0) == 0) MakeFolder(base + "sym");
    if (!ReplaceFile(base + file.path, file.text)) {
      error = "(files): cannot write " + base + file.path;
      return false;
    }
    written += "Wrote " + base + file.path + "\n";
  }
  return true;
}
