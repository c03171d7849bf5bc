#include <gtest/gtest.h>

#include "mqtt/Topics.h"

namespace hub::mqtt {
namespace {

TEST(Matches, ALevelIsTheSameOrAny) {
  EXPECT_TRUE(Matches("a/b", "a/b"));
  EXPECT_TRUE(Matches("a/+/c", "a/b/c"));
  EXPECT_TRUE(Matches("+/+", "/b"));
  EXPECT_FALSE(Matches("a/b", "a"));
  EXPECT_FALSE(Matches("a", "a/b"));
  EXPECT_FALSE(Matches("a/+", "a/b/c"));
  EXPECT_FALSE(Matches("a/+/c", "a/b/d"));
  EXPECT_FALSE(Matches("a", "ab"));
}

TEST(Matches, TheRestIsAny) {
  EXPECT_TRUE(Matches("#", "a/b"));
  EXPECT_TRUE(Matches("a/#", "a/b/c"));
  EXPECT_FALSE(Matches("a/#", "b/a"));
}

}  // namespace
}  // namespace hub::mqtt
