#include "api/ApiTest.h"

namespace hub::api {
namespace {

class ChannelsTest : public ApiTest {};

TEST_F(ChannelsTest, AChannelIsRead) {
  Report(0x3, 0, 0x40);
  ExpectResult("channels.get", R"({"id":"3.6"})", R"({
    "id":"3.6", "name":null, "type":"contact", "value":true, "raw":1, "known":true,
    "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
    "min":null, "max":null, "decimals":null})");
}

TEST_F(ChannelsTest, AChannelThatIsNotThereIsNotFound) {
  ExpectProblem("channels.get", R"({"id":"1.0"})", 404, "id", "no card at 1");
  ExpectProblem("channels.get", R"({"id":"0.6"})", 404, "id",
                "card 0 is of the kind servo, which has 6 channels");
  ExpectProblem("channels.get", R"({"id":"E.0"})", 404, "id",
                "card E is of the kind lcd, which has 0 channels");
  for (const char* id : {"5", "5.", "5.x", "5.00", "5.-1", "5.16", "f.0", "50", ".5", "5.0 ", "G.0",
                         "5.99999999999"})
    ExpectProblem("channels.get", "{\"id\":\"" + std::string(id) + "\"}", 404, "id",
                  "no channel " + std::string(id) + "; they are as 5.0");
}

TEST_F(ChannelsTest, ALineIsSwitched) {
  link.then = [this](const std::string&) { bus.TakeOutput(protocol::WriteBlock{5, 0, 0xFE}, now); };
  ExpectResult("channels.set", R"({"id":"5.0","value":true})", R"({
    "id":"5.0", "name":null, "type":"switch", "value":true, "raw":0, "known":true,
    "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
    "min":null, "max":null, "decimals":null})");
  EXPECT_EQ(TakeSet(), "5 0=0");
  EXPECT_EQ(LastNote(), "command operator: 5.0: on");
}

TEST_F(ChannelsTest, ALineThatIsActiveHighIsSwitchedTheOtherWay) {
  model::Settings settings;
  settings.channels[{5, 1}].active_high = true;
  settings.channels[{5, 1}].name = "Pump";
  FileHas(settings);
  Result("channels.set", R"({"id":"5.1","value":true})");
  EXPECT_EQ(TakeSet(), "5 1=1");
  EXPECT_EQ(LastNote(), "command operator: 5.1 (Pump): on");
}

TEST_F(ChannelsTest, APulseIsForALineThatIsSwitchedOn) {
  Result("channels.set", R"({"id":"5.15","value":true,"pulse":500})");
  EXPECT_EQ(TakeSet(), "5 15=0 pulse=500");
  EXPECT_EQ(LastNote(), "command operator: 5.15: on for 500 ms");
  ExpectProblem("channels.set", R"({"id":"5.0","value":false,"pulse":500})", 422, "pulse",
                "a pulse switches on and back: its value has to be true");
  ExpectProblem("channels.set", R"({"id":"0.0","value":1,"pulse":500})", 422, "pulse",
                "a pulse is for lines; this channel takes a ramp");
  ExpectProblem("channels.set", R"({"id":"5.0","value":true,"pulse":0})", 422, "pulse",
                "0; pulse takes 1 to 600000");
  ExpectProblem("channels.set", R"({"id":"5.0","value":true,"pulse":600001})", 422, "pulse",
                "600001; pulse takes 1 to 600000");
  EXPECT_EQ(TakeSet(), "");
}

TEST_F(ChannelsTest, ARampIsForPositionsAndDrives) {
  Result("channels.set", R"({"id":"0.5","value":200,"ramp":600000})");
  Result("channels.set", R"({"id":"4.0","value":12,"ramp":1})");
  EXPECT_EQ(TakeSet(), "0 5=200 ramp=600000\n4 0=12 ramp=1");
  EXPECT_EQ(LastNote(), "command operator: 4.0: 12 within 1 ms");
  ExpectProblem("channels.set", R"({"id":"5.0","value":true,"ramp":10})", 422, "ramp",
                "a ramp is for positions and drives; this line takes a pulse");
  ExpectProblem("channels.set", R"({"id":"0.0","value":1,"ramp":600001})", 422, "ramp",
                "600001; ramp takes 1 to 600000");
}

TEST_F(ChannelsTest, AValueThatDoesNotFitIsToldWhatWould) {
  ExpectProblem("channels.set", R"({"id":"5.0","value":1})", 422, "value",
                "1; 5.0 takes true or false");
  ExpectProblem("channels.set", R"({"id":"5.0","value":"on"})", 422, "value",
                "this; 5.0 takes true or false");
  ExpectProblem("channels.set", R"({"id":"5.0","value":null})", 422, "value",
                "null; 5.0 takes true or false");
  ExpectProblem("channels.set", R"({"id":"0.0","value":256})", 422, "value",
                "256; 0.0 takes 0 to 255");
  ExpectProblem("channels.set", R"({"id":"0.0","value":-0.5})", 422, "value",
                "-0.5; 0.0 takes 0 to 255");
  ExpectProblem("channels.set", R"({"id":"0.0","value":true})", 422, "value",
                "true; 0.0 takes 0 to 255");
  ExpectProblem("channels.set", R"({"id":"0.0"})", 422, "value",
                "value is missing: true or false, or a number in the channel's unit");
}

TEST_F(ChannelsTest, AUnitIsTurnedIntoTheByteAndBack) {
  model::Settings settings;
  settings.channels[{0, 1}] = {"Elbow", "deg", -90, 90, 0, 0, {}};
  settings.cards[4].is_signed = true;
  FileHas(settings);
  link.then = [this](const std::string&) { bus.TakeOutput(protocol::WriteBlock{0, 1, 0xBF}, now); };
  ExpectResult("channels.set", R"({"id":"0.1","value":45})", R"({
    "id":"0.1", "name":"Elbow", "type":"position", "value":45, "raw":191, "known":true,
    "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":"deg",
    "min":-90, "max":90, "decimals":0})");
  EXPECT_EQ(TakeSet(), "0 1=191");
  ExpectProblem("channels.set", R"({"id":"0.1","value":91})", 422, "value",
                "91; 0.1 takes -90 to 90 deg");
  Result("channels.set", R"({"id":"4.2","value":-100})");
  EXPECT_EQ(TakeSet(), "4 2=0");
  ExpectProblem("channels.set", R"({"id":"4.2","value":-101})", 422, "value",
                "-101; 4.2 takes -100 to 100");
}

TEST_F(ChannelsTest, WhatHasNoOutputsIsOfAnotherKind) {
  ExpectProblem("channels.set", R"({"id":"3.0","value":true})", 409, "",
                "card 3 is of the kind digital-input; it has no outputs to be set");
  ExpectProblem("channels.set", R"({"id":"9.0","value":"434F"})", 409, "",
                "card 9 is of the kind ir; codes go out with ir.send");
}

TEST_F(ChannelsTest, ACardThatIsGoneIsNotThere) {
  Pull(0x5);
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 404, "id", "no card at 5 any more");
}

TEST_F(ChannelsTest, NothingIsQueuedForADaemonThatIsNotThere) {
  DaemonIs(model::DaemonState::kAbsent);
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 503, "",
                "the daemon is not there; nothing was sent");
  EXPECT_EQ(Call("channels.set", R"({"id":"5.0","value":true})").problem->retry_after, 5);
  DaemonIs(model::DaemonState::kWaiting);
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 503, "",
                "another program holds the daemon's port io; nothing was sent");
  EXPECT_EQ(TakeSet(), "");
  EXPECT_TRUE(store.journal.empty());
}

TEST_F(ChannelsTest, WhatTheLinkSaysIsTold) {
  link.outcome = FakeLink::kTooFast;
  const Outcome too_fast = Call("channels.set", R"({"id":"5.0","value":true})");
  EXPECT_EQ(too_fast.problem->status, 429);
  EXPECT_EQ(too_fast.problem->title, "too fast");
  EXPECT_EQ(too_fast.problem->retry_after, 1);
  link.outcome = FakeLink::kIllegal;
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 409, "",
                "the daemon refuses this for card 5: it has no card there, or one of another kind");
  link.outcome = FakeLink::kAbsent;
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 503, "",
                "the daemon went away before it had acted on this");
  link.outcome = FakeLink::kLost;
  ExpectProblem("channels.set", R"({"id":"5.0","value":true})", 503, "",
                "the daemon went away; nobody knows whether it had acted on this");
  EXPECT_TRUE(store.journal.empty());
}

TEST_F(ChannelsTest, WhoeverHasNoAccountIsLocal) {
  caller.account.clear();
  Result("channels.set", R"({"id":"5.0","value":false})");
  EXPECT_EQ(LastNote(), "command local: 5.0: off");
}

}  // namespace
}  // namespace hub::api
