#include "mqtt/States.h"

#include <utility>

#include "mqtt/Payloads.h"

namespace hub::mqtt {

States::States(const model::Bus& bus, Publisher& publisher, std::string version)
    : bus_(bus), publisher_(publisher), version_(std::move(version)) {}

void States::MoveTo(const std::string& name) {
  const Topics topics(name);
  if (topics.Root() != topics_.Root()) publisher_.TakeBackBelow(topics_.Root());
  topics_ = topics;
  TellBus();
  for (unsigned address = 0; address < protocol::kCardCount; ++address) TellCard(address);
}

void States::Take(const model::Change& change, model::SteadyTime now) {
  const bool have_changed = !change.cards.empty() && HaveCardsChanged();
  if (change.bus || have_changed) TellBus();
  if (change.bus)
    for (unsigned address = 0; address < protocol::kCardCount; ++address) TellCardStatus(address);
  for (const unsigned address : change.cards) TellCard(address);
  for (const model::ChannelId& id : change.channels) TellValue(id);
  for (const model::Event& event : change.events)
    publisher_.Tell({topics_.Event(event.address), EventPayload(event)}, now);
}

// Kind or state of any: what is on their channels is no part of the bus.
bool States::HaveCardsChanged() {
  Cards cards;
  for (unsigned address = 0; address < cards.size(); ++address)
    if (const model::Card* const card = bus_.At(address))
      cards[address] = {card->kind, card->state};
  return std::exchange(cards_, cards) != cards;
}

void States::TellBus() { publisher_.Keep(topics_.Bus(), BusPayload(bus_, version_)); }

// A card that has gone leaves its status, and one of another kind in its place has other channels.
void States::TellCard(unsigned address) {
  const model::Card* const card = bus_.At(address);
  if (card == nullptr) return;
  TellCardStatus(address);
  const bool is_there = card->state != model::CardState::kAbsent;
  for (unsigned number = 0; number < kMostChannels; ++number) TellValue({address, number});
  if (is_there && card->glass)
    publisher_.Keep(topics_.Glass(address), GlassPayload(*card->glass));
  else if (publisher_.Keeps(topics_.Glass(address)))
    publisher_.TakeBack(topics_.Glass(address));
}

void States::TellCardStatus(unsigned address) {
  const model::Card* const card = bus_.At(address);
  if (card == nullptr) return;
  publisher_.Keep(topics_.CardStatus(address),
                  std::string(Answers(bus_, *card) ? kOnline : kOffline));
}

// A code that was sent is nothing to be kept: whoever hears it later would take it for a state.
void States::TellValue(model::ChannelId id) {
  const model::Card* const card = bus_.At(id.address);
  if (card == nullptr) return;
  const std::string topic = topics_.Value(id);
  const bool is_there = card->state != model::CardState::kAbsent &&
                        card->kind != model::Kind::kInfrared && id.number < card->channels.size();
  if (is_there)
    publisher_.Keep(topic, ValuePayload(card->channels[id.number].value));
  else if (publisher_.Keeps(topic))
    publisher_.TakeBack(topic);
}

}  // namespace hub::mqtt
