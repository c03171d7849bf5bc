// SQLite, as far as the store needs it: a connection and its statements.
//
// The first thing that goes wrong is remembered, and until somebody takes it nothing else is
// done. So a row of statements reads as one: begin, write, write, commit, and look only then.
// One thread at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace hub::store {

struct Failure {
  bool broken = false;  // the file itself; otherwise something around it, which may pass
  std::string text;     // for people
};

class Database;

// Finalizes itself. It must not outlive its database.
class Statement {
 public:
  Statement(Database& database, std::string_view sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // Numbers as integers, texts as bytes, in the order of the question marks. Starts again.
  template <typename... Values>
  Statement& Bind(const Values&... values) {
    Reset();
    int index = 0;
    (BindOne(++index, values), ...);
    return *this;
  }

  bool Next();  // a row is there; false at the end, or when something goes wrong
  void Run() {
    while (Next()) {
    }
  }

  // Of the row that is there, columns from 0.
  int64_t Integer(int column) const;
  std::string_view Bytes(int column) const;  // until Next or Bind
  std::string Text(int column) const { return std::string(Bytes(column)); }

 private:
  void Reset();
  void BindOne(int index, int64_t number);
  void BindOne(int index, uint64_t number) { BindOne(index, static_cast<int64_t>(number)); }
  void BindOne(int index, std::string_view bytes);

  Database& database_;
  sqlite3_stmt* statement_ = nullptr;
};

class Database {
 public:
  enum class Access {
    kWrite,     // alone: another program cannot even read meanwhile. Creates the file, for its
                // owner only
    kRead,      // as others have left it
    kReadFile,  // the file by itself, where nothing can be locked or written
  };

  Database(const std::string& path, Access access);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  const std::optional<Failure>& Failed() const { return failure_; }
  std::optional<Failure> TakeFailure() { return std::exchange(failure_, std::nullopt); }
  void Fail(bool broken, std::string_view what);  // where a caller finds the content wrong

  void Run(const char* sql);             // one statement or several
  int64_t Number(std::string_view sql);  // the first column of the first row; 0 without one

  void Begin() { Run("BEGIN IMMEDIATE"); }
  // False where anything has failed since Begin: then nothing of it is there.
  bool Commit();

 private:
  friend class Statement;
  void NoteError(int code);

  std::string path_;
  sqlite3* handle_ = nullptr;
  std::optional<Failure> failure_;
};

}  // namespace hub::store
