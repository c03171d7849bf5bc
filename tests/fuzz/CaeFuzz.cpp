// A line of the CAE client. The first byte chooses the separators and how cards answer.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Finding.h"
#include "Site.h"
#include "commands/CaeCommands.h"
#include "commands/IoHelp.h"
#include "runtime/ByteList.h"

namespace {

constexpr std::array<const char*, 4> kSeparators{"\r\n", ";", "", "\r"};

// Commands with a long answer, and how many entries it has. All others have one or two.
struct LongAnswer {
  std::string_view word;
  std::size_t entries;
};

const std::array<LongAnswer, 5> kLongAnswers{{{"POLLSTATE", 4},
                                              {"DISCOVER", 17},
                                              {"FORCEDISCOVER", 17},
                                              {"HELP", CaeHelp().size() + kIoHelp.size()},
                                              {"IOEXAMPLES", kIoExamples.size()}}};

constexpr std::array<std::string_view, 5> kReplyStarts{"CIA: ", "CIE: ", "QELM: Bye Bye...",
                                                       "DISCOVER LIST:", "FORCED DISCOVER LIST:"};

Wire::Answer Reply(const std::string& frame, int manner) {
  std::string payload = "A";
  if (frame[1] == 0x30)
    payload = "1" + std::string(std::begin(kSiteCards), std::end(kSiteCards));
  else if (manner == 0)
    payload = {'Q', frame[2], frame[3], '\x5A'};
  else if (manner == 1)
    payload = {'Q', frame[2]};
  else if (manner == 2)
    payload = "N";
  return {0, {std::string(1, static_cast<char>(payload.size())) + payload}};
}

void CheckFrame(const std::string& frame) {
  Require(frame.size() >= 2 && static_cast<std::size_t>(frame[0]) == frame.size() - 1,
          "a frame miscounts");
  if (frame == std::string("\x01\x30")) return;
  Require(frame.size() == 5 || frame.size() == 6, "a request has another length");
  Require(frame[1] == 0x50 && frame[2] >= 0 && frame[2] < kCardCount, "a request names no card");
  Require(frame[3] == 0x01 || frame[3] == 0x40, "a request neither reads nor writes");
  Require(frame[3] == 0x01 || frame.size() == 5, "a read has a value");
}

bool Fires(const CaeCommand& row, const std::string& line, const std::string& separator) {
  if (row.match == Match::kWholeLine) return line == std::string(row.word) + separator;
  if (row.match == Match::kNothing || line.find(row.word) == std::string::npos) return false;
  return row.match == Match::kWord || line.find(separator) != std::string::npos;
}

// How many entries answer a line at the least and at the most.
struct Expected {
  std::size_t least = 0;
  std::size_t most = 0;
};

Expected Count(const std::string& line, const std::string& separator) {
  Expected count;
  for (const CaeCommand& row : CaeCommands()) {
    if (!Fires(row, line, separator)) continue;
    Expected answer{1, 2};
    for (const LongAnswer& it : kLongAnswers)
      if (it.word == row.word) answer = {it.entries, it.entries};
    count.least += answer.least;
    count.most += answer.most;
  }
  return count;
}

// "AMS:0xF:0x3F", "MSR15:0x2:0x20"
bool IsRecord(const std::string& reply) {
  const std::size_t name = reply.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
  return name != 0 && name != std::string::npos && reply.compare(name, 3, ":0x") == 0;
}

void CheckReplies(std::vector<std::string> replies, const Expected& count,
                  const std::string& separator, bool is_text) {
  Require(!replies.empty(), "a line is not answered");
  const std::string last = replies.back();
  replies.pop_back();
  if (count.most == 0) {
    Require(replies.empty(), "an unknown line is answered twice");
    Require(last == "CIE: UNKNOWN COMMAND " + separator + ">" + separator, "no unknown command");
    return;
  }
  Require(last == ">" + separator, "the prompt is not last");
  Require(replies.size() >= count.least && replies.size() <= count.most, "a reply too many or few");
  for (const std::string& reply : replies) {
    Require(reply.ends_with(separator) && reply != last, "a reply is not closed");
    const auto starts = [&reply](std::string_view start) { return reply.starts_with(start); };
    Require(
        is_text || IsRecord(reply) || std::any_of(kReplyStarts.begin(), kReplyStarts.end(), starts),
        "a reply begins with another word");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string separator = kSeparators[data[0] % kSeparators.size()];
  const int manner = data[0] / 4 % 4;
  const std::string line = AsRead({data + 1, data + size});

  std::size_t frames = 0;
  Site site([&](const std::string& frame) {
    CheckFrame(frame);
    ++frames;
    return Reply(frame, manner);
  });
  CONFIG_DESCRIPTOR& config = site.Qelm.Config;
  config.CaeDescriptor.InpSeparator = separator;
  config.CaeDescriptor.OutSeparator = (data[0] & 0x10) != 0 ? "\r\n" : "";
  site.Qelm.ParseCaeLine(line);

  const Expected count = Count(line, separator);
  const bool is_text = line == "HELP" + separator || line == "IOEXAMPLES" + separator;
  CheckReplies(site.CaeReplies(), count, config.CaeDescriptor.OutSeparator, is_text);
  Require(frames <= count.most, "more frames than commands");
  Require(site.FramesFor(kDriverQueue).empty(), "a request was not served");
  Require(config.ThreadDelay >= 1 && config.ThreadDelay <= 5000, "the delay is out of range");

  return 0;
}
