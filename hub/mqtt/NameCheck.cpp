#include "mqtt/NameCheck.h"

#include "api/Json.h"
#include "boards/Said.h"
#include "mqtt/Payloads.h"

namespace hub::mqtt {

std::string IdIn(const std::string& bus_payload) {
  const auto parsed = api::ParseJson(bus_payload);
  const auto* const value = std::get_if<boost::json::value>(&parsed);
  const auto* const object = value == nullptr ? nullptr : value->if_object();
  const auto* const id = object == nullptr ? nullptr : object->if_contains("id");
  const std::string text = id != nullptr && id->is_string() ? std::string(id->get_string()) : "";
  return boards::IsId(text) ? text : "";
}

void NameCheck::Take(const Arrived& arrived) {
  const Message& message = arrived.message;
  if (message.topic == topics_.Status()) is_online_ = message.payload == kOnline;
  if (message.topic == topics_.Bus()) id_ = IdIn(message.payload);
  const bool is_left = message.is_retained && !message.topic.ends_with("/set");
  if (is_left && leftovers_.size() < kMostLeftovers) leftovers_.insert(message.topic);
}

std::optional<std::string> NameCheck::Owner() const {
  if (!is_online_ || id_.empty() || id_ == own_id_) return std::nullopt;
  return id_;
}

}  // namespace hub::mqtt
