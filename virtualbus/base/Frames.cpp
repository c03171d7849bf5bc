#include "base/Frames.h"

#include <array>

namespace virtualbus {

namespace {

std::string At(const Bytes& frame, size_t index) {
  return index < frame.size() ? Hex(std::span(frame).subspan(index, 1)) : "--";
}

std::string Card(const Bytes& frame) {
  const bool known = frame.size() > 1 && frame[1] < kAddressCount;
  return std::string("card ").append(known ? HexDigit(frame[1]) : At(frame, 1));
}

std::string From(const Bytes& frame, size_t index) {
  return index < frame.size() ? Hex(std::span(frame).subspan(index)) : "nothing";
}

std::string DescribeWrite(const Bytes& frame) {
  return "write " + Card(frame) + ": " + From(frame, 3);
}

std::string DescribePoll(const Bytes& frame) { return "poll " + Card(frame); }

std::string DescribeDiscover(const Bytes&) { return "discover"; }

std::string DescribeHardwareCheck(const Bytes&) { return "hardware check"; }

std::string DescribeRequest(const Bytes& frame) {
  const uint8_t operation = frame.size() > 2 ? frame[2] : 0;
  if (operation == kReadRegister) return Card(frame) + ": read register " + At(frame, 3);
  if (operation != kWriteRegister) return Card(frame) + ": request " + At(frame, 2);
  if (frame.size() == 4 && frame[3] == kRebootRegister) return Card(frame) + ": reboot";
  std::string text = Card(frame) + ": write register " + At(frame, 3);
  if (frame.size() > 4) text.append(" = ").append(At(frame, 4));
  return text;
}

std::string DescribeTaken(const Bytes&) { return "taken"; }

std::string DescribePolled(const Bytes& frame) { return Card(frame) + " reads " + From(frame, 2); }

std::string DescribeDiscovered(const Bytes& frame) {
  std::string text = "found";
  for (size_t i = 1; i < frame.size(); ++i) {
    if (frame[i] == kNoCard) continue;
    text.append(" ").append(HexDigit(i - 1)).append(":").append(At(frame, i));
  }
  return text;
}

std::string DescribeRefused(const Bytes&) { return "refused"; }

std::string DescribeAnswered(const Bytes& frame) {
  return Card(frame) + ": register " + At(frame, 2) + " = " + At(frame, 3);
}

std::string DescribeIdentity(const Bytes& frame) {
  return "version " + std::string(frame.begin() + 1, frame.end()).substr(0, 4);
}

struct Meaning {
  Direction direction;
  uint8_t first;
  std::string (*describe)(const Bytes& frame);
};

constexpr std::array<Meaning, 11> kMeanings{{
    {Direction::kFromHost, kWrite, DescribeWrite},
    {Direction::kFromHost, kPoll, DescribePoll},
    {Direction::kFromHost, kDiscover, DescribeDiscover},
    {Direction::kFromHost, kHardwareCheck, DescribeHardwareCheck},
    {Direction::kFromHost, kRequest, DescribeRequest},
    {Direction::kToHost, kTaken, DescribeTaken},
    {Direction::kToHost, kPolled, DescribePolled},
    {Direction::kToHost, kDiscovered, DescribeDiscovered},
    {Direction::kToHost, kRefused, DescribeRefused},
    {Direction::kToHost, kAnswered, DescribeAnswered},
    {Direction::kToHost, kIdentity, DescribeIdentity},
}};

}  // namespace

std::string Describe(Direction direction, const Bytes& frame) {
  for (const Meaning& meaning : kMeanings) {
    if (meaning.direction != direction || frame.empty() || frame[0] != meaning.first) continue;
    return meaning.describe(frame);
  }
  return "unknown frame";
}

}  // namespace virtualbus
