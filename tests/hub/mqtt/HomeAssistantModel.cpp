#include "HomeAssistantModel.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

namespace hub::mqtt {

namespace json = boost::json;

namespace {

std::string TextAt(const json::object& object, std::string_view key) {
  const json::value* const value = object.if_contains(key);
  if (value == nullptr) return "";
  return value->is_string() ? std::string(value->get_string()) : json::serialize(*value);
}

std::set<std::string> TopicsOf(const json::object& object) {
  std::set<std::string> topics;
  const json::value* const list = object.if_contains("availability");
  if (list == nullptr) return topics;
  for (const json::value& entry : list->as_array())
    topics.insert(TextAt(entry.as_object(), "topic"));
  return topics;
}

HomeAssistantModel::Entity EntityOf(const std::string& platform, const json::object& component,
                                    const std::set<std::string>& availability) {
  return {platform, TextAt(component, "name"), availability, TextAt(component, "state_topic")};
}

}  // namespace

void HomeAssistantModel::Take(const std::string& topic, const std::string& payload,
                              model::SteadyTime now) {
  if (!topic.starts_with("homeassistant/")) {
    states_[topic] = payload;
    return;
  }
  if (payload.empty()) {
    known_.erase(topic);
    return;
  }
  const auto found = known_.find(topic);
  if (found != known_.end()) {
    if (found->second.payload == payload) return;
    if (now - found->second.changed < kClose) return;
  }
  for (const std::string& fault : FaultsOfMessage(topic, payload)) faults.push_back(fault);
  if (!FaultsOfMessage(topic, payload).empty()) {
    known_.erase(topic);
    return;
  }
  Known& known = known_[topic];
  ++rebuilt;
  known.payload = payload;
  known.changed = now;
  Build(topic, payload, known);
}

void HomeAssistantModel::Build(const std::string& topic, const std::string& payload, Known& known) {
  const json::object message = json::parse(payload).as_object();
  const auto availability = TopicsOf(message);
  const auto add = [&](const std::string& id, const std::string& platform,
                       const json::object& component) {
    known.components[id] = EntityOf(platform, component, availability);
    known.unique_ids[id] = TextAt(component, "unique_id");
  };
  if (!topic.starts_with("homeassistant/device/")) {
    const std::string rest = topic.substr(std::string("homeassistant/").size());
    return add("", rest.substr(0, rest.find('/')), message);
  }
  for (const auto& [key, value] : message.at("components").as_object()) {
    const std::string id(key);
    const json::object& component = value.as_object();
    if (component.contains("p")) {
      known.components.erase(id);
      known.unique_ids.erase(id);
    } else {
      add(id, TextAt(component, "platform"), component);
    }
  }
}

void HomeAssistantModel::Restart() {
  known_.clear();
  states_.clear();
}

HomeAssistantModel::Entities HomeAssistantModel::All() const {
  Entities all;
  for (const auto& [topic, known] : known_)
    for (const auto& [id, entity] : known.components)
      all[entity.platform + ' ' + known.unique_ids.at(id)] = entity;
  return all;
}

bool HomeAssistantModel::IsAvailable(const std::string& unique_id) const {
  for (const auto& [key, entity] : All()) {
    if (!key.ends_with(' ' + unique_id)) continue;
    if (!entity.state_topic.empty() && !states_.contains(entity.state_topic)) return false;
    for (const std::string& topic : entity.availability) {
      const auto state = states_.find(topic);
      if (state == states_.end() || state->second != "online") return false;
    }
    return true;
  }
  return false;
}

}  // namespace hub::mqtt
