// What is kept of the past: curves and the journal.
#include <fmt/format.h>

#include <chrono>
#include <utility>

#include "api/Handlers.h"
#include "api/Times.h"

namespace hub::api {

namespace {

constexpr std::chrono::hours kUsualSpan{24};
constexpr int64_t kUsualPoints = 500;
constexpr int kRetryStoreSeconds = 1;

// What the store answers, where it answers.
template <typename Value>
Value Answered(std::optional<Value> value) {
  if (!value) throw RetryLater(503, "too many questions to the store at once", kRetryStoreSeconds);
  return std::move(*value);
}

}  // namespace

Answer GetHistory(House& house, Request request) {
  const std::string text = TextAt(request, "channel");
  const auto id = ParseChannel(text);
  if (!id) throw ProblemOf(404, fmt::format("no channel {}; they are as F.3", text), "channel");
  const auto given_from = MaybeInteger(request, "from");
  const auto given_to = MaybeInteger(request, "to");
  const model::Time to = given_to ? TimeOf(*given_to) : house.clock.Now();
  const model::Time from = given_from ? TimeOf(*given_from) : to - kUsualSpan;
  if (from >= to)
    throw DoesNotFit("from", fmt::format("from {} is not before {}", TimeText(from), TimeText(to)));
  const auto points = static_cast<size_t>(MaybeInteger(request, "points").value_or(kUsualPoints));
  auto reading = house.store.ReadHistory(*id, from, to, points);
  std::optional<store::History> history = co_await std::move(reading);
  co_return Done(HistoryJson(house.bus, *id, Answered(std::move(history))));
}

Answer GetJournal(House& house, Request request) {
  store::JournalSpan span;
  if (const auto after = MaybeInteger(request, "after")) span.after = static_cast<uint64_t>(*after);
  if (const auto before = MaybeInteger(request, "before"))
    span.before = static_cast<uint64_t>(*before);
  if (const auto limit = MaybeInteger(request, "limit")) span.limit = static_cast<size_t>(*limit);
  auto reading = house.store.ReadJournal(span);
  std::optional<store::JournalPage> page = co_await std::move(reading);
  co_return Done(JournalJson(Answered(std::move(page))));
}

}  // namespace hub::api
