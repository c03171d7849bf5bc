#include "store/Store.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <cmath>

#include "model/Fault.h"
#include "store/Disk.h"
#include "store/Milliseconds.h"
#include "store/Worker.h"

namespace hub::store {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::milliseconds kDocumentDelay{500};  // and half a second for the disk
constexpr std::chrono::seconds kGatherTime{60};
constexpr std::chrono::seconds kRetryTime{10};
constexpr size_t kManySamples = Gathered::kMostSamples / 2;  // are written at once
constexpr size_t kMostQuestions = Worker::kMostJobs - 6;     // the other places are for writing
constexpr size_t kMostUnheard = 16;
constexpr int64_t kLastTime = int64_t{1} << 52;

int64_t ToDiskTime(model::Time time) {
  return std::clamp<int64_t>(ToMilliseconds(time), 0, kLastTime);
}

// An answer on its way from the other thread. Whoever waits for it may be gone when it comes.
template <typename Answer>
struct Pending {
  explicit Pending(asio::io_context& context)
      : arrived(context, asio::steady_timer::time_point::max()) {}
  std::optional<Answer> answer;
  asio::steady_timer arrived;  // has expired when the answer is there

  void Arrive() { arrived.expires_at(asio::steady_timer::time_point::min()); }
};

template <typename Answer>
asio::awaitable<std::optional<Answer>> Await(std::shared_ptr<Pending<Answer>> pending) {
  boost::system::error_code cancelled;
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  asio::awaitable<void> arrival = pending->arrived.async_wait(token);
  co_await std::move(arrival);
  co_return std::move(pending->answer);
}

}  // namespace

// The caller's side. What it gathers goes to the disk's thread with a job: to be written, or to be
// part of an answer.
struct Store::Parts {
  Parts(asio::io_context& io_context, const StoreOptions& options, const model::Clock& time);
  ~Parts();

  void AddEntry(model::JournalEntry entry);
  void Plan(std::optional<model::SteadyTime>& due, std::chrono::milliseconds delay);
  void WriteIfDue();
  void StartWriting(Disk::Scope scope);
  void TakeReport(Disk::Report latest);
  void ArmTimer();
  std::optional<model::SteadyTime> NextDue() const;
  void Note(const std::string& text);
  std::shared_ptr<Gathered> HandOver();
  template <typename Answer, typename Ask>
  asio::awaitable<std::optional<Answer>> Question(Ask ask);
  void EndQuestion(bool has_notices);

  asio::io_context& context;
  const model::Clock& clock;
  Disk disk;
  Disk::Documents documents;
  bool documents_lost = false;
  uint64_t last_entry = 0;  // its number
  model::JournalSink sink;
  std::vector<model::JournalEntry> unheard;  // before there was a sink
  Gathered fresh;                            // not handed over yet
  uint64_t dropped = 0;                      // of fresh
  Disk::Report report;
  std::string notice;  // the last one; it stays Trouble until the next start
  bool writing = false;
  bool stopped = false;
  size_t documents_under_way = 0;
  uint64_t samples_under_way = 0;
  std::optional<model::SteadyTime> documents_due;
  std::optional<model::SteadyTime> values_due;
  std::optional<model::SteadyTime> retry_due;
  size_t questions = 0;
  asio::steady_timer timer;
  std::shared_ptr<Parts*> self;  // what comes later finds out here whether the store is gone
  Worker worker;                 // ends first
};

Store::Parts::Parts(asio::io_context& io_context, const StoreOptions& options,
                    const model::Clock& time)
    : context(io_context),
      clock(time),
      disk({options.folder, options.keep_days, options.max_mb}),
      timer(io_context),
      self(std::make_shared<Parts*>(this)) {
  Disk::Content content = disk.Open(ToDiskTime(clock.Now()));
  documents = std::move(content.documents);
  documents_lost = content.documents_lost;
  last_entry = content.last_entry;
  TakeReport(disk.MakeReport());
}

Store::Parts::~Parts() {
  self.reset();
  const int64_t now = ToDiskTime(clock.Now());
  try {
    worker.Post([this, rest = HandOver(), now] {
      disk.Take(std::move(*rest));
      disk.Write(Disk::Scope::kAll, now);
    });
  } catch (const std::exception& fault) {
    model::EndAtOnce(fault);  // no memory even for this
  }
}

void Store::Parts::AddEntry(model::JournalEntry entry) {
  entry.sequence = ++last_entry;
  fresh.AddEntry(entry);
  Plan(values_due, kGatherTime);
  if (sink) {
    sink(std::move(entry));
  } else if (unheard.size() < kMostUnheard) {
    unheard.push_back(std::move(entry));
  }
}

void Store::Parts::Note(const std::string& text) { AddEntry({0, clock.Now(), "hub", text, ""}); }

void Store::Parts::Plan(std::optional<model::SteadyTime>& due, std::chrono::milliseconds delay) {
  if (!due) {
    due = clock.Steady() + delay;
    ArmTimer();
  }
  WriteIfDue();
}

std::optional<model::SteadyTime> Store::Parts::NextDue() const {
  if (writing || stopped) return std::nullopt;
  if (retry_due) return retry_due;
  if (documents_due && values_due) return std::min(*documents_due, *values_due);
  return documents_due ? documents_due : values_due;
}

void Store::Parts::ArmTimer() {
  const auto due = NextDue();
  if (!due) return;
  timer.expires_after(std::max(*due - clock.Steady(), model::SteadyTime::duration::zero()));
  timer.async_wait([store = std::weak_ptr(self)](const boost::system::error_code& error) {
    if (error) return;
    if (const auto parts = store.lock()) {
      (*parts)->WriteIfDue();
      (*parts)->ArmTimer();
    }
  });
}

void Store::Parts::WriteIfDue() {
  if (writing) return;
  const auto now = clock.Steady();
  if (retry_due) {
    if (now >= *retry_due) StartWriting(Disk::Scope::kAll);
  } else if ((values_due && now >= *values_due) || fresh.Samples().size() >= kManySamples) {
    StartWriting(Disk::Scope::kAll);
  } else if (documents_due && now >= *documents_due) {
    StartWriting(Disk::Scope::kDocuments);
  }
}

std::shared_ptr<Gathered> Store::Parts::HandOver() {
  disk.samples_waiting += fresh.Samples().size();
  return std::make_shared<Gathered>(std::exchange(fresh, {}));
}

void Store::Parts::StartWriting(Disk::Scope scope) {
  writing = true;
  documents_under_way = fresh.documents.size();
  retry_due.reset();
  documents_due.reset();
  if (scope == Disk::Scope::kAll) values_due.reset();
  const int64_t now = ToDiskTime(clock.Now());
  auto gathered = HandOver();
  samples_under_way = disk.samples_waiting;
  worker.Post([this, scope, now, gathered = std::move(gathered), store = std::weak_ptr(self)] {
    disk.Take(std::move(*gathered));
    disk.Write(scope, now);
    asio::post(context, [store, latest = disk.MakeReport()] {
      if (const auto parts = store.lock()) (*parts)->TakeReport(latest);
    });
  });
}

void Store::Parts::TakeReport(Disk::Report latest) {
  writing = false;
  documents_under_way = 0;
  samples_under_way = 0;
  const bool failed_before = !report.failure.empty();
  report = std::move(latest);
  if (!report.failure.empty()) {
    retry_due = clock.Steady() + kRetryTime;
    report.failure += "; everything is kept in memory until it can be written";
  }
  for (const std::string& text : std::exchange(report.notices, {})) Note(notice = text);
  if (!failed_before && !report.failure.empty()) Note(report.failure);
  if (failed_before && report.failure.empty())
    Note("the store can be written again; values lost meanwhile: " +
         std::to_string(dropped + disk.samples_dropped));
  WriteIfDue();
  ArmTimer();
}

template <typename Answer, typename Ask>
asio::awaitable<std::optional<Answer>> Store::Parts::Question(Ask ask) {
  auto pending = std::make_shared<Pending<Answer>>(context);
  if (questions == kMostQuestions) {
    pending->Arrive();
    return Await(std::move(pending));
  }
  ++questions;
  auto documents_kept = std::exchange(fresh.documents, {});
  auto gathered = HandOver();
  fresh.documents = std::move(documents_kept);
  worker.Post([this, ask, pending, gathered, store = std::weak_ptr(self)]() mutable {
    disk.Take(std::move(*gathered));
    Answer answer = ask(disk);
    asio::post(context, [pending = std::move(pending), answer = std::move(answer), store,
                         has_notices = disk.HasNotices()]() mutable {
      pending->answer = std::move(answer);
      pending->Arrive();
      if (const auto parts = store.lock()) (*parts)->EndQuestion(has_notices);
    });
  });
  return Await(std::move(pending));
}

// The file was found broken on the way: say so now, and write the documents to the new one.
void Store::Parts::EndQuestion(bool has_notices) {
  --questions;
  if (has_notices && !writing) StartWriting(Disk::Scope::kAll);
}

Store::Store(asio::io_context& context, StoreOptions options, const model::Clock& clock)
    : parts_(std::make_unique<Parts>(context, options, clock)) {}

Store::~Store() = default;

void Store::Stop() {
  parts_->stopped = true;
  parts_->timer.cancel();
}

std::string Store::Trouble() const {
  return parts_->report.failure.empty() ? parts_->notice : parts_->report.failure;
}

bool Store::DocumentsLost() const { return parts_->documents_lost; }

std::optional<std::string> Store::Document(std::string_view name) const {
  const auto found = parts_->documents.find(name);
  if (found == parts_->documents.end()) return std::nullopt;
  return found->second;
}

void Store::PutDocument(std::string_view name, std::string text) {
  const auto [kept, is_new] = parts_->documents.try_emplace(std::string(name), text);
  if (!is_new && kept->second == text) return;
  kept->second = text;
  parts_->fresh.documents[std::string(name)] = std::move(text);
  parts_->Plan(parts_->documents_due, kDocumentDelay);
}

void Store::RemoveDocument(std::string_view name) {
  const auto found = parts_->documents.find(name);
  if (found == parts_->documents.end()) return;
  parts_->documents.erase(found);
  parts_->fresh.documents[std::string(name)] = std::nullopt;
  parts_->Plan(parts_->documents_due, kDocumentDelay);
}

void Store::AddValue(model::ChannelId channel, model::Time time, double value) {
  if (!std::isfinite(value) || channel.address > 15 || channel.number > 255) return;
  parts_->fresh.AddSample({NumberOf(channel), {ToDiskTime(time), value}});
  parts_->dropped += parts_->fresh.TakeDropped();
  parts_->Plan(parts_->values_due, kGatherTime);
}

void Store::AddJournal(model::JournalEntry entry) { parts_->AddEntry(std::move(entry)); }

asio::awaitable<std::optional<History>> Store::ReadHistory(model::ChannelId channel,
                                                           model::Time from, model::Time to,
                                                           size_t points) {
  const Span span{NumberOf(channel), ToDiskTime(from), ToDiskTime(to), points};
  const int64_t now = ToDiskTime(parts_->clock.Now());
  return parts_->Question<History>([span, now](Disk& disk) {
    if (span.points == 0 || span.from > span.to) return History{};
    return disk.ReadHistory(span, now);
  });
}

asio::awaitable<std::optional<JournalPage>> Store::ReadJournal(JournalSpan span) {
  const int64_t now = ToDiskTime(parts_->clock.Now());
  return parts_->Question<JournalPage>([span, now, last = parts_->last_entry](Disk& disk) {
    return disk.ReadJournal(span, last, now);
  });
}

void Store::OnJournal(model::JournalSink sink) {
  parts_->sink = std::move(sink);
  for (model::JournalEntry& entry : std::exchange(parts_->unheard, {}))
    parts_->sink(std::move(entry));
}

Store::Counters Store::Count() const {
  const Parts& parts = *parts_;
  return {
      parts.report.bytes_written,
      parts.fresh.Samples().size() +
          std::max<uint64_t>(parts.samples_under_way, parts.disk.samples_waiting),
      parts.dropped + parts.disk.samples_dropped,
      parts.fresh.documents.size() + parts.documents_under_way + parts.report.documents_waiting};
}

}  // namespace hub::store
