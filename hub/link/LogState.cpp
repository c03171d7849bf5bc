#include "link/LogState.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace hub::link {

using model::AdapterState;
using protocol::LogEvent;

namespace {

// A hub that was there for so long after the record had begun anew has restored the outputs, and
// sent them once more in case the discovery came late.
constexpr double kRestoring = 13;  // seconds

double SecondsBetween(const std::string& early, const std::string& late) {
  const auto read = [](const std::string& text) {
    std::tm time{};
    std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &time.tm_year, &time.tm_mon, &time.tm_mday,
                &time.tm_hour, &time.tm_min, &time.tm_sec);
    time.tm_year -= 1900;
    time.tm_mon -= 1;
    return timegm(&time);
  };
  return std::difftime(read(late), read(early));
}

// A daemon that got no turn of the processor in time takes the answer to something else for the
// version, whatever its bytes are.
std::optional<std::string> VersionIn(const std::string& text) {
  const auto is_printable = [](char letter) { return letter >= ' ' && letter <= '~'; };
  if (text.empty() || !std::ranges::all_of(text, is_printable)) return std::nullopt;
  return text;
}

}  // namespace

void LogState::TakeOld(const protocol::LogLine& line) {
  Take(line);
  if (line.event == LogEvent::kIoCame) came_at_ = line.time;
  if (line.event != LogEvent::kIoLeft || !has_begun_anew_) return;
  is_untouched_ = false;
  const std::string& begin = std::max(anew_at_, came_at_);
  if (SecondsBetween(begin, line.time) > kRestoring) has_begun_anew_ = false;
}

void LogState::Take(const protocol::LogLine& line) {
  switch (line.event) {
    case LogEvent::kDaemonStarted:
      adapter_ = {.state = AdapterState::kDown, .device = {}, .version = {}};
      break;
    case LogEvent::kDaemonStopped:
      adapter_ = {};
      break;
    case LogEvent::kAdapterFound:
      adapter_ = {AdapterState::kUp, line.device, VersionIn(line.version)};
      break;
    case LogEvent::kAdapterLost:
    case LogEvent::kAdapterMissing:
      adapter_.state = AdapterState::kDown;
      break;
    case LogEvent::kPaceSet:
      pause_ = std::chrono::microseconds(line.pause);
      break;
    default:
      break;
  }
  if (line.event == LogEvent::kDaemonStarted || line.event == LogEvent::kAdapterFound) {
    has_begun_anew_ = true;
    is_untouched_ = true;
    anew_at_ = line.time;
  }
}

}  // namespace hub::link
