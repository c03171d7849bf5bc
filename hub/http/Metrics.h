// The text that a monitoring system reads. Made by hand: a line a number.
#pragma once

#include <string>

#include "api/Api.h"
#include "http/Counters.h"

namespace hub::http {

std::string MetricsText(const api::House& house, const Counters& counters);

}  // namespace hub::http
