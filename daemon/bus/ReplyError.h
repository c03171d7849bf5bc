// Sorts the replies of the bus by their first byte. A pure function.
#pragma once

#include "runtime/ByteList.h"

enum ReplyError : int {
  kReplyGood = 0,
  kReplyTimeout = 1,  // "TME": the daemon's own word for a reply that did not come
  kReplyEmpty = 5,    // the other numbers up to 6 are kinds of refusal
};

// One of the above, or the kind of refusal: 2, 3, 4 or 6.
int GetQListError(const QList& l);
