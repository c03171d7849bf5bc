#include "link/Survey.h"

#include <algorithm>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

#include "link/CardNews.h"
#include "protocol/ConsoleReplies.h"
#include "protocol/Hex.h"
#include "protocol/Pace.h"

namespace hub::link {

namespace asio = boost::asio;
using model::AdapterState;
using model::Kind;
using protocol::LogEvent;
using Clock = std::chrono::steady_clock;

namespace {

// The daemon waits a second from finding the adapter to asking it for its cards.
constexpr std::chrono::seconds kDiscovery{2};

// On a machine that is busy it comes later, and nothing tells when: what was sent before it is off
// the record then.
constexpr std::chrono::seconds kLatestDiscovery{10};

// Seven polls of an analogue input make its first value.
constexpr std::chrono::milliseconds kFirstPolls{300};

}  // namespace

SteadyTime::duration UntilNextTable(const protocol::CardNames& names,
                                    SteadyTime::duration since_found,
                                    std::chrono::milliseconds cards_every) {
  const bool has_none =
      std::ranges::all_of(names, [](const auto& name) { return name == model::kNoCard; });
  if (has_none && since_found < kLatestDiscovery) return kDiscovery;
  return cards_every;
}

Survey::Survey(asio::any_io_executor executor, std::chrono::milliseconds cards_every,
               model::Bus& bus, ConsoleQueue& console, Sender& sender, Outputs& outputs,
               LogState& log, Tell tell)
    : cards_every_(cards_every),
      bus_(bus),
      console_(console),
      sender_(sender),
      outputs_(outputs),
      log_(log),
      tell_(std::move(tell)),
      wake_(std::move(executor), SteadyTime::max()) {
  due_.fill(SteadyTime::max());
}

void Survey::Begin(bool is_followed) {
  is_begun_ = true;
  is_followed_ = is_followed;
  outputs_.NoteSilentLog(!is_followed);
  // Another program, or a hub before this one, can have set another pace than the log says.
  const bool is_pace_certain = is_followed && (log_.HasBegunAnew() || has_released_);
  if (!is_pace_certain) sender_.Pace().SetPause(std::nullopt);
  ShowAdapter();
  wake_.cancel();
}

void Survey::Lose() {
  is_begun_ = false;
  forced_ = 0;
  listed_.reset();
  polling_.reset();
  due_.fill(SteadyTime::max());
  bus_.SetAdapter({});
  bus_.AssumeOutputs();
}

asio::awaitable<void> Survey::Run() {
  boost::system::error_code cancelled;
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  bool is_introduced = false;
  while (true) {
    if (is_begun_ && !is_introduced) {
      is_introduced = co_await Introduce();
      if (!is_introduced) co_return;
    }
    const auto next = std::ranges::min_element(due_);
    if (*next <= Clock::now()) {
      const auto task = static_cast<Task>(next - due_.begin());
      *next = SteadyTime::max();
      const bool is_done = co_await Do(task);
      if (!is_done) co_return;
      bus_.Publish();
      continue;
    }
    wake_.expires_at(*next);
    co_await wake_.async_wait(token);
  }
}

void Survey::Schedule(Task task, SteadyTime when) {
  due_[task] = when;
  if (when < wake_.expiry()) wake_.expires_at(when);
}

asio::awaitable<bool> Survey::Introduce() {
  const bool has_version = co_await AskVersion();
  if (!has_version) co_return false;
  const bool has_polling = co_await AskPolling();
  if (!has_polling) co_return false;
  const bool has_table = co_await AskTable();
  if (!has_table) co_return false;
  ShowPolling();
  if (is_followed_ && log_.AdapterNow().state == AdapterState::kDown)
    sender_.SetGate(true);
  else if (is_followed_ && found_at_ + kDiscovery > Clock::now())
    SettleWhenFound();
  else
    ReleaseNow();
  // Outputs that settle ask for the inputs behind them: each answer is a report to every client.
  if (due_[kSettle] == SteadyTime::max()) Schedule(kInputs, Clock::now());
  bus_.Publish();
  co_return true;
}

asio::awaitable<bool> Survey::Do(Task task) {
  switch (task) {
    case kSettle: {
      const bool has_table = co_await AskTable();
      // Lost or found again while it was asked.
      const bool is_settled = has_table && due_[kSettle] == SteadyTime::max() &&
                              log_.AdapterNow().state == AdapterState::kUp;
      if (is_settled) ReleaseNow();
      if (is_settled) Schedule(kPolling, Clock::now());
      co_return has_table;
    }
    case kConfirm:
      outputs_.SendAgain();
      co_return true;
    case kTable: {
      const bool has_table = co_await AskTable();
      co_return has_table;
    }
    case kPolling: {
      const bool has_polling = co_await AskPolling();
      Schedule(kInputs, Clock::now() + kFirstPolls);
      co_return has_polling;
    }
    default: {
      const bool has_inputs = co_await AskInputs();
      co_return has_inputs;
    }
  }
}

asio::awaitable<bool> Survey::AskVersion() {
  const auto answer = co_await console_.Ask("DRVVER");
  if (!answer) co_return false;
  model::Daemon daemon = bus_.DaemonNow();
  daemon.version = protocol::ParseVersion(answer->lines);
  bus_.SetDaemon(daemon);
  tell_("daemon", "the daemon is there, version " + daemon.version.value_or("unknown"));
  co_return true;
}

asio::awaitable<bool> Survey::AskTable() {
  Schedule(kTable, Clock::now() + cards_every_);
  const auto answer = co_await console_.Ask("DISCOVER");
  if (!answer) co_return false;
  const auto names = protocol::ParseCardTable(answer->lines);
  if (names) {
    TakeTable(*names);
    const SteadyTime now = Clock::now();
    Schedule(kTable, now + UntilNextTable(*names, now - found_at_, cards_every_));
  }
  co_return true;
}

asio::awaitable<bool> Survey::AskPolling() {
  const auto answer = co_await console_.Ask("POLLSTATE");
  if (!answer) co_return false;
  polling_ = protocol::ParsePolling(answer->lines);
  if (listed_) ShowPolling();
  co_return true;
}

// In a new session the daemon says it before the cards are known.
void Survey::ShowPolling() {
  if (polling_) bus_.SetPolling(*polling_);
}

// The answers come as reports. The daemon has 00 for a card that it never polled, so what it does
// not poll is not asked.
asio::awaitable<bool> Survey::AskInputs() {
  if (!bus_.Polling().value_or(false)) co_return true;
  for (unsigned address = 0; address < protocol::kCardCount; ++address) {
    const model::Card* card = bus_.At(address);
    if (card == nullptr || !card->polling.value_or(true)) continue;
    if (card->kind != Kind::kDigitalInput && card->kind != Kind::kAnalogueInput) continue;
    const unsigned blocks = card->Row().blocks;
    for (unsigned block = 0; block < blocks; ++block) {
      std::string line = "GETLASTINPST:";
      line += protocol::HexDigit(address);
      line += '=';
      line += protocol::HexDigit(block);
      const auto answer = co_await console_.Ask(std::move(line));
      if (!answer) co_return false;
    }
  }
  co_return true;
}

void Survey::TakeTable(const protocol::CardNames& names) {
  const CardNews news(bus_);
  bus_.SetCards(names);
  outputs_.TakeCards(std::chrono::system_clock::now());
  for (const std::string& text : news.Since(bus_)) tell_("card", text);
  sender_.Pace().SetPolledCards(static_cast<size_t>(std::ranges::count_if(names, [](auto& name) {
    return model::FindDaemonName(name).direction == model::Direction::kInput;
  })));
  const bool has_new = HasNewCard(names);
  listed_ = names;
  if (!has_new || outputs_.IsHeld()) return;
  Release(Outputs::Record::kAtStart);
  Schedule(kPolling, Clock::now());
}

// The daemon lists a card that it did not list before: it has discovered all of them anew.
bool Survey::HasNewCard(const protocol::CardNames& names) const {
  if (!listed_) return false;
  for (size_t address = 0; address < names.size(); ++address)
    if (names[address] != (*listed_)[address] && names[address] != model::kNoCard) return true;
  return false;
}

void Survey::SettleWhenFound() {
  outputs_.Hold();
  sender_.SetGate(false);
  due_[kConfirm] = SteadyTime::max();
  Schedule(kSettle, std::max(found_at_ + kDiscovery, Clock::now()));
}

void Survey::ReleaseNow() {
  const SteadyTime latest = found_at_ + kLatestDiscovery;
  if (log_.HasBegunAnew() && latest > Clock::now()) Schedule(kConfirm, latest);
  if (log_.IsRecordUntouched())
    Release(Outputs::Record::kAtStart);
  else if (log_.HasBegunAnew() || has_released_)
    Release(Outputs::Record::kUnknown);
  else
    Release(Outputs::Record::kOfAnEarlierHub);
}

void Survey::Release(Outputs::Record record) {
  has_released_ = true;
  log_.NoteRestored();
  outputs_.Release(record);
  sender_.SetGate(true);
}

void Survey::TakeOldLog(std::chrono::seconds age) {
  if (log_.AdapterNow().state == AdapterState::kUp) found_at_ = Clock::now() - age;
  if (log_.Pause()) SetPause(log_.Pause());
}

void Survey::TakeLogLine(const protocol::LogLine& line) {
  if (line.event == LogEvent::kPaceSet) SetPause(log_.Pause());
  if (line.event == LogEvent::kAdapterFound) found_at_ = Clock::now();
  ShowAdapter();
  if (!is_begun_ || !is_followed_) return;
  if (line.event == LogEvent::kAdapterFound) SettleWhenFound();
  if (line.event == LogEvent::kAdapterLost || line.event == LogEvent::kAdapterMissing) {
    due_[kSettle] = SteadyTime::max();
    outputs_.Hold();
    sender_.SetGate(forced_ == 0);
  }
}

void Survey::SetPause(std::optional<std::chrono::microseconds> pause) {
  sender_.Pace().SetPause(pause);
  if (pause) bus_.SetPace(protocol::PercentOf(*pause));
}

void Survey::ShowAdapter() {
  if (!is_begun_ || !is_followed_) return;
  const AdapterState before = bus_.AdapterNow().state;
  const model::Adapter& adapter = log_.AdapterNow();
  bus_.SetAdapter(adapter);
  if (before == adapter.state) return;
  if (adapter.state == AdapterState::kUp)
    tell_("adapter", "the adapter is there, on " + adapter.device.value_or("a device") +
                         ", version " + adapter.version.value_or("unknown"));
  if (adapter.state == AdapterState::kDown) tell_("adapter", "the adapter is gone");
}

void Survey::Understand(const protocol::Lines& answer) {
  if (const auto percent = protocol::ParsePace(answer)) {
    sender_.Pace().SetPause(protocol::RoundPause(*percent));
    bus_.SetPace(*percent);
  }
  const bool is_forced = protocol::SaysForcedDiscovery(answer);
  const auto names = protocol::ParseCardTable(answer);
  if (names) TakeTable(*names);
  for (const uint8_t address : protocol::ParseReboots(answer))
    outputs_.TakeReboot(address, std::chrono::system_clock::now());
  if (is_forced || protocol::SaysPolling(answer)) Schedule(kPolling, Clock::now());
  bus_.Publish();
}

asio::awaitable<void> Survey::BeginForced() {
  ++forced_;
  outputs_.Hold();
  sender_.SetGate(false);
  co_await sender_.Drain();
}

void Survey::EndForced(bool is_answered) {
  if (forced_ == 0 || --forced_ > 0) return;
  const bool is_down = is_followed_ && log_.AdapterNow().state == AdapterState::kDown;
  if (is_down) return sender_.SetGate(true);
  if (due_[kSettle] != SteadyTime::max()) return;  // found again meanwhile
  Release(is_answered ? Outputs::Record::kForcedToStart : Outputs::Record::kUnknown);
  bus_.Publish();
}

}  // namespace hub::link
