#include "api/ApiTest.h"

namespace hub::api {
namespace {

class CardsTest : public ApiTest {};

TEST_F(CardsTest, TheCardsThatAreThereAreListedByAddress) {
  Pull(0x0);
  Pull(0x3);
  Pull(0x4);
  Pull(0x5);
  Pull(0x8);
  Pull(0xF);
  ExpectResult("cards.list", "{}", R"({"cards":[
    {"address":"9", "kind":"ir", "name":null, "state":"present", "keep":null, "polling":null,
     "channels":[
       {"id":"9.0", "name":null, "type":"code", "value":null, "raw":null, "known":false,
        "assumed":false, "pending":false, "since":null, "unit":null, "min":null, "max":null,
        "decimals":null}],
     "glass":null, "codes":{}},
    {"address":"E", "kind":"lcd", "name":null, "state":"present", "keep":null, "polling":null,
     "channels":[],
     "glass":{"rows":["                    ", "                    ", "                    ",
                      "                    "], "known":false, "at":null,
              "light":null, "cursor":null, "blink":null}, "codes":null}]})");
}

TEST_F(CardsTest, ACardThatWentIsStillReadByItsAddress) {
  Pull(0x9);
  EXPECT_NE(Result("cards.get", R"({"address":"9"})").find(R"("state":"absent")"),
            std::string::npos);
}

TEST_F(CardsTest, APlaceWithoutACardIsNotFound) {
  ExpectProblem("cards.get", R"({"address":"1"})", 404, "address", "no card at 1");
  for (const char* address : {"a", "G", "10", " ", "55"})
    ExpectProblem("cards.get", "{\"address\":\"" + std::string(address) + "\"}", 404, "address",
                  "no place " + std::string(address) + "; they are 0 to 9 and A to F");
}

TEST_F(CardsTest, SeveralOutputsAreSetAtOnce) {
  Result("cards.set", R"({"address":"5","values":{"0":true,"7":false,"15":true}})");
  EXPECT_EQ(TakeSet(), "5 0=0 7=1 15=0");
  EXPECT_EQ(LastNote(), "command operator: 5.0: on, 5.7: off, 5.15: on");
}

TEST_F(CardsTest, OneWrongValueAndNothingIsSet) {
  ExpectProblem("cards.set", R"({"address":"5","values":{"0":true,"7":1}})", 422, "7",
                "1; 5.7 takes true or false");
  ExpectProblem("cards.set", R"({"address":"0","values":{"6":1}})", 422, "6",
                "card 0 has no channel \"6\"; its numbers are 0 to 5");
  for (const std::string key : {"16", "00", "-1", "", "x", "1 ", "5.0"})
    ExpectProblem("cards.set", R"({"address":"5","values":{")" + key + "\":true}}", 422,
                  key.c_str(),
                  ("card 5 has no channel \"" + key + "\"; its numbers are 0 to 15").c_str());
  ExpectProblem("cards.set", R"({"address":"5","values":{}})", 422, "values",
                "no channel is named; {\"0\":true} sets one");
  EXPECT_EQ(TakeSet(), "");
}

TEST_F(CardsTest, OnlyOutputsAreSet) {
  ExpectProblem("cards.set", R"({"address":"3","values":{"0":true}})", 409, "",
                "card 3 is of the kind digital-input; it has no outputs to be set");
  ExpectProblem("cards.set", R"({"address":"1","values":{"0":true}})", 404, "address",
                "no card at 1");
  link.outcome = FakeLink::kTooFast;
  ExpectProblem("cards.set", R"({"address":"5","values":{"0":true}})", 429, "",
                "card 5 has 64 commands waiting");
  DaemonIs(model::DaemonState::kAbsent);
  ExpectProblem("cards.set", R"({"address":"5","values":{"0":true}})", 503, "",
                "the daemon is not there; nothing was sent");
}

TEST_F(CardsTest, ACardThatWentMeanwhileIsToldAsItIs) {
  link.then = [this](const std::string&) { Pull(0x5); };
  EXPECT_NE(
      Result("cards.set", R"({"address":"5","values":{"0":true}})").find(R"("state":"absent")"),
      std::string::npos);
}

TEST_F(CardsTest, AnInputCardIsPolledOrNot) {
  Result("card.polling", R"({"address":"3","polling":false})");
  Result("card.polling", R"({"address":"F","polling":true})");
  EXPECT_EQ(TakeAsked(), "POLLOFF:3\nPOLLSTATE\nPOLLON:F\nPOLLSTATE");
  EXPECT_EQ(LastNote(), "command operator: polling of F: on");
  ExpectProblem("card.polling", R"({"address":"5","polling":true})", 409, "address",
                "card 5 is of the kind digital-output; only inputs are polled");
  link.answers["POLLON:3"] = {"CIE: THIS COMMAND IS VALID ON INPUT CARDS"};
  ExpectProblem("card.polling", R"({"address":"3","polling":true})", 503, "",
                "the daemon's answer to POLLON:3: THIS COMMAND IS VALID ON INPUT CARDS");
}

TEST_F(CardsTest, ACardIsRebooted) {
  link.answers["REBOOT:5"] = {"CIA: Card is REBOOTED", "RBT:0x5:OK"};
  EXPECT_EQ(Result("card.reboot", R"({"address":"5"})").substr(0, 14), R"({"address":"5")");
  EXPECT_EQ(TakeAsked(), "REBOOT:5");
  EXPECT_EQ(LastNote(), "command operator: reboot of 5");
  link.answers["REBOOT:5"] = {"CIE: BUS WRITE ERROR"};
  ExpectProblem("card.reboot", R"({"address":"5"})", 503, "",
                "the daemon's answer to REBOOT:5: BUS WRITE ERROR");
  ExpectProblem("card.reboot", R"({"address":"1"})", 404, "address", "no card at 1");
  Pull(0x5);
  ExpectProblem("card.reboot", R"({"address":"5"})", 404, "address", "no card at 5 any more");
}

}  // namespace
}  // namespace hub::api
