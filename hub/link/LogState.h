// What the daemon's log has said so far: where the adapter is, the pace of the configuration, and
// whether the record of outputs has begun anew since the hub last had the IO port. Pure.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "model/Bus.h"
#include "protocol/DaemonLog.h"

namespace hub::link {

class LogState {
 public:
  // A line from before the hub's first session, or from then on.
  void TakeOld(const protocol::LogLine& line);
  void Take(const protocol::LogLine& line);

  const model::Adapter& AdapterNow() const { return adapter_; }
  std::optional<std::chrono::microseconds> Pause() const { return pause_; }

  // A new process, or a discovery: the record of outputs is at its start values, or what a hub
  // that did not stay long made of it.
  bool HasBegunAnew() const { return has_begun_anew_; }
  bool IsRecordUntouched() const { return has_begun_anew_ && is_untouched_; }
  void NoteRestored() { has_begun_anew_ = false; }

 private:
  model::Adapter adapter_;
  std::optional<std::chrono::microseconds> pause_;
  bool has_begun_anew_ = false;
  bool is_untouched_ = false;  // by an IO client since then
  std::string came_at_;        // the last IO client
  std::string anew_at_;        // the time of the line that said so
};

}  // namespace hub::link
