#include "mqtt/HomeAssistant.h"

#include <algorithm>
#include <random>
#include <utility>

#include "mqtt/Payloads.h"

namespace hub::mqtt {

namespace {

constexpr char kStatus[] = "homeassistant/status";

double Chance() {
  static thread_local std::minstd_rand random{std::random_device{}()};
  return std::uniform_real_distribution<double>()(random);
}

}  // namespace

HomeAssistant::HomeAssistant(api::House& house, Broker& broker, std::string version)
    : house_(house),
      broker_(broker),
      version_(std::move(version)),
      announcer_(house.bus.Id(), Chance),
      timer_(house.context) {
  house_.bus.Listen([this](const model::Change& change) {
    if (change.bus || !change.cards.empty()) Look();
  });
  broker_.WhenUp([this] {
    is_up_ = true;
    announcer_.Begin(Now());
    Look();
  });
  broker_.Hear(kStatus, [this](const Arrived& arrived) {
    if (arrived.message.payload != kOnline) return;
    announcer_.Greet(Now());
    Arm();
  });
  for (const std::string& filter : AnnouncementFilters(house_.bus.Id()))
    broker_.Hear(filter, [this](const Arrived& arrived) { Hear(arrived); });
}

void HomeAssistant::Use(Discovery discovery) {
  discovery_ = discovery;
  Look();
}

void HomeAssistant::Stop() {
  is_up_ = false;
  timer_.cancel();
}

// One that is too long to be read is somebody's; it is not an empty one.
void HomeAssistant::Hear(const Arrived& arrived) {
  const bool is_left_out = arrived.message.payload.size() != arrived.size;
  announcer_.Hear(arrived.message.topic, is_left_out ? "?" : arrived.message.payload, Now());
  Arm();
}

void HomeAssistant::Look() {
  if (!is_up_) return;
  departures_.Look(house_.bus, Now());
  announcer_.Touch(Now());
  Arm();
}

void HomeAssistant::Arm() {
  if (!is_up_) return;
  const auto announced = announcer_.Due();
  const auto gone = departures_.Due();
  if (!announced && !gone) return;
  const auto due = announced && gone ? std::min(*announced, *gone) : announced.value_or(*gone);
  timer_.expires_after(due - Now());
  timer_.async_wait([this](boost::system::error_code error) {
    if (!error) Act();
  });
}

void HomeAssistant::Act() {
  const auto gone = departures_.Gone();
  departures_.Look(house_.bus, Now());
  if (gone != departures_.Gone()) announcer_.Touch(Now());
  if (announcer_.Due() && *announcer_.Due() <= Now()) {
    const Board board{house_.bus, broker_.Names(), version_};
    const Wanted wanted = WantedOf(board, discovery_, departures_.Gone());
    for (const Announcer::Deed& deed : announcer_.Act(wanted, Now())) Do(deed);
    broker_.Flush();
  }
  Arm();
}

void HomeAssistant::Do(const Announcer::Deed& deed) {
  Publisher& publisher = broker_.Outgoing();
  switch (deed.what) {
    case Announcer::Deed::kKeep:
      return publisher.Keep(deed.topic, deed.payload);
    case Announcer::Deed::kTakeBack:
      return publisher.TakeBack(deed.topic);
    case Announcer::Deed::kTellAgain:
      return publisher.TellAgainBelow(deed.topic);
    case Announcer::Deed::kTellStates:
      return publisher.TellAgainBelow(broker_.Names().Root());
  }
}

}  // namespace hub::mqtt
