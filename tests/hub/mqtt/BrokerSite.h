// A site whose hub has a broker: a real Mosquitto, and clients of it that nobody here wrote.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HubSite.h"

inline constexpr int kBroker = 1883;

class BrokerSite : public HubSite {
 protected:
  void TearDown() override;

  // Mosquitto, with more lines of its configuration; it answers. What it has kept is gone then.
  void StartBroker(const std::string& more = "allow_anonymous true\n", int port = kBroker);
  void StopBroker();

  // Bus, daemon, hub; the hub is called bench on the broker. More keys of its section.
  void StartAllWith(const std::string& more_keys = "");
  static std::string BrokerSection(const std::string& more_keys = "");

  // Somebody who hears everything below the filter, from now on: what was kept, with "1" in
  // front, and what comes, with "0".
  void Listen(const std::string& filter = "qelm/#");
  // This message was heard, or is soon: "0 qelm/bench/5/0 ON".
  void ExpectHeard(const std::string& line);
  void ExpectLevel(const std::string& level);  // kept before, or told since
  bool HasHeard(const std::string& text) const;
  size_t TimesHeard(const std::string& text) const;
  std::string Heard() const { return listener ? listener->Output() : ""; }

  static void Tell(const std::string& topic, const std::string& payload,
                   const std::vector<std::string>& options = {});

  // Many at once, to be kept.
  using Kept = std::vector<std::pair<std::string, std::string>>;
  static void TellAll(const Kept& messages);

  static std::string BrokerState();  // in the API: {"state":...}
  static void ExpectBroker(const std::string& state);
  static double Metric(const std::string& name);

  std::unique_ptr<virtualbus::Program> broker;
  std::unique_ptr<virtualbus::Program> listener;

 private:
  TempDir broker_folder_;
  TempDir listener_folder_;
};
