// The bus as everybody sees it: the daemon, the adapter, sixteen places for cards and what is on
// their channels. It knows nothing of sockets and of files.
//
// The link changes it, the doors read it. Every visible change gets the next sequence number;
// what has come together is published as one Change. One thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "model/Card.h"
#include "model/Change.h"
#include "model/Settings.h"
#include "protocol/ConsoleReplies.h"
#include "protocol/InputReport.h"
#include "protocol/IoCommand.h"

namespace hub::model {

enum class DaemonState {
  kAbsent,   // nothing listens
  kWaiting,  // connected, not greeted: another client holds a port
  kUp,
};

struct Daemon {
  DaemonState state = DaemonState::kAbsent;
  std::optional<std::string> version;
  std::optional<Time> since;
  std::optional<std::string> waiting_for;  // "cae", "io" or "mon"
  bool operator==(const Daemon&) const = default;
};

enum class AdapterState { kUnknown, kDown, kUp };

struct Adapter {
  AdapterState state = AdapterState::kUnknown;
  std::optional<std::string> device;
  std::optional<std::string> version;
  bool operator==(const Adapter&) const = default;
};

enum class BrokerState { kConnecting, kUp, kRefused };

struct Broker {
  BrokerState state = BrokerState::kConnecting;
  std::string host;
  std::string detail;  // why it is not up, for people; empty: nothing to say
  bool operator==(const Broker&) const = default;
};

class Bus {
 public:
  using Listener = std::function<void(const Change& change)>;

  explicit Bus(std::string id, std::string hub_version = {})
      : id_(std::move(id)), hub_version_(std::move(hub_version)) {}
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  // What doors read.
  const std::string& Id() const { return id_; }                   // 8 hexadecimal digits
  const std::string& HubVersion() const { return hub_version_; }  // empty: not said
  uint64_t Sequence() const { return sequence_; }
  const Daemon& DaemonNow() const { return daemon_; }
  const Adapter& AdapterNow() const { return adapter_; }
  const std::optional<Broker>& BrokerNow() const { return broker_; }  // nothing: none is set up
  std::optional<int> Pace() const { return pace_; }                   // percent
  std::optional<bool> Polling() const { return polling_; }
  const model::Settings& Names() const { return settings_; }
  const Card* At(unsigned address) const;  // null where no card is or was
  const EventRing& Events() const { return events_; }
  void Listen(Listener listener) { listeners_.push_back(std::move(listener)); }

  // What the link has learned.
  void SetDaemon(Daemon daemon);
  void SetAdapter(Adapter adapter);
  void SetPace(int percent);
  void SetPolling(const protocol::Polling& polling);
  void SetCards(const protocol::CardNames& names);
  void TakeInput(const protocol::InputReport& report, Time now);
  void TakeOutput(const protocol::IoCommand& command, Time now);  // the daemon has acted on it
  void SetPending(unsigned address, unsigned block, bool pending);
  void AssumeOutputs();  // a new session of the daemon: nothing was sent in it yet
  void AssumeOutputs(unsigned address);

  void SetBroker(std::optional<Broker> broker);

  // What people have settled. Values change with their units.
  void Apply(model::Settings settings);
  // What is not the bus's, and changes as it does: what the page keeps, and the other boards.
  void NotePage();
  void NoteBoards(std::vector<BoardPlace> places);

  // Delivers what has changed since the last time, if anything has.
  void Publish();

 private:
  Card* Find(unsigned address);
  void PlugCard(unsigned address, Kind kind);
  void TakeBlock(Card& card, unsigned block, uint8_t value, Time now);
  void TakeKeys(Card& card, uint8_t value, Time now);
  void NoteBus();
  void NoteCard(unsigned address);
  void NoteChannel(ChannelId id);

  std::string id_;
  std::string hub_version_;
  Daemon daemon_;
  Adapter adapter_;
  std::optional<Broker> broker_;
  std::optional<int> pace_;
  std::optional<bool> polling_;
  model::Settings settings_;
  std::array<std::optional<Card>, protocol::kCardCount> cards_;
  EventRing events_;
  std::vector<Listener> listeners_;
  uint64_t sequence_ = 0;
  Change change_;
};

}  // namespace hub::model
