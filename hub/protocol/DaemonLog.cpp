#include "protocol/DaemonLog.h"

#include <array>
#include <charconv>

namespace hub::protocol {

namespace {

// A message begins with these words; what follows, up to `end` where there is one, is the device.
struct Message {
  std::string_view begin;
  std::string_view end;
  bool names_device;
  LogEvent event;
};

constexpr std::array<Message, 13> kMessages{{
    {"qelm is started", "", false, LogEvent::kDaemonStarted},
    {"qelm is stopped", "", false, LogEvent::kDaemonStopped},
    {"try to catch hardware on ", "", true, LogEvent::kAdapterSearched},
    {"hardware found on ", " version: ", true, LogEvent::kAdapterFound},
    {"comm timeout ", "", true, LogEvent::kAdapterLost},
    {"ttyUSB devices couldn't be found", "", false, LogEvent::kAdapterMissing},
    {"unable to open ", " for hardware communication", true, LogEvent::kAdapterMissing},
    {"unable to  open ", " for hardware communication", true, LogEvent::kAdapterMissing},
    {"unable to  write to ", "", true, LogEvent::kAdapterLost},
    {"Initparam Speed (ThreadDelay): ", "", false, LogEvent::kPaceSet},
    {"client is connected on IO interface from ", "", false, LogEvent::kIoCame},
    {"connection is closed by client on IO interface", "", false, LogEvent::kIoLeft},
    {"connection is closed by command on IO interface", "", false, LogEvent::kIoLeft},
}};

constexpr std::string_view kTimeForm = "0000-00-00 00:00:00 [";
constexpr size_t kTimeWidth = 19;

bool HasTime(std::string_view line) {
  if (line.size() < kTimeForm.size()) return false;
  for (size_t at = 0; at < kTimeForm.size(); ++at) {
    const bool is_digit = line[at] >= '0' && line[at] <= '9';
    if (kTimeForm[at] == '0' ? !is_digit : line[at] != kTimeForm[at]) return false;
  }
  return true;
}

void Understand(std::string_view text, const Message& message, LogLine& into) {
  into.event = message.event;
  const std::string_view rest = text.substr(message.begin.size());
  if (message.event == LogEvent::kPaceSet)
    std::from_chars(rest.data(), rest.data() + rest.size(), into.pause);
  if (!message.names_device) return;
  const size_t end = message.end.empty() ? rest.size() : rest.find(message.end);
  into.device = rest.substr(0, end);
  if (message.event == LogEvent::kAdapterFound && end != std::string_view::npos)
    into.version = rest.substr(end + message.end.size());
}

}  // namespace

LogLine ParseLogLine(std::string_view line) {
  LogLine parsed;
  parsed.text = line;
  const size_t tag_end = line.find("] ");
  if (!HasTime(line) || tag_end == std::string_view::npos) return parsed;
  const std::string_view text = line.substr(tag_end + 2);
  parsed.time = line.substr(0, kTimeWidth);
  parsed.text = text;
  parsed.is_error = line.substr(kTimeForm.size(), tag_end - kTimeForm.size()) == "ERR";
  for (const Message& message : kMessages) {
    if (!text.starts_with(message.begin)) continue;
    Understand(text, message, parsed);
    break;
  }
  return parsed;
}

}  // namespace hub::protocol
