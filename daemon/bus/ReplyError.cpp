#include "bus/ReplyError.h"

#include <array>

#include "bus/Frames.h"

namespace {

struct BadReply {
  unsigned char first;
  int error;
};

constexpr auto kBadReplies = std::to_array<BadReply>({
    {kTimeoutMark, kReplyTimeout},
    {kRefusal12, 2},
    {kRefusalHash, 3},
    {kRefusalDollar, 3},
    {kRefusalN, 4},
    {kRefusalB, 6},
    {kRefusalC, 6},
});
static_assert(kBadReplies.size() == 7);

}  // namespace

int GetQListError(const QList& l) {
  if (l.empty()) return kReplyEmpty;
  for (const BadReply& row : kBadReplies)
    if (static_cast<unsigned char>(l.front()) == row.first) return row.error;
  return kReplyGood;
}
