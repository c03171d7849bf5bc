// What Home Assistant has to be told, when, and in which steps, so that its devices become those of
// the bus. It compares what is wanted with what the broker holds, which it hears; so what an
// earlier run of the hub has left there is no other case than a change.
//
// How Home Assistant takes messages decides the steps. It drops a changed one close behind another,
// so changes are gathered for a short time of chance, and a topic rests after each. It keeps a
// component that is left out, so one is removed by name, and left out when the broker has that
// message. Whoever deletes an entity there empties the topic; the message is put back. Pure; one
// thread.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/Clock.h"
#include "mqtt/Wanted.h"

namespace hub::mqtt {

class Announcer {
 public:
  static constexpr std::chrono::milliseconds kShortestPause{500};
  static constexpr std::chrono::milliseconds kLongestPause{2000};
  static constexpr std::chrono::seconds kRest{5};         // of a topic
  static constexpr std::chrono::seconds kStatesLater{1};  // than the messages that they belong to
  static constexpr size_t kMostTopics = 2048;             // that are heard

  struct Deed {
    enum What {
      kKeep,        // the message, retained
      kTakeBack,    // the topic
      kTellAgain,   // what is kept there, although it is the same
      kTellStates,  // of everything
    };
    What what;
    std::string topic = {};
    std::string payload = {};
    bool operator==(const Deed&) const = default;
  };

  // `chance` is asked for 0 to 1.
  Announcer(std::string bus_id, std::function<double()> chance)
      : bus_id_(std::move(bus_id)), chance_(std::move(chance)) {}

  // A connection to the broker: what it holds will be heard.
  void Begin(model::SteadyTime now);
  // Something about the bus has changed, or may have.
  void Touch(model::SteadyTime now) { ActAt(now + Pause()); }
  // A topic of this bus, as the broker has it; empty: it has none.
  void Hear(const std::string& topic, std::string_view payload, model::SteadyTime now);
  // Home Assistant is back.
  void Greet(model::SteadyTime now);

  // When there is something to do; nothing: not before one of those above.
  std::optional<model::SteadyTime> Due() const { return due_; }

  // What is to be done now.
  std::vector<Deed> Act(const Wanted& wanted, model::SteadyTime now);

 private:
  struct Topic {
    Platforms held;                   // the components of the message that the broker has
    std::optional<std::string> told;  // empty: taken back
    Platforms told_components;        // but for those that it removes
    bool removes = false;             // what was told names components that are to go
    bool again = false;               // it is to be told, although nothing has changed
    model::SteadyTime told_at{};
  };
  using Topics = std::map<std::string, Topic>;

  std::chrono::milliseconds Pause() const;
  void ActAt(model::SteadyTime time);
  std::vector<Deed> TakeBack(const Wanted& wanted, model::SteadyTime now);
  std::optional<Deed> Tell(const Announcement& announcement, model::SteadyTime now);

  std::string bus_id_;
  std::function<double()> chance_;
  Topics topics_;
  std::optional<model::SteadyTime> due_;
  bool is_greeted_ = false;
  std::optional<model::SteadyTime> states_at_;
};

}  // namespace hub::mqtt
