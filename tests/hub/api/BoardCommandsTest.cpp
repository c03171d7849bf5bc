// Commands to another board, by what it says after them.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

class BoardCommandsTest : public ApiTest {
 protected:
  BoardCommandsTest() {
    ShedSays("status", "online");
    ShedSays("bus", R"({"id":"8c01d2ee","name":"Shed","version":"1.20","daemon":{"state":"up"},
      "adapter":{"state":"up"},"cards":[
      {"address":"0","kind":"servo","name":null,"state":"present",
       "channels":{"1":{"name":null,"unit":"deg","min":-90,"max":90}}},
      {"address":"5","kind":"digital-output","name":null,"state":"present"},
      {"address":"9","kind":"ir","name":null,"state":"present"},
      {"address":"E","kind":"lcd","name":null,"state":"present"},
      {"address":"F","kind":"analogue-input","name":null,"state":"present"}]})");
    ShedSays("0/1", "-20");
  }
};

TEST_F(BoardCommandsTest, ALevelIsDoneWhereTheBoardShowsItAsItRounds) {
  shed_then = [this] { ShedSays("0/1", "10.2"); };
  const std::string result =
      Result("boards.channels.set", R"({"board":"shed","id":"0.1","value":10})");
  EXPECT_NE(result.find(R"("value":10.2)"), std::string::npos) << result;
  EXPECT_EQ(TakeTold(), "qelm/shed/0/1/set 10");
  EXPECT_EQ(LastNote(), "command operator: 0.1 of shed: 10");
}

TEST_F(BoardCommandsTest, ALevelThatIsThereAlreadyIsDone) {
  Result("boards.channels.set", R"({"board":"shed","id":"0.1","value":-20.3})");
  EXPECT_EQ(TakeTold(), "qelm/shed/0/1/set -20.3");
}

TEST_F(BoardCommandsTest, APulseAndARampGoAlong) {
  shed_then = [this] { ShedSays("5/0", "ON"); };
  Result("boards.channels.set", R"({"board":"shed","id":"5.0","value":true,"pulse":500})");
  EXPECT_EQ(TakeTold(), R"(qelm/shed/5/0/set {"value":true,"pulse":500})");
  shed_then = [this] { ShedSays("0/1", "10"); };
  Result("boards.channels.set", R"({"board":"shed","id":"0.1","value":10,"ramp":500})");
  EXPECT_EQ(TakeTold(), R"(qelm/shed/0/1/set {"value":10,"ramp":500})");
}

TEST_F(BoardCommandsTest, WhatIsNotThereIsSaid) {
  ExpectProblem("boards.cards.get", R"({"board":"shed","address":"G"})", 404, "address",
                "no place G; they are 0 to 9 and A to F");
  ExpectProblem("boards.cards.get", R"({"board":"shed","address":"3"})", 404, "address",
                "shed has no card at 3");
  ExpectProblem("boards.channels.get", R"({"board":"shed","id":"five"})", 404, "id",
                "no channel five; they are as 5.0");
  ExpectProblem("boards.channels.get", R"({"board":"shed","id":"3.0"})", 404, "id",
                "shed has no card at 3");
  ExpectProblem("boards.channels.get", R"({"board":"shed","id":"0.6"})", 404, "id",
                "card 0 of shed is of the kind servo, which has 6 channels");
}

TEST_F(BoardCommandsTest, WhatACardIsNotForIsSaidAndNotSent) {
  ExpectProblem("boards.channels.set", R"({"board":"shed","id":"0.1","value":true})", 422, "value",
                "this takes a number");
  ExpectProblem("boards.channels.set", R"({"board":"shed","id":"5.0","value":1})", 422, "value",
                "this takes true or false");
  ExpectProblem("boards.channels.set", R"({"board":"shed","id":"F.0","value":1})", 409, "id",
                "card F of shed is of the kind analogue-input; it has no outputs to be set");
  ExpectProblem("boards.lcd.control", R"({"board":"shed","address":"5","do":"light-on"})", 409,
                "address", "card 5 of shed is of the kind digital-output; this is for lcd");
  ExpectProblem("boards.lcd.write",
                R"({"board":"shed","address":"E","row":0,"column":0,"text":"Tail"})", 503, "",
                "shed has not said yet what its glass shows");
  EXPECT_EQ(TakeTold(), "");
}

TEST_F(BoardCommandsTest, ACodeIsSentUnlessTheBoardObjects) {
  Result("boards.ir.send", R"({"board":"shed","address":"9","bytes":"434F"})");
  EXPECT_EQ(TakeTold(), "qelm/shed/9/infrared/set 434F");
  EXPECT_EQ(LastNote(), "command operator: 9 of shed: code 434F");
}

TEST_F(BoardCommandsTest, OneThatGoesAwayMeanwhileMayHaveDoneIt) {
  shed_then = [this] { ShedSays("status", "offline"); };
  ExpectProblem("boards.channels.set", R"({"board":"shed","id":"5.0","value":true})", 503, "",
                "shed went away before it had answered; it may have done it");
}

TEST_F(BoardCommandsTest, OneThatSaysNothingMayStillDoIt) {
  ExpectProblem("boards.channels.set", R"({"board":"shed","id":"5.0","value":true})", 504, "",
                "shed has not answered within 5 s; it may still do it");
}

}  // namespace
}  // namespace hub::api
