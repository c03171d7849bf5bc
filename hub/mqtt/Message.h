// A message of the broker, in either direction.
#pragma once

#include <string>

namespace hub::mqtt {

struct Message {
  std::string topic;
  std::string payload;       // retained and empty: takes the topic back
  bool is_retained = false;  // arriving: the broker had kept it; to be kept, where it is ours
};

}  // namespace hub::mqtt
