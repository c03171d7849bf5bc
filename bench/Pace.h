// The run: every system beside the others, measured in turn.
#pragma once

#include <vector>

#include "Results.h"

Results MeasurePace();

// What the daemon promises.
std::vector<Bar> PaceBars(const Results& results);
