#include "mqtt/Entities.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace hub::mqtt {

namespace json = boost::json;

namespace {

// Home Assistant puts the device's name in front of it; one that is the device's is null.
json::value NameInDevice(std::string_view name, std::string_view device) {
  if (name == device) return nullptr;
  if (!device.empty() && name.starts_with(device)) {
    const std::string_view rest = name.substr(device.size());
    if (rest.size() > 1 && rest.front() == ' ') return json::value(rest.substr(1));
  }
  return json::value(name);
}

}  // namespace

std::string Slug(std::string_view text) {
  std::string slug;
  for (const char letter : text) {
    const bool is_capital = letter >= 'A' && letter <= 'Z';
    const bool fits = (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
    if (is_capital)
      slug += static_cast<char>(letter - 'A' + 'a');
    else
      slug += fits ? letter : '_';
  }
  return slug;
}

json::object& Entities::Add(std::string_view platform, const Names& names) {
  const auto& device = device_.head["device"].as_object();
  json::object& component = device_.components[names.id];
  component = {{"platform", platform},
               {"unique_id", fmt::format("{}_{}", device_.id, names.unique)},
               {"default_entity_id", fmt::format("{}.{}_{}", platform, place_, Slug(names.unique))},
               {"name", NameInDevice(names.name, std::string_view(device.at("name").as_string()))}};
  return component;
}

void Entities::AddTrigger(const std::string& id, const std::string& topic, std::string_view type,
                          std::string_view subtype, std::string_view event, unsigned code) {
  const bool has_code = code != 0;
  device_.components[id] = {
      {"platform", "device_automation"},
      {"unique_id", fmt::format("{}_{}", device_.id, id)},
      {"automation_type", "trigger"},
      {"type", type},
      {"subtype", subtype},
      {"topic", topic},
      {"value_template", has_code ? "{{ value_json.event_type }} {{ value_json.code }}"
                                  : "{{ value_json.event_type }}"},
      {"payload", has_code ? fmt::format("{} {}", event, code) : std::string(event)}};
}

}  // namespace hub::mqtt
