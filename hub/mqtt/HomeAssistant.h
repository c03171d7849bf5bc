// The bus in Home Assistant: devices and entities that come up there by themselves. Tells them over
// the broker, and again when Home Assistant greets. Owned by the hub; one thread.
#pragma once

#include <boost/asio/steady_timer.hpp>
#include <string>

#include "api/Api.h"
#include "mqtt/Announcer.h"
#include "mqtt/Broker.h"
#include "mqtt/Departures.h"

namespace hub::mqtt {

class HomeAssistant {
 public:
  // Before Broker::Use. All outlive it. `version` is the hub's own.
  HomeAssistant(api::House& house, Broker& broker, std::string version);
  HomeAssistant(const HomeAssistant&) = delete;
  HomeAssistant& operator=(const HomeAssistant&) = delete;

  // What is told from now on: kOff takes back what an earlier run has told, too.
  void Use(Discovery discovery);
  void Stop();

 private:
  void Hear(const Arrived& arrived);
  void Look();  // something about the bus may have changed
  void Arm();
  void Act();
  void Do(const Announcer::Deed& deed);
  model::SteadyTime Now() const { return house_.clock.Steady(); }

  api::House& house_;
  Broker& broker_;
  std::string version_;
  Discovery discovery_ = Discovery::kOff;
  Announcer announcer_;
  Departures departures_;
  boost::asio::steady_timer timer_;
  bool is_up_ = false;  // the broker was there: before, there is nobody to tell
};

}  // namespace hub::mqtt
