#include "access/Hosts.h"

#include <gtest/gtest.h>

namespace hub::access {
namespace {

const Hosts kHosts({"bench.local", "Panel.Example", "xn--bnch-loa.example"});

TEST(Hosts, LocalhostLiteralAddressesAndListedNamesAreAllowed) {
  for (const char* host :
       {"localhost", "localhost:5080", "LOCALHOST", "LocalHost:80", "127.0.0.1", "127.0.0.1:5080",
        "192.168.1.20:65535", "[::1]", "[::1]:5080", "[2001:DB8::1]", "[fe80::1]:1", "bench.local",
        "bench.local:8443", "BENCH.Local", "panel.example", "xn--bnch-loa.example"})
    EXPECT_TRUE(kHosts.Allow(host)) << host;
}

TEST(Hosts, DnsRebindingNeedsANameThatIsNotOurs) {
  for (const char* host :
       {"evil.example", "evil.example:5080", "127.0.0.1.evil.example", "127.0.0.1.nip.example",
        "localhost.evil.example", "evil.localhost", "evil-localhost", "localhost-evil",
        "localhostx", "xlocalhost", "bench.local.evil.example", "evilbench.local",
        "evil.bench.local", "bench.loca", "bench", "local", "xn--localhost-9c.example",
        "xn--bnch-loa.exampl", "b\xC3\xA4nch.example"})
    EXPECT_FALSE(kHosts.Allow(host)) << host;
}

TEST(Hosts, UnusualWaysToWriteAnAddressAreNot) {
  for (const char* host : {"127.1",
                           "0177.0.0.1",
                           "0x7f.0.0.1",
                           "0x7f000001",
                           "2130706433",
                           "127.0.0.1.",
                           "127.0.0",
                           "127.0.0.256",
                           "127.0.0.0.1",
                           "::1",
                           "::1:5080",
                           "[127.0.0.1]",
                           "[::1%lo]",
                           "[::1%25lo]",
                           "[::1].evil.example",
                           "[::1]evil",
                           "[::1",
                           "::1]",
                           "[]",
                           "[]:80",
                           "[localhost]",
                           "[[::1]]",
                           "1::1.1.1.1:80",
                           "1:2:3:4:5:6:7:8:9",
                           "[1:2:3:4:5:6:7:8:9]"})
    EXPECT_FALSE(kHosts.Allow(host)) << host;
}

// Browsers do not say which site's page asks there.
TEST(Hosts, AnAddressThatOnlyStandsForAnotherIsNot) {
  for (const char* host : {"0.0.0.0", "0.0.0.0:5080", "[::]", "[::]:5080", "[0:0:0:0:0:0:0:0]",
                           "[::ffff:127.0.0.1]", "[::ffff:127.0.0.1]:5080", "[::FFFF:7F00:1]:5080",
                           "[::ffff:192.168.1.20]", "[::ffff:0.0.0.0]"})
    EXPECT_FALSE(kHosts.Allow(host)) << host;
}

TEST(Hosts, AnythingAroundTheHostIsNot) {
  for (const char* host : {"",
                           " ",
                           "localhost ",
                           " localhost",
                           "local host",
                           "localhost\t",
                           "localhost.",
                           "bench.local.",
                           "localhost:",
                           "localhost:0",
                           "localhost:65536",
                           "localhost:99999999999",
                           "localhost:80:80",
                           "localhost:+80",
                           "localhost:-1",
                           "localhost:0x50",
                           "localhost:80 ",
                           "localhost: 80",
                           "localhost:http",
                           ":80",
                           "user@localhost",
                           "localhost@evil.example",
                           "evil.example#localhost",
                           "localhost/",
                           "localhost/path",
                           "http://localhost",
                           "localhost, evil.example",
                           "evil.example, localhost",
                           "localhost,localhost",
                           "localhost;evil.example",
                           "localhost\\evil.example",
                           "localhost%2eevil.example",
                           "127.0.0.1:80@evil.example",
                           "*",
                           "null"})
    EXPECT_FALSE(kHosts.Allow(host)) << host;
}

TEST(Hosts, ANulEndsNothing) {
  using namespace std::string_view_literals;
  EXPECT_FALSE(kHosts.Allow("127.0.0.1\0.evil.example"sv));
  EXPECT_FALSE(kHosts.Allow("localhost\0.evil.example"sv));
  EXPECT_FALSE(kHosts.Allow("localhost\0"sv));
}

TEST(Hosts, WithoutFurtherNamesOnlyLocalhostHasOne) {
  const Hosts none({});
  EXPECT_TRUE(none.Allow("localhost:5080"));
  EXPECT_TRUE(none.Allow("127.0.0.1:5080"));
  EXPECT_FALSE(none.Allow("bench.local"));
  EXPECT_FALSE(none.Allow(""));
}

}  // namespace
}  // namespace hub::access
