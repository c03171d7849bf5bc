// What people change on the page: names, setup, and what the page itself keeps. It lies as
// documents in the store and goes before the file.
//
// A kept document is the difference to the file, so that a name that was never changed on the page
// follows the file, and one that was taken away there stays away.
#pragma once

#include <boost/json/object.hpp>

#include "api/Api.h"

namespace hub::api {

// The file's settings, what is kept on top, and what the page keeps; the bus told. Called at start
// and whenever House::file has changed. A kept document that cannot be read is passed over; the
// journal says so.
void ApplySettings(House& house);

// As they are in effect.
boost::json::object NamesNow(const House& house);
boost::json::object SetupNow(const House& house);

// Throws a Problem, and keeps nothing, where the document does not fit. Check* only look.
void CheckNames(const House& house, const boost::json::object& names);
void CheckSetup(const House& house, const boost::json::object& setup);
void KeepNames(House& house, const boost::json::object& names);
void KeepSetup(House& house, const boost::json::object& setup);
void KeepPage(House& house, const boost::json::object& page);

}  // namespace hub::api
