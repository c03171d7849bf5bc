#include "LinkTest.h"

#include <unistd.h>

#include <algorithm>

#include "kit/Proc.h"
#include "kit/TempDir.h"

namespace hub::link {
namespace {

TEST_F(LinkTest, GreetedOnAllPortsItAsksWhatIsThere) {
  EXPECT_EQ(link.Daemon().state, DaemonState::kAbsent);
  Introduce();
  EXPECT_EQ(link.Daemon().version, "1.20");
  EXPECT_EQ(link.Adapter(), model::AdapterState::kUnknown);
  EXPECT_TRUE(link.Channel(5, 15));
  EXPECT_FALSE(link.Channel(5, 0)->IsKnown());
  EXPECT_EQ(link.Count().sessions, 1U);
}

TEST_F(LinkTest, WhatAnEarlierClientLeftIsNobodys) {
  daemon.AcceptAll();
  daemon.Say(Port::kCae, "COE:Illegal command -> a5x1\r\n\r>\r\n\rDISCOVER LIST:\r\n\r>\r\n\r");
  daemon.Say(Port::kIo, "a3b0d40\r\n\r");
  daemon.Say(Port::kMon, "a5b0d00\r\n\r");
  daemon.GreetAll();
  daemon.AnswerFirst();
  ASSERT_TRUE(link.WaitUp());
  EXPECT_FALSE(link.Channel(3, 6)->IsKnown());
  EXPECT_FALSE(link.Channel(5, 0)->IsKnown());
}

TEST_F(LinkTest, ReportsAreValues) {
  Introduce();
  daemon.Say(Port::kIo, "a3b0d4");
  daemon.Say(Port::kIo, "0\r\n\ra3b1d00\r\n\r");
  EXPECT_TRUE(link.WaitValue(3, 6, true));
  EXPECT_TRUE(link.WaitValue(3, 8, false));
}

TEST_F(LinkTest, InputsThatTheDaemonDoesNotNameAreAskedToo) {
  Greet("CIA: GLOBAL POLLING IS ENABLED\r\n\r");
  daemon.AnswerInputs();
  EXPECT_TRUE(link.WaitUp());
}

// It would show 00 for what it never polled.
TEST_F(LinkTest, InputsThatAreNotPolledAreNotAsked) {
  for (const bool is_polling : {true, false}) {
    Greet(is_polling ? "CIA: GLOBAL POLLING IS ENABLED\r\n\rPTI:0x3:OFF\r\n\r"
                     : "CIA: GLOBAL POLLING IS DISABLED\r\n\rPTI:0x3:ON\r\n\r");
    EXPECT_TRUE(WaitPolling(is_polling));
    auto answer = link.AskLater("HELP");
    daemon.Answer("HELP", "help\r\n\r");
    EXPECT_TRUE(answer.get());
    daemon.CloseAll();
  }
}

TEST_F(LinkTest, TheEchoIsTheAnswer) {
  Introduce();
  auto outcome = link.SetLater(5, {{0, 0}, {2, 0}});
  daemon.ExpectCommand("a5b0dFA");
  EXPECT_EQ(outcome.wait_for(20ms), std::future_status::timeout);
  daemon.Echo("a5b0dFA");
  EXPECT_EQ(outcome.get(), Outcome::kAccepted);
  EXPECT_TRUE(link.WaitValue(5, 0, false));
  EXPECT_EQ(link.Asked(), (std::vector<WriteBlock>{{5, 0, 0xFA}}));
}

TEST_F(LinkTest, WithoutALogEachCommandCarriesTheOtherBlocks) {
  Introduce();
  auto first = link.SendLater(WriteBlock{5, 1, 0x00});
  daemon.ExpectCommand("a5b1d00");
  daemon.Echo("a5b1d00");
  EXPECT_EQ(first.get(), Outcome::kAccepted);
  auto second = link.SendLater(WriteBlock{5, 0, 0x0F});
  daemon.ExpectCommand("a5b1d00");
  daemon.Echo("a5b1d00");
  daemon.ExpectCommand("a5b0d0F");
  daemon.Echo("a5b0d0F");
  EXPECT_EQ(second.get(), Outcome::kAccepted);
}

TEST_F(LinkTest, AnIllegalCommandIsAnsweredAsOne) {
  Introduce();
  // A daemon that refuses it later than 600 ms after its echo is not waited for.
  EXPECT_TRUE(WaitUntil([&] {
    auto outcome = link.SendLater(protocol::ControlLcd{5, LcdControl::kClear});
    daemon.ExpectCommand("a5lCL");
    daemon.Echo("a5lCL");
    daemon.Say(Port::kCae, "COE:Illegal command -> a5lCL\r\n\r>\r\n\r");
    return outcome.get() == Outcome::kIllegal;
  }));
  EXPECT_TRUE(link.WaitJournal("a5lCL"));
}

TEST_F(LinkTest, ADoubtfulCommandThatIsNotRefusedIsAccepted) {
  Introduce();
  auto outcome = link.SendLater(protocol::SendInfrared{9, {0x43}});
  daemon.ExpectCommand("a9sHS43");
  daemon.Echo("a9sHS43");
  EXPECT_EQ(outcome.get(), Outcome::kAccepted);
}

TEST_F(LinkTest, ARefusalInTheMiddleOfAnAnswerIsNotPartOfIt) {
  Introduce();
  auto answer = link.AskLater("HELP");
  auto next = link.AskLater("DRVVER");
  EXPECT_EQ(daemon.client(Port::kCae).ReadUntil("\r\n"), "HELP\r\n");
  daemon.Say(Port::kCae, "one\r\n\rCOE:Illegal command -> zz\r\n\r>\r\n\rtwo\r\n\r");
  EXPECT_EQ(answer.wait_for(20ms), std::future_status::timeout);
  daemon.Say(Port::kCae, ">\r\n\r");
  EXPECT_EQ(answer.get(), (Lines{"one", "two"}));
  daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
  EXPECT_EQ(next.get(), (Lines{"CIA: DRIVER VERSION 1.20"}));
}

TEST_F(LinkTest, ALineThatCannotGoOutIsNotSent) {
  Introduce();
  EXPECT_EQ(link.Ask("EXIT"), std::nullopt);
  EXPECT_EQ(link.Ask("DRVVER\r\nEXIT"), std::nullopt);
  EXPECT_EQ(link.Ask(std::string(254, 'x')), std::nullopt);
  auto answer = link.AskLater(std::string(253, 'x'));
  daemon.Answer(std::string(253, 'x'), "CIE: UNKNOWN COMMAND \r\n\r");
  EXPECT_EQ(answer.get(), (Lines{"CIE: UNKNOWN COMMAND "}));
}

TEST_F(LinkTest, ALongTextGoesInPieces) {
  Introduce();
  auto outcome = link.SendLater(WriteText{0xE, 0, 1, std::string(34, 'a') + "bc"});
  for (const std::string& line :
       {"aElPAp0001t" + std::string(34, 'a'), std::string("aElPAp2201tbc")}) {
    daemon.ExpectCommand(line);
    daemon.Echo(line);
  }
  EXPECT_EQ(outcome.get(), Outcome::kAccepted);
  EXPECT_EQ(link.Send(WriteText{0xE, 0, 0, "a\r\na5b0d00"}), Outcome::kIllegal);
}

// Motors do not start by themselves, and the daemon's record of them is at 00 now.
TEST_F(LinkTest, AFrameAfterADiscoveryTellsWhatItTookAlong) {
  Introduce();
  SetMotor(0, 100, {"a4b0d64"});
  SetMotor(1, 120, {"a4b1d78"});
  EXPECT_FALSE(link.Channel(4, 1)->assumed);
  BeginDiscovery();
  EndDiscovery();
  EXPECT_EQ(link.Channel(4, 1)->raw, 120);
  EXPECT_TRUE(link.Channel(4, 1)->assumed);
  SetMotor(0, 110, {"a4b0d6E"});
  EXPECT_EQ(link.Channel(4, 0)->raw, 110);
  EXPECT_EQ(link.Channel(4, 1)->raw, 0);
  EXPECT_FALSE(link.Channel(4, 1)->assumed);
  EXPECT_FALSE(link.Channel(4, 2)->IsKnown());
}

TEST_F(LinkTest, ARebootedMotorStaysAsItIsWhenAnotherOneIsSet) {
  Introduce();
  SetMotor(0, 0, {"a4b0d00"});
  SetMotor(1, 120, {"a4b1d78"});
  auto answer = link.AskLater("REBOOT:4");
  daemon.Answer("REBOOT:4", "RBT:0x4:OK\r\n\r");
  EXPECT_TRUE(answer.get());
  EXPECT_EQ(link.Channel(4, 1)->raw, 0);
  SetMotor(0, 110, {"a4b1d00", "a4b2d00", "a4b3d00", "a4b0d6E"});
  SetMotor(0, 111, {"a4b0d6F"});
  EXPECT_EQ(link.Channel(4, 1)->raw, 0);
  EXPECT_FALSE(link.Channel(4, 1)->assumed);
}

TEST_F(LinkTest, SixtyFourLinesWaitAndNoMore) {
  Introduce();
  std::vector<std::future<std::optional<Lines>>> answers;
  for (int i = 0; i < 64; ++i) answers.push_back(link.AskLater("DRVVER"));
  EXPECT_TRUE(link.IsConsoleFull());
  EXPECT_EQ(link.Ask("DRVVER"), std::nullopt);
  for (auto& answer : answers) {
    daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
    EXPECT_TRUE(answer.get());
  }
  EXPECT_FALSE(link.IsConsoleFull());
}

TEST_F(LinkTest, SpeedAndPollingThatSomebodySetAreKnown) {
  Introduce();
  auto speed = link.AskLater("SPEED=50");
  daemon.Answer("SPEED=50", "CIA: SPEED IS SET to 50%\r\n\r");
  EXPECT_TRUE(speed.get());
  EXPECT_EQ(link.Look([](const model::Bus& bus) { return bus.Pace(); }), 50);
  auto polling = link.AskLater("DISABLEPOLL");
  daemon.Answer("DISABLEPOLL", "CIA: GLOBAL POLLING IS DISABLED\r\n\r");
  EXPECT_TRUE(polling.get());
  daemon.Answer("POLLSTATE", "CIA: GLOBAL POLLING IS DISABLED\r\n\rPTI:0x3:ON\r\n\r");
  EXPECT_TRUE(WaitPolling(false));
}

TEST_F(LinkTest, GarbageOnEveryPortChangesNothing) {
  Introduce();
  const std::string endless(1'000'000, '\x80');
  const std::string odd = std::string("\0\xFF>a5b0\n\n:COE\r\n", 15);
  for (const Port port : {Port::kCae, Port::kIo, Port::kMon}) {
    daemon.Say(port, odd);
    daemon.Say(port, endless);
    daemon.Say(port, "\r\n");
  }
  daemon.Say(Port::kIo, "a3b0d01\r\n\r");
  EXPECT_TRUE(link.WaitValue(3, 0, true));
  auto answer = link.AskLater("DRVVER");
  daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
  EXPECT_EQ(answer.get(), (Lines{"CIA: DRIVER VERSION 1.20"}));
}

TEST_F(LinkTest, ADaemonThatStopsReadingHoldsNothingUp) {
  Introduce();
  std::vector<std::future<Outcome>> outcomes;
  for (int i = 0; i < 200; ++i)
    outcomes.push_back(link.SendLater(WriteText{0xE, 0, 0, std::string(34, 'x')}));
  const auto is_answered = [](const std::future<Outcome>& outcome) {
    return outcome.wait_for(0ms) == std::future_status::ready;
  };
  EXPECT_TRUE(WaitUntil([&] {  // 64 wait, 5 are under way
    return std::ranges::count_if(outcomes, is_answered) >= 200 - 64 - 5;
  }));
  const auto waiting = std::ranges::partition(outcomes, is_answered);
  daemon.CloseAll();
  for (auto outcome = outcomes.begin(); outcome != waiting.begin(); ++outcome)
    EXPECT_EQ(outcome->get(), Outcome::kTooFast);
  for (auto& outcome : waiting) {
    const Outcome end = outcome.get();
    EXPECT_TRUE(end == Outcome::kAbsent || end == Outcome::kLost);
  }
  EXPECT_TRUE(link.WaitDown());
}

TEST_F(LinkTest, SeveralThatWaitForOneBlockAreOneCommand) {
  Introduce();
  BeginDiscovery();
  auto one = link.SetLater(5, {{0, 0}});
  auto other = link.SetLater(5, {{1, 0}});
  ASSERT_TRUE(WaitUntil([&] { return link.Channel(5, 1)->pending; }));
  EndDiscovery();
  daemon.ExpectCommand("a5b0dFC");
  daemon.Echo("a5b0dFC");
  EXPECT_EQ(one.get(), Outcome::kAccepted);
  EXPECT_EQ(other.get(), Outcome::kAccepted);
  EXPECT_EQ(link.Asked().back(), (WriteBlock{5, 0, 0xFC}));
}

TEST_F(LinkTest, NothingHappensWhileNothingHappens) {
  Introduce();
  const int thread = link.Look([](const model::Bus&) { return gettid(); });
  const auto wake_ups = [thread] {
    return StatusNumber("/proc/self/task/" + std::to_string(thread) + "/status",
                        "voluntary_ctxt_switches:");
  };
  // The system may make it wait for a page or a lock: now and then, not always.
  EXPECT_TRUE(WaitUntil([&] {
    const long before = wake_ups();
    std::this_thread::sleep_for(3s);
    return wake_ups() - before <= 2;
  }));
}

TEST(LinkCardsTest, TheyAreAskedForAgainAndAgain) {
  EXPECT_EQ(LinkOptions().cards_every, 30s);
  FakeDaemon daemon;
  const LinkDriver link(
      {.host = "127.0.0.1", .ports = daemon.Ports(), .log = "", .cards_every = 50ms});
  daemon.AcceptAll();
  daemon.GreetAll();
  daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
  daemon.Answer("POLLSTATE", "CIA: GLOBAL POLLING IS DISABLED\r\n\r");
  for (int i = 0; i < 4; ++i) daemon.AnswerCards();
}

// Only the log says whether the daemon has gone on meanwhile.
TEST(LinkLogTest, WithoutItAHubThatComesBackSendsNothingByItself) {
  const TempDir folder;
  FakeDaemon daemon;
  LinkDriver link({.host = "127.0.0.1", .ports = daemon.Ports(), .log = folder.Path("none")},
                  {{5, 0, 0xFE}, {5, 1, 0x7F}});
  daemon.AcceptAll();
  daemon.GreetAll();
  daemon.AnswerFirst();
  ASSERT_TRUE(link.WaitUp());
  EXPECT_EQ(link.Adapter(), model::AdapterState::kUnknown);
  for (const unsigned lamp : {0U, 15U}) {
    EXPECT_TRUE(link.WaitValue(5, lamp, false));
    EXPECT_TRUE(link.Channel(5, lamp)->assumed);
  }
  auto text = link.SendLater(WriteText{0xE, 0, 0, "x"});
  daemon.ExpectCommand("aElPAp0000tx");  // before anything else
  auto lamps = link.SendLater(WriteBlock{5, 0, 0xFC});
  for (const char* line : {"a5b1d7F", "a5b0dFC"}) {
    daemon.ExpectCommand(line);
    daemon.Echo(line);
  }
  EXPECT_EQ(lamps.get(), Outcome::kAccepted);
  for (const unsigned lamp : {0U, 15U}) EXPECT_FALSE(link.Channel(5, lamp)->assumed);
}

// A daemon that starts beside the hub makes its log a moment later.
TEST(LinkLogTest, WhatItHoldsCountsWheneverItCanBeReadFirst) {
  const TempDir folder;
  const FakeDaemon daemon;
  LinkDriver link({.host = "127.0.0.1", .ports = daemon.Ports(), .log = folder.Path("qelm.log")});
  folder.Write("new",
               "2026-11-21 12:00:00 [INF] qelm is started\n"
               "2026-11-21 12:00:00 [INF] Initparam Speed (ThreadDelay): 2525\n");
  std::filesystem::rename(folder.Path("new"), folder.Path("qelm.log"));
  EXPECT_TRUE(WaitUntil(
      [&] { return link.Look([](const model::Bus& seen) { return seen.Pace(); }) == 50; }));
}

}  // namespace
}  // namespace hub::link
