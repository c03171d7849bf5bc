#include "api/JsonRpc.h"

#include "api/ApiTest.h"

namespace hub::api {
namespace {

class JsonRpcTest : public ApiTest {
 protected:
  void ExpectAnswer(std::string request, std::string_view answer) {
    const std::string sent = request;
    EXPECT_EQ(Rpc(std::move(request)), Compact(answer)) << sent;
  }
};

TEST_F(JsonRpcTest, AResultHasTheRequestsId) {
  ExpectAnswer(R"({"jsonrpc":"2.0","id":1,"method":"session.who"})",
               R"({"jsonrpc":"2.0", "id":1, "result":{"account":"operator","role":"admin"}})");
  ExpectAnswer(R"({"jsonrpc":"2.0","id":"a","method":"session.who","params":{}})",
               R"({"jsonrpc":"2.0", "id":"a", "result":{"account":"operator","role":"admin"}})");
  ExpectAnswer(R"({"jsonrpc":"2.0","id":null,"method":"session.who"})",
               R"({"jsonrpc":"2.0", "id":null, "result":{"account":"operator","role":"admin"}})");
}

TEST_F(JsonRpcTest, ParametersAreTheRoutesAndTheBodysTogether) {
  Rpc(R"({"jsonrpc":"2.0","id":2,"method":"channels.set","params":{"id":"5.0","value":true}})");
  Rpc(R"({"jsonrpc":"2.0","id":3,"method":"cards.set",
          "params":{"address":"5","values":{"1":true}}})");
  Rpc(R"({"jsonrpc":"2.0","id":4,"method":"lcd.write",
          "params":{"address":"E","row":0,"column":0,"text":"Hello"}})");
  EXPECT_EQ(TakeSet(), "5 0=0\n5 1=0");
  EXPECT_EQ(TakeSent(), "aElPAp0000tHello");
}

TEST_F(JsonRpcTest, WhatWantsNoAnswerIsDoneInSilence) {
  EXPECT_EQ(Rpc(R"({"jsonrpc":"2.0","method":"channels.set","params":{"id":"5.0","value":true}})"),
            "");
  EXPECT_EQ(TakeSet(), "5 0=0");
  EXPECT_EQ(Rpc(R"({"jsonrpc":"2.0","method":"channels.set","params":{}})"), "");
}

TEST_F(JsonRpcTest, WhatWantsNoAnswerFailsInSilenceToo) {
  EXPECT_EQ(Rpc(R"({"jsonrpc":"2.0","method":"no.such"})"), "");
  EXPECT_EQ(Rpc(R"({"jsonrpc":"2.0","method":"bus.get","params":[]})"), "");
  EXPECT_NE(Rpc(R"({"jsonrpc":"2.0","id":null,"method":"no.such"})").find(R"("code":-32601)"),
            std::string::npos);
}

TEST_F(JsonRpcTest, AProblemIsTheDataOfAnError) {
  ExpectAnswer(
      R"({"jsonrpc":"2.0","id":5,"method":"lcd.write","params":
          {"address":"E","row":1,"column":3,"text":"12345678901234567890"}})",
      R"({"jsonrpc":"2.0", "id":5, "error":{"code":-32602, "message":"does not fit", "data":{
          "title":"does not fit", "status":422,
          "detail":"a text of 20 characters; row 1 from column 3 has room for 17",
          "where":"text"}}})");
  ExpectAnswer(R"({"jsonrpc":"2.0","id":6,"method":"cards.get","params":{"address":"1"}})",
               R"({"jsonrpc":"2.0", "id":6, "error":{"code":-32000, "message":"not there", "data":{
                   "title":"not there", "status":404, "detail":"no card at 1",
                   "where":"address"}}})");
  DaemonIs(model::DaemonState::kAbsent);
  ExpectAnswer(R"({"jsonrpc":"2.0","id":7,"method":"bus.discover"})",
               R"({"jsonrpc":"2.0", "id":7, "error":{"code":-32000, "message":"not available",
                   "data":{"title":"not available", "status":503,
                   "detail":"the daemon is not there; nothing was sent", "where":null,
                   "retry_after":5}}})");
}

TEST_F(JsonRpcTest, ATextThatIsNoJsonIsToldSo) {
  const std::string answer = Rpc("{");
  EXPECT_EQ(answer.substr(0, 70),
            R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"no JSON",)");
  for (const char* text : {"", "NaN", "\"\xFF\"", R"({"id":1,"id":2})", "1e999"})
    EXPECT_NE(Rpc(text).find(R"("code":-32700)"), std::string::npos) << text;
  EXPECT_NE(Rpc(std::string(60'000, '[')).find(R"("code":-32700)"), std::string::npos);
}

TEST_F(JsonRpcTest, BatchesAreRefused) {
  ExpectAnswer(R"([{"jsonrpc":"2.0","id":1,"method":"session.who"}])",
               R"({"jsonrpc":"2.0", "id":null, "error":{"code":-32600, "message":"no JSON",
                   "data":{"title":"no JSON", "status":400,
                   "detail":"one request at a time: batches are not taken", "where":null}}})");
}

TEST_F(JsonRpcTest, WhatIsNoRequestIsRefused) {
  for (const char* text : {"1", "\"x\"", "null", "{}", R"({"id":1,"method":"session.who"})",
                           R"({"jsonrpc":"1.0","id":1,"method":"session.who"})",
                           R"({"jsonrpc":2.0,"id":1,"method":"session.who"})",
                           R"({"jsonrpc":"2.0","id":1})", R"({"jsonrpc":"2.0","id":1,"method":7})",
                           R"({"jsonrpc":"2.0","id":{},"method":"session.who"})",
                           R"({"jsonrpc":"2.0","id":true,"method":"session.who"})",
                           R"({"jsonrpc":"2.0","id":1,"method":"session.who","role":"admin"})"})
    EXPECT_NE(Rpc(text).find(R"("code":-32600)"), std::string::npos) << text;
}

TEST_F(JsonRpcTest, AMethodMustBeThereAndItsParametersGoByName) {
  for (const char* name : {"no.such", "", "Bus.get", "bus.get ", "/api/bus"})
    EXPECT_NE(Rpc(R"({"jsonrpc":"2.0","id":1,"method":")" + std::string(name) + "\"}")
                  .find(R"("id":1,"error":{"code":-32601)"),
              std::string::npos)
        << name;
  for (const char* parameters : {"[]", "[\"5.0\"]", "1", "null", "\"x\""})
    EXPECT_NE(Rpc(R"({"jsonrpc":"2.0","id":1,"method":"bus.get","params":)" +
                  std::string(parameters) + "}")
                  .find(R"("id":1,"error":{"code":-32602)"),
              std::string::npos)
        << parameters;
}

TEST_F(JsonRpcTest, AFaultHasItsOwnCode) {
  access.fails = true;
  EXPECT_NE(Rpc(R"({"jsonrpc":"2.0","id":1,"method":"session.open",
                    "params":{"account":"ghost","password":"secret word"}})")
                .find(R"("code":-32603,"message":"a fault of the hub")"),
            std::string::npos);
}

TEST_F(JsonRpcTest, ASubscriptionTellsTheDoorWhereToGoOn) {
  const std::string answer = Rpc(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
  EXPECT_EQ(answer.substr(0, 41), R"({"jsonrpc":"2.0","id":1,"result":{"seq":9)");
  EXPECT_EQ(rpc_live_after, 9U);
  Rpc(R"({"jsonrpc":"2.0","id":2,"method":"bus.get"})");
  EXPECT_EQ(rpc_live_after, std::nullopt);
}

}  // namespace
}  // namespace hub::api
