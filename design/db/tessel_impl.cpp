// The open project behind TesselPI: finds the database folder, loads it, hands out the snapshot.
#include "design/db/tessel_impl.h"

#include <unistd.h>

#include "design/db/design_store.h"
#include "design/db/tessel_objects.h"
#include "design/platform.h"

namespace Tessel {

namespace {

std::string AbsoluteFolder(const std::string& location) {
  std::string path = FileSystemPath(location);
  if (!path.empty() && path[0] == '/') return path;
  char cwd[4096];
  if (!getcwd(cwd, sizeof cwd)) return path;
  return std::string(cwd) + "/" + path;
}

}  // namespace

Result TesselImpl::Open(const std::string& location) {
  opened_ = true;
  db_.reset();
  folder_ = AbsoluteFolder(location.empty() ? "database" : location);
  std::string file = folder_ + "/" + vdb::kDatabaseFile;
  if (!PathExists(folder_)) {
    error_ = "No design database in \"" + folder_ + "\": the folder does not exist";
    return Result::Fail(error_);
  }
  if (!FileExists(file)) {
    error_ = "No design database in \"" + folder_ + "\": the folder holds no " + vdb::kDatabaseFile;
    return Result::Fail(error_);
  }
  vdb::Design design;
  std::string reason;
  if (!vdb::LoadDesign(file, design, reason)) {
    error_ = "The design database \"" + file + "\" cannot be read: " + reason;
    return Result::Fail(error_);
  }
  error_.clear();
  db_ = std::make_shared<const vdb::Database>(std::move(design));
  return Result::Ok();
}

Result TesselImpl::GetSnapshot(ContainerT<const ISnapshot>& snapshot, const std::string& name) const {
  if (!opened_) return Result::Fail("The design database has not been opened");
  if (!db_) return Result::Fail(error_);
  if (db_->design().snapshot != name)
    return Result::Fail("No snapshot \"" + name + "\" in the design database \"" + folder_ + "\"");
  snapshot = ContainerT<const ISnapshot>(std::make_shared<vdb::SnapshotObj>(db_));
  return Result::Ok();
}

}  // namespace Tessel
