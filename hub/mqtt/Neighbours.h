// The other hubs on the broker: what they tell goes into the house's boards, and what the house has
// for them goes out as commands. Owned by the broker; one thread.
//
// Where a name has a status, all that is below it is subscribed to, one name after the other: what
// a broker has kept of a thousand boards would be more than it lets wait for one client.
#pragma once

#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "api/Api.h"
#include "mqtt/News.h"

namespace hub::mqtt {

class Neighbours {
 public:
  struct Ways {
    std::function<void(Message command)> send;
    std::function<int(const std::string& filter)> subscribe;  // the id that it will be granted by
    std::function<void(const std::string& filter)> unsubscribe;
  };

  // The house outlives it.
  Neighbours(api::House& house, Ways ways);
  Neighbours(const Neighbours&) = delete;
  Neighbours& operator=(const Neighbours&) = delete;

  void Use(bool is_on);
  void Begin();  // the broker is there
  void Subscribed(int id);
  void Hear(const Arrived& arrived);
  void LoseAll();  // the broker is gone
  void Stop() { told_.cancel(); }

 private:
  void Listen(const std::string& board);
  void ListenToNext();
  void StopListening(const std::string& board);
  void TellSoon();
  void Tell();
  void Journal(const std::string& board, std::string_view what);

  api::House& house_;
  Ways ways_;
  std::set<std::string, std::less<>> heard_;  // boards whose topics are subscribed to, or will be
  std::deque<std::string> next_;              // of them, those that are not yet
  std::optional<int> asked_;                  // the subscription that is not granted yet
  boost::asio::steady_timer told_;
  bool is_telling_ = false;
  // What the journal was told in this minute: one that comes and goes without end is not to fill
  // it.
  model::SteadyTime minute_;
  std::map<std::string, int> told_of_;  // by board
};

}  // namespace hub::mqtt
