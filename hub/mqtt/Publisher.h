// What is to be told on the broker, and what of it is on its way. Pure: no I/O, no clock.
//
// Levels are retained messages, one a topic: while the broker is slow or away, a later payload
// takes the place of an earlier one. Whatever the broker was told is told again after each
// connection. Events are not retained: they are dropped and counted while nobody takes them, and
// never sent late. So its memory is bounded by the number of topics. One thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "model/Clock.h"
#include "mqtt/Message.h"

namespace hub::mqtt {

class Publisher {
 public:
  static constexpr size_t kMostUnderWay = 64;  // messages that the broker has not acknowledged
  static constexpr size_t kMostEvents = 256;   // that wait
  static constexpr size_t kMostTopics = 4096;  // further ones are not told
  // An event that waits longer, or comes while the broker has owed a receipt for so long, is
  // dropped.
  static constexpr std::chrono::milliseconds kLate{1000};

  // A level: told once if it differs from what was told last, and after each connection.
  void Keep(const std::string& topic, std::string payload);
  // The topic is emptied on the broker, also where the hub has never told it, and then forgotten.
  void TakeBack(const std::string& topic);
  void TakeBackAllBelow(std::string_view root);
  bool Keeps(const std::string& topic) const;
  // Tells what is kept there once more, although nothing has changed.
  void TellAgain(const std::string& topic);

  // An event, or an answer: now or never.
  void Tell(Message event, model::SteadyTime now);

  // A connection whose messages the broker is to hear, and its end. Every level is told again.
  void Open();
  void Close();

  // The next message, if one may go out now. It counts as under way until it was Taken.
  std::optional<Message> Next(model::SteadyTime now);
  void Taken();  // the oldest under way was acknowledged

  struct Counters {
    uint64_t sent = 0;
    uint64_t dropped = 0;  // events
    uint64_t merged = 0;   // levels that took the place of one that was not sent yet
  };
  const Counters& Count() const { return counters_; }

 private:
  struct Level {
    std::string payload;  // empty: to be taken back
    bool is_waiting = false;
    bool was_told = false;  // on this broker, ever
  };
  struct Event {
    Message message;
    model::SteadyTime since;
  };
  using Levels = std::map<std::string, Level, std::less<>>;

  void Wait(Levels::iterator level);
  void DropLate(model::SteadyTime now);
  std::optional<Message> NextLevel();
  std::optional<Message> NextEvent();

  bool is_open_ = false;
  Levels levels_;
  std::deque<std::string> waiting_;  // topics of levels, each once, in the order to be told
  std::deque<Event> events_;
  std::deque<model::SteadyTime> under_way_;  // since when, oldest first
  Counters counters_;
};

}  // namespace hub::mqtt
