#include "http/Live.h"

#include <algorithm>

#include "api/Shapes.h"
#include "http/LiveClient.h"

namespace hub::http {

namespace {

// Readers that fell behind at different times; each more makes its text for itself.
constexpr size_t kMostTexts = 16;

}  // namespace

Live::Live(api::House& house, Counters& counters) : house_(house), counters_(counters) {
  house_.bus.Listen([this](const model::Change& change) { Take(change); });
}

boost::asio::awaitable<void> Live::Talk(std::shared_ptr<Stream> stream, Request request,
                                        access::Caller caller) {
  const auto client = std::make_shared<LiveClient>(*this, std::move(stream), std::move(caller));
  clients_.insert(client.get());
  auto running = client->Run(std::move(request));
  try {
    co_await std::move(running);
  } catch (...) {
    clients_.erase(client.get());
    throw;
  }
  clients_.erase(client.get());
}

void Live::Take(const model::Change& change) {
  ledger_.Note(change);
  texts_.clear();
  for (LiveClient* const client : clients_) client->Tell();
}

std::pair<SharedText, uint64_t> Live::NewsAfter(uint64_t told) {
  if (!ledger_.IsNext(told)) ++counters_.merged;
  ++counters_.messages;
  const auto found = std::ranges::find(texts_, told, &Text::after);
  const Text news = found == texts_.end() ? MakeText(told) : *found;
  if (found == texts_.end() && texts_.size() < kMostTexts) texts_.push_back(news);
  counters_.lost += news.lost;
  return {news.text, ledger_.Sequence()};
}

// What is noted and not published yet comes with the next message.
Live::Text Live::MakeText(uint64_t told) const {
  const uint64_t now = ledger_.Sequence();
  model::EventRing::Since since = house_.bus.Events().After(told);
  std::erase_if(since.events, [now](const model::Event& event) { return event.sequence > now; });
  model::Change change = ledger_.After(told);
  change.events = std::move(since.events);
  std::string text =
      api::ChangesText(house_.bus, house_.page, change, since.lost, house_.Neighbours());
  return {told, std::make_shared<const std::string>(std::move(text)), since.lost};
}

void Live::Look() {
  for (LiveClient* const client : clients_) client->PingWhenDue();
}

void Live::EndSession(const std::string& session) {
  if (session.empty()) return;
  for (LiveClient* const client : clients_)
    if (client->Caller().session == session) client->End("the session is over");
}

void Live::EndToken(const std::string& token) {
  for (LiveClient* const client : clients_)
    if (client->Caller().account == "token:" + token) client->End("the token is gone");
}

void Live::EndNameless() {
  for (LiveClient* const client : clients_) {
    const access::Caller& caller = client->Caller();
    if (caller.account.empty() && !caller.address.empty()) client->End("a login is needed now");
  }
}

}  // namespace hub::http
