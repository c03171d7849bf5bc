// Displays and infrared: what goes out as a stream.
#include "api/ApiTest.h"

namespace hub::api {
namespace {

class DisplayTest : public ApiTest {};

TEST_F(DisplayTest, ATextIsWrittenAtRowAndColumnFromZero) {
  link.then = [this](const std::string&) {
    bus.TakeOutput(protocol::WriteText{0xE, 3, 1, "Tail of the cat"}, now);
  };
  ExpectResult("lcd.write", R"({"address":"E","row":1,"column":3,"text":"Tail of the cat"})", R"({
    "address":"E", "kind":"lcd", "name":null, "state":"present", "keep":null, "polling":null,
    "channels":[],
    "glass":{"rows":["                    ", "   Tail of the cat  ", "                    ",
                     "                    "], "known":false, "at":{"row":1, "column":18},
             "light":null, "cursor":null, "blink":null}, "codes":null})");
  EXPECT_EQ(TakeSent(), "aElPAp0301tTail of the cat");
  EXPECT_EQ(LastNote(), "command operator: E: text at row 1, column 3: Tail of the cat");
}

TEST_F(DisplayTest, ATextMustHaveRoomInItsRow) {
  Result("lcd.write", R"({"address":"E","row":1,"column":3,"text":"12345678901234567"})");
  ExpectProblem(
      "lcd.write",
      R"({"address":"E","row":1,"column":3,"text":"12345678901234567890123456789012345678901"})",
      422, "text", "a text of 41 characters; row 1 from column 3 has room for 17");
  ExpectProblem("lcd.write", R"({"address":"E","row":0,"column":19,"text":"ab"})", 422, "text",
                "a text of 2 characters; row 0 from column 19 has room for 1");
  ExpectProblem("lcd.write", R"({"address":"E","row":4,"column":0,"text":"a"})", 422, "row",
                "row 4; the glass has rows 0 to 3");
  ExpectProblem("lcd.write", R"({"address":"E","row":0,"column":20,"text":"a"})", 422, "column",
                "column 20; the glass has columns 0 to 19");
  ExpectProblem("lcd.write", R"({"address":"E","row":-1,"column":0,"text":"a"})", 422, "row",
                "-1; row takes 0 to 255");
  ExpectProblem("lcd.write", R"({"address":"E","row":0,"column":0,"text":""})", 422, "text",
                "a text of 0 characters; text takes 1 to 80");
  EXPECT_EQ(TakeSent(), "aElPAp0301t12345678901234567");
}

TEST_F(DisplayTest, ALongerGlassHasMoreRoom) {
  model::Settings settings;
  settings.cards[0xE].rows = 2;
  settings.cards[0xE].columns = 40;
  FileHas(settings);
  const std::string text(40, 'x');
  Result("lcd.write", R"({"address":"E","row":1,"column":0,"text":")" + text + "\"}");
  EXPECT_EQ(TakeSent(), "aElPAp0001t" + text);
  ExpectProblem("lcd.write", R"({"address":"E","row":2,"column":0,"text":"a"})", 422, "row",
                "row 2; the glass has rows 0 to 1");
}

TEST_F(DisplayTest, OnlyWhatTheGlassCanShowIsSent) {
  ExpectProblem("lcd.write", R"({"address":"E","row":0,"column":0,"text":"caf\u00e9"})", 422,
                "text", "the glass shows printable ASCII only");
  for (const char* text : {R"(a\ra5b0d00)", R"(a\na5b0d00)", R"(a\u0000b)"})
    ExpectProblem(
        "lcd.write", R"({"address":"E","row":0,"column":0,"text":")" + std::string(text) + "\"}",
        422, "text", "text holds a control character; only characters that can be seen go through");
  EXPECT_EQ(TakeSent(), "");
}

TEST_F(DisplayTest, MarkupOnTheGlassIsText) {
  Result("lcd.write", R"({"address":"E","row":0,"column":0,"text":"<img src=x>"})");
  EXPECT_EQ(TakeSent(), "aElPAp0000t<img src=x>");
}

TEST_F(DisplayTest, EachControlHasItsWord) {
  for (const char* word :
       {"clear", "light-on", "light-off", "cursor-on", "cursor-off", "blink-on", "blink-off"})
    Result("lcd.control", R"({"address":"E","do":")" + std::string(word) + "\"}");
  EXPECT_EQ(TakeSent(), "aElCL\naElLO\naElLF\naElCO\naElCF\naElBO\naElBF");
  EXPECT_EQ(LastNote(), "command operator: E: blink-off");
  ExpectProblem(
      "lcd.control", R"({"address":"E","do":"explode"})", 422, "do",
      "do takes clear, light-on, light-off, cursor-on, cursor-off, blink-on or blink-off");
}

TEST_F(DisplayTest, AnotherCardIsNoDisplay) {
  ExpectProblem("lcd.write", R"({"address":"5","row":0,"column":0,"text":"a"})", 409, "address",
                "card 5 is of the kind digital-output; this is for lcd");
  ExpectProblem("lcd.control", R"({"address":"5","do":"clear"})", 409, "address",
                "card 5 is of the kind digital-output; this is for lcd");
  ExpectProblem("lcd.control", R"({"address":"1","do":"clear"})", 404, "address", "no card at 1");
  link.outcome = FakeLink::kTooFast;
  ExpectProblem("lcd.control", R"({"address":"E","do":"clear"})", 429, "",
                "card E has 64 commands waiting");
  DaemonIs(model::DaemonState::kAbsent);
  ExpectProblem("lcd.write", R"({"address":"E","row":0,"column":0,"text":"a"})", 503, "",
                "the daemon is not there; nothing was sent");
}

TEST_F(DisplayTest, ACodeIsSentInEitherCase) {
  link.then = [this](const std::string&) {
    bus.TakeOutput(protocol::SendInfrared{9, {0x43, 0x4F}}, now);
  };
  ExpectResult("ir.send", R"({"address":"9","bytes":"434f"})", R"({
    "id":"9.0", "name":null, "type":"code", "value":"434F", "raw":null, "known":true,
    "assumed":false, "pending":false, "since":"2026-11-21T12:00:00.000Z", "unit":null,
    "min":null, "max":null, "decimals":null})");
  EXPECT_EQ(TakeSent(), "a9sHS434F");
  EXPECT_EQ(LastNote(), "command operator: 9: code 434F");
}

TEST_F(DisplayTest, ACodeHasOneTo35Bytes) {
  Result("ir.send", R"({"address":"9","bytes":")" + std::string(70, 'A') + "\"}");
  ExpectProblem("ir.send", R"({"address":"9","bytes":")" + std::string(72, 'A') + "\"}", 422,
                "bytes", "a code of 36 bytes; the daemon takes 35");
  for (const char* digits : {"4G", "434", "0x43", "43 4F"})
    ExpectProblem("ir.send", R"({"address":"9","bytes":")" + std::string(digits) + "\"}", 422,
                  "bytes", "bytes takes hexadecimal digits, two for each byte, as 434F");
  ExpectProblem("ir.send", R"({"address":"9","bytes":""})", 422, "bytes",
                "a text of 0 characters; bytes takes 2 to 255");
  ExpectProblem("ir.send", R"({"address":"E","bytes":"43"})", 409, "address",
                "card E is of the kind lcd; this is for ir");
  link.outcome = FakeLink::kTooFast;
  ExpectProblem("ir.send", R"({"address":"9","bytes":"43"})", 429, "",
                "card 9 has 64 commands waiting");
}

}  // namespace
}  // namespace hub::api
