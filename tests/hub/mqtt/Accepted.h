// What Home Assistant's MQTT integration takes: the keys of each platform, what they may hold, and
// which of them must be there. Written after its documentation, and knows nothing of the hub.
#pragma once

#include <boost/json/object.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace hub::mqtt {

// What is wrong, a line each; none: it is taken as it is.
using Faults = std::vector<std::string>;

// Of a device message, without looking into its components.
Faults FaultsOfRoot(const boost::json::object& message);

// Of a component, or of an entity's own message without what it shares with a device message.
Faults FaultsOfComponent(std::string_view platform, const boost::json::object& component);

// Of a message, whichever its topic says it is; an empty one is always right.
Faults FaultsOfMessage(std::string_view topic, std::string_view payload);

}  // namespace hub::mqtt
