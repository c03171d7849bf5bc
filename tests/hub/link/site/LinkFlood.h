// Ten clients that ask for more than the bus can do, and never wait for an answer.
#pragma once

#include <array>
#include <string>

#include "LinkSite.h"

namespace hub::link {

class LinkFlood : public LinkSite {
 protected:
  // For so long; the daemon does not grow, and the last values get to the bus. Prints figures.
  void RunFlood(std::chrono::seconds time, const std::string& percent);

 private:
  bool IsShown();

  std::array<uint8_t, 2> lamps_{0xFF, 0xFF};
  std::array<uint8_t, 6> servos_{0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
  long sent_ = 0;
};

}  // namespace hub::link
