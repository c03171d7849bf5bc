// The link on a site: what clients ask for is on the bus, whatever happens on the way.
#include <algorithm>

#include "LinkSite.h"
#include "kit/Proc.h"

namespace hub::link {
namespace {

using namespace std::chrono_literals;
using protocol::ControlLcd;
using protocol::LcdControl;
using protocol::WriteBlock;
using protocol::WriteText;

constexpr char kSearch[] = "[INF] try to catch hardware on /dev/ttyUSB0";

class LinkSiteTest : public LinkSite {};

TEST_F(LinkSiteTest, WhatIsThereIsKnownAtOnce) {
  WriteConfig({.percent = "50", .poll = "TRUE"});
  StartBus({"--do", "press 3 06", "--do", "set F 2 80"});
  StartDaemonAnew();
  StartHub();
  WaitReady();
  EXPECT_EQ(link->Daemon().version, "1.20");
  EXPECT_EQ(link->Look([](const model::Bus& seen) { return seen.AdapterNow().device; }), kDevice);
  EXPECT_EQ(link->Look([](const model::Bus& seen) { return seen.Pace(); }), 50);
  EXPECT_TRUE(link->WaitValue(3, 6, true));
  EXPECT_TRUE(link->WaitValue(3, 15, false));
  EXPECT_TRUE(WaitUntil([&] { return link->Channel(0xF, 2)->raw == 0x80; }));
  Bus("release 3 06");
  EXPECT_TRUE(link->WaitValue(3, 6, false));
}

TEST_F(LinkSiteTest, OutputsTextsAndCodesArrive) {
  StartAll();
  EXPECT_EQ(link->Set(kLamps, {{0, 0}, {10, 0}}), Outcome::kAccepted);
  ExpectHeld("5", "Lines FE FB");
  EXPECT_EQ(link->Set(kServos, {{4, 0x40}}), Outcome::kAccepted);
  ExpectHeld("0", "reached 80 80 80 80 40 80");
  EXPECT_EQ(link->Send(WriteText{0xE, 3, 1, "Tail of the cat"}), Outcome::kAccepted);
  ExpectHeld("E", "Row1 \"   Tail of the cat  \"");
  EXPECT_EQ(link->Send(protocol::SendInfrared{9, {0x43, 0x4F}}), Outcome::kAccepted);
  ExpectHeld("9", "sent 43 4F");
  EXPECT_EQ(link->Send(ControlLcd{kLamps, LcdControl::kClear}), Outcome::kIllegal);
}

TEST_F(LinkSiteTest, APulseGoesBackAndIsKeptAsItWillBe) {
  StartAll();
  EXPECT_EQ(link->Set(kLamps, {{0, 0}, {1, 0}}, {.pulse = 300ms, .ramp = {}}), Outcome::kAccepted);
  WaitFrame("10 05 02 FC FF");
  WaitFrame("10 05 02 FF FF");
  EXPECT_TRUE(link->WaitValue(kLamps, 0, true));
  const auto asked = link->Asked();
  EXPECT_TRUE(
      std::ranges::all_of(asked, [](const WriteBlock& each) { return each.value == 0xFF; }));
}

TEST_F(LinkSiteTest, ARampGoesThereStepByStep) {
  StartAll();
  EXPECT_EQ(link->Set(kServos, {{0, 0x90}}, {.pulse = {}, .ramp = 320ms}), Outcome::kAccepted);
  ExpectHeld("0", "reached 90 80 80 80 80 80");
  const auto writes = WritesTo("0");
  EXPECT_GE(writes.size(), 10U);
  EXPECT_TRUE(std::ranges::is_sorted(writes));
  EXPECT_EQ(link->Asked().back(), (WriteBlock{kServos, 0, 0x90}));
}

TEST_F(LinkSiteTest, ALaterTargetEndsAMotion) {
  StartAll();
  EXPECT_EQ(link->Set(kLamps, {{0, 0}}, {.pulse = 200ms, .ramp = {}}), Outcome::kAccepted);
  EXPECT_EQ(link->Set(kLamps, {{0, 0}}), Outcome::kAccepted);
  EXPECT_EQ(link->Set(kLamps, {{1, 0}}, {.pulse = 400ms, .ramp = {}}), Outcome::kAccepted);
  WaitFrame("10 05 02 FC FF");
  WaitFrame("10 05 02 FE FF");  // line 1 has gone back, line 0 has not
  ExpectHeld("5", "Lines FE FF");
}

TEST_F(LinkSiteTest, OutputsOutliveTheDaemon) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  SetByte(kLamps, 1, 0xA5);
  SetByte(kServos, 3, 0x20);
  SetByte(kMotors, 0, 0x55);
  ExpectHeld("4", "Drive 55 00 00 00");
  KillDaemon();
  EXPECT_TRUE(link->WaitDown());
  EXPECT_EQ(link->Set(kLamps, {{0, 0}}), Outcome::kAbsent);
  Bus("card 5 pull");  // without power it forgets
  Bus("card 5 plug");
  Bus("card 4 pull");
  Bus("card 4 plug");
  Bus("mark");
  StartDaemonAnew();
  WaitFrame("10 05 02 0F A5");
  ExpectHeld("5", "Lines 0F A5");
  ExpectHeld("0", "reached 80 80 80 20 80 80");
  ExpectHeld("4", "Drive 00 00 00 00");  // motors never start by themselves
  EXPECT_TRUE(link->WaitValue(kLamps, 0, true));
  EXPECT_FALSE(link->Channel(kLamps, 0)->assumed);
  EXPECT_TRUE(link->WaitJournal("outputs restored on card 5"));
}

TEST_F(LinkSiteTest, WhatIsAskedWithoutTheCableIsPendingUntilItIsThere) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  PullCable();
  EXPECT_EQ(link->Set(kLamps, {{15, 0}}), Outcome::kAccepted);
  EXPECT_TRUE(link->Channel(kLamps, 15)->pending);
  EXPECT_EQ(link->Set(kLamps, {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}}),
            Outcome::kAccepted);
  PlugCable();
  ExpectHeld("5", "Lines FF 7F");
  EXPECT_TRUE(link->WaitValue(kLamps, 15, false));
}

TEST_F(LinkSiteTest, TheNextCommandAfterAPullSwitchesNothingElse) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  SetByte(kServos, 5, 0x11);
  PullCable();
  PlugCable();
  EXPECT_TRUE(link->WaitJournal("outputs restored on card 5"));
  SetByte(kLamps, 1, 0xFE);
  WaitFrame("10 05 02 0F FE");
  for (const std::string& write : WritesTo("5")) EXPECT_NE(write, "FF FE");
}

TEST_F(LinkSiteTest, DisplaysOfAMissingAdapterAreBounded) {
  StartAll();
  PullCable();
  int accepted = 0;
  for (int i = 0; i < 100; ++i)
    accepted += link->Send(ControlLcd{0xE, LcdControl::kLightOn}) == Outcome::kAccepted;
  EXPECT_EQ(accepted, 64);
}

TEST_F(LinkSiteTest, AForcedDiscoverySwitchesNothing) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  Bus("mark");
  auto answer = link->AskLater("FORCEDISCOVER");
  EXPECT_EQ(link->Send(WriteBlock{kLamps, 1, 0x3F}), Outcome::kAccepted);
  EXPECT_TRUE(answer.get());
  ExpectHeld("5", "Lines 0F 3F");
  EXPECT_EQ(link->Send(ControlLcd{0xE, LcdControl::kClear}), Outcome::kAccepted);
}

TEST_F(LinkSiteTest, ARebootedCardShowsItsOutputsAgain) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  ExpectHeld("5", "Lines 0F FF");
  Bus("mark");
  const auto answer = link->Ask("REBOOT:5");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->back(), "RBT:0x5:OK");
  WaitFrame("10 05 02 0F FF");
  ExpectHeld("5", "Lines 0F FF");
}

TEST_F(LinkSiteTest, AHubThatComesBackSendsNothing) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  ExpectHeld("5", "Lines 0F FF");
  std::this_thread::sleep_for(15s);  // the log counts whole seconds
  const size_t writes = WritesTo("5").size();
  const int searches = CountLogged(kSearch);
  StartHub({{kLamps, 0, 0x0F}});
  EXPECT_TRUE(WaitUntil([&] { return link->IsUp() && link->WaitValue(kLamps, 0, true); }));
  EXPECT_TRUE(link->WaitValue(3, 6, false));  // inputs are asked behind the outputs
  // A bus that gets no turn of the processor in time is searched for anew, and outputs restored.
  if (CountLogged(kSearch) == searches) {
    EXPECT_TRUE(link->Channel(kLamps, 0)->assumed);
    EXPECT_EQ(WritesTo("5").size(), writes);
  }
  SetByte(kLamps, 1, 0xFE);
  ExpectHeld("5", "Lines 0F FE");
}

TEST_F(LinkSiteTest, AHubThatComesBackAfterTheDaemonBeganAnewRestores) {
  StartAll();
  link.reset();
  KillDaemon();
  StartDaemonAnew();
  StartHub({{kLamps, 0, 0x0F}, {kServos, 1, 0x33}});
  ExpectHeld("5", "Lines 0F FF");
  ExpectHeld("0", "reached 80 33 80 80 80 80");
}

TEST_F(LinkSiteTest, AHubThatComesBackSoonTrustsNoRecord) {
  StartAll();
  SetByte(kLamps, 0, 0x0F);
  StartHub({{kLamps, 0, 0x0F}});
  ASSERT_TRUE(link->WaitUp());
  SetByte(kLamps, 0, 0xFF);  // as the record began
  ExpectHeld("5", "Lines FF FF");
}

TEST_F(LinkSiteTest, WhatIsHeldIsAcceptedWhenItIsOut) {
  StartAll();
  PullCable();
  Bus("cable plug");
  ASSERT_TRUE(WaitUntil([&] { return link->Adapter() == model::AdapterState::kUp; }));
  SetByte(kLamps, 0, 0x0F);  // two seconds: the record is about to begin anew
  SetByte(kServos, 1, 0x80);
  EXPECT_TRUE(link->IsFree());
  ExpectHeld("5", "Lines 0F FF");
}

TEST_F(LinkSiteTest, ADiscoveryThatComesLateIsMadeGood) {
  WriteConfig({.percent = "80"});
  StartBus();
  StartDaemonAnew();
  StartHub();
  WaitReady();
  SetByte(kLamps, 0, 0x0F);
  PullCable();
  Bus("late 4s");
  PlugCable();
  SetByte(kLamps, 1, 0xFE);  // before it
  Bus("late 0ms");
  ExpectHeld("5", "Lines 0F FE");
  Bus("mark");
  WaitFrame("10 05 02 0F FE");  // once more, behind it
}

TEST_F(LinkSiteTest, WithoutTheLogOutputsAreKeptAllTheSame) {
  WriteConfig({.poll = "TRUE"});
  StartBus();
  StartDaemonAnew();
  StartHub({}, "/run/test/no/such/log");
  ASSERT_TRUE(link->WaitUp());
  EXPECT_TRUE(WaitUntil([&] { return link->Channel(kLamps, 0).has_value(); }));
  EXPECT_EQ(link->Adapter(), model::AdapterState::kUnknown);
  SetByte(kLamps, 0, 0x0F);
  ExpectHeld("5", "Lines 0F FF");
  Bus("cable pull");
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  Bus("cable plug");
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
  SetByte(kLamps, 1, 0xFE);
  ExpectHeld("5", "Lines 0F FE");
}

TEST_F(LinkSiteTest, EveryLengthOfALineAndOfATextIsSurvived) {
  StartAll("100");
  for (size_t length = 1; length <= 300; ++length) {
    const auto answer = link->Ask(std::string(length, 'x'));
    EXPECT_EQ(answer.has_value(), length <= 253) << length;
    const WriteText text{0xE, 0, 0, std::string(length, 'x')};
    // On a busy machine the daemon loses the adapter now and then, and takes 64 pieces till it is
    // back.
    EXPECT_TRUE(WaitUntil([&] { return link->Send(text) == Outcome::kAccepted; })) << length;
  }
  EXPECT_EQ(link->Count().sessions, 1U);
}

class PaceTest : public LinkSite, public testing::WithParamInterface<const char*> {};

// All cards at once, more than 255 bytes together, in order.
TEST_P(PaceTest, CommandsArriveInOrderAndOnce) {
  StartAll(GetParam());
  std::vector<std::future<Outcome>> outcomes;
  for (uint8_t value = 1; value <= 60; ++value) {
    outcomes.push_back(link->SendLater(WriteBlock{kLamps, 0, value}));
    outcomes.push_back(link->SendLater(WriteBlock{kServos, 0, value}));
    outcomes.push_back(link->SendLater(WriteText{0xE, 0, 0, std::string(20, 'x')}));
  }
  for (auto& outcome : outcomes) EXPECT_EQ(outcome.get(), Outcome::kAccepted);
  ExpectHeld("5", "Lines 3C FF");
  ExpectHeld("0", "reached 3C 80 80 80 80 80");
  for (const char* card : {"5", "0"}) {
    std::vector<std::string> values;
    for (const std::string& write : WritesTo(card)) values.push_back(write.substr(0, 2));
    std::erase(values, "FF");  // the first command of the fixture
    EXPECT_EQ(values.size(), 60U);
    EXPECT_TRUE(std::ranges::is_sorted(values));
  }
}

INSTANTIATE_TEST_SUITE_P(Percent, PaceTest, testing::Values("1", "100"),
                         [](const auto& each) { return std::string(each.param); });

struct HeldPort {
  const char* word;
  ::Port port;
};

class StrangerTest : public LinkSite, public testing::WithParamInterface<HeldPort> {};

TEST_P(StrangerTest, IsWaitedFor) {
  WriteConfig({.poll = "TRUE"});
  StartBus();
  StartDaemonAnew();
  Client stranger = Connect(GetParam().port);
  StartHub();
  EXPECT_TRUE(WaitUntil([&] { return link->Daemon().state == model::DaemonState::kWaiting; }));
  EXPECT_EQ(link->Daemon().waiting_for, GetParam().word);
  stranger.Close();
  WaitReady();
}

INSTANTIATE_TEST_SUITE_P(Ports, StrangerTest,
                         testing::Values(HeldPort{"cae", ::kCae}, HeldPort{"io", ::kIo},
                                         HeldPort{"mon", ::kMon}),
                         [](const auto& each) { return std::string(each.param.word); });

}  // namespace
}  // namespace hub::link
