#include "store/Database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>

namespace hub::store {

namespace {

// SQLite gives its other files the mode of this one. One that is there is not opened: closing it
// would end the locks that this process holds on it.
void CreateForOwnerOnly(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file >= 0) {
    close(file);
  } else if (errno == EEXIST) {
    chmod(path.c_str(), S_IRUSR | S_IWUSR);
  }
}

std::string UnlockedUri(const std::string& path) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char each : path) {
    const auto byte = static_cast<unsigned char>(each);
    if (std::isalnum(byte) || each == '/' || each == '.' || each == '-' || each == '_') {
      uri += each;
    } else {
      uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return uri + "?immutable=1";
}

bool IsBroken(int code) {
  const int primary = code & 0xFF;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
}

}  // namespace

Statement::Statement(Database& database, std::string_view sql) : database_(database) {
  if (database.failure_) return;
  database.NoteError(sqlite3_prepare_v2(database.handle_, sql.data(), static_cast<int>(sql.size()),
                                        &statement_, nullptr));
}

Statement::~Statement() { sqlite3_finalize(statement_); }

void Statement::Reset() { sqlite3_reset(statement_); }

void Statement::BindOne(int index, int64_t number) {
  if (statement_ != nullptr) database_.NoteError(sqlite3_bind_int64(statement_, index, number));
}

void Statement::BindOne(int index, std::string_view bytes) {
  if (statement_ == nullptr) return;
  // Of no bytes SQLite makes null, unless it is given a place where they would be.
  const char* data = bytes.empty() ? "" : bytes.data();
  database_.NoteError(sqlite3_bind_blob64(statement_, index, data, bytes.size(), SQLITE_TRANSIENT));
}

bool Statement::Next() {
  if (database_.failure_ || statement_ == nullptr) return false;
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) database_.NoteError(code);
  sqlite3_reset(statement_);
  return false;
}

int64_t Statement::Integer(int column) const { return sqlite3_column_int64(statement_, column); }

std::string_view Statement::Bytes(int column) const {
  const void* bytes = sqlite3_column_blob(statement_, column);
  if (bytes == nullptr) {
    // Of no bytes, or without the memory: what is missing must not pass for what is empty.
    if (const int code = sqlite3_errcode(database_.handle_); code == SQLITE_NOMEM)
      database_.NoteError(code);
    return {};
  }
  return {static_cast<const char*>(bytes),
          static_cast<size_t>(sqlite3_column_bytes(statement_, column))};
}

Database::Database(const std::string& path, Access access) : path_(path) {
  int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  std::string name = path;
  if (access == Access::kWrite) {
    CreateForOwnerOnly(path);
    flags |= SQLITE_OPEN_READWRITE;
  } else {
    flags |= SQLITE_OPEN_READONLY;
  }
  if (access == Access::kReadFile) {
    flags |= SQLITE_OPEN_URI;
    name = UnlockedUri(path);
  }
  NoteError(sqlite3_open_v2(name.c_str(), &handle_, flags, nullptr));
  if (failure_) return;
  // An earlier hub may still be writing its last.
  sqlite3_busy_timeout(handle_, 2000);
  if (access == Access::kWrite && sqlite3_db_readonly(handle_, "main") == 1)
    Fail(false, "cannot be written");
}

Database::~Database() { sqlite3_close_v2(handle_); }

void Database::Fail(bool broken, std::string_view what) {
  if (!failure_) failure_ = Failure{broken, path_ + ": " + std::string(what)};
}

void Database::NoteError(int code) {
  if (code == SQLITE_OK) return;
  Fail(IsBroken(code), handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(code));
}

void Database::Run(const char* sql) {
  if (!failure_) NoteError(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr));
}

int64_t Database::Number(std::string_view sql) {
  Statement statement(*this, sql);
  return statement.Next() ? statement.Integer(0) : 0;
}

bool Database::Commit() {
  Run("COMMIT");
  if (!failure_) return true;
  // Where SQLite has rolled back by itself, there is nothing more to roll back.
  if (handle_ != nullptr && sqlite3_get_autocommit(handle_) == 0)
    sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
  return false;
}

}  // namespace hub::store
