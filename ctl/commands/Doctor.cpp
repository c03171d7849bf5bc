// doctor
#include "base/Times.h"
#include "commands/All.h"
#include "doctor/Look.h"
#include "doctor/Report.h"

namespace ctl {

int Doctor(Session& session, const Words& words) {
  doctor::Places places;
  if (words.Has("--config-file")) places.config_file = words["--config-file"];
  if (words.Has("--pid-file")) places.pid_file = words["--pid-file"];
  if (words.Has("--wait")) {
    const auto patience = ParseDuration(words["--wait"]);
    if (!patience) throw Failure(kUsage, "--wait: write a time as 12s");
    places.greeting_patience = *patience;
  }
  const doctor::Report report = doctor::Examine(doctor::Look(places, session.hub));
  session.Print(session.json ? doctor::ReportJson(report) + "\n"
                             : doctor::ReportText(report, session.paint));
  return doctor::IsWell(report) ? kDone : kRefused;
}

}  // namespace ctl
