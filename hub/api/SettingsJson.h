// What people have settled, as documents: names, and the setup of cards and channels. Pure
// functions.
//
//   names  {"bus":"bench", "cards":{"5":"Relays"}, "channels":{"5.0":"Lamp"},
//           "infrared":{"434F":"TV on"}}
//   setup  {"cards":{"E":{"rows":4, "columns":20}, "4":{"signed":true, "keep":true}},
//           "channels":{"F.3":{"unit":"V", "min":0, "max":5, "decimals":2, "hysteresis":0.02},
//                       "5.1":{"active":"high", "as":"light"}, "3.0":{"device_class":"door"}}}
#pragma once

#include <boost/json/object.hpp>

#include "model/Settings.h"

namespace hub::api {

// Only what has been settled is in them.
boost::json::object NamesJson(const model::Settings& settings);
boost::json::object SetupJson(const model::Settings& settings);
boost::json::object CodesJson(const model::Settings& settings);  // what names have as "infrared"

// Takes the place of all names, or of all the setup, in `settings`. Throws a Problem for what is
// unknown or does not fit; `settings` is then as it was. A bus that is given no name keeps its own.
void ReadNames(const boost::json::object& names, model::Settings& settings);
void ReadSetup(const boost::json::object& setup, model::Settings& settings);

}  // namespace hub::api
