// The link against a daemon that the test plays.
#pragma once

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

#include "FakeDaemon.h"
#include "LinkDriver.h"

namespace hub::link {

using namespace std::chrono_literals;
using model::DaemonState;
using protocol::LcdControl;
using protocol::Lines;
using protocol::WriteBlock;
using protocol::WriteText;

class LinkTest : public testing::Test {
 protected:
  LinkOptions Options() const { return {.host = "127.0.0.1", .ports = daemon.Ports(), .log = ""}; }

  void Introduce() {
    daemon.AcceptAll();
    daemon.GreetAll();
    daemon.AnswerFirst();
    ASSERT_TRUE(link.WaitUp());
  }

  // The link has asked for cards and polling, and for nothing else yet.
  void Greet(const std::string& polling) {
    daemon.AcceptAll();
    daemon.GreetAll();
    daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
    daemon.Answer("POLLSTATE", polling);
    daemon.AnswerCards();
  }

  bool WaitPolling(bool is_polling) {
    return WaitUntil([&] {
      return link.Look([](const model::Bus& bus) { return bus.Polling(); }) == is_polling;
    });
  }

  // Everybody's commands wait while it lasts.
  void BeginDiscovery() {
    discovery = link.AskLater("FORCEDISCOVER");
    EXPECT_EQ(daemon.client(Port::kCae).ReadUntil("\r\n"), "FORCEDISCOVER\r\n");
  }
  void EndDiscovery() {
    daemon.Say(Port::kCae, FakeDaemon::Table("FORCED DISCOVER LIST:") + ">\r\n\r");
    EXPECT_TRUE(discovery.get());
    daemon.AnswerPolling();
    daemon.AnswerInputs();
  }

  // With 255 bytes of texts; until one of them is echoed, nothing else goes out.
  std::vector<std::future<Outcome>> FillTheLine() {
    std::vector<std::future<Outcome>> waiting;
    for (const size_t length : {34, 34, 34, 34, 34, 7}) {
      const std::string text(length, 'x');
      waiting.push_back(link.SendLater(WriteText{0xE, 0, 0, text}));
      daemon.ExpectCommand("aElPAp0000t" + text);
    }
    return waiting;
  }

  void SetMotor(unsigned number, uint8_t value, const std::vector<std::string>& lines) {
    auto outcome = link.SetLater(4, {{number, value}});
    for (const std::string& line : lines) {
      daemon.ExpectCommand(line);
      daemon.Echo(line);
    }
    EXPECT_EQ(outcome.get(), Outcome::kAccepted);
  }

  std::future<std::optional<Lines>> discovery;
  FakeDaemon daemon;
  LinkDriver link{Options()};
};

}  // namespace hub::link
