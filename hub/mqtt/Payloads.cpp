#include "mqtt/Payloads.h"

#include <cmath>
#include <variant>

#include "api/Json.h"
#include "api/Shapes.h"

namespace hub::mqtt {

namespace json = boost::json;

namespace {

constexpr size_t kLongestTopicShown = 128;  // a topic can have 64 KB

// Cut between two characters.
std::string_view Shown(std::string_view topic) {
  if (topic.size() <= kLongestTopicShown) return topic;
  size_t end = kLongestTopicShown;
  while (end > 0 && (static_cast<unsigned char>(topic[end]) & 0xC0U) == 0x80U) --end;
  return topic.substr(0, end);
}

// What people have settled of a card's channels, by number: other hubs show it.
json::object Settled(const json::array& channels) {
  json::object settled;
  for (size_t number = 0; number < channels.size(); ++number) {
    const json::object& channel = channels[number].get_object();
    const bool is_plain =
        channel.at("name").is_null() && channel.at("unit").is_null() &&
        (channel.at("min").is_null() || (channel.at("min") == 0 && channel.at("max") == 255));
    if (is_plain) continue;
    json::object entry;
    for (const char* key : {"name", "unit", "min", "max"}) entry[key] = channel.at(key);
    settled[std::to_string(number)] = std::move(entry);
  }
  return settled;
}

json::object CardEntry(const model::Bus& bus, const model::Card& card) {
  json::object whole = api::CardJson(bus, card);
  json::object entry;
  for (const char* key : {"address", "kind", "name", "state"}) entry[key] = whole[key];
  entry["channels"] = Settled(whole["channels"].get_array());
  return entry;
}

}  // namespace

std::string ValuePayload(const model::Value& value) {
  if (const bool* on = std::get_if<bool>(&value)) return *on ? "ON" : "OFF";
  if (const double* number = std::get_if<double>(&value)) return api::ToText(*number);
  return "None";
}

bool Answers(const model::Bus& bus, const model::Card& card) {
  return card.state == model::CardState::kPresent &&
         bus.DaemonNow().state == model::DaemonState::kUp &&
         bus.AdapterNow().state != model::AdapterState::kDown;
}

std::string BusPayload(const model::Bus& bus, std::string_view version) {
  json::object whole = api::BusJson(bus);
  json::object payload;
  for (const char* key : {"id", "name"}) payload[key] = whole[key];
  payload["version"] = version;
  for (const char* key : {"daemon", "adapter", "pace", "polling", "virtual"})
    payload[key] = whole[key];
  json::array cards;
  for (unsigned address = 0; address < protocol::kCardCount; ++address) {
    const model::Card* const card = bus.At(address);
    if (card != nullptr && card->state != model::CardState::kAbsent)
      cards.push_back(CardEntry(bus, *card));
  }
  payload["cards"] = std::move(cards);
  return api::ToText(payload);
}

std::string RatesPayload(double commands, double reports) {
  const auto rounded = [](double rate) { return std::round(rate * 10) / 10; };
  return api::ToText(json::object{{"commands", rounded(commands)}, {"reports", rounded(reports)}});
}

std::string GlassPayload(const model::Glass& glass) {
  json::object whole = api::GlassJson(glass);
  json::object payload;
  for (const char* key : {"rows", "light", "cursor", "blink"}) payload[key] = whole[key];
  return api::ToText(payload);
}

std::string EventPayload(const model::Event& event) {
  json::object whole = api::EventJson(event);
  json::object payload;
  for (const char* key : {"event_type", "code"}) payload[key] = whole[key];
  return api::ToText(payload);
}

std::string ErrorPayload(std::string_view topic, const api::Problem& problem) {
  json::object payload{{"topic", Shown(topic)}};
  for (const auto& member : problem.ToJson()) payload.insert(member);
  return api::ToText(payload);
}

}  // namespace hub::mqtt
