// The link with the real daemon on the real virtual bus. The daemon's waits are shortened, the
// link's are not.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "LinkDriver.h"
#include "SiteTest.h"

namespace hub::link {

class LinkSite : public SiteTest {
 protected:
  static constexpr unsigned kLamps = 5;
  static constexpr unsigned kServos = 0;
  static constexpr unsigned kMotors = 4;

  void TearDown() override;

  // Bus, daemon and hub; outputs go out.
  void StartAll(const std::string& percent = "80");
  void StartHub(const std::vector<protocol::WriteBlock>& asked = {},
                const std::string& log = kLogFile);
  void WaitReady(Place place = Place::current());  // the adapter is there and outputs are not held

  void KillDaemon();
  void StartDaemonAnew() { StartDaemon(launch_); }
  void PullCable();
  void PlugCable();

  void SetByte(unsigned address, unsigned block, uint8_t value, Place place = Place::current());

  std::unique_ptr<LinkDriver> link;
  model::Settings settings;

 private:
  LaunchOptions launch_;
};

}  // namespace hub::link
