// The open project behind TesselPI: finds the database folder, loads it, hands out the snapshot.
#pragma once

#include <memory>
#include <string>

#include "design/db/database.h"
#include "design/tessel.h"

namespace Tessel {

class TesselImpl {
 public:
  /// Loads `<cwd>/<location>`; a failure is kept and reported by GetSnapshot.
  Result Open(const std::string& location);
  Result GetSnapshot(ContainerT<const ISnapshot>& snapshot, const std::string& name) const;

 private:
  std::shared_ptr<const vdb::Database> db_;
  std::string folder_;  // absolute path of the database folder, for messages
  std::string error_;   // why the open failed; empty once open
  bool opened_ = false;
};

}  // namespace Tessel
