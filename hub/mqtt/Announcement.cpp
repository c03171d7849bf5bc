#include "mqtt/Announcement.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

#include "api/Json.h"
#include "protocol/ConsoleReplies.h"
#include "protocol/Hex.h"

namespace hub::mqtt {

namespace json = boost::json;

namespace {

constexpr std::string_view kPrefix = "homeassistant";

std::string TextAt(const json::object& object, std::string_view key) {
  const json::value* const value = object.if_contains(key);
  return value != nullptr && value->is_string() ? std::string(value->get_string()) : std::string();
}

std::string DeviceTopic(std::string_view device_id) {
  return fmt::format("{}/device/{}/config", kPrefix, device_id);
}

// All entities of a bus stand below one name, so that one filter hears them; the card's address
// goes before the component.
std::string EntityTopic(std::string_view platform, std::string_view bus_id,
                        std::string_view device_id, std::string_view component) {
  const size_t bus_length = fmt::format("qelm_{}", bus_id).size();
  const std::string_view card = device_id.substr(bus_length);  // "_5", or nothing
  return fmt::format("{}/{}/qelm_{}/{}{}{}/config", kPrefix, platform, bus_id,
                     card.empty() ? "" : card.substr(1), card.empty() ? "" : "_", component);
}

// The platform of an entity's message stands in its topic.
Announcement EntityAnnouncement(const Device& device, std::string_view bus_id,
                                const std::string& id, json::object component) {
  const std::string platform = TextAt(component, "platform");
  component.erase("platform");
  for (const auto& member : device.head) component.insert(member);
  return {EntityTopic(platform, bus_id, device.id, id), std::move(component), {}};
}

}  // namespace

std::vector<Announcement> Announce(const Device& device, std::string_view bus_id,
                                   Discovery discovery) {
  if (discovery == Discovery::kDevice)
    return {{DeviceTopic(device.id), device.head, device.components}};
  std::vector<Announcement> entities;
  for (const auto& [id, component] : device.components)
    entities.push_back(EntityAnnouncement(device, bus_id, id, component));
  return entities;
}

std::string ToPayload(const Announcement& announcement, const Platforms& removed) {
  json::object message = announcement.head;
  if (announcement.components.empty()) return api::ToText(message);
  json::object components;
  for (const auto& [id, component] : announcement.components) components[id] = component;
  for (const auto& [id, platform] : removed) components[id] = json::object{{"p", platform}};
  message["components"] = std::move(components);
  return api::ToText(message);
}

Platforms PlatformsOf(const std::map<std::string, json::object>& components) {
  Platforms platforms;
  for (const auto& [id, component] : components) platforms[id] = TextAt(component, "platform");
  return platforms;
}

// Others may tell as many topics of entities as they like, but no further device.
Platforms ComponentsOf(std::string_view topic, std::string_view payload) {
  constexpr auto kSlashesOfADevice = 3;
  if (std::ranges::count(topic, '/') != kSlashesOfADevice) return {};
  const auto parsed = api::ParseJson(payload);
  const auto* const message = std::get_if<json::value>(&parsed);
  if (message == nullptr || !message->is_object()) return {};
  const json::value* const components = message->get_object().if_contains("components");
  if (components == nullptr || !components->is_object()) return {};
  Platforms platforms;
  for (const auto& [id, component] : components->get_object()) {
    if (!component.is_object() || !component.get_object().contains("unique_id")) continue;
    const std::string platform = TextAt(component.get_object(), "platform");
    if (!platform.empty()) platforms[id] = platform;
  }
  return platforms;
}

std::vector<std::string> AnnouncementFilters(std::string_view bus_id) {
  const std::string bus = fmt::format("qelm_{}", bus_id);
  std::vector<std::string> filters{DeviceTopic(bus)};
  for (unsigned address = 0; address < protocol::kCardCount; ++address)
    filters.push_back(DeviceTopic(fmt::format("{}_{}", bus, protocol::HexDigit(address))));
  filters.push_back(fmt::format("{}/+/{}/+/config", kPrefix, bus));
  return filters;
}

std::optional<unsigned> CardOf(std::string_view topic, std::string_view bus_id) {
  const std::string bus = fmt::format("/qelm_{}", bus_id);
  const size_t at = topic.find(bus);
  if (at == std::string_view::npos) return std::nullopt;
  // "_5/config" or "/5_out0/config"
  const std::string_view rest = topic.substr(at + bus.size());
  const bool is_card =
      rest.size() > 2 && ((rest[0] == '_' && rest[2] == '/') || (rest[0] == '/' && rest[2] == '_'));
  return is_card ? protocol::ParseHexDigit(rest[1]) : std::nullopt;
}

}  // namespace hub::mqtt
