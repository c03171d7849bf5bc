// All who hear the bus live, over WebSockets: each gets the whole state and then every change.
//
// A change becomes text once, for all who are at the same place. Nobody has a queue of changes:
// whoever is slow gets, when it is ready, one message with the levels as they are then and the
// events since. One thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "api/Api.h"
#include "http/Counters.h"
#include "http/Ledger.h"
#include "http/Message.h"
#include "http/Stream.h"

namespace hub::http {

class LiveClient;

using SharedText = std::shared_ptr<const std::string>;

class Live {
 public:
  Live(api::House& house, Counters& counters);  // both outlive it; it outlives the bus's changes
  Live(const Live&) = delete;
  Live& operator=(const Live&) = delete;

  // A conversation from its handshake to its end.
  boost::asio::awaitable<void> Talk(std::shared_ptr<Stream> stream, Request request,
                                    access::Caller caller);

  void Look();  // from time to time: pings whoever is due
  void EndSession(const std::string& session);
  void EndToken(const std::string& token);
  void EndNameless();  // whoever came over the network without a login

  // For its clients.
  api::House& House() { return house_; }
  Counters& Count() { return counters_; }
  bool HasNews(uint64_t told) const { return told < ledger_.Sequence(); }
  // What a reader has to hear who was told up to that number; it is told up to the second now.
  std::pair<SharedText, uint64_t> NewsAfter(uint64_t told);

 private:
  struct Text {
    uint64_t after;
    SharedText text;
    uint64_t lost;
  };

  void Take(const model::Change& change);
  Text MakeText(uint64_t told) const;

  api::House& house_;
  Counters& counters_;
  Ledger ledger_;
  std::set<LiveClient*> clients_;
  std::vector<Text> texts_;  // as of now
};

}  // namespace hub::http
