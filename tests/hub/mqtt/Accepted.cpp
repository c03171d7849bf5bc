#include "Accepted.h"

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <map>
#include <regex>
#include <set>

namespace hub::mqtt {

namespace json = boost::json;

namespace {

bool IsText(const json::value& value) { return value.is_string() && !value.as_string().empty(); }
bool IsAnyText(const json::value& value) { return value.is_string(); }
bool IsTextOrNull(const json::value& value) { return value.is_null() || IsText(value); }
bool IsFlag(const json::value& value) { return value.is_bool(); }
bool IsNumber(const json::value& value) { return value.is_number(); }
bool IsCount(const json::value& value) { return value.is_int64() && value.as_int64() >= 0; }
bool IsLength(const json::value& value) { return IsCount(value) && value.as_int64() <= 255; }
bool IsStep(const json::value& value) {
  return value.is_number() && value.to_number<double>() >= 0.001;
}
bool IsQos(const json::value& value) { return IsCount(value) && value.as_int64() <= 2; }
bool IsTopic(const json::value& value) {
  return IsText(value) && value.as_string().find_first_of("+#\0") == std::string_view::npos;
}
bool IsTemplate(const json::value& value) {
  return IsText(value) && value.as_string().starts_with("{{ ") &&
         value.as_string().ends_with(" }}");
}
bool IsPattern(const json::value& value) {
  if (!IsText(value)) return false;
  try {
    std::regex(std::string(value.as_string()));
    return true;
  } catch (const std::regex_error&) {
    return false;
  }
}
bool IsTexts(const json::value& value) {
  return value.is_array() && !value.as_array().empty() &&
         std::ranges::all_of(value.as_array(), IsText);
}
bool IsIdentifiers(const json::value& value) { return IsText(value) || IsTexts(value); }

template <const char* const& words>
bool IsOneOf(const json::value& value) {
  if (!value.is_string()) return false;
  return std::string(words).find(" " + std::string(value.as_string()) + " ") != std::string::npos;
}

constexpr const char* kAvailabilityModes = " all any latest ";
constexpr const char* kCategories = " config diagnostic ";
constexpr const char* kStateClasses = " measurement measurement_angle total total_increasing ";
constexpr const char* kNumberModes = " auto box slider ";
constexpr const char* kTextModes = " text password ";
constexpr const char* kTriggers = " trigger ";
constexpr const char* kEventClasses = " button doorbell motion ";
constexpr const char* kSwitchClasses = " outlet switch ";
constexpr const char* kButtonClasses = " identify restart update ";
constexpr const char* kContactClasses =
    " battery battery_charging carbon_monoxide cold connectivity door garage_door gas heat light "
    "lock moisture motion moving occupancy opening plug power presence problem running safety "
    "smoke sound tamper update vibration window ";
constexpr const char* kLevelClasses =
    " absolute_humidity apparent_power aqi area atmospheric_pressure battery "
    "blood_glucose_concentration carbon_dioxide carbon_monoxide conductivity current data_rate "
    "data_size date distance duration energy energy_distance energy_storage enum frequency gas "
    "humidity illuminance irradiance moisture monetary nitrogen_dioxide nitrogen_monoxide "
    "nitrous_oxide ozone ph pm1 pm10 pm25 pm4 power power_factor precipitation "
    "precipitation_intensity pressure reactive_energy reactive_power signal_strength "
    "sound_pressure speed sulphur_dioxide temperature timestamp volatile_organic_compounds "
    "volatile_organic_compounds_parts voltage volume volume_flow_rate volume_storage water weight "
    "wind_direction wind_speed ";

using Holds = bool (*)(const json::value&);
struct Key {
  Holds holds;
  bool is_required = false;
};
using Keys = std::map<std::string_view, Key>;

const Keys kRoot{{"device", {[](const json::value& value) { return value.is_object(); }, true}},
                 {"origin", {[](const json::value& value) { return value.is_object(); }, true}},
                 {"components", {[](const json::value& value) { return value.is_object(); }, true}},
                 {"availability", {[](const json::value& value) { return value.is_array(); }}},
                 {"availability_mode", {IsOneOf<kAvailabilityModes>}},
                 {"availability_topic", {IsTopic}},
                 {"availability_template", {IsTemplate}},
                 {"payload_available", {IsText}},
                 {"payload_not_available", {IsText}},
                 {"state_topic", {IsTopic}},
                 {"command_topic", {IsTopic}},
                 {"qos", {IsQos}},
                 {"encoding", {IsAnyText}}};

const Keys kDevice{{"identifiers", {IsIdentifiers}},
                   {"connections", {[](const json::value& value) { return value.is_array(); }}},
                   {"name", {IsText}},
                   {"model", {IsText}},
                   {"model_id", {IsText}},
                   {"manufacturer", {IsText}},
                   {"serial_number", {IsText}},
                   {"hw_version", {IsText}},
                   {"sw_version", {IsText}},
                   {"suggested_area", {IsText}},
                   {"via_device", {IsText}},
                   {"configuration_url", {IsText}}};

const Keys kOrigin{{"name", {IsText, true}}, {"sw_version", {IsText}}, {"support_url", {IsText}}};

const Keys kAvailabilityEntry{{"topic", {IsTopic, true}},
                              {"payload_available", {IsText}},
                              {"payload_not_available", {IsText}},
                              {"value_template", {IsTemplate}}};

const Keys kEveryEntity{{"name", {IsTextOrNull}},
                        {"unique_id", {IsText, true}},
                        {"default_entity_id", {IsText}},
                        {"entity_category", {IsOneOf<kCategories>}},
                        {"enabled_by_default", {IsFlag}},
                        {"icon", {IsText}},
                        {"entity_picture", {IsText}},
                        {"json_attributes_topic", {IsTopic}},
                        {"json_attributes_template", {IsTemplate}},
                        {"qos", {IsQos}},
                        {"encoding", {IsAnyText}}};

const std::map<std::string_view, Keys> kPlatforms{
    {"switch",
     {{"command_topic", {IsTopic, true}},
      {"command_template", {IsTemplate}},
      {"state_topic", {IsTopic}},
      {"value_template", {IsTemplate}},
      {"device_class", {IsOneOf<kSwitchClasses>}},
      {"payload_on", {IsText}},
      {"payload_off", {IsText}},
      {"state_on", {IsText}},
      {"state_off", {IsText}},
      {"optimistic", {IsFlag}},
      {"retain", {IsFlag}}}},
    {"light",
     {{"command_topic", {IsTopic, true}},
      {"state_topic", {IsTopic}},
      {"state_value_template", {IsTemplate}},
      {"payload_on", {IsText}},
      {"payload_off", {IsText}},
      {"optimistic", {IsFlag}},
      {"retain", {IsFlag}}}},
    {"fan",
     {{"command_topic", {IsTopic, true}},
      {"command_template", {IsTemplate}},
      {"state_topic", {IsTopic}},
      {"state_value_template", {IsTemplate}},
      {"payload_on", {IsText}},
      {"payload_off", {IsText}},
      {"optimistic", {IsFlag}},
      {"retain", {IsFlag}}}},
    {"binary_sensor",
     {{"state_topic", {IsTopic, true}},
      {"value_template", {IsTemplate}},
      {"device_class", {IsOneOf<kContactClasses>}},
      {"payload_on", {IsText}},
      {"payload_off", {IsText}},
      {"expire_after", {IsCount}},
      {"off_delay", {IsCount}},
      {"force_update", {IsFlag}}}},
    {"sensor",
     {{"state_topic", {IsTopic, true}},
      {"value_template", {IsTemplate}},
      {"device_class", {IsOneOf<kLevelClasses>}},
      {"state_class", {IsOneOf<kStateClasses>}},
      {"unit_of_measurement", {IsText}},
      {"suggested_display_precision", {IsCount}},
      {"options", {IsTexts}},
      {"expire_after", {IsCount}},
      {"force_update", {IsFlag}}}},
    {"number",
     {{"command_topic", {IsTopic, true}},
      {"command_template", {IsTemplate}},
      {"state_topic", {IsTopic}},
      {"value_template", {IsTemplate}},
      {"device_class", {IsOneOf<kLevelClasses>}},
      {"min", {IsNumber}},
      {"max", {IsNumber}},
      {"step", {IsStep}},
      {"mode", {IsOneOf<kNumberModes>}},
      {"unit_of_measurement", {IsText}},
      {"payload_reset", {IsText}},
      {"optimistic", {IsFlag}},
      {"retain", {IsFlag}}}},
    {"text",
     {{"command_topic", {IsTopic, true}},
      {"command_template", {IsTemplate}},
      {"state_topic", {IsTopic}},
      {"value_template", {IsTemplate}},
      {"min", {IsLength}},
      {"max", {IsLength}},
      {"mode", {IsOneOf<kTextModes>}},
      {"pattern", {IsPattern}},
      {"retain", {IsFlag}}}},
    {"notify",
     {{"command_topic", {IsTopic, true}},
      {"command_template", {IsTemplate}},
      {"retain", {IsFlag}}}},
    {"event",
     {{"state_topic", {IsTopic, true}},
      {"event_types", {IsTexts, true}},
      {"value_template", {IsTemplate}},
      {"device_class", {IsOneOf<kEventClasses>}}}},
    {"button",
     {{"command_topic", {IsTopic, true}},
      {"command_template", {IsTemplate}},
      {"payload_press", {IsText}},
      {"device_class", {IsOneOf<kButtonClasses>}},
      {"retain", {IsFlag}}}},
    {"device_automation",
     {{"automation_type", {IsOneOf<kTriggers>, true}},
      {"topic", {IsTopic, true}},
      {"type", {IsText, true}},
      {"subtype", {IsText, true}},
      {"payload", {IsText}},
      {"value_template", {IsTemplate}}}},
};

void Check(const std::string& where, const Keys& keys, const json::object& object, Faults& faults) {
  for (const auto& [key, value] : object) {
    const auto found = keys.find(key);
    if (found == keys.end())
      faults.push_back(where + " does not know " + std::string(key));
    else if (!found->second.holds(value))
      faults.push_back(where + "." + std::string(key) + " holds " + json::serialize(value));
  }
  for (const auto& [name, key] : keys)
    if (key.is_required && !object.contains(name))
      faults.push_back(where + " has no " + std::string(name));
}

double NumberAt(const json::object& object, std::string_view key, double otherwise) {
  const json::value* const value = object.if_contains(key);
  return value != nullptr && value->is_number() ? value->to_number<double>() : otherwise;
}

void CheckTogether(std::string_view platform, const json::object& component, Faults& faults) {
  if (platform == "number" && NumberAt(component, "min", 1) >= NumberAt(component, "max", 100))
    faults.emplace_back("number: max is not above min");
  if (platform == "text" && NumberAt(component, "min", 0) > NumberAt(component, "max", 255))
    faults.emplace_back("text: max is below min");
  if (const json::value* const id = component.if_contains("default_entity_id"))
    if (!std::regex_match(std::string(id->as_string()),
                          std::regex(std::string(platform) + "\\.[a-z0-9_]+")))
      faults.push_back("default_entity_id is " + json::serialize(*id));
}

Keys With(Keys keys, const Keys& more) {
  keys.insert(more.begin(), more.end());
  return keys;
}

// An entity's own message is what a device message shares, and one component.
Faults FaultsOfEntity(const std::string& platform, json::object message) {
  json::object shared{{"components", json::object()}};
  for (const char* key : {"device", "origin", "availability", "availability_mode"}) {
    if (!message.contains(key)) continue;
    shared[key] = message[key];
    message.erase(key);
  }
  Faults faults = FaultsOfRoot(shared);
  for (const std::string& fault : FaultsOfComponent(platform, message)) faults.push_back(fault);
  return faults;
}

}  // namespace

Faults FaultsOfRoot(const json::object& message) {
  Faults faults;
  Check("root", kRoot, message, faults);
  if (!faults.empty()) return faults;
  Check("device", kDevice, message.at("device").as_object(), faults);
  Check("origin", kOrigin, message.at("origin").as_object(), faults);
  if (!message.at("device").as_object().contains("identifiers"))
    faults.emplace_back("device has nothing that tells it from others");
  if (const json::value* const list = message.if_contains("availability"))
    for (const json::value& entry : list->as_array())
      Check("availability", kAvailabilityEntry, entry.as_object(), faults);
  return faults;
}

Faults FaultsOfComponent(std::string_view platform, const json::object& component) {
  const auto keys = kPlatforms.find(platform);
  if (keys == kPlatforms.end()) return {"no platform " + std::string(platform)};
  Faults faults;
  json::object own = component;
  own.erase("platform");
  const bool is_trigger = platform == "device_automation";
  static const Keys kTriggerToo{{"unique_id", {IsText, true}}, {"qos", {IsQos}}};
  Check(std::string(platform), With(keys->second, is_trigger ? kTriggerToo : kEveryEntity), own,
        faults);
  if (faults.empty()) CheckTogether(platform, component, faults);
  return faults;
}

Faults FaultsOfMessage(std::string_view topic, std::string_view payload) {
  if (payload.empty()) return {};
  static const std::regex kTopic("homeassistant/([a-z_]+)/([A-Za-z0-9_-]+/)?[A-Za-z0-9_-]+/config");
  std::match_results<std::string_view::const_iterator> parts;
  if (!std::regex_match(topic.begin(), topic.end(), parts, kTopic)) return {"no topic of theirs"};
  json::error_code error;
  const json::value parsed = json::parse(payload, error);
  if (error || !parsed.is_object()) return {"no JSON object"};
  const json::object& message = parsed.as_object();
  if (parts[1] != "device") return FaultsOfEntity(parts[1], message);
  Faults faults = FaultsOfRoot(message);
  if (!faults.empty()) return faults;
  for (const auto& [id, value] : message.at("components").as_object()) {
    const json::object& component = value.as_object();
    if (component.size() == 1 && component.contains("p")) continue;  // it is to go
    if (!component.contains("platform")) return {std::string(id) + " has no platform"};
    const Faults own = FaultsOfComponent(component.at("platform").as_string(), component);
    for (const std::string& fault : own) faults.push_back(std::string(id) + ": " + fault);
  }
  return faults;
}

}  // namespace hub::mqtt
