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
  std::ranges::replace_if(
      fitting, [](char letter) { return !FitsTopic(letter); }, '-');
  return fitting.empty() ? "bus" : fitting;
}

bool Matches(std::string_view filter, std::string_view topic) {
  while (filter != "#") {
    const std::string_view wanted = filter.substr(0, filter.find('/'));
    const std::string_view level = topic.substr(0, topic.find('/'));
    if (wanted != "+" && wanted != level) return false;
    const bool has_more = wanted.size() < filter.size();
    if (has_more != (level.size() < topic.size())) return false;
    if (!has_more) return true;
    filter.remove_prefix(wanted.size() + 1);
    topic.remove_prefix(level.size() + 1);
  }
  return true;
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
