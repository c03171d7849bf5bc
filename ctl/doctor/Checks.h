// What the facts mean: a check for each thing between a person and a lit lamp. Pure.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "doctor/Facts.h"
#include "doctor/Finding.h"

namespace ctl::doctor {

struct Check {
  const char* name;
  Findings (*look)(const Facts& facts);
};

// In the order in which somebody would mend things.
std::span<const Check> Checks();

Findings CheckClock(const Facts& facts);
Findings CheckConfiguration(const Facts& facts);
Findings CheckLog(const Facts& facts);
Findings CheckDaemon(const Facts& facts);
Findings CheckAdapter(const Facts& facts);
Findings CheckPorts(const Facts& facts);
Findings CheckHub(const Facts& facts);
Findings CheckPage(const Facts& facts);
Findings CheckBroker(const Facts& facts);
Findings CheckCards(const Facts& facts);

}  // namespace ctl::doctor
