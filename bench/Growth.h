// How the cost of the daemon grows: a table for people, and a file a curve for the plots.
#pragma once

#include <string>

void MeasureGrowth(const std::string& folder);
