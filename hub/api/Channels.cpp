#include <fmt/format.h>

#include <chrono>
#include <utility>
#include <vector>

#include "api/Handlers.h"
#include "api/Targets.h"

namespace hub::api {

namespace {

Reply ChannelNow(const House& house, const Request& request) {
  const ChannelAt at = RequireChannel(house, TextAt(request, "id"));
  return Done(ChannelJson(house.bus, at.card, at.number));
}

link::Motion MotionOf(const Request& request, const model::Card& card) {
  link::Motion motion;
  const bool has_lines = model::HasLines(card.Row());
  if (const auto pulse = MaybeInteger(request, "pulse")) {
    if (!has_lines) throw DoesNotFit("pulse", "a pulse is for lines; this channel takes a ramp");
    if (request.parameters.at("value") != true)
      throw DoesNotFit("pulse", "a pulse switches on and back: its value has to be true");
    motion.pulse = std::chrono::milliseconds(*pulse);
  }
  if (const auto ramp = MaybeInteger(request, "ramp")) {
    if (has_lines)
      throw DoesNotFit("ramp", "a ramp is for positions and drives; this line takes a pulse");
    motion.ramp = std::chrono::milliseconds(*ramp);
  }
  return motion;
}

std::string MotionText(const link::Motion& motion) {
  if (motion.pulse) return fmt::format(" for {} ms", motion.pulse->count());
  if (motion.ramp) return fmt::format(" within {} ms", motion.ramp->count());
  return "";
}

}  // namespace

Answer GetChannel(House& house, Request request) { co_return ChannelNow(house, request); }

Answer SetChannel(House& house, Request request) {
  RequireDaemon(house);
  const ChannelAt at = RequireChannel(house, TextAt(request, "id"));
  RequireOutputs(at.card);
  const unsigned address = at.card.address;
  std::vector<link::Target> targets{
      TargetOf(house.bus, at.card, at.number, request.parameters.at("value"), "value")};
  const link::Motion motion = MotionOf(request, at.card);
  std::string note = TargetsText(house.bus, at.card, targets) + MotionText(motion);
  auto setting = house.link.Set(address, std::move(targets), motion);
  const link::Outcome outcome = co_await std::move(setting);
  RequireAccepted(outcome, address);
  Note(house, request, "command", std::move(note));
  co_return ChannelNow(house, request);
}

}  // namespace hub::api
