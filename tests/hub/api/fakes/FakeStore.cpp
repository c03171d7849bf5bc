#include "api/fakes/FakeStore.h"

#include "store/Store.h"

FakeStore* FakeStore::now = nullptr;

namespace hub::store {

namespace {

int64_t ToCount(model::Time time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

}  // namespace

struct Store::Parts {};

Store::Store(boost::asio::io_context&, StoreOptions, const model::Clock&) {}
Store::~Store() = default;

std::optional<std::string> Store::Document(std::string_view name) const {
  const auto found = FakeStore::now->documents.find(name);
  if (found == FakeStore::now->documents.end()) return std::nullopt;
  return found->second;
}

void Store::PutDocument(std::string_view name, std::string text) {
  FakeStore::now->documents[std::string(name)] = std::move(text);
}

void Store::AddJournal(model::JournalEntry entry) {
  FakeStore::now->journal.push_back(entry.kind + ' ' + entry.by + ": " + entry.text);
}

boost::asio::awaitable<std::optional<History>> Store::ReadHistory(model::ChannelId channel,
                                                                  model::Time from, model::Time to,
                                                                  size_t points) {
  FakeStore& fake = *FakeStore::now;
  if (fake.is_busy) co_return std::nullopt;
  fake.asked_history = std::to_string(channel.address) + '.' + std::to_string(channel.number) +
                       ' ' + std::to_string(ToCount(from)) + ' ' + std::to_string(ToCount(to)) +
                       ' ' + std::to_string(points);
  History history;
  history.step_ms = fake.step_ms;
  for (const auto& [time, mean, min, max] : fake.points)
    history.points.push_back(
        {model::Time(std::chrono::milliseconds(static_cast<int64_t>(time))), mean, min, max});
  co_return history;
}

boost::asio::awaitable<std::optional<JournalPage>> Store::ReadJournal(JournalSpan span) {
  FakeStore& fake = *FakeStore::now;
  if (fake.is_busy) co_return std::nullopt;
  const bool has_end = span.before != std::numeric_limits<uint64_t>::max();
  fake.asked_journal = (span.after ? std::to_string(*span.after) : "newest") +
                       (has_end ? " before " + std::to_string(span.before) : "") + ", " +
                       std::to_string(span.limit);
  co_return JournalPage{fake.entries, fake.lost};
}

}  // namespace hub::store
