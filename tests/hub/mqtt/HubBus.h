// A bus with a card of each kind, and what Home Assistant shall have of it.
#pragma once

#include <string>
#include <utility>

#include "CardsOfEachKind.h"
#include "model/Bus.h"
#include "mqtt/Wanted.h"

namespace hub::mqtt {

struct HubBus {
  HubBus() : HubBus(Named()) { StartDaemon(); }
  // Nothing is known of it yet.
  explicit HubBus(model::Settings settings) { bus.Apply(std::move(settings)); }

  void StartDaemon() {
    bus.SetDaemon({model::DaemonState::kUp, "1.20", {}, {}});
    bus.SetAdapter({model::AdapterState::kUp, {}, {}});
    bus.SetCards(cards);
  }

  static model::Settings Named() {
    model::Settings settings;
    settings.bus_name = "bench";
    settings.cards[5].name = "Relays";
    settings.channels[{5, 0}].name = "Lamp";
    return settings;
  }

  void Change(auto change) {
    model::Settings settings = bus.Names();
    change(settings);
    bus.Apply(std::move(settings));
  }
  void Plug(unsigned address, const std::string& kind) {
    cards[address] = kind;
    bus.SetCards(cards);
  }
  void Pull(unsigned address) { Plug(address, "EMPTY"); }

  Board AsBoard() const { return {bus, topics, "0.3.0"}; }

  protocol::CardNames cards = CardsOfEachKind();
  model::Bus bus{"3f9a21c0"};
  Topics topics{"bench"};
};

}  // namespace hub::mqtt
