#include "access/ForwardedFor.h"

#include <gtest/gtest.h>

namespace hub::access {
namespace {

struct Row {
  const char* what;
  const char* peer;
  const char* header;
  const char* client;
};

TEST(ForwardedFor, CountsAsFarAsListedProxiesWroteIt) {
  const std::vector<std::string> proxies{"10.0.0.1", "10.0.0.2", "2001:db8::1"};
  constexpr Row kRows[] = {
      {"no header", "192.0.2.1", "", "192.0.2.1"},
      {"a proxy of ours without one", "10.0.0.1", "", "10.0.0.1"},
      {"a stranger forges one", "192.0.2.1", "127.0.0.1", "192.0.2.1"},
      {"a stranger names our proxy", "192.0.2.1", "127.0.0.1, 10.0.0.1", "192.0.2.1"},
      {"one proxy", "10.0.0.1", "192.0.2.7", "192.0.2.7"},
      {"two proxies", "10.0.0.1", "192.0.2.7, 10.0.0.2", "192.0.2.7"},
      {"the client forged the left part", "10.0.0.1", "127.0.0.1, 192.0.2.7", "192.0.2.7"},
      {"and another proxy in it", "10.0.0.1", "127.0.0.1, 10.0.0.2, 192.0.2.7", "192.0.2.7"},
      {"through two proxies", "10.0.0.1", "127.0.0.1, 192.0.2.7, 10.0.0.2", "192.0.2.7"},
      {"a proxy that is not ours", "10.0.0.1", "192.0.2.7, 10.9.9.9", "10.9.9.9"},
      {"proxies only", "10.0.0.1", "10.0.0.2, 10.0.0.1", "10.0.0.2"},
      {"no blanks", "10.0.0.1", "127.0.0.1,192.0.2.7,10.0.0.2", "192.0.2.7"},
      {"many blanks", "10.0.0.1", " \t192.0.2.7 \t", "192.0.2.7"},
      {"several headers joined", "10.0.0.1", "127.0.0.1, 127.0.0.2,192.0.2.7", "192.0.2.7"},
      {"with a port", "10.0.0.1", "192.0.2.7:4711", "192.0.2.7"},
      {"IPv6", "2001:db8::1", "2001:DB8:0:0::7", "2001:db8::7"},
      {"IPv6 with a port", "10.0.0.1", "[2001:db8::7]:4711", "2001:db8::7"},
      {"our proxy in a long form", "2001:0db8:0:0:0:0:0:1", "192.0.2.7", "192.0.2.7"},
      {"IPv4 inside of IPv6", "::ffff:10.0.0.1", "::ffff:192.0.2.7", "192.0.2.7"},
      {"no address", "10.0.0.1", "unknown", "unknown"},
      {"an empty place", "10.0.0.1", "192.0.2.7,", "unknown"},
      {"only commas", "10.0.0.1", ",,,", "unknown"},
      {"garbage right of the client", "10.0.0.1", "192.0.2.7, x, 10.0.0.2", "unknown"},
      {"a name", "10.0.0.1", "localhost", "unknown"},
      {"an octal address", "10.0.0.1", "0177.0.0.1", "unknown"},
      {"the Unix socket", "", "127.0.0.1", ""},
  };
  for (const Row& row : kRows)
    EXPECT_EQ(ClientAddress(row.peer, row.header, proxies), row.client) << row.what;
}

// Without accounts, loopback may do all.
TEST(ForwardedFor, NobodyIsTakenForAProxyOnLoopback) {
  EXPECT_EQ(ClientAddress("127.0.0.1", "unknown", {"127.0.0.1"}), "unknown");
  EXPECT_EQ(ClientAddress("127.0.0.1", "192.0.2.7, localhost", {"127.0.0.1"}), "unknown");
}

TEST(ForwardedFor, CountsForNobodyWithoutProxies) {
  EXPECT_EQ(ClientAddress("127.0.0.1", "192.0.2.7", {}), "127.0.0.1");
  EXPECT_EQ(ClientAddress("", "192.0.2.7", {}), "");
}

}  // namespace
}  // namespace hub::access
