#include "line/Exchange.h"

namespace virtualbus {

void Exchange::OnFrame(const Bytes& request) {
  ++counts_.frames;
  journal_.FromHost(request);
  if (const std::string why = faults_.WhyLost(); !why.empty()) {
    ++counts_.lost;
    journal_.Note("frame lost: " + why);
    return;
  }
  const std::optional<Bytes> reply = answer_(request);
  if (!reply) return;
  const Faults::Shaped shaped = faults_.Shape(*reply);
  wire_.Send(shaped.line, shaped.delay, shaped.pieces);
  ++counts_.replies;
  if (!shaped.note.empty()) ++counts_.shaped;
  journal_.ToHost(*reply, shaped.note);
}

void Exchange::SendGarbage(size_t count) {
  const Bytes garbage = faults_.Garbage(count);
  wire_.Send(garbage);
  journal_.Note("garbage: " + Hex(garbage));
}

}  // namespace virtualbus
