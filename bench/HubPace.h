// The run of the hub: each of its doors beside a client of the daemon's own ports.
#pragma once

#include <vector>

#include "Results.h"

Results MeasureHub();

// What the hub promises.
std::vector<Bar> HubBars(const Results& results);
