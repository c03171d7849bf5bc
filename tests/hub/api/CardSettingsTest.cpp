#include "api/ApiTest.h"

namespace hub::api {
namespace {

class CardSettingsTest : public ApiTest {};

TEST_F(CardSettingsTest, ACardThatWasNotAskedHasSaidNothing) {
  ExpectResult("card.settings.get", R"({"address":"0"})", R"({
    "end_a":[null,null,null,null,null,null], "end_b":[null,null,null,null,null,null]})");
  ExpectResult("card.settings.get", R"({"address":"4"})", R"({"silent_range":[null,null,null]})");
  ExpectResult("card.settings.get", R"({"address":"F"})", R"({"mask":null})");
  ExpectResult("card.settings.get", R"({"address":"E"})",
               R"({"self_test":null,"init_light":null})");
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(CardSettingsTest, AServoCardIsAskedForBothEndsOfEachChannel) {
  for (int channel = 0; channel < 6; ++channel) {
    const std::string c = std::to_string(channel);
    link.answers["GETSCA" + c + ":0"] = {"CIA: SERVO PARAM is GOT from card",
                                         "SPG:0x0:SCA" + c + ":0x1" + c};
    link.answers["GETSCB" + c + ":0"] = {"CIA: SERVO PARAM is GOT from card",
                                         "SPG:0x0:SCB" + c + ":0xF" + c};
  }
  constexpr const char* kExpected =
      R"({"end_a":[16,17,18,19,20,21],"end_b":[240,241,242,243,244,245]})";
  ExpectResult("card.settings.get", R"({"address":"0","ask":"1"})", kExpected);
  EXPECT_EQ(TakeAsked(),
            "GETSCA0:0\nGETSCA1:0\nGETSCA2:0\nGETSCA3:0\nGETSCA4:0\nGETSCA5:0\n"
            "GETSCB0:0\nGETSCB1:0\nGETSCB2:0\nGETSCB3:0\nGETSCB4:0\nGETSCB5:0");
  ExpectResult("card.settings.get", R"({"address":"0"})", kExpected);
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(CardSettingsTest, MotorAndAnalogueCardsAreAsked) {
  link.answers["GETMSR0:4"] = {"CIA: MSR value is GOT from card", "MSR0:0x4:0x08"};
  link.answers["GETMSR1:4"] = {"CIA: MSR value is GOT from card", "MSR1:0x4:0x20"};
  link.answers["GETMSR2:4"] = {"CIA: MSR value is GOT from card", "MSR2:0x4:0x00"};
  link.answers["GETANMASK:F"] = {"CIA: MASK is GOT from card", "AMV:0xF:0x3F"};
  ExpectResult("card.settings.get", R"({"address":"4","ask":true})",
               R"({"silent_range":[8,32,0]})");
  ExpectResult("card.settings.get", R"({"address":"F","ask":true})", R"({"mask":63})");
}

TEST_F(CardSettingsTest, WhoMayOnlyLookDoesNotStopTheBus) {
  caller.role = access::Role::kView;
  ExpectProblem("card.settings.get", R"({"address":"F","ask":true})", 403, "ask",
                "asking a card stops the bus; it needs the role use");
  EXPECT_EQ(TakeAsked(), "");
  ExpectResult("card.settings.get", R"({"address":"F"})", R"({"mask":null})");
}

TEST_F(CardSettingsTest, ADisplayCannotBeAsked) {
  ExpectResult("card.settings.get", R"({"address":"E","ask":true})",
               R"({"self_test":null,"init_light":null})");
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(CardSettingsTest, ACardThatDoesNotAnswerIsToldAndWhatItSaidIsKept) {
  link.answers["GETMSR0:4"] = {"CIA: MSR value is GOT from card", "MSR0:0x4:0x08"};
  link.answers["GETMSR1:4"] = {"CIE: PARAM READ ERROR"};
  ExpectProblem("card.settings.get", R"({"address":"4","ask":true})", 503, "",
                "the daemon's answer to GETMSR1:4: PARAM READ ERROR");
  ExpectResult("card.settings.get", R"({"address":"4"})", R"({"silent_range":[8,null,null]})");
  link.answers["GETANMASK:F"] = {"what is this"};
  ExpectProblem("card.settings.get", R"({"address":"F","ask":true})", 503, "",
                "card F gave no mask");
}

TEST_F(CardSettingsTest, EachValueIsSetByItself) {
  ExpectResult("card.settings.set",
               R"({"address":"0","end_a":[16,null,null,null,null,255],
                   "end_b":[null,0,null,null,null,null]})",
               R"({"end_a":[16,null,null,null,null,255],"end_b":[null,0,null,null,null,null]})");
  Result("card.settings.set", R"({"address":"4","silent_range":[1,32,0]})");
  Result("card.settings.set", R"({"address":"F","mask":32})");
  Result("card.settings.set", R"({"address":"E","self_test":true,"init_light":false})");
  EXPECT_EQ(TakeAsked(),
            "SETSCA0:0=10\nSETSCA5:0=FF\nSETSCB1:0=00\nSETMSR0:4=01\nSETMSR1:4=20\n"
            "SETMSR2:4=00\nSETANMASK:F=20\nLCDSELFTEST:E=ON\nLCDINITLIGHT:E=OFF");
  ExpectResult("card.settings.get", R"({"address":"E"})",
               R"({"self_test":true,"init_light":false})");
  EXPECT_EQ(LastNote(), "command operator: console: LCDINITLIGHT:E=OFF");
}

TEST_F(CardSettingsTest, WhatWasReadCanBeSentBack) {
  Result("card.settings.set", R"({"address":"E","self_test":true})");
  Result("card.settings.set", R"({"address":"E","self_test":true,"init_light":null})");
  EXPECT_EQ(TakeAsked(), "LCDSELFTEST:E=ON\nLCDSELFTEST:E=ON");
}

TEST_F(CardSettingsTest, WhatDoesNotFitIsNotSent) {
  const auto refused = [this](const char* parameters, const char* where, const char* detail) {
    ExpectProblem("card.settings.set", parameters, 422, where, detail);
  };
  refused(R"({"address":"0","end_a":[1,2,3]})", "end_a",
          "end_a takes a list of 6, with null for what is to stay");
  refused(R"({"address":"0","end_a":[16,256,null,null,null,null]})", "end_a",
          "end_a takes whole numbers from 0 to 255");
  refused(R"({"address":"0","end_a":[16,"1",null,null,null,null]})", "end_a",
          "end_a takes whole numbers from 0 to 255");
  refused(R"({"address":"4","silent_range":[33,1,1]})", "silent_range",
          "silent_range takes whole numbers from 0 to 32");
  refused(R"({"address":"F","mask":64})", "mask", "64; mask takes 0 to 63");
  refused(R"({"address":"F","mask":1,"end_a":[1,1,1,1,1,1]})", "end_a",
          "a card of the kind analogue-input has no end_a");
  refused(R"({"address":"F"})", "", "nothing is to be set");
  refused(R"({"address":"0","end_a":[null,null,null,null,null,null]})", "", "nothing is to be set");
  EXPECT_EQ(TakeAsked(), "");
}

TEST_F(CardSettingsTest, ACardStoresWhatItHas) {
  Result("card.settings.store", R"({"address":"0"})");
  Result("card.settings.store", R"({"address":"4"})");
  Result("card.settings.store", R"({"address":"F"})");
  EXPECT_EQ(TakeAsked(), "STORESRVPOS:0\nSTOREMSRS:4\nSTOREANMASK:F");
  EXPECT_EQ(LastNote(), "command operator: F: settings stored");
  ExpectProblem("card.settings.store", R"({"address":"E"})", 409, "address",
                "card E is of the kind lcd, which keeps its settings by itself");
  link.answers["STOREMSRS:4"] = {"CIE: MSR STORING ERROR"};
  ExpectProblem("card.settings.store", R"({"address":"4"})", 503, "",
                "the daemon's answer to STOREMSRS:4: MSR STORING ERROR");
}

TEST_F(CardSettingsTest, OtherCardsHaveNone) {
  for (const char* method : {"card.settings.get", "card.settings.set", "card.settings.store"}) {
    ExpectProblem(method, R"({"address":"5"})", 409, "address",
                  "card 5 is of the kind digital-output, which has no settings");
    ExpectProblem(method, R"({"address":"1"})", 404, "address", "no card at 1");
  }
}

TEST_F(CardSettingsTest, WithoutADaemonWhatIsKnownIsStillRead) {
  Result("card.settings.set", R"({"address":"F","mask":32})");
  DaemonIs(model::DaemonState::kAbsent);
  ExpectResult("card.settings.get", R"({"address":"F"})", R"({"mask":32})");
  ExpectProblem("card.settings.get", R"({"address":"F","ask":true})", 503, "",
                "the daemon is not there; nothing was sent");
  ExpectProblem("card.settings.set", R"({"address":"F","mask":1})", 503, "",
                "the daemon is not there; nothing was sent");
}

TEST_F(CardSettingsTest, ARebootForgets) {
  Result("card.settings.set", R"({"address":"F","mask":32})");
  Result("card.reboot", R"({"address":"F"})");
  ExpectResult("card.settings.get", R"({"address":"F"})", R"({"mask":null})");
}

}  // namespace
}  // namespace hub::api
