#include <fmt/format.h>

#include <utility>

#include "api/Handlers.h"

namespace hub::api {

Answer GetBus(House& house, Request) { co_return Done(BusJson(house.bus)); }

Answer Discover(House& house, Request request) {
  auto asking = AskDaemon(house, "FORCEDISCOVER");
  const protocol::Lines lines = co_await std::move(asking);
  Note(house, request, "command", "discover");
  co_return Done(CardsJson(house.bus));
}

Answer SetPace(House& house, Request request) {
  const int64_t pace = IntegerAt(request, "pace");
  auto asking = AskDaemon(house, fmt::format("SPEED={}", pace));
  const protocol::Lines lines = co_await std::move(asking);
  Note(house, request, "command", fmt::format("pace: {} %", pace));
  co_return Done(BusJson(house.bus));
}

Answer SetPolling(House& house, Request request) {
  const bool is_on = FlagAt(request, "polling");
  auto asking = AskDaemon(house, is_on ? "ENABLEPOLL" : "DISABLEPOLL");
  const protocol::Lines lines = co_await std::move(asking);
  Note(house, request, "command", fmt::format("polling: {}", is_on ? "on" : "off"));
  auto refreshing = RefreshPolling(house);
  co_await std::move(refreshing);
  co_return Done(BusJson(house.bus));
}

Answer Subscribe(House& house, Request request) {
  const auto given = MaybeInteger(request, "after");
  std::optional<uint64_t> after;
  if (given) after = static_cast<uint64_t>(*given);
  Reply reply = Done(SnapshotJson(house.bus, house.page, after, house.Neighbours()));
  reply.live_after = house.bus.Sequence();
  co_return reply;
}

}  // namespace hub::api
