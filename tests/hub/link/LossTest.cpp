// Sessions that end or do not begin, and what becomes of those who wait.
#include "LinkTest.h"
#include "kit/Bytes.h"

namespace hub::link {
namespace {

// What was written may have been done: it is what the lamps are to be, until they are told anew.
TEST_F(LinkTest, OneLostSessionEndsTheOthersAndAllComeBack) {
  std::string last;
  uint8_t value = 0x10;
  for (const Port port : {Port::kCae, Port::kIo, Port::kMon}) {
    Introduce();
    if (!last.empty()) {
      daemon.ExpectCommand(last);
      daemon.Echo(last);
    }
    last = "a5b0d" + ::Hex(++value);
    auto outcome = link.SendLater(WriteBlock{5, 0, value});
    auto answer = link.AskLater("HELP");
    daemon.ExpectCommand(last);
    daemon.client(port).Close();
    EXPECT_EQ(outcome.get(), Outcome::kLost);
    EXPECT_EQ(answer.get(), std::nullopt);
    EXPECT_EQ(link.Daemon().state, DaemonState::kAbsent);
    for (const Port each : {Port::kCae, Port::kIo, Port::kMon}) {
      if (each == port) continue;
      EXPECT_TRUE(daemon.IsClosed(each));
    }
  }
}

TEST_F(LinkTest, NothingIsQueuedForADaemonThatIsNotThere) {
  EXPECT_EQ(link.Set(5, {{0, 0}}), Outcome::kAbsent);
  EXPECT_EQ(link.Send(WriteBlock{5, 0, 0}), Outcome::kAbsent);
  EXPECT_EQ(link.Ask("DRVVER"), std::nullopt);
  EXPECT_TRUE(link.Asked().empty());
}

// A discovery is asked for and not answered: what is set meanwhile waits, and the daemon dies.
TEST_F(LinkTest, WhatWasNeverSentIsForgottenWithItsSession) {
  Introduce();
  auto lamp = link.SendLater(WriteBlock{5, 0, 0xFE});
  daemon.ExpectCommand("a5b0dFE");
  daemon.Echo("a5b0dFE");
  EXPECT_EQ(lamp.get(), Outcome::kAccepted);
  BeginDiscovery();
  auto waiting = link.SetLater(5, {{1, 0}, {15, 0}});
  ASSERT_TRUE(WaitUntil([&] { return link.Channel(5, 15)->pending; }));
  daemon.CloseAll();
  EXPECT_EQ(waiting.get(), Outcome::kAbsent);
  EXPECT_FALSE(link.Channel(5, 15)->pending);
  Introduce();
  daemon.ExpectCommand("a5b0dFE");
  daemon.Echo("a5b0dFE");
  auto next = link.SetLater(5, {{14, 0}});
  daemon.ExpectCommand("a5b0dFE");
  daemon.ExpectCommand("a5b1dBF");
  daemon.Echo("a5b1dBF");
  EXPECT_EQ(next.get(), Outcome::kAccepted);
  EXPECT_EQ(link.Asked(), (std::vector<WriteBlock>{{5, 0, 0xFE}, {5, 1, 0xBF}}));
}

// Texts without an echo leave no room for more bytes: the lamps' commands wait behind them.
TEST_F(LinkTest, WhatWaitedForItsTurnIsForgottenWithItsSession) {
  Introduce();
  auto lamp = link.SendLater(WriteBlock{5, 0, 0xFE});
  daemon.ExpectCommand("a5b0dFE");
  daemon.Echo("a5b0dFE");
  EXPECT_EQ(lamp.get(), Outcome::kAccepted);
  auto written = FillTheLine();
  std::vector<std::future<Outcome>> waiting;
  waiting.push_back(link.SendLater(WriteBlock{5, 0, 0xFC}));
  waiting.push_back(link.SendLater(WriteBlock{5, 1, 0x7F}));
  ASSERT_TRUE(WaitUntil([&] { return link.Asked().size() == 3; }));
  daemon.CloseAll();
  for (auto& each : written) EXPECT_EQ(each.get(), Outcome::kLost);
  for (auto& each : waiting) EXPECT_EQ(each.get(), Outcome::kAbsent);
  EXPECT_EQ(link.Asked(), (std::vector<WriteBlock>{{5, 0, 0xFE}, {5, 0, 0xFC}, {5, 0, 0xFE}}));
  Introduce();
  daemon.ExpectCommand("a5b0dFE");
  daemon.Echo("a5b0dFE");
  auto next = link.SendLater(WriteBlock{0, 0, 0x10});
  daemon.ExpectCommand("a0b0d10");
}

// The daemon lists no card yet. What its lamps were in the hub's last run is not lost with what
// they were asked to be meanwhile, which waits behind texts without an echo.
TEST(LinkMemoryTest, ACardThatDidNotComeYetKeepsWhatItWas) {
  FakeDaemon daemon;
  LinkDriver link{{.host = "127.0.0.1", .ports = daemon.Ports(), .log = ""}, {{5, 0, 0xFE}}};
  daemon.AcceptAll();
  daemon.GreetAll();
  daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
  daemon.AnswerPolling();
  ASSERT_EQ(daemon.client(Port::kCae).ReadUntil("\r\n"), "DISCOVER\r\n");
  std::vector<std::future<Outcome>> waiting;
  for (unsigned address = 0; address < 5; ++address)
    waiting.push_back(
        link.SendLater(WriteText{static_cast<uint8_t>(address), 0, 0, std::string(34, 'x')}));
  waiting.push_back(link.SendLater(WriteText{5, 0, 0, "xxxxxxx"}));
  auto lamps = link.SendLater(WriteBlock{5, 0, 0xFC});
  daemon.Say(Port::kCae, "DISCOVER LIST:\r\n\r>\r\n\r");
  ASSERT_TRUE(WaitUntil([&] { return link.Asked().size() == 1; }));
  daemon.CloseAll();
  for (auto& each : waiting) EXPECT_EQ(each.get(), Outcome::kLost);
  EXPECT_EQ(lamps.get(), Outcome::kAbsent);
  EXPECT_EQ(link.Asked(), (std::vector<WriteBlock>{{5, 0, 0xFC}, {5, 0, 0xFE}}));
}

// Its way back waits behind texts without an echo when the session ends, and is not taken back.
TEST_F(LinkTest, APulseGoesBackWhateverBecomesOfItsSession) {
  Introduce();
  const auto begin = std::chrono::steady_clock::now();
  auto pulse = link.SetLater(5, {{0, 0}}, {.pulse = 300ms, .ramp = {}});
  daemon.ExpectCommand("a5b0dFE");
  daemon.Echo("a5b0dFE");
  EXPECT_EQ(pulse.get(), Outcome::kAccepted);
  FillTheLine();
  std::this_thread::sleep_until(begin + 500ms);  // too early shows less, and fails nothing
  daemon.CloseAll();
  ASSERT_TRUE(link.WaitDown());
  Introduce();
  daemon.ExpectCommand("a5b0dFF");
}

TEST_F(LinkTest, APulseThatMayHaveBegunGoesBack) {
  Introduce();
  auto pulse = link.SetLater(5, {{0, 0}}, {.pulse = 300ms, .ramp = {}});
  daemon.ExpectCommand("a5b0dFE");
  daemon.CloseAll();
  EXPECT_EQ(pulse.get(), Outcome::kLost);
  Introduce();  // comes later than the way back
  daemon.ExpectCommand("a5b0dFF");
}

TEST_F(LinkTest, APulseGoesBackWhereALaterCommandWasNeverSent) {
  Introduce();
  auto pulse = link.SetLater(5, {{0, 0}}, {.pulse = 500ms, .ramp = {}});
  daemon.ExpectCommand("a5b0dFE");
  daemon.Echo("a5b0dFE");
  EXPECT_EQ(pulse.get(), Outcome::kAccepted);
  FillTheLine();
  auto later = link.SetLater(5, {{0, 0}});
  EXPECT_EQ(later.wait_for(20ms), std::future_status::timeout);
  daemon.CloseAll();
  EXPECT_EQ(later.get(), Outcome::kAbsent);
  Introduce();
  daemon.ExpectCommand("a5b0dFF");
}

// The next ramp begins where the last one ended.
TEST_F(LinkTest, ARampThatWasNeverSentGoesNoFurther) {
  Introduce();
  SetMotor(0, 10, {"a4b0d0A"});
  FillTheLine();
  auto ramp = link.SetLater(4, {{0, 200}}, {.pulse = {}, .ramp = 500ms});
  EXPECT_EQ(ramp.wait_for(20ms), std::future_status::timeout);
  daemon.CloseAll();
  EXPECT_EQ(ramp.get(), Outcome::kAbsent);
  Introduce();  // comes later than its end would
  EXPECT_EQ(link.Asked().back(), (WriteBlock{4, 0, 10}));
  auto next = link.SetLater(4, {{0, 0}}, {.pulse = {}, .ramp = 100ms});
  daemon.ExpectCommand("a4b0d0A");
}

TEST_F(LinkTest, ARampThatWasSentAndNotReceivedGoesNoFurther) {
  Introduce();
  SetMotor(0, 10, {"a4b0d0A"});
  auto ramp = link.SetLater(4, {{0, 200}}, {.pulse = {}, .ramp = 500ms});
  daemon.ExpectCommand("a4b0d0A");  // where it begins
  daemon.CloseAll();
  EXPECT_EQ(ramp.get(), Outcome::kLost);
  Introduce();
  EXPECT_EQ(link.Asked().back(), (WriteBlock{4, 0, 10}));
  auto next = link.SetLater(4, {{0, 0}}, {.pulse = {}, .ramp = 100ms});
  daemon.ExpectCommand("a4b0d0A");
}

TEST_F(LinkTest, ARampThatWasTakenGoesOnWithoutItsSession) {
  Introduce();
  SetMotor(0, 10, {"a4b0d0A"});
  auto ramp = link.SetLater(4, {{0, 200}}, {.pulse = {}, .ramp = 500ms});
  daemon.ExpectCommand("a4b0d0A");
  daemon.Echo("a4b0d0A");
  EXPECT_EQ(ramp.get(), Outcome::kAccepted);
  daemon.CloseAll();
  Introduce();
  EXPECT_EQ(link.Asked().back(), (WriteBlock{4, 0, 200}));
  auto next = link.SetLater(4, {{0, 0}}, {.pulse = {}, .ramp = 100ms});
  daemon.ExpectCommand("a4b0dC8");
}

TEST_F(LinkTest, AMotionThatWasNeverSentEndsWithItsSession) {
  Introduce();
  BeginDiscovery();
  auto pulse = link.SetLater(5, {{0, 0}}, {.pulse = 300ms, .ramp = {}});
  ASSERT_TRUE(WaitUntil([&] { return link.Channel(5, 0)->pending; }));
  daemon.CloseAll();
  EXPECT_EQ(pulse.get(), Outcome::kAbsent);
  Introduce();  // comes later than the way back would
  EXPECT_TRUE(link.Asked().empty());
}

TEST_F(LinkTest, OfTwoHeldPortsItNamesTheOneThatIsLeft) {
  daemon.AcceptAll();
  daemon.Greet(Port::kMon);
  ASSERT_TRUE(WaitUntil([&] { return link.Daemon().waiting_for == "cae"; }));
  const auto since = link.Daemon().since;
  daemon.Greet(Port::kCae);
  EXPECT_TRUE(WaitUntil([&] { return link.Daemon().waiting_for == "io"; }));
  EXPECT_EQ(link.Daemon().since, since);
  EXPECT_TRUE(link.WaitJournal("another program holds port io"));
  daemon.Greet(Port::kIo);
  daemon.AnswerFirst();
  EXPECT_TRUE(link.WaitUp());
}

// Whoever takes no connection holds no port: the queue of those who want one is full.
TEST(LinkWaitingTest, APortThatIsNotConnectedIsNotHeld) {
  FakeDaemon daemon;
  std::vector<Stream> crowd;
  for (int i = 0; i < 2; ++i) crowd.push_back(Stream::ToPort(daemon.Ports()[0]));
  LinkDriver link({.host = "127.0.0.1", .ports = daemon.Ports(), .log = ""});
  daemon.Accept(Port::kIo);
  daemon.Accept(Port::kMon);
  EXPECT_TRUE(WaitUntil([&] { return link.Daemon().state == DaemonState::kWaiting; }));
  EXPECT_EQ(link.Daemon().waiting_for, "io");
}

// What the daemon has said when it goes.
struct Moment {
  const char* name;
  std::function<void(FakeDaemon& daemon)> until;
};

void PrintTo(const Moment& moment, std::ostream* out) { *out << moment.name; }

class LinkLossTest : public LinkTest, public testing::WithParamInterface<Moment> {};

TEST_P(LinkLossTest, ComesBack) {
  daemon.AcceptAll();
  GetParam().until(daemon);
  daemon.CloseAll();
  Introduce();
}

INSTANTIATE_TEST_SUITE_P(
    Moments, LinkLossTest,
    testing::Values(
        Moment{"BeforeTheGreetings", [](FakeDaemon&) {}},
        Moment{"InAGreeting", [](FakeDaemon& daemon) { daemon.Say(Port::kIo, "QELM IO int"); }},
        Moment{"AfterOneGreeting", [](FakeDaemon& daemon) { daemon.Greet(Port::kMon); }},
        Moment{"BeforeTheFirstPrompt",
               [](FakeDaemon& daemon) {
                 daemon.Greet(Port::kIo);
                 daemon.Greet(Port::kMon);
                 daemon.Say(Port::kCae, "QELM CAE interface is ready\r\n");
               }},
        Moment{"AfterAllGreetings", [](FakeDaemon& daemon) { daemon.GreetAll(); }},
        Moment{"InAnAnswer",
               [](FakeDaemon& daemon) {
                 daemon.GreetAll();
                 daemon.Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
                 daemon.Say(Port::kCae, "DISCOVER LIST:\r\n\rDTI:0x0:EMP");
               }}),
    [](const auto& each) { return std::string(each.param.name); });

class HeldPortTest : public LinkTest, public testing::WithParamInterface<Port> {};

// The hub keeps its place in the queue: it does not come a second time.
TEST_P(HeldPortTest, IsWaitedForByName) {
  daemon.AcceptAll();
  for (const Port port : {Port::kCae, Port::kIo, Port::kMon})
    if (port != GetParam()) daemon.Greet(port);
  daemon.Say(GetParam(), "220 mail.example ESMTP\r\n");
  EXPECT_TRUE(WaitUntil([&] { return link.Daemon().state == DaemonState::kWaiting; }));
  EXPECT_EQ(link.Daemon().waiting_for, protocol::TextOf(GetParam()).word);
  EXPECT_TRUE(link.WaitJournal("another program holds port"));
  EXPECT_FALSE(daemon.listener(GetParam()).HasClient(0ms));
  daemon.Greet(GetParam());
  daemon.AnswerFirst();
  EXPECT_TRUE(link.WaitUp());
}

INSTANTIATE_TEST_SUITE_P(Ports, HeldPortTest, testing::Values(Port::kCae, Port::kIo, Port::kMon),
                         [](const auto& each) {
                           return std::string(protocol::TextOf(each.param).word);
                         });

}  // namespace
}  // namespace hub::link
