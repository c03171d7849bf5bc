// The other hubs on the broker: what they tell goes into the house's boards, and what the house has
// for them goes out as commands. Owned by the broker; one thread.
#pragma once

#include <array>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "api/Api.h"
#include "mqtt/News.h"

namespace hub::mqtt {

class Neighbours {
 public:
  // Of a board, and of its cards.
  static constexpr std::array<const char*, 2> kFilters{"qelm/+/+", "qelm/+/+/+"};

  using Send = std::function<void(Message command)>;

  // The house outlives it.
  Neighbours(api::House& house, Send send);
  Neighbours(const Neighbours&) = delete;
  Neighbours& operator=(const Neighbours&) = delete;

  void Use(bool is_on);
  void Hear(const Arrived& arrived);
  void LoseAll();  // the broker is gone
  void Stop() { told_.cancel(); }

 private:
  void TellSoon();
  void Tell();
  void Journal(const std::string& board, std::string_view what);

  api::House& house_;
  boost::asio::steady_timer told_;
  bool is_telling_ = false;
  // What the journal was told in this minute: one that comes and goes without end is not to fill
  // it.
  model::SteadyTime minute_;
  std::map<std::string, int> told_of_;  // by board
};

}  // namespace hub::mqtt
