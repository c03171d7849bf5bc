#include "line/Faults.h"

#include <algorithm>
#include <sstream>

#include "base/Frames.h"

namespace virtualbus {

namespace {

bool TakeOne(long& count) {
  if (count == 0) return false;
  --count;
  return true;
}

bool HasAddress(const Bytes& reply) {
  return reply.size() > 1 && (reply[0] == kPolled || reply[0] == kAnswered);
}

void AddNote(std::string& note, std::string_view what) {
  if (!note.empty()) note += ", ";
  note += what;
}

}  // namespace

void Faults::Off() {
  muted_until_ = {};
  drops_ = wrong_lengths_ = wrong_addresses_ = 0;
  delay_ = {};
  pieces_ = 1;
  noise_ = 0.0;
}

std::vector<std::string> Faults::InEffect() const {
  using std::chrono::ceil;
  using std::chrono::milliseconds;
  std::vector<std::string> lines;
  const auto add = [&lines](bool is_on, std::string_view words, auto value, std::string_view unit) {
    std::ostringstream line;
    line << words << ' ' << value << unit;
    if (is_on) lines.push_back(line.str());
  };
  const auto muted = ceil<milliseconds>(muted_until_ - Clock::now()).count();
  add(muted > 0, "mute", muted, "ms");
  add(drops_ > 0, "drop next", drops_, "");
  add(delay_ != Clock::duration::zero(), "late", ceil<milliseconds>(delay_).count(), "ms");
  add(pieces_ > 1, "split", pieces_, "");
  add(wrong_lengths_ > 0, "wrong-length", wrong_lengths_, "");
  add(wrong_addresses_ > 0, "wrong-address", wrong_addresses_, "");
  add(noise_ > 0, "noise", noise_ * 100, "%");
  return lines;
}

Bytes Faults::Garbage(size_t count) {
  Bytes bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random_() & 0xFF);
  return bytes;
}

// A receiver throws a spoilt byte away, so its frame is never complete.
std::string Faults::WhyLost() {
  noise_hits_reply_ = false;
  if (Clock::now() < muted_until_) return "muted";
  if (TakeOne(drops_)) return "dropped";
  constexpr double kRange = 4294967296.0;  // one more than the generator's largest
  if (noise_ == 0.0 || static_cast<double>(random_()) >= noise_ * kRange) return {};
  noise_hits_reply_ = (random_() & 1) != 0;
  return noise_hits_reply_ ? "" : "noise";
}

Faults::Shaped Faults::Shape(const Bytes& reply) {
  Shaped shaped{Bytes(reply.size() + 1), delay_, pieces_, {}};
  shaped.line[0] = static_cast<uint8_t>(reply.size());
  std::ranges::copy(reply, shaped.line.begin() + 1);
  if (HasAddress(reply) && TakeOne(wrong_addresses_)) {
    shaped.line[2] = static_cast<uint8_t>((reply[1] + 1) % kAddressCount);
    AddNote(shaped.note, "wrong address");
  }
  if (TakeOne(wrong_lengths_)) {
    ++shaped.line[0];
    AddNote(shaped.note, "wrong length");
  }
  if (noise_hits_reply_) {
    shaped.line.erase(shaped.line.begin() + static_cast<long>(random_() % shaped.line.size()));
    AddNote(shaped.note, "noise");
  }
  if (delay_ != Clock::duration::zero()) AddNote(shaped.note, "late");
  if (pieces_ > 1) AddNote(shaped.note, "split");
  return shaped;
}

}  // namespace virtualbus
