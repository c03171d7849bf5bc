// Leaves out each poll of a card whose answer is the same as the last one. Both frames of every
// other poll pass, and so does everything else.
#pragma once

#include <array>
#include <functional>
#include <optional>

#include "journal/Journal.h"

namespace virtualbus {

class PollFilter {
 public:
  explicit PollFilter(Journal::Listener next) : next_(std::move(next)) {}
  void operator()(const Entry& entry);

 private:
  bool IsRepeated(const Entry& reply);

  Journal::Listener next_;
  std::optional<Entry> held_;  // a poll whose answer has not come yet
  std::array<Bytes, kAddressCount> last_;
};

}  // namespace virtualbus
