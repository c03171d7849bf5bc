#include "virtualbus/Shown.h"

#include <gtest/gtest.h>

namespace hub::virtualbus {
namespace {

using Lines = std::vector<std::string>;

TEST(ShownTest, AStatusHasCableCountsAndFaults) {
  const Status expected{"/dev/pts/3", true, 12, 11, 1, 2, {"late 40ms", "drop next 3"}};
  EXPECT_EQ(ParseStatus(Lines{"  device /dev/pts/3", "  cable plugged", "  frames 12",
                              "  replies 11", "  lost 1", "  shaped 2", "  fault late 40ms",
                              "  fault drop next 3", "  later more"}),
            expected);
  EXPECT_FALSE(ParseStatus(Lines{"  device /dev/pts/3", "  cable pulled"})->cable);
}

TEST(ShownTest, WhatIsNoStatusIsNone) {
  EXPECT_FALSE(ParseStatus(Lines{}));
  EXPECT_FALSE(ParseStatus(Lines{"  frames 12"}));
  EXPECT_FALSE(ParseStatus(Lines{"  cable plugged", "  frames many"}));
}

TEST(ShownTest, ACardHasItsKindAndWhetherItIsPlugged) {
  EXPECT_EQ(ParseCard(Lines{"card 5 digital-output", "  Lines FE FF"}),
            (ShownCard{"digital-output", true, {}}));
  EXPECT_EQ(ParseCard(Lines{"card 9 ir (pulled)"}), (ShownCard{"ir", false, {}}));
}

TEST(ShownTest, AnInputHasWhatTheWorldOutsideDoesToIt) {
  using Bytes = std::vector<uint8_t>;
  EXPECT_EQ(ParseCard(Lines{"card 3 digital-input", "  Lines 40 00"})->values, (Bytes{0x40, 0}));
  EXPECT_EQ(ParseCard(Lines{"card 8 keys", "  State C5"})->values, (Bytes{0xC5}));
  EXPECT_EQ(ParseCard(Lines{"card F analogue-input", "  Values 00 20 40 60 80 FF", "  Mask 00",
                            "  stored Mask 20"})
                ->values,
            (Bytes{0x00, 0x20, 0x40, 0x60, 0x80, 0xFF}));
  EXPECT_FALSE(ParseCard(Lines{"card 8 keys", "  State up"})->values);
}

TEST(ShownTest, WhatIsNoCardIsNone) {
  EXPECT_FALSE(ParseCard(Lines{}));
  EXPECT_FALSE(ParseCard(Lines{"card 5"}));
  EXPECT_FALSE(ParseCard(Lines{"  Lines FE FF"}));
}

}  // namespace
}  // namespace hub::virtualbus
