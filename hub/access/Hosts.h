// Under which names the hub answers. A page of a stranger can let a name of his point at this
// machine (DNS rebinding) and would then be of the same origin; but it needs a name for that. So
// a Host is an IP literal, `localhost`, or a name that the settings list. Pure; any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hub::access {

class Hosts {
 public:
  // Names without port; upper and lower case are the same.
  explicit Hosts(const std::vector<std::string>& names);

  // The value of the Host header: a host, or a host and any port. Whatever is written in an
  // unusual way (a dot at the end, a zone, an octal address) is not allowed, nor is an address that
  // only stands for another.
  bool Allow(std::string_view header) const;

 private:
  std::vector<std::string> names_;  // in lower case
};

}  // namespace hub::access
