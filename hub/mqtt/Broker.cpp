#include "mqtt/Broker.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <chrono>
#include <random>
#include <utility>

#include "model/Fault.h"
#include "mqtt/NameCheck.h"
#include "mqtt/Payloads.h"

namespace hub::mqtt {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using model::BrokerState;

constexpr std::chrono::seconds kLongestPause{5};  // where it refuses
// Where it is not there: all is to be told again within a second of its return.
constexpr std::chrono::milliseconds kShortestPause{250};
constexpr std::chrono::milliseconds kLongestAwayPause{600};
constexpr std::chrono::seconds kSteady{10};  // a connection that has held so long was a good one
constexpr std::chrono::seconds kGoodBye{1};
constexpr std::chrono::seconds kRatesEvery{30};
constexpr int kMostEntries = 12;  // in the journal, a minute

}  // namespace

Broker::Broker(api::House& house, std::string version)
    : house_(house),
      publisher_(house.traffic.broker),
      states_(house.bus, publisher_, std::move(version)),
      obeying_(
          house,
          [this](const std::string& topic, const api::Problem& problem) {
            publisher_.Tell({Names().Error(), ErrorPayload(topic, problem)}, house_.clock.Steady());
            Flush();
          }),
      neighbours_(
          house,
          {.send =
               [this](Message command) {
                 publisher_.Tell(std::move(command), house_.clock.Steady());
                 Flush();
               },
           .subscribe = [this](const std::string& filter) { return client_->Subscribe(filter); },
           .unsubscribe = [this](const std::string& filter) { client_->Unsubscribe(filter); }}),
      refused_(std::random_device{}(), kLongestPause),
      away_(std::random_device{}(), kLongestAwayPause, kShortestPause),
      pause_(house.context),
      deadline_(house.context),
      rates_(house.context) {}

void Broker::Start(BrokerOptions options) {
  options_ = std::move(options);
  neighbours_.Use(options_.boards);
  house_.bus.Listen([this](const model::Change& change) { Take(change); });
  asio::co_spawn(house_.context, Run(), model::EndOnFault{});
}

void Broker::Use(BrokerOptions options) {
  if (options == options_) return;
  const bool is_elsewhere =
      options.server.host != options_.server.host || options.server.port != options_.server.port;
  const bool moves = !is_elsewhere && options.name != options_.name;
  options_ = std::move(options);
  if (is_elsewhere) publisher_.Disown("");
  neighbours_.Use(options_.boards && !is_elsewhere);
  neighbours_.Use(options_.boards);
  Leave(moves);
}

void Broker::Stop() {
  is_stopping_ = true;
  rates_.cancel();
  neighbours_.Stop();
  Leave(false);
}

std::string Broker::WantedName() const {
  return options_.name.empty() ? TopicName(house_.bus.Names().bus_name) : options_.name;
}

// The connection ends when what it still has to say is taken. What is told below the name is taken
// back where the hub moves to another one on the same broker.
void Broker::Leave(bool moves) {
  is_leaving_ = true;
  refused_.Reset();
  away_.Reset();
  pause_.cancel();
  if (client_ == nullptr) return;
  if (!is_up_) return client_->Close();
  if (moves)
    publisher_.TakeBackBelow(Names().Root());
  else
    publisher_.Keep(Names().Status(), std::string(kOffline));
  Flush();
  deadline_.expires_after(kGoodBye);
  deadline_.async_wait([this](error_code error) {
    if (!error && client_ != nullptr) client_->Close();
  });
}

asio::awaitable<void> Broker::Run() {
  while (!is_stopping_) {
    is_leaving_ = false;
    if (options_.server.host.empty()) {
      house_.bus.SetBroker(std::nullopt);
      house_.bus.Publish();
      auto waiting = Pause(std::chrono::hours(24));
      co_await std::move(waiting);
      continue;
    }
    const auto begin = std::chrono::steady_clock::now();
    auto attempting = Attempt();
    const Outcome outcome = co_await std::move(attempting);
    if (is_leaving_) continue;
    Say(outcome.end.is_refusal ? BrokerState::kRefused : BrokerState::kConnecting, outcome.end.why);
    link::Backoff& backoff = outcome.end.is_refusal ? refused_ : away_;
    if (outcome.was_up && std::chrono::steady_clock::now() - begin > kSteady) backoff.Reset();
    auto waiting = Pause(backoff.Next());
    co_await std::move(waiting);
  }
}

asio::awaitable<void> Broker::Pause(std::chrono::milliseconds time) {
  error_code cancelled;
  pause_.expires_after(time);
  auto token = asio::redirect_error(asio::use_awaitable, cancelled);
  co_await pause_.async_wait(token);
}

// A broker that does not know version 5 may say so, or just hang up.
asio::awaitable<Broker::Outcome> Broker::Attempt() {
  // The first thing that is told below the name: whoever looks at it then finds it taken.
  publisher_.Keep(Topics(WantedName()).Status(), std::string(kOnline));
  states_.MoveTo(WantedName());
  if (!house_.bus.BrokerNow() || house_.bus.BrokerNow()->host != options_.server.host)
    Say(BrokerState::kConnecting, "");
  bool is_version_5 = true;
  auto finding = FindName(is_version_5);
  std::optional<Ended> end = co_await std::move(finding);
  if (end && end->speaks_older && !is_leaving_) {
    is_version_5 = false;
    auto again = FindName(is_version_5);
    end = co_await std::move(again);
  }
  if (end) co_return Outcome{*end};
  auto serving = Serve(is_version_5);
  Ended last = co_await std::move(serving);
  co_return Outcome{std::move(last), true};
}

// Without a will: it would be told in the name of the hub that has it. And with an id of its own: a
// broker can read this greeting before the good-bye of the connection before it, and would take
// that one for lost. The last of the answers to several subscriptions comes behind all that is
// kept.
asio::awaitable<std::optional<Ended>> Broker::FindName(bool is_version_5) {
  const std::string id = "qelm-" + house_.bus.Id() + "-look";
  Client client(house_.context, options_.server, {id, std::nullopt, is_version_5});
  client_ = &client;
  NameCheck check(Names(), house_.bus.Id());
  int last_subscription = 0;
  bool has_looked = false;
  std::optional<Ended> end;
  while (!end) {
    auto waiting = client.Next();
    const News news = co_await std::move(waiting);
    if (std::holds_alternative<Connected>(news)) {
      client.Subscribe(Names().Root() + '#');
      last_subscription = client.Subscribe(Names().Error());
    } else if (const auto* subscribed = std::get_if<Subscribed>(&news)) {
      has_looked = has_looked || subscribed->id == last_subscription;
    } else if (const auto* arrived = std::get_if<Arrived>(&news)) {
      check.Take(*arrived);
    } else if (const auto* ended = std::get_if<Ended>(&news)) {
      end = *ended;
    }
    if (end || !has_looked) continue;
    const auto owner = check.Owner();
    if (!owner) break;
    publisher_.Disown(Names().Root());
    Say(BrokerState::kRefused, "another hub (" + *owner + ") has the name " + WantedName());
  }
  leftovers_ = check.Leftovers();
  client.Disconnect();
  client_ = nullptr;
  co_return end;
}

asio::awaitable<Ended> Broker::Serve(bool is_version_5) {
  const Message will{Names().Status(), std::string(kOffline), true};
  Client client(house_.context, options_.server, {"qelm-" + house_.bus.Id(), will, is_version_5});
  client_ = &client;
  std::optional<Ended> end;
  while (!end) {
    auto waiting = client.Next();
    const News news = co_await std::move(waiting);
    if (std::holds_alternative<Connected>(news)) {
      Open(client);
      Say(BrokerState::kUp, "");
    } else if (const auto* arrived = std::get_if<Arrived>(&news)) {
      Dispatch(*arrived);
    } else if (const auto* taken = std::get_if<Taken>(&news)) {
      if (!taken->refusal.empty())
        Say(BrokerState::kUp, "a message was refused: " + taken->refusal);
      publisher_.Taken();
      Flush();
    } else if (const auto* subscribed = std::get_if<Subscribed>(&news)) {
      if (!subscribed->is_granted) Say(BrokerState::kUp, "commands may not be heard");
      neighbours_.Subscribed(subscribed->id);
    } else if (const auto* ended = std::get_if<Ended>(&news)) {
      end = *ended;
    }
    if (is_leaving_ && publisher_.IsIdle()) client.Disconnect();
  }
  neighbours_.LoseAll();
  publisher_.Close();
  is_up_ = false;
  client_ = nullptr;
  guest_.reset();
  rates_.cancel();
  deadline_.cancel();
  co_return *end;
}

void Broker::Open(Client& client) {
  for (const std::string& filter : CommandFilters(Names()))
    client.Subscribe(filter, Hearing::kCommands);
  for (const std::string& topic : {Names().Bus(), Names().Status()}) client.Subscribe(topic);
  for (const auto& [filter, sink] : sinks_) client.Subscribe(filter);
  neighbours_.Begin();
  guest_.emplace(house_.traffic, access::Door::kBroker);
  publisher_.Open();
  is_up_ = true;
  SettleLeftovers();
  for (const auto& told : up_) told();
  Flush();
  TellRates();
}

// What an earlier hub or an earlier start has left below the name, and nobody tells any more, goes:
// as soon as it is known which cards there are. Until then those cards do not answer.
void Broker::SettleLeftovers() {
  bool are_cards_known = false;
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    are_cards_known = are_cards_known || house_.bus.At(address) != nullptr;
  for (const std::string& topic : leftovers_) {
    if (publisher_.Keeps(topic)) continue;
    if (are_cards_known)
      publisher_.TakeBack(topic);
    else if (topic.ends_with("/status"))
      publisher_.Tell({topic, std::string(kOffline), true}, house_.clock.Steady());
  }
  if (are_cards_known) leftovers_.clear();
}

void Broker::Flush() {
  if (!is_up_) return;
  while (const auto message = publisher_.Next(house_.clock.Steady())) client_->Publish(*message);
}

// A bus that has another name, if its topics follow it, moves; all else is told.
void Broker::Take(const model::Change& change) {
  if (is_leaving_ || options_.server.host.empty()) return;
  if (change.bus && Topics(WantedName()).Root() != Names().Root()) return Leave(true);
  states_.Take(change, house_.clock.Steady());
  if (is_up_ && !change.cards.empty() && !leftovers_.empty()) SettleLeftovers();
  Flush();
}

void Broker::Dispatch(const Arrived& arrived) {
  ++house_.traffic.broker.heard;
  const std::string& topic = arrived.message.topic;
  for (const auto& [filter, sink] : sinks_)
    if (Matches(filter, topic)) return sink(arrived);
  if (!topic.starts_with(Names().Root())) return neighbours_.Hear(arrived);
  if (topic == Names().Bus() || topic == Names().Status()) return CheckRival(arrived);
  if (!is_leaving_) obeying_.Take(Names(), arrived);
}

// Two hubs that looked in the same moment have both found the name free: the one with the lower id
// keeps it, and puts right what the other has told. And where somebody says that this hub is
// offline, it is not.
void Broker::CheckRival(const Arrived& arrived) {
  const Message& message = arrived.message;
  if (message.is_retained || is_leaving_) return;
  if (message.topic == Names().Status()) {
    if (message.payload != kOnline) publisher_.TellAgainBelow(Names().Status());
    return Flush();
  }
  const std::string id = IdIn(message.payload);
  if (id.empty() || id == house_.bus.Id()) return;
  if (id > house_.bus.Id()) {
    publisher_.TellAgainBelow(Names().Root());
    return Flush();
  }
  publisher_.Disown(Names().Root());
  // Where the other one is no more than a message that somebody has left, nobody else says so.
  client_->Publish({Names().Status(), std::string(kOffline), true});
  client_->Disconnect();
}

void Broker::TellRates() {
  const link::Link::Counters before = house_.link.Count();
  rates_.expires_after(kRatesEvery);
  rates_.async_wait([this, before](error_code error) {
    if (error || !is_up_ || is_leaving_) return;
    const link::Link::Counters now = house_.link.Count();
    const auto rate = [](uint64_t count) {
      return static_cast<double>(count) / static_cast<double>(kRatesEvery.count());
    };
    publisher_.Keep(Names().Rates(), RatesPayload(rate(now.commands - before.commands),
                                                  rate(now.reports - before.reports)));
    Flush();
    TellRates();
  });
}

void Broker::Say(BrokerState state, std::string detail) {
  model::Broker broker{state, options_.server.host, std::move(detail)};
  const std::optional<model::Broker> before = house_.bus.BrokerNow();
  if (before == broker) return;
  const bool was_up = before && before->state == BrokerState::kUp;
  std::string text = "the broker at " + broker.host;
  if (state == BrokerState::kUp)
    text += was_up ? ": " : " is there";
  else if (state == BrokerState::kRefused)
    text += " refuses: ";
  else
    text += was_up ? " is gone: " : " is not there: ";
  if (state != BrokerState::kConnecting || !broker.detail.empty()) Journal(text + broker.detail);
  house_.bus.SetBroker(std::move(broker));
  house_.bus.Publish();
}

// Whoever may write to the broker has the state change as often as he likes.
void Broker::Journal(std::string text) {
  if (house_.clock.Steady() - minute_ >= std::chrono::minutes(1)) {
    minute_ = house_.clock.Steady();
    entries_ = 0;
  }
  if (++entries_ > kMostEntries) return;
  model::JournalEntry entry;
  entry.time = house_.clock.Now();
  entry.kind = "broker";
  entry.text = std::move(text);
  house_.store.AddJournal(std::move(entry));
}

}  // namespace hub::mqtt
