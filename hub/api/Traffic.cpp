#include "api/Traffic.h"

namespace hub::api {

namespace {

Fate FateOf(const Problem* problem) {
  if (problem == nullptr) return Fate::kDone;
  if (problem->status == 429) return Fate::kTooFast;
  if (problem->status == 503) return Fate::kUnavailable;
  return problem->status < 500 ? Fate::kRefused : Fate::kFailed;
}

}  // namespace

void Traffic::Count(Door door, const Problem* problem, Seconds time) {
  const Fate fate = FateOf(problem);
  ++commands_[static_cast<size_t>(door)][static_cast<size_t>(fate)];
  if (fate != Fate::kDone) return;
  ++receipts_.count;
  receipts_.sum += time.count();
  for (size_t i = 0; i < kReceiptBounds.size(); ++i)
    if (time.count() <= kReceiptBounds[i]) ++receipts_.up_to[i];
}

}  // namespace hub::api
