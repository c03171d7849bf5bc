// The findings for people, and as JSON.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/Output.h"
#include "doctor/Checks.h"

namespace ctl::doctor {

// By check, in order.
using Report = std::vector<std::pair<std::string, Findings>>;

Report Examine(const Facts& facts);

// Nothing is wrong.
bool IsWell(const Report& report);

std::string ReportText(const Report& report, const Paint& paint);

// {"well":false,"findings":[{"check":"hub","verdict":"wrong","found":"...","advice":"..."}]}
std::string ReportJson(const Report& report);

}  // namespace ctl::doctor
