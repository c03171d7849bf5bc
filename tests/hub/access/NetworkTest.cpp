#include "access/Network.h"

#include <gtest/gtest.h>

namespace hub::access {
namespace {

TEST(Network, AddressesAreWrittenOneWay) {
  EXPECT_EQ(ParseAddress("192.0.2.1"), "192.0.2.1");
  EXPECT_EQ(ParseAddress("2001:0DB8:0:0:0:0:0:1"), "2001:db8::1");
  EXPECT_EQ(ParseAddress("::ffff:192.0.2.1"), "192.0.2.1");
  for (const char* text : {"", "localhost", "192.0.2", "192.0.2.01", "[::1]", "fe80::1%lo", " ::1"})
    EXPECT_EQ(ParseAddress(text), std::nullopt) << text;
}

TEST(Network, LoopbackIsOfThisMachineOnly) {
  for (const char* text : {"127.0.0.1", "127.255.255.254", "::1", "::ffff:127.0.0.1"})
    EXPECT_TRUE(IsLoopback(text)) << text;
  for (const char* text : {"", "localhost", "0.0.0.0", "::", "128.0.0.1", "192.168.1.1", "::2"})
    EXPECT_FALSE(IsLoopback(text)) << text;
}

TEST(Network, IsTheAddressItselfOrTheHalfOfAnIpv6Address) {
  EXPECT_EQ(NetworkOf("192.0.2.1"), "192.0.2.1");
  EXPECT_EQ(NetworkOf("2001:db8:1:2:3:4:5:6"), "2001:db8:1:2::/64");
  EXPECT_EQ(NetworkOf("fe80::1%eth0"), "fe80::/64");
  EXPECT_EQ(NetworkOf(""), "");
}

}  // namespace
}  // namespace hub::access
