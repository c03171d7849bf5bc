// One frame in, at most one reply out: the adapter's answer (or a recorded one), shaped by the
// faults, published in the journal and counted.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "journal/Journal.h"
#include "line/Faults.h"
#include "line/Wire.h"

namespace virtualbus {

class Exchange {
 public:
  using Answerer = std::function<std::optional<Bytes>(const Bytes& request)>;  // nothing: silence

  struct Counts {
    uint64_t frames = 0;   // complete frames from the host
    uint64_t replies = 0;  // sent, shaped by faults or not
    uint64_t lost = 0;     // frames that a fault took
    uint64_t shaped = 0;   // replies that a fault changed, delayed or split
  };

  Exchange(Wire& wire, Faults& faults, Journal& journal)
      : wire_(wire), faults_(faults), journal_(journal) {}

  void SetAnswerer(Answerer answer) { answer_ = std::move(answer); }
  void OnFrame(const Bytes& request);
  void SendGarbage(size_t count);
  const Counts& Totals() const { return counts_; }

 private:
  Wire& wire_;
  Faults& faults_;
  Journal& journal_;
  Answerer answer_;
  Counts counts_;
};

}  // namespace virtualbus
