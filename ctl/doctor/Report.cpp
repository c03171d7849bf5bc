#include "doctor/Report.h"

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include "base/Text.h"

namespace ctl::doctor {

namespace json = boost::json;

namespace {

struct Shown {
  const char* word;  // in JSON
  const char* mark;
  Colour colour;
};
constexpr Shown kShown[] = {
    // as Verdict counts
    {"well", "well ", Colour::kGreen},
    {"note", "note ", Colour::kYellow},
    {"wrong", "WRONG", Colour::kRed},
    {"unseen", "?    ", Colour::kFaint},
};

const Shown& ShownAs(Verdict verdict) { return kShown[static_cast<size_t>(verdict)]; }

constexpr size_t kNameWidth = 14;  // of a check, and a blank
constexpr char kMargin[] = "                     -> ";

}  // namespace

Report Examine(const Facts& facts) {
  Report report;
  for (const Check& check : Checks()) report.emplace_back(check.name, check.look(facts));
  return report;
}

bool IsWell(const Report& report) {
  return std::ranges::all_of(report, [](const auto& part) {
    return std::ranges::none_of(
        part.second, [](const Finding& finding) { return finding.verdict == Verdict::kWrong; });
  });
}

std::string ReportText(const Report& report, const Paint& paint) {
  std::string text;
  for (const auto& [check, findings] : report) {
    std::string name = check;
    for (const Finding& finding : findings) {
      const Shown& shown = ShownAs(finding.verdict);
      text += paint(shown.colour, shown.mark) + "  " + name +
              std::string(kNameWidth - name.size(), ' ') + Printable(finding.found) + "\n";
      if (!finding.advice.empty()) text += kMargin + Printable(finding.advice) + "\n";
      name.clear();
    }
  }
  return text + (IsWell(report) ? "All is well.\n" : "Mend what is WRONG from the top down.\n");
}

std::string ReportJson(const Report& report) {
  json::array list;
  for (const auto& [check, findings] : report)
    for (const Finding& finding : findings) {
      json::value advice = nullptr;
      if (!finding.advice.empty()) advice = finding.advice;
      list.push_back(json::object{{"check", check},
                                  {"verdict", ShownAs(finding.verdict).word},
                                  {"found", finding.found},
                                  {"advice", advice}});
    }
  return json::serialize(json::object{{"well", IsWell(report)}, {"findings", list}});
}

}  // namespace ctl::doctor
