// The store's file, and what waits for it.
//
// Everything here may wait for the disk, so the store's thread calls it; Open is called before
// that thread starts. What cannot be written is kept and tried again with the next Write. A
// broken file is set aside under another name, and a new one begun.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/Curve.h"
#include "store/Database.h"
#include "store/Gathered.h"

namespace hub::store {

struct DiskOptions {
  std::string folder;
  int keep_days = 7;
  int max_mb = 256;
};

class Disk {
 public:
  using Documents = std::map<std::string, std::string, std::less<>>;

  struct Content {
    Documents documents;
    bool documents_lost = false;  // there were some, and they cannot be read
    uint64_t last_entry = 0;      // its number
  };

  // What the other thread has to know after a Write.
  struct Report {
    std::string failure;               // why it could not be written; empty when it was
    std::vector<std::string> notices;  // for the journal, each once
    size_t documents_waiting = 0;
    uint64_t bytes_written = 0;  // by the calling thread since it started
  };

  explicit Disk(DiskOptions options);

  Content Open(int64_t now);  // all times are ms since 1970

  void Take(Gathered gathered);
  enum class Scope { kDocuments, kAll };
  void Write(Scope scope, int64_t now);
  bool HasNotices() const { return !notices_.empty(); }
  Report MakeReport();

  // With all that was taken.
  History ReadHistory(const Span& span, int64_t now);
  JournalPage ReadJournal(const JournalSpan& span, uint64_t last, int64_t now);

  // Any thread may read these. Whoever hands values over counts them as waiting.
  std::atomic<uint64_t> samples_waiting = 0;
  std::atomic<uint64_t> samples_dropped = 0;

 private:
  bool OpenFile();
  Documents ReadDocuments(Database& database);
  void ReadFromUnwritable(Content& content);
  void SetAside(int64_t now);
  bool TryWrite(Scope scope, int64_t now);
  void Housekeep(int64_t now);
  void Trim(int64_t now);
  int64_t BytesUsed();
  void Shrink();
  template <typename Answer, typename Ask>
  Answer Read(int64_t now, const Ask& ask);

  DiskOptions options_;
  std::string path_;
  std::unique_ptr<Database> database_;  // one that has failed reads as an empty one
  bool is_open_ = false;
  Documents documents_;  // all of them
  Gathered waiting_;
  std::optional<Failure> failure_;  // of the last Write
  std::vector<std::string> notices_;
  bool shrunk_ = false;
};

}  // namespace hub::store
