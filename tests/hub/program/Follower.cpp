#include "Follower.h"

#include <boost/json.hpp>

namespace {

namespace json = boost::json;

void AddChannels(const json::object& holder, std::map<std::string, std::string>& values) {
  for (const json::value& channel : holder.at("channels").as_array())
    values[std::string(channel.at("id").as_string())] = json::serialize(channel.at("value"));
}

void AddCards(const json::object& holder, std::map<std::string, std::string>& values) {
  for (const json::value& card : holder.at("cards").as_array())
    AddChannels(card.as_object(), values);
}

std::string EventText(const json::value& event) {
  return std::string(event.at("card").as_string()) + " " +
         std::string(event.at("event_type").as_string()) + " " + json::serialize(event.at("code"));
}

}  // namespace

std::map<std::string, std::string> Follower::ValuesOf(std::string_view cards) {
  std::map<std::string, std::string> values;
  AddCards(json::parse(cards).as_object(), values);
  return values;
}

std::string Follower::Take(std::string_view text) {
  const json::value message = json::parse(text);
  ++messages_;
  if (const json::value* result = message.as_object().if_contains("result")) {
    if (result->as_object().contains("seq")) {  // the whole state; else an answer
      sequence_ = result->at("seq").to_number<int64_t>();
      AddCards(result->as_object(), values_);
    }
    return "";
  }
  if (message.as_object().contains("error")) return "an error: " + std::string(text);
  const json::object& change = message.at("params").as_object();
  std::string complaint;
  const auto after = change.at("after").to_number<int64_t>();
  const auto sequence = change.at("seq").to_number<int64_t>();
  if (is_gapless_ ? after != sequence_ : after < sequence_) complaint = "a gap before ";
  if (sequence < after) complaint = "it goes back: ";
  if (change.at("lost").to_number<int64_t>() != 0) complaint = "events are lost before ";
  sequence_ = sequence;
  AddCards(change, values_);
  AddChannels(change, values_);
  for (const json::value& event : change.at("events").as_array())
    events_.push_back(EventText(event));
  return complaint.empty() ? "" : complaint + std::string(text);
}
