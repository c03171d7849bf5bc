// What a look at one thing has found, and what to do about it.
#pragma once

#include <string>
#include <vector>

namespace ctl::doctor {

enum class Verdict {
  kWell,
  kNote,  // works, but perhaps not as meant
  kWrong,
  kUnseen,  // cannot be looked at, or not before something else is mended
};

struct Finding {
  Verdict verdict = Verdict::kWell;
  std::string found;
  std::string advice;  // empty where there is nothing to do
};

using Findings = std::vector<Finding>;

}  // namespace ctl::doctor
