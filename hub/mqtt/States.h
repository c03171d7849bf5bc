// The bus as topics and payloads: hears what has changed and tells the publisher. It names only
// what is this hub's own; Home Assistant's messages are another class's. Pure; one thread.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "model/Bus.h"
#include "mqtt/Publisher.h"
#include "mqtt/Topics.h"

namespace hub::mqtt {

class States {
 public:
  // All outlive it. `version` is the hub's own.
  States(const model::Bus& bus, Publisher& publisher, std::string version);

  // Everything, below this name. What stood below an earlier one is taken back.
  void MoveTo(const std::string& name);
  void Take(const model::Change& change, model::SteadyTime now);

  const Topics& Names() const { return topics_; }

 private:
  static constexpr unsigned kMostChannels = 16;  // of a card

  using Cards = std::array<std::optional<std::pair<model::Kind, model::CardState>>,
                           protocol::kCardCount>;  // by address

  bool HaveCardsChanged();
  void TellBus();
  void TellCard(unsigned address);
  void TellCardStatus(unsigned address);
  void TellValue(model::ChannelId id);

  const model::Bus& bus_;
  Publisher& publisher_;
  std::string version_;
  Topics topics_{""};
  Cards cards_;  // as the bus was told with
};

}  // namespace hub::mqtt
