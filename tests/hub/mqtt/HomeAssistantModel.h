// Home Assistant as a subscriber, as far as its reactions to messages decide what is sent: what it
// drops, what it keeps although it was left out, what costs it a device. It takes messages by the
// table in Accepted.h, and remembers what was wrong with them.
#pragma once

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "Accepted.h"
#include "model/Clock.h"

namespace hub::mqtt {

class HomeAssistantModel {
 public:
  static constexpr std::chrono::milliseconds kClose{450};  // a change behind another is dropped

  struct Entity {
    std::string platform;
    std::string name;                    // as told; "null" for its device's
    std::set<std::string> availability;  // topics that must say "online"
    std::string state_topic;
    bool operator==(const Entity&) const = default;
  };
  using Entities = std::map<std::string, Entity>;  // by platform and unique id, as it has them

  void Take(const std::string& topic, const std::string& payload, model::SteadyTime now);
  // It forgets all that it was not told again; what the broker keeps comes anew.
  void Restart();

  Entities All() const;
  // Not while a topic of its availability or its own state was not heard.
  bool IsAvailable(const std::string& unique_id) const;

  Faults faults;  // of all messages so far
  int rebuilt = 0;

 private:
  struct Known {
    std::string payload;
    model::SteadyTime changed;
    std::map<std::string, Entity> components;  // by component id; "" of an entity's own message
    std::map<std::string, std::string> unique_ids;
  };

  void Build(const std::string& topic, const std::string& payload, Known& known);

  std::map<std::string, Known> known_;         // by topic
  std::map<std::string, std::string> states_;  // by topic
};

}  // namespace hub::mqtt
