#include "mqtt/Topics.h"

#include <algorithm>

#include "protocol/Hex.h"

namespace hub::mqtt {

namespace {

constexpr size_t kLongestName = 32;

bool FitsTopic(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
}

}  // namespace

std::string TopicName(std::string_view name) {
  std::string fitting(name.substr(0, kLongestName));
  std::ranges::replace_if(fitting, [](char letter) { return !FitsTopic(letter); }, '-');
  return fitting.empty() ? "bus" : fitting;
}

std::string Topics::Value(model::ChannelId id) const {
  return OfCard(id.address, std::to_string(id.number));
}

std::string Topics::OfCard(unsigned address, std::string_view what) const {
  std::string topic = root_ + protocol::HexDigit(address) + '/';
  topic += what;
  return topic;
}

}  // namespace hub::mqtt
