#include <fmt/format.h>

#include <utility>
#include <vector>

#include "api/Handlers.h"
#include "api/Targets.h"

namespace hub::api {

namespace {

// As it is after a command; it can have gone meanwhile.
Reply CardNow(const House& house, const Request& request) {
  return Done(CardJson(house.bus, RequireCard(house, request)));
}

}  // namespace

Answer ListCards(House& house, Request) { co_return Done(CardsJson(house.bus)); }

Answer GetCard(House& house, Request request) { co_return CardNow(house, request); }

Answer SetCard(House& house, Request request) {
  RequireDaemon(house);
  const model::Card& card = RequireCard(house, request);
  RequireOutputs(card);
  const unsigned address = card.address;
  std::vector<link::Target> targets = TargetsOf(house.bus, card, ObjectAt(request, "values"));
  std::string note = TargetsText(house.bus, card, targets);
  auto setting = house.link.Set(address, std::move(targets), {});
  const link::Outcome outcome = co_await std::move(setting);
  RequireAccepted(outcome, address);
  Note(house, request, "command", std::move(note));
  co_return CardNow(house, request);
}

Answer SetCardPolling(House& house, Request request) {
  RequireDaemon(house);
  const model::Card& card = RequireCard(house, request);
  RequirePresent(card);
  const std::string address = AddressText(card.address);
  if (card.Row().direction != model::Direction::kInput)
    throw ProblemOf(
        409,
        fmt::format("card {} is of the kind {}; only inputs are polled", address, card.Row().word),
        "address");
  const bool is_on = FlagAt(request, "polling");
  auto asking = AskDaemon(house, fmt::format("{}:{}", is_on ? "POLLON" : "POLLOFF", address));
  const protocol::Lines lines = co_await std::move(asking);
  Note(house, request, "command", fmt::format("polling of {}: {}", address, is_on ? "on" : "off"));
  auto refreshing = RefreshPolling(house);
  co_await std::move(refreshing);
  co_return CardNow(house, request);
}

Answer RebootCard(House& house, Request request) {
  RequireDaemon(house);
  const model::Card& card = RequireCard(house, request);
  RequirePresent(card);
  const unsigned address = card.address;
  auto asking = AskDaemon(house, fmt::format("REBOOT:{}", AddressText(address)));
  const protocol::Lines lines = co_await std::move(asking);
  house.card_memory.Forget(address);
  Note(house, request, "command", fmt::format("reboot of {}", AddressText(address)));
  co_return CardNow(house, request);
}

}  // namespace hub::api
