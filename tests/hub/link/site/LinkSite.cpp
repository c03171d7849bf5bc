#include "LinkSite.h"

#include <signal.h>

namespace hub::link {

void LinkSite::TearDown() {
  if (HasFailure() && link)
    for (const std::string& text : link->Journal()) std::cout << "journal: " << text << '\n';
  link.reset();
  SiteTest::TearDown();
}

void LinkSite::StartAll(const std::string& percent) {
  WriteConfig({.percent = percent, .poll = "TRUE"});
  StartBus();
  StartDaemonAnew();
  StartHub();
  WaitReady();
}

void LinkSite::StartHub(const std::vector<protocol::WriteBlock>& asked, const std::string& log) {
  link.reset();
  link = std::make_unique<LinkDriver>(
      LinkOptions{.host = "127.0.0.1", .ports = {::kCae, ::kIo, ::kMon}, .log = log}, asked,
      settings);
}

// The first value that a held output gets is pending until the release.
void LinkSite::WaitReady(Place place) {
  const bool is_ready = WaitUntil([&] {
    return link->WaitUp() && link->Adapter() == model::AdapterState::kUp &&
           link->Channel(kLamps, 0) &&
           link->Send(protocol::WriteBlock{kLamps, 1, 0xFF}) == Outcome::kAccepted &&
           !link->Channel(kLamps, 8)->pending;
  });
  if (!is_ready) FAIL_AT(place) << "the link does not get ready";
}

void LinkSite::KillDaemon() {
  daemon.Kill(SIGKILL);
  daemon.WaitForEnd();
}

void LinkSite::PullCable() {
  Bus("cable pull");
  EXPECT_TRUE(WaitUntil([&] { return link->Adapter() == model::AdapterState::kDown; }));
}

void LinkSite::PlugCable() {
  Bus("cable plug");
  EXPECT_TRUE(WaitUntil([&] { return link->Adapter() == model::AdapterState::kUp; }));
}

void LinkSite::SetByte(unsigned address, unsigned block, uint8_t value, Place place) {
  const auto outcome = link->Send(
      protocol::WriteBlock{static_cast<uint8_t>(address), static_cast<uint8_t>(block), value});
  if (outcome != Outcome::kAccepted) FAIL_AT(place) << "outcome " << static_cast<int>(outcome);
}

}  // namespace hub::link
