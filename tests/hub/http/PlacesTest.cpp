// Who still gets a place when there are many.
#include "http/Places.h"

#include <gtest/gtest.h>

namespace hub::http {
namespace {

Peer At(const std::string& address) { return {false, false, address}; }

const Peer kLocal{true, false, ""};

void Enter(Places& places, const Peer& peer, int times) {
  for (int i = 0; i < times; ++i) places.Enter(peer);
}

TEST(PlacesTest, OneNetworkHasHalfOfThemAndHearsSo) {
  Places places(100, {});
  Enter(places, At("192.0.2.1"), 49);
  EXPECT_EQ(places.For(At("192.0.2.1")), Place::kFree);
  Enter(places, At("192.0.2.1"), 1);
  EXPECT_EQ(places.For(At("192.0.2.1")), Place::kNone);
  EXPECT_EQ(places.For(At("192.0.2.2")), Place::kFree);
  EXPECT_EQ(places.For(At("127.0.0.1")), Place::kFree);
  Enter(places, At("192.0.2.1"), 32);
  EXPECT_EQ(places.For(At("192.0.2.1")), Place::kNotAWord);
  EXPECT_EQ(places.For(At("192.0.2.2")), Place::kFree);
}

TEST(PlacesTest, AllAddressesOfAHouseAreOneNetwork) {
  Places places(100, {});
  for (int i = 1; i <= 50; ++i) places.Enter(At("2001:db8:0:7::" + std::to_string(i)));
  EXPECT_EQ(places.For(At("2001:db8:0:7::abc")), Place::kNone);
  EXPECT_EQ(places.For(At("2001:db8:0:8::abc")), Place::kFree);
}

TEST(PlacesTest, ThisMachineAndAProxyMayHaveAllOfThem) {
  for (const char* const address : {"127.0.0.1", "::1", "192.0.2.7"}) {
    Places places(100, {"192.0.2.7"});
    Enter(places, At(address), 99);
    EXPECT_EQ(places.For(At(address)), Place::kFree);
    Enter(places, At(address), 1);
    EXPECT_EQ(places.For(At(address)), Place::kNone);
    EXPECT_EQ(places.For(At("192.0.2.1")), Place::kNone);
    EXPECT_EQ(places.For(kLocal), Place::kFree);
    Enter(places, At(address), 32);
    EXPECT_EQ(places.For(At(address)), Place::kNotAWord);
    EXPECT_EQ(places.For(kLocal), Place::kFree);
  }
}

TEST(PlacesTest, TheUnixSocketHasSixtyFourOfItsOwn) {
  Places places(1, {});
  Enter(places, kLocal, 64);
  EXPECT_EQ(places.For(kLocal), Place::kNone);
  EXPECT_EQ(places.For(At("192.0.2.1")), Place::kFree);
}

TEST(PlacesTest, WhoLeavesMakesRoom) {
  Places places(2, {});
  Enter(places, At("192.0.2.1"), 1);
  EXPECT_EQ(places.For(At("192.0.2.1")), Place::kNone);
  places.Leave(At("192.0.2.1"));
  EXPECT_EQ(places.For(At("192.0.2.1")), Place::kFree);
}

}  // namespace
}  // namespace hub::http
