// What a client makes of the hub's messages: the state at first, then the changes. One thread.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

class Follower {
 public:
  // `is_gapless`: every message is taken here, so each begins where the one before it ended.
  explicit Follower(bool is_gapless) : is_gapless_(is_gapless) {}

  // What is wrong with the message; empty where nothing is.
  std::string Take(std::string_view message);

  const std::map<std::string, std::string>& Values() const { return values_; }  // by channel
  const std::vector<std::string>& Events() const { return events_; }            // "8 press 5"
  long Messages() const { return messages_; }

  // The values in what GET /api/cards answers.
  static std::map<std::string, std::string> ValuesOf(std::string_view cards);

 private:
  bool is_gapless_;
  int64_t sequence_ = -1;
  long messages_ = 0;
  std::map<std::string, std::string> values_;
  std::vector<std::string> events_;
};
