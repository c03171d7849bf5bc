#include "settings/Nearest.h"

#include <gtest/gtest.h>

#include <array>

namespace hub::settings {
namespace {

constexpr std::array<std::string_view, 5> kWords{"port", "host", "boards", "user", "certificate"};

TEST(Nearest, FindsTheWordThatWasMeant) {
  EXPECT_EQ(Nearest("prot", kWords), "port");
  EXPECT_EQ(Nearest("ports", kWords), "port");
  EXPECT_EQ(Nearest("prt", kWords), "port");
  EXPECT_EQ(Nearest("post", kWords), "port");
  EXPECT_EQ(Nearest("usr", kWords), "user");
  EXPECT_EQ(Nearest("Boards", kWords), "boards");
  EXPECT_EQ(Nearest("certifcate", kWords), "certificate");
  EXPECT_EQ(Nearest("cretificaet", kWords), "certificate");
  EXPECT_EQ(Nearest("host", kWords), "host");
}

TEST(Nearest, AWordThatIsFarFromAllWasNotMeant) {
  EXPECT_EQ(Nearest("", kWords), "");
  EXPECT_EQ(Nearest("x", kWords), "");
  EXPECT_EQ(Nearest("gate", kWords), "");
  EXPECT_EQ(Nearest("password", kWords), "");
  EXPECT_EQ(Nearest("port", {}), "");
}

}  // namespace
}  // namespace hub::settings
