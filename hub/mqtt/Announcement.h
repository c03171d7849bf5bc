// What Home Assistant is told of one device: a retained message for all of it, or one for each of
// its entities. Pure.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/Change.h"

namespace hub::mqtt {

// A message a device, a message an entity, or none at all.
enum class Discovery { kDevice, kComponents, kOff };

// A card, or the bus itself: what it is, and its components by their ids ("out0"). Each component
// has its "platform" and its "unique_id".
struct Device {
  std::string id;  // "qelm_3f9a21c0_5"; never changes
  boost::json::object head;
  std::map<std::string, boost::json::object> components;
};

struct Announcement {
  std::string topic;
  boost::json::object head;
  std::map<std::string, boost::json::object> components;  // none: the head is one entity
};

// Components by id, and the platform of each.
using Platforms = std::map<std::string, std::string>;

// In the one form or the other; not for kOff. `bus_id`: 8 hexadecimal digits.
std::vector<Announcement> Announce(const Device& device, std::string_view bus_id,
                                   Discovery discovery);

// A component that is only left out stays for ever. So what is `removed` is named once more, by its
// platform alone.
std::string ToPayload(const Announcement& announcement, const Platforms& removed);

Platforms PlatformsOf(const std::map<std::string, boost::json::object>& components);

// The components that a message has, but for those that it removes: one at the topic of a device.
// Whatever the text is.
Platforms ComponentsOf(std::string_view topic, std::string_view payload);

// Where messages of this bus arrive, of either form: filters to subscribe to.
std::vector<std::string> AnnouncementFilters(std::string_view bus_id);

// Which card a topic of this bus is about; nothing: the bus itself.
std::optional<unsigned> CardOf(std::string_view topic, std::string_view bus_id);

}  // namespace hub::mqtt
