#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "api/Api.h"

namespace hub::api {
namespace {

// "cards.get {"address":"5"}"; what is allowed where the verb is another; empty where no path is.
std::string Found(Verb verb, std::string_view path) {
  const RouteMatch match = FindRoute(verb, path);
  if (match.method == nullptr) return match.allowed;
  return std::string(match.method->name) + ' ' + boost::json::serialize(match.parameters);
}

TEST(RoutesTest, AMethodIsFoundByVerbAndPath) {
  EXPECT_EQ(Found(Verb::kGet, "/api/bus"), "bus.get {}");
  EXPECT_EQ(Found(Verb::kGet, "/api/cards/5"), R"(cards.get {"address":"5"})");
  EXPECT_EQ(Found(Verb::kPatch, "/api/cards/5"), R"(cards.set {"address":"5"})");
  EXPECT_EQ(Found(Verb::kPut, "/api/channels/5.0"), R"(channels.set {"id":"5.0"})");
  EXPECT_EQ(Found(Verb::kPost, "/api/cards/0/settings/store"),
            R"(card.settings.store {"address":"0"})");
  EXPECT_EQ(Found(Verb::kDelete, "/api/accounts/operator"),
            R"(accounts.remove {"account":"operator"})");
}

TEST(RoutesTest, AnotherVerbIsToldWhichThereAre) {
  EXPECT_EQ(Found(Verb::kDelete, "/api/bus"), "GET");
  EXPECT_EQ(Found(Verb::kPost, "/api/channels/5.0"), "GET, PUT");
  EXPECT_EQ(Found(Verb::kPatch, "/api/session"), "POST, GET, DELETE");
}

TEST(RoutesTest, APathIsTakenAsItStands) {
  for (const char* path :
       {"", "/", "/api", "/api/", "/api/bus/", "/API/bus", "//api/bus", "/api//bus", "/api/bus?x=1",
        "/api/cards/", "/api/cards//polling", "/api/cards/5/", "/api/../api/bus", "/api/b%75s",
        "/api/live", "live.subscribe", "/api/cards/5/settings/store/x"})
    EXPECT_EQ(Found(Verb::kGet, path), "") << path;
}

TEST(RoutesTest, ANameInAPathIsDecodedAndNothingElse) {
  EXPECT_EQ(Found(Verb::kGet, "/api/channels/5%2E0"), R"(channels.get {"id":"5.0"})");
  EXPECT_EQ(Found(Verb::kGet, "/api/channels/..%2f..%2F"), R"(channels.get {"id":"../../"})");
  EXPECT_EQ(Found(Verb::kGet, "/api/channels/a+b"), R"(channels.get {"id":"a+b"})");
  EXPECT_EQ(Found(Verb::kGet, "/api/channels/%2525"), R"(channels.get {"id":"%25"})");
}

TEST(RoutesTest, ANameOfOtherThanPrintableAsciiIsNone) {
  for (const char* path : {"/api/channels/%00", "/api/channels/5%0D%0A", "/api/channels/%",
                           "/api/channels/%5", "/api/channels/%zz", "/api/channels/%C3%A9",
                           "/api/channels/\xC3\xA9", "/api/channels/%7F", "/api/channels/% 5"})
    EXPECT_EQ(Found(Verb::kGet, path), "") << path;
}

}  // namespace
}  // namespace hub::api
