#include "store/Disk.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "store/HistoryTables.h"
#include "store/JournalTable.h"
#include "store/Store.h"

namespace hub::store {

namespace {

constexpr int64_t kApplication = 0x71656C6D;
constexpr int64_t kVersion = 1;
constexpr int64_t kMegabyte = 1 << 20;
constexpr int64_t kLogBytes = kMegabyte;  // what the write-ahead log comes to

// Before anything is read: two hubs cannot share a folder, and SQLite needs no shared index, a
// file that the system would keep writing.
constexpr const char* kAlone = "PRAGMA locking_mode = EXCLUSIVE";

// The log is appended to once a minute, and the system writes it by blocks of 4 KB: small pages
// share them. FULL: a commit is on the disk when it returns.
constexpr const char* kSettings =
    "PRAGMA page_size = 1024;"
    "PRAGMA journal_mode = WAL;"
    "PRAGMA synchronous = FULL;"
    "PRAGMA wal_autocheckpoint = 1000;"
    "PRAGMA journal_size_limit = 1048576;"
    "PRAGMA cache_size = -1024;"
    "PRAGMA temp_store = MEMORY;"
    "PRAGMA cell_size_check = ON;";

constexpr const char* kDocumentSchema =
    "CREATE TABLE document (name BLOB PRIMARY KEY, text BLOB) WITHOUT ROWID;";

constexpr const char* kReadEachTable =
    "SELECT 1 FROM document, journal, batch, raw, block, state LIMIT 0";

void WriteDocuments(Database& database, const Gathered::Documents& documents) {
  Statement put(database, "INSERT OR REPLACE INTO document VALUES (?, ?)");
  Statement remove(database, "DELETE FROM document WHERE name = ?");
  for (const auto& [name, text] : documents) {
    if (text) {
      put.Bind(name, *text).Run();
    } else {
      remove.Bind(name).Run();
    }
  }
}

// With what is to be in it from the first moment on.
void CreateSchema(Database& database, const Gathered::Documents& documents) {
  database.Begin();
  database.Run(HistoryTables::Schema());
  database.Run(JournalTable::Schema());
  database.Run(kDocumentSchema);
  database.Run(("PRAGMA application_id = " + std::to_string(kApplication)).c_str());
  database.Run(("PRAGMA user_version = " + std::to_string(kVersion)).c_str());
  WriteDocuments(database, documents);
  database.Commit();
}

void Prepare(Database& database, const Gathered::Documents& documents) {
  database.Run(kAlone);
  const bool is_new = database.Number("SELECT count(*) FROM sqlite_schema") == 0 &&
                      database.Number("PRAGMA user_version") == 0;
  const bool is_ours = database.Number("PRAGMA application_id") == kApplication &&
                       database.Number("PRAGMA user_version") == kVersion;
  if (!is_new && !is_ours) database.Fail(true, "is of another program or version");
  database.Run(kSettings);
  if (is_new) CreateSchema(database, documents);
  database.Run(kReadEachTable);
}

std::string FreeName(const std::string& path, int64_t now) {
  const std::time_t seconds = now / kSecond;
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char stamp[32] = "";
  std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &utc);
  const std::string base = path + ".broken-" + stamp;
  std::string name = base;
  for (int i = 2; std::filesystem::exists(name); ++i) name = base + "-" + std::to_string(i);
  return name;
}

// Also where nobody can tell, as on a disk that fails.
bool HasContent(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  const bool is_missing =
      error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
  return !is_missing && (error || size > 0);
}

// What the system counts as written to a disk; 0 where it does not count.
uint64_t BytesWrittenByThread() {
  std::ifstream file("/proc/thread-self/io");
  uint64_t number = 0;
  for (std::string word; file >> word >> number;)
    if (word == "write_bytes:") return number;
  return 0;
}

}  // namespace

Disk::Disk(DiskOptions options)
    : options_(std::move(options)),
      path_((std::filesystem::path(options_.folder) / "hub.db").string()) {}

bool Disk::OpenFile() {
  std::error_code ignored;  // what opens the file says it better
  std::filesystem::create_directories(options_.folder, ignored);
  database_.reset();
  database_ = std::make_unique<Database>(path_, Database::Access::kWrite);
  Prepare(*database_, waiting_.documents);
  is_open_ = !database_->Failed();
  if (!is_open_) failure_ = database_->Failed();
  return is_open_;
}

Disk::Content Disk::Open(int64_t now) {
  Content content;
  if (OpenFile()) {
    content.documents = ReadDocuments(*database_);
    content.last_entry = JournalTable(*database_).LastNumber();
    if (database_->Failed()) failure_ = database_->Failed();
  }
  if (failure_) {
    ReadFromUnwritable(content);
    if (failure_->broken) {
      if (content.documents_lost)
        content.documents.try_emplace(std::string(Store::kLostMark), "a broken file took some");
      for (const auto& [name, text] : content.documents) waiting_.documents[name] = text;
      SetAside(now);
    }
  }
  documents_ = content.documents;
  if (is_open_ && !waiting_.IsEmpty()) Write(Scope::kDocuments, now);
  return content;
}

Disk::Documents Disk::ReadDocuments(Database& database) {
  Documents documents;
  Statement statement(database, "SELECT name, text FROM document");
  while (statement.Next()) documents[statement.Text(0)] = statement.Text(1);
  return documents;
}

// Accounts above all: a hub must not come up without them because its disk cannot be written.
void Disk::ReadFromUnwritable(Content& content) {
  database_.reset();
  if (HasContent(path_)) {
    content.documents_lost = true;
    for (const auto access : {Database::Access::kRead, Database::Access::kReadFile}) {
      Database database(path_, access);
      Documents documents = ReadDocuments(database);
      content.documents.merge(documents);
      content.last_entry = std::max(content.last_entry, JournalTable(database).LastNumber());
      if (database.Failed()) continue;
      // The file by itself is as old as what was last moved into it from its log.
      const bool is_old = access == Database::Access::kReadFile && HasContent(path_ + "-wal");
      content.documents_lost = is_old;
      break;
    }
  }
  database_ = std::make_unique<Database>(path_, Database::Access::kRead);
  database_->Fail(failure_->broken, failure_->text);
  is_open_ = false;
}

void Disk::SetAside(int64_t now) {
  const std::string reason = failure_->text;
  database_.reset();
  const std::string aside = FreeName(path_, now);
  std::error_code error;
  std::filesystem::rename(path_, aside, error);
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    std::error_code ignored;
    std::filesystem::rename(path_ + suffix, aside + suffix, ignored);
  }
  for (const auto& [name, text] : documents_) waiting_.documents.try_emplace(name, text);
  if (!error) notices_.push_back(reason + "; set aside as " + aside + ", and a new file begun");
  failure_.reset();
  OpenFile();
}

void Disk::Take(Gathered gathered) {
  for (const auto& [name, text] : gathered.documents) {
    if (text) {
      documents_[name] = *text;
    } else {
      documents_.erase(name);
    }
  }
  waiting_.Append(std::move(gathered));
  const uint64_t dropped = waiting_.TakeDropped();
  samples_dropped += dropped;
  samples_waiting -= dropped;
}

void Disk::Write(Scope scope, int64_t now) {
  if (TryWrite(scope, now)) return;
  if (!failure_->broken) return;
  SetAside(now);
  if (is_open_) TryWrite(Scope::kAll, now);
}

bool Disk::TryWrite(Scope scope, int64_t now) {
  failure_.reset();
  if (!is_open_ && !OpenFile()) return false;
  database_->Begin();
  WriteDocuments(*database_, waiting_.documents);
  if (scope == Scope::kAll) {
    JournalTable(*database_).Write(waiting_.Entries());
    HistoryTables(*database_).Write(waiting_.Samples());
    Housekeep(now);
  }
  if (!database_->Commit()) {
    failure_ = database_->TakeFailure();
    return false;
  }
  waiting_.documents.clear();
  if (scope == Scope::kAll) {
    samples_waiting -= waiting_.Samples().size();
    waiting_.Clear();
    Shrink();
  }
  return true;
}

// Only what was old at the last roll already is dropped: a clock that jumps for less than an hour
// costs nothing.
void Disk::Housekeep(int64_t now) {
  HistoryTables history(*database_);
  if (history.IsDueToRoll()) {
    history.Roll();
    const auto before = history.NoteRollTime(now);
    if (before) history.DropOlder(std::min(*before, now), options_.keep_days);
    JournalTable(*database_).DropPastLimit();
  }
  Trim(now);
}

int64_t Disk::BytesUsed() {
  return (database_->Number("PRAGMA page_count") - database_->Number("PRAGMA freelist_count")) *
         database_->Number("PRAGMA page_size");
}

// The oldest of the finest first. Some more than needed, so that it is not done each time.
void Disk::Trim(int64_t now) {
  const int64_t limit = std::max(options_.max_mb * kMegabyte - kLogBytes, kMegabyte / 2);
  if (BytesUsed() <= limit) return;
  HistoryTables history(*database_);
  JournalTable journal(*database_);
  while (BytesUsed() > limit - limit / 20) {
    const bool dropped = history.DropOldestRaw(now) || history.DropOldestMinutes() ||
                         journal.DropOldest() || history.DropOldestHours();
    if (!dropped) return;
  }
}

// Free pages are used again, so the file grows no further; it only has to become smaller after
// somebody has lowered the limit. That takes a while and as much room again: once.
void Disk::Shrink() {
  const int64_t limit = options_.max_mb * kMegabyte;
  const int64_t size =
      database_->Number("PRAGMA page_count") * database_->Number("PRAGMA page_size");
  if (shrunk_ || size <= limit) return;
  shrunk_ = true;
  database_->Run("VACUUM");
  database_->TakeFailure();
}

Disk::Report Disk::MakeReport() {
  Report report;
  if (failure_) report.failure = failure_->text;
  report.notices = std::exchange(notices_, {});
  report.documents_waiting = waiting_.documents.size();
  report.bytes_written = BytesWrittenByThread();
  return report;
}

// A file that turns out to be broken is set aside, and the answer is what is left.
template <typename Answer, typename Ask>
Answer Disk::Read(int64_t now, const Ask& ask) {
  Answer answer = ask();
  if (!is_open_ || !database_->Failed()) return answer;
  failure_ = database_->TakeFailure();
  if (!failure_->broken) return answer;
  SetAside(now);
  return ask();
}

History Disk::ReadHistory(const Span& span, int64_t now) {
  return Read<History>(now,
                       [&] { return HistoryTables(*database_).Read(span, waiting_.Samples()); });
}

JournalPage Disk::ReadJournal(const JournalSpan& span, uint64_t last, int64_t now) {
  return Read<JournalPage>(
      now, [&] { return JournalTable(*database_).Read(span, last, waiting_.Entries()); });
}

}  // namespace hub::store
