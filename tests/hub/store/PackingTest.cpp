#include "store/Packing.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace hub::store {
namespace {

using Samples = std::vector<Sample>;

bool operator==(const Samples& left, const Samples& right) {
  return std::ranges::equal(left, right, [](const Sample& one, const Sample& other) {
    return one.time == other.time &&
           std::bit_cast<uint64_t>(one.value) == std::bit_cast<uint64_t>(other.value);
  });
}

void ExpectKept(const Samples& samples) {
  const auto kept = UnpackSamples(samples.front().time, PackSamples(samples.front().time, samples));
  ASSERT_TRUE(kept);
  EXPECT_TRUE(*kept == samples) << samples.front().value;
}

TEST(Packing, ALineThatSwitches) {
  EXPECT_EQ(PackSamples(5000, {{5000, 1}, {5030, 0}, {6030, 1}}), std::string("\x00"
                                                                              "\x00\x02"
                                                                              "\x3C\x01"
                                                                              "\xD0\x0F\x02",
                                                                              8));
}

TEST(Packing, TwoDecimalsAreWholeNumbers) {
  EXPECT_EQ(PackSamples(0, {{1, 2.5}, {2, 2.48}}), std::string("\x02"
                                                               "\x02\xF4\x03"
                                                               "\x02\x03",
                                                               6));
}

TEST(Packing, SamplesComeBackExactly) {
  ExpectKept({{1795262400000, 0}, {1795262400999, 255}, {1795262401000, 128}});
  ExpectKept({{1000, 0.02}, {2000, 4.98}, {3000, -0.1}, {4000, 1234567.123456}});
  ExpectKept({{1000, 1.0 / 3}, {2000, 1e300}, {3000, -1e-300}, {4000, 5}});
  ExpectKept({{1000, -0.0}, {2000, 0.0}});
  ExpectKept({{1000, 9007199254740993.0}, {2000, -9007199254740993.0}});
}

TEST(Packing, TimesMayGoBackwards) { ExpectKept({{7200000, 1}, {3600000, 2}, {7200001, 3}}); }

TEST(Packing, AMinuteOfAByteTakesThreeBytesAValue) {
  Samples samples;
  for (int i = 0; i < 60; ++i) samples.push_back({i * 1000, 100.0 + i % 2});
  EXPECT_EQ(PackSamples(0, samples).size(), 1 + 60 * 3u);
}

TEST(Packing, StepsComeBack) {
  const std::vector<Step> steps{{0, {3, 6, 1, 3}}, {59, {1, 0.25, 0.25, 0.25}}};
  EXPECT_EQ(PackSteps(steps), std::string("\x02"
                                          "\x00\x03\xC8\x01\x90\x03\xD8\x04"
                                          "\x3B\x01\x32\x00\x00",
                                          14));
  const auto kept = UnpackSteps(PackSteps(steps));
  ASSERT_TRUE(kept);
  ASSERT_EQ(kept->size(), 2u);
  EXPECT_EQ((*kept)[0].summary.sum, 6);
  EXPECT_EQ((*kept)[0].summary.max, 3);
  EXPECT_EQ((*kept)[1].number, 59u);
  EXPECT_EQ((*kept)[1].summary.min, 0.25);
}

TEST(Packing, LargeStepsComeBack) {
  const auto kept = UnpackSteps(PackSteps({{7, {2, 3e300, 1e300, 2e300}}}));
  ASSERT_TRUE(kept);
  EXPECT_EQ((*kept)[0].summary.sum, 3e300);
  EXPECT_EQ((*kept)[0].summary.count, 2u);
}

TEST(Packing, WhatWasNotPackedHereIsRefused) {
  EXPECT_FALSE(UnpackSamples(0, ""));
  EXPECT_FALSE(UnpackSamples(0, "\x07"));
  EXPECT_FALSE(UnpackSamples(0, std::string("\x00\x02", 2)));
  EXPECT_FALSE(UnpackSamples(0, std::string(1, '\0') + std::string(20, '\xFF')));
  EXPECT_FALSE(UnpackSteps(""));
  EXPECT_FALSE(UnpackSteps(std::string("\x00\x01\x00\x02\x02\x02", 6)));  // of no values
  EXPECT_FALSE(UnpackSteps(std::string("\xFF\x01\x01\x02\x02", 5)));
}

TEST(Packing, RandomBytesDoNoHarm) {
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes(random() % 40, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    if (!bytes.empty() && round % 2 == 0) bytes[0] = static_cast<char>(random() % 8);
    UnpackSamples(1795262400000, bytes);
    UnpackSteps(bytes);
  }
}

}  // namespace
}  // namespace hub::store
