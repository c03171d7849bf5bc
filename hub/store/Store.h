// What outlives the hub: history, journal, and small documents (names, accounts, outputs).
//
// SQLite in a thread of its own. Nothing here waits for the disk: what is written is gathered and
// goes to the file later, what is read is answered on the io_context's thread. A broken file is
// set aside, and the hub goes on with a new one; on a full disk writing waits.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "model/Clock.h"
#include "model/Journal.h"
#include "store/History.h"

namespace hub::store {

struct StoreOptions {
  std::string folder = "/var/lib/qelm-hub";
  int keep_days = 7;  // of values as they came; a month of minutes and all hours are kept besides
  int max_mb = 256;
  bool operator==(const StoreOptions&) const = default;
};

class Store {
 public:
  // Opens or creates the file, reads all documents. Never throws for what is on the disk: without
  // a usable folder it runs in memory, tries again every 10 s, and Trouble() says why.
  Store(boost::asio::io_context& context, StoreOptions options, const model::Clock& clock);
  ~Store();  // writes what is gathered
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  // From now on nothing is written before the end, and no timer keeps the context running.
  void Stop();

  // What is wrong with the disk, for people; empty when all is well. A broken file that was set
  // aside is named until the next start.
  std::string Trouble() const;

  // There were documents, and they could not all be read as they were put last: that one is missing
  // means nothing, and one that is there may be old. Whoever keeps accounts in them must not take
  // it for "no accounts", nor for those that hold.
  bool DocumentsLost() const;

  // The document that a file begins with whose forerunner was set aside with such a loss. It stays
  // until somebody removes it.
  static constexpr std::string_view kLostMark = "locked";

  // Documents by name, JSON texts. Reading is from memory; what is put is on the disk within 1 s.
  std::optional<std::string> Document(std::string_view name) const;
  void PutDocument(std::string_view name, std::string text);
  void RemoveDocument(std::string_view name);

  // Gathered, on the disk within 60 s. A line is 0 or 1. A value that is not finite is none.
  void AddValue(model::ChannelId channel, model::Time time, double value);
  void AddJournal(model::JournalEntry entry);  // gives it its number

  // Both give nothing where 250 others wait for an answer already.
  // At most so many points, from the finest level that fits, what is not written yet included.
  // Both ends belong to the span.
  boost::asio::awaitable<std::optional<History>> ReadHistory(model::ChannelId channel,
                                                             model::Time from, model::Time to,
                                                             size_t points);
  boost::asio::awaitable<std::optional<JournalPage>> ReadJournal(JournalSpan span);

  // Each entry with its number, on the caller's thread. What happened while the store was opened
  // comes at once.
  void OnJournal(model::JournalSink sink);

  // For the monitoring system.
  struct Counters {
    uint64_t bytes_written = 0;  // to a disk, as the system counts them
    uint64_t values_waiting = 0;
    uint64_t values_dropped = 0;  // more than memory may hold while the disk is full
    uint64_t documents_waiting = 0;
  };
  Counters Count() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::store
