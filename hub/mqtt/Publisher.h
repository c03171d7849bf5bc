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

#include "api/Traffic.h"
#include "model/Clock.h"
#include "mqtt/Message.h"

namespace hub::mqtt {

class Publisher {
 public:
  // Messages that the broker has not acknowledged: no more than it takes at a time, or the rest
  // would wait where nothing is merged and nothing is dropped.
  static constexpr size_t kMostUnderWay = 20;
  static constexpr size_t kMostEvents = 256;   // that wait
  static constexpr size_t kMostTopics = 4096;  // further ones are not told
  // An event that waits longer, or comes while the broker has owed a receipt for so long, is
  // dropped.
  static constexpr std::chrono::milliseconds kLate{1000};

  // The counts outlive it.
  explicit Publisher(api::Messages& count) : count_(count) {}

  // A level: told once if it differs from what was told last, and after each connection.
  void Keep(const std::string& topic, std::string payload);
  // The topic is emptied on the broker, also where the hub has never told it, and then forgotten.
  void TakeBack(const std::string& topic);
  void TakeBackBelow(std::string_view root);       // what was told below there
  bool Keeps(const std::string& topic) const;      // and does not take it back
  bool IsWaiting(const std::string& topic) const;  // there is something the broker has not got yet
  // Tells what is kept below there once more, although nothing has changed.
  void TellAgainBelow(std::string_view root);
  // What was told below there is somebody else's now: it is not for us to take back.
  void Disown(std::string_view root);

  // An event, or an answer: now or never.
  void Tell(Message event, model::SteadyTime now);

  // A connection whose messages the broker is to hear, and its end. Every level is told again.
  void Open();
  void Close();

  // The next message, if one may go out now. It counts as under way until it was Taken. Levels come
  // in the order in which they were first kept.
  std::optional<Message> Next(model::SteadyTime now);
  void Taken();         // the oldest under way was acknowledged
  bool IsIdle() const;  // nothing waits, nothing is under way

 private:
  struct Level {
    uint64_t order = 0;
    std::string payload;  // empty: to be taken back
    bool is_waiting = true;
    bool was_told = false;  // in some connection
  };
  using Levels = std::map<std::string, Level, std::less<>>;  // by topic
  struct Event {
    Message message;
    model::SteadyTime since;
  };
  struct UnderWay {
    std::string topic;
    model::SteadyTime since;
  };

  void Replace(const std::string& topic, std::string payload);
  void Forget(Levels::iterator level);
  void DropLate(model::SteadyTime now);
  Message TakeEvent();
  Message TakeLevel();
  template <class Action>
  void ForEachBelow(std::string_view root, Action action);

  api::Messages& count_;
  bool is_open_ = false;
  uint64_t next_order_ = 0;
  Levels levels_;
  std::deque<std::string> waiting_;  // topics, each once; none while it is closed
  std::deque<Event> events_;
  std::deque<UnderWay> under_way_;  // oldest first
};

}  // namespace hub::mqtt
