#include "settings/Endpoint.h"

#include <gtest/gtest.h>

namespace hub::settings {
namespace {

TEST(Endpoint, IsAnAddressAndAPort) {
  EXPECT_EQ(ParseEndpoint("127.0.0.1:5080"), (Endpoint{"127.0.0.1", 5080}));
  EXPECT_EQ(ParseEndpoint("0.0.0.0:1"), (Endpoint{"0.0.0.0", 1}));
  EXPECT_EQ(ParseEndpoint("[::1]:5080"), (Endpoint{"::1", 5080}));
  EXPECT_EQ(ParseEndpoint("[2001:0DB8:0::1]:65535"), (Endpoint{"2001:db8::1", 65535}));
}

TEST(Endpoint, IsNothingElse) {
  for (const char* text :
       {"", "127.0.0.1", "127.0.0.1:", "127.0.0.1:0", "127.0.0.1:65536", ":5080", "5080",
        "localhost:5080", "::1:5080", "[::1]", "[127.0.0.1]:5080", "/run/hub.sock", "unix:/run/x",
        "127.0.0.1:5080 ", "127.0.0.1 :5080", "http://127.0.0.1:5080", "127.1:5080", "*:5080"})
    EXPECT_EQ(ParseEndpoint(text), std::nullopt) << text;
}

TEST(Endpoint, IsWrittenAsItIsRead) {
  EXPECT_EQ(ToText(Endpoint{"127.0.0.1", 5080}), "127.0.0.1:5080");
  EXPECT_EQ(ToText(Endpoint{"::1", 5080}), "[::1]:5080");
}

}  // namespace
}  // namespace hub::settings
