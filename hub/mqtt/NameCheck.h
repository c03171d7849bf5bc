// Who has the name below which this hub wants to publish, by what the broker has kept there. Pure.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "mqtt/News.h"
#include "mqtt/Topics.h"

namespace hub::mqtt {

// The id in the payload of a hub's `bus`; empty where there is none.
std::string IdIn(const std::string& bus_payload);

class NameCheck {
 public:
  NameCheck(const Topics& topics, std::string own_id)
      : topics_(topics), own_id_(std::move(own_id)) {}

  void Take(const Arrived& arrived);

  // The id of another hub that is online there. A dead one's name may be taken over.
  std::optional<std::string> Owner() const;

  // Topics that were kept there, commands excepted; at most kMostLeftovers.
  static constexpr size_t kMostLeftovers = 1024;
  const std::set<std::string>& Leftovers() const { return leftovers_; }

 private:
  const Topics& topics_;
  std::string own_id_;
  std::string id_;
  bool is_online_ = false;
  std::set<std::string> leftovers_;
};

}  // namespace hub::mqtt
