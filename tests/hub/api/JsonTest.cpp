#include "api/Json.h"

#include <gtest/gtest.h>

#include <boost/json/object.hpp>

namespace hub::api {
namespace {

// The text again, or the problem's.
std::string There(std::string_view text) {
  const auto parsed = ParseJson(text);
  if (const auto* problem = std::get_if<Problem>(&parsed))
    return std::to_string(problem->status) + ' ' + problem->detail;
  return ToText(std::get<boost::json::value>(parsed));
}

void ExpectRefused(std::string_view text) {
  EXPECT_EQ(There(text).substr(0, 4), "400 ") << text.substr(0, 80);
}

TEST(JsonTest, NumbersAreWrittenAsPeopleDo) {
  EXPECT_EQ(There("[2.5, 0, -7, 1e3, 0.02, 1795262400000, 18446744073709551615]"),
            "[2.5,0,-7,1000,0.02,1795262400000,18446744073709551615]");
}

TEST(JsonTest, TextsAreEscaped) {
  EXPECT_EQ(There(R"({"a\"b":"<script>\u0000\n\u00e9"})"),
            "{\"a\\\"b\":\"<script>\\u0000\\n\u00e9\"}");
}

TEST(JsonTest, NestingAndEmptyOnesKeepTheirShape) {
  EXPECT_EQ(There(R"({"a":[[],[{}],{"b":null}],"c":{},"d":[true,false]})"),
            R"({"a":[[],[{}],{"b":null}],"c":{},"d":[true,false]})");
}

TEST(JsonTest, WhatIsNoJsonIsRefused) {
  for (const char* text : {"",        " ",      "{",          "{}}",         "nul",  "{'a':1}",
                           "{a:1}",   "[1,]",   "{\"a\":1,}", "01",          "+1",   ".5",
                           "1.",      "NaN",    "Infinity",   "-Infinity",   "0x10", "\"a",
                           "// c\n1", "\"\t\"", "\"\\x41\"",  "\"\\ud800\"", "1 2"})
    ExpectRefused(text);
}

TEST(JsonTest, BytesThatAreNoUtf8AreReplaced) {
  const std::string kNone = "\xEF\xBF\xBD";
  EXPECT_EQ(ToText("a\xFFz"), "\"a" + kNone + "z\"");
  EXPECT_EQ(ToText("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x92\xA1"),
            "\"\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x92\xA1\"");
  EXPECT_EQ(ToText("\xC3"), "\"" + kNone + "\"") << "cut";
  EXPECT_EQ(ToText("\xE2\x82 "), "\"" + kNone + kNone + " \"") << "cut";
  EXPECT_EQ(ToText("\xC0\xAF"), "\"" + kNone + kNone + "\"") << "longer than it need be";
  EXPECT_EQ(ToText("\xE0\x80\xAF"), "\"" + kNone + kNone + kNone + "\"") << "likewise";
  EXPECT_EQ(ToText("\xED\xA0\x80"), "\"" + kNone + kNone + kNone + "\"") << "half of a pair";
  EXPECT_EQ(ToText("\xF4\x90\x80\x80"), "\"" + kNone + kNone + kNone + kNone + "\"");
}

TEST(JsonTest, InvalidUtf8IsRefused) {
  for (const char* text :
       {"\"\xFF\"", "\"\xC0\x80\"", "\"\xED\xA0\x80\"", "\"\xE2\x82\"", "\"\x80\""})
    ExpectRefused(text);
}

TEST(JsonTest, DepthHasALimit) {
  const auto nested = [](size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
  };
  EXPECT_EQ(There(nested(16)), nested(16));
  ExpectRefused(nested(17));
  ExpectRefused(std::string(60'000, '['));
  std::string objects;
  for (int i = 0; i < 10'000; ++i) objects += "{\"a\":";
  ExpectRefused(objects);
}

TEST(JsonTest, AKeyThatComesTwiceIsRefused) {
  EXPECT_EQ(There(R"({"value":true,"value":false})"), "400 a key comes twice in one object");
  EXPECT_EQ(There(R"([{"a":{"b":1,"b":1}}])"), "400 a key comes twice in one object");
  EXPECT_EQ(There(R"({"a":1,"\u0061":2})"), "400 a key comes twice in one object");
  EXPECT_EQ(There(R"({"a":{"b":1},"c":{"b":1}})"), R"({"a":{"b":1},"c":{"b":1}})");
  EXPECT_EQ(There(R"({"a:b":"c:\":d","e":"\\"})"), R"({"a:b":"c:\":d","e":"\\"})");
}

TEST(JsonTest, NumbersThatNobodyCanHoldAreRefused) {
  ExpectRefused("1e999");
  ExpectRefused("[-1e999]");
  ExpectRefused(R"({"a":{"b":1e400}})");
  EXPECT_EQ(There("1e-999"), "0");
}

TEST(JsonTest, ALongTextIsTaken) {
  const std::string text = '"' + std::string(60'000, 'x') + '"';
  EXPECT_EQ(There(text), text);
}

}  // namespace
}  // namespace hub::api
