// Whether JSON is as a schema says: as much of JSON Schema as the hub's document uses.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <string>
#include <vector>

namespace hub::api {

// What is wrong, a line each; empty where all fits. References are looked up in `document`. A
// keyword that is not known here is wrong, too: nothing passes because nobody looked.
std::vector<std::string> SchemaErrors(const boost::json::value& value,
                                      const boost::json::object& schema,
                                      const boost::json::object& document);

}  // namespace hub::api
