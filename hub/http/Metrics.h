// The text that a monitoring system reads. Made by hand: a line a number.
#pragma once

#include <cstddef>
#include <string>

#include "api/Api.h"
#include "http/Counters.h"

namespace hub::http {

struct Load {
  size_t connections = 0;
  size_t live_clients = 0;
};

std::string MetricsText(const api::House& house, const Counters& counters, const Load& load);

}  // namespace hub::http
