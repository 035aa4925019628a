// Small owning wrappers around an SQLite connection and its prepared statements.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vdb {

class SqliteDb {
 public:
  SqliteDb() = default;
  ~SqliteDb() { sqlite3_close(db_); }
  SqliteDb(const SqliteDb&) = delete;
  SqliteDb& operator=(const SqliteDb&) = delete;

  /// Opens `file`; `create` makes a new file, otherwise it is opened read-only.
  bool Open(const std::string& file, bool create);
  /// Runs statements without results; false with Message() set on failure.
  bool Exec(const char* sql);
  std::string Message() const { return db_ ? sqlite3_errmsg(db_) : "out of memory"; }
  sqlite3* Get() const { return db_; }

 private:
  sqlite3* db_ = nullptr;
};

class SqliteStmt {
 public:
  SqliteStmt(SqliteDb& db, const char* sql) {
    ok_ = sqlite3_prepare_v2(db.Get(), sql, -1, &stmt_, nullptr) == SQLITE_OK;
  }
  ~SqliteStmt() { sqlite3_finalize(stmt_); }
  SqliteStmt(const SqliteStmt&) = delete;
  SqliteStmt& operator=(const SqliteStmt&) = delete;

  bool Ok() const { return ok_; }
  /// Steps a query: true while a row is there.
  bool Row() {
    rc_ = ok_ ? sqlite3_step(stmt_) : SQLITE_ERROR;
    return rc_ == SQLITE_ROW;
  }
  /// Runs an insert with the bound values and resets it; false on failure.
  bool Run() {
    bool done = ok_ && sqlite3_step(stmt_) == SQLITE_DONE;
    sqlite3_reset(stmt_);
    return done;
  }
  void Bind(int col, int64_t value) { sqlite3_bind_int64(stmt_, col, value); }
  void BindNull(int col) { sqlite3_bind_null(stmt_, col); }
  void Bind(int col, const std::string& text) {
    sqlite3_bind_text(stmt_, col, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  }
  /// Binds the words themselves rather than a copy: they must stay as they are until Run().
  void Bind(int col, const std::vector<uint32_t>& words) {
    sqlite3_bind_blob(stmt_, col, words.data(), static_cast<int>(words.size() * 4), SQLITE_STATIC);
  }
  /// Binds the bytes themselves rather than a copy: they must stay as they are until Run().
  void BindBytes(int col, const std::string& bytes) {
    sqlite3_bind_blob(stmt_, col, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
  }
  int64_t Int(int col) const { return sqlite3_column_int64(stmt_, col); }
  bool IsNull(int col) const { return sqlite3_column_type(stmt_, col) == SQLITE_NULL; }
  int Type(int col) const { return sqlite3_column_type(stmt_, col); }
  bool IsInteger(int col) const { return sqlite3_column_type(stmt_, col) == SQLITE_INTEGER; }
  /// The column's type, and in `value` its integer when it holds one (0 otherwise): the scans
  /// of a design read millions of checked integers, and this asks SQLite once for each.
  int TypedInt(int col, int64_t& value) const {
    sqlite3_value* cell = sqlite3_column_value(stmt_, col);
    const int type = sqlite3_value_type(cell);
    value = type == SQLITE_INTEGER ? sqlite3_value_int64(cell) : 0;
    return type;
  }
  std::string Text(int col) const {
    const unsigned char* text = sqlite3_column_text(stmt_, col);
    return text ? std::string(reinterpret_cast<const char*>(text), sqlite3_column_bytes(stmt_, col)) : "";
  }
  /// The column's bytes; valid until the next step.
  const unsigned char* Blob(int col, size_t& size) const {
    const void* data = sqlite3_column_blob(stmt_, col);
    size = static_cast<size_t>(sqlite3_column_bytes(stmt_, col));
    return static_cast<const unsigned char*>(data);
  }
  /// True when the last Row() ended the result normally rather than on an error.
  bool Finished() const { return rc_ == SQLITE_DONE; }
  sqlite3_stmt* Get() const { return stmt_; }

 private:
  sqlite3_stmt* stmt_ = nullptr;
  bool ok_ = false;
  int rc_ = SQLITE_OK;
};

}  // namespace vdb
