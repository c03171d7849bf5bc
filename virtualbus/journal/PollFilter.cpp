#include "journal/PollFilter.h"

namespace virtualbus {

void PollFilter::operator()(const Entry& entry) {
  const bool is_poll = entry.what == Entry::What::kFromHost && entry.frame[0] == kPoll;
  const bool repeated = held_ && IsRepeated(entry);
  if (held_ && !repeated) next_(*held_);
  held_.reset();
  if (is_poll) held_ = entry;
  if (!is_poll && !repeated) next_(entry);
}

bool PollFilter::IsRepeated(const Entry& reply) {
  const Bytes& poll = held_->frame;
  if (reply.what != Entry::What::kToHost || !reply.note.empty()) return false;
  if (poll.size() < 2 || poll[1] >= kAddressCount) return false;
  Bytes& last = last_[poll[1]];
  const bool same = last == reply.frame;
  last = reply.frame;
  return same;
}

}  // namespace virtualbus
