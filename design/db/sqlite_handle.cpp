// Small owning wrappers around an SQLite connection and its prepared statements.
#include "design/db/sqlite_handle.h"

namespace vdb {

bool SqliteDb::Open(const std::string& file, bool create) {
  // Without the statistics of its allocations SQLite takes no global lock for each one: a write
  // of a design allocates for every row. Only possible before SQLite starts, hence the first open.
  static const bool configured = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
  (void)configured;
  // A connection is only ever used by the thread that opened it: no locking per call.
  int flags =
      (create ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY) | SQLITE_OPEN_NOMUTEX;
  return sqlite3_open_v2(file.c_str(), &db_, flags, nullptr) == SQLITE_OK;
}

bool SqliteDb::Exec(const char* sql) {
  return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace vdb
