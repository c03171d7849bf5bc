// How the cost of the hub grows, beside direct use of the daemon: a file a curve.
#pragma once

#include <string>

void MeasureHubGrowth(const std::string& folder);
