#include "bus/BusAdapter.h"

#include <gtest/gtest.h>

namespace virtualbus {
namespace {

const Bytes kRefusal{0x4E};
const Bytes kAcknowledgement{0x06};

class Adapter : public testing::Test {
 protected:
  void Plug(uint8_t address, const char* kind) {
    ASSERT_EQ(adapter.Insert(address, *FindKind(kind)).Text(), "");
  }
  Bytes Ask(const Bytes& request) { return adapter.Answer(request); }

  BusAdapter adapter;
};

TEST_F(Adapter, GivesItsVersionInCharactersOneToFour) {
  const Bytes reply = Ask({0x40, 0x6F, 0x9A});
  EXPECT_EQ(std::string(reply.begin(), reply.begin() + 5), "Xv1.2");
}

TEST_F(Adapter, DiscoversEveryKindAtItsAddress) {
  const char* const kinds[] = {"digital-output", "digital-input", "servo", "motor",
                               "analogue-input", "keys",          "lcd",   "ir"};
  for (uint8_t i = 0; i < 8; ++i) Plug(static_cast<uint8_t>(i * 2), kinds[i]);
  EXPECT_EQ(Ask({0x30}),
            (Bytes{0x31, 0x03, 0, 0x04, 0, 0x05, 0, 0x06, 0, 0x07, 0, 0x08, 0, 0x09, 0, 0x0A, 0}));
}

TEST_F(Adapter, ReportsAPulledCardAsSilentAndAPlaceNeverUsedAsEmpty) {
  Plug(3, "servo");
  EXPECT_EQ(adapter.Pull(3).Text(), "");
  EXPECT_EQ(Ask({0x30}), (Bytes{0x31, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Adapter, RefusesWhatIsForAPulledOrMissingCard) {
  Plug(3, "digital-input");
  Plug(5, "digital-output");
  EXPECT_EQ(adapter.Pull(3).Text(), "");
  EXPECT_EQ(adapter.Pull(5).Text(), "");
  for (const Bytes& request : {Bytes{0x20, 0x03, 0x02}, Bytes{0x10, 0x05, 0x02, 0x00, 0x00},
                               Bytes{0x50, 0x05, 0x01, 0xAB}, Bytes{0x20, 0x07, 0x02}}) {
    EXPECT_EQ(Ask(request), kRefusal) << Hex(request);
  }
  EXPECT_EQ(adapter.PlugBack(5).Text(), "");
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0x00, 0x00}), kAcknowledgement);
}

TEST_F(Adapter, AnswersARepeatedPollOnce) {
  Plug(3, "digital-input");
  const Bytes poll{0x20, 0x03, 0x02};
  Bytes request;
  for (int i = 0; i < 85; ++i) {
    request.insert(request.end(), poll.begin(), poll.end());
    EXPECT_EQ(Ask(request), (Bytes{0x21, 0x03, 0x00, 0x00})) << i;
  }
}

TEST_F(Adapter, RefusesWhatItCannotRead) {
  Plug(3, "digital-input");
  Plug(5, "digital-output");
  const Bytes unreadable[] = {
      {},                              // nothing
      {0x99},                          // no such frame
      {0x30, 0x00},                    // discovery takes nothing
      {0x40},                          // half a hardware check
      {0x40, 0x6F, 0x9B},              // another one
      {0x20},                          // no address
      {0x20, 0x03},                    // no count
      {0x20, 0x03, 0x01},              // not its block count
      {0x20, 0x03, 0x00},              // no blocks
      {0x20, 0x05, 0x02},              // an output card is not polled
      {0x20, 0x13, 0x02},              // no such address
      {0x20, 0x03, 0x02, 0x20},        // one poll and a bit
      {0x20, 0x03, 0x02, 0x20, 4, 2},  // two different polls
      {0x10, 0x05},                    // no count
      {0x10, 0x05, 0x02, 0x00},        // a byte missing
      {0x10, 0x05, 0x02, 0, 0, 0},     // a byte too many
      {0x10, 0x05, 0x01, 0x00},        // not its block count
      {0x10, 0x03, 0x02, 0, 0},        // an input card is not written
      {0x50, 0x05, 0x01},              // no register
      {0x50, 0x05, 0x02, 0xAB},        // no such operation
      {0x50, 0x05, 0x01, 0x01, 0x00},  // no such register
      {0x50, 0x05, 0x40, 0x01},        // nor for reading
      {0x50, 0x05, 0x01, 0xAB, 0, 0},  // more than a value
  };
  for (const Bytes& request : unreadable) EXPECT_EQ(Ask(request), kRefusal) << Hex(request);
}

TEST_F(Adapter, EveryKindReboots) {
  for (const CardKind& kind : kCardKinds) {
    const uint8_t address = kind.default_address;
    ASSERT_EQ(adapter.Insert(address, kind).Text(), "");
    EXPECT_EQ(Ask({0x50, address, 0x01, 0xAB}), (Bytes{0x51, address, 0xAB, 0x00})) << kind.word;
  }
}

TEST_F(Adapter, TakesANewCardOnlyWhereNoneIsPlugged) {
  Plug(3, "servo");
  EXPECT_EQ(adapter.Insert(3, *FindKind("motor")).Text(), "address 3 is taken");
  EXPECT_EQ(adapter.PlugBack(3).Text(), "card 3 is plugged");
  EXPECT_EQ(adapter.PlugBack(4).Text(), "no card at 4");
  EXPECT_EQ(adapter.Pull(4).Text(), "no card at 4");
  EXPECT_EQ(adapter.Pull(3).Text(), "");
  EXPECT_EQ(adapter.Pull(3).Text(), "card 3 is pulled");
  EXPECT_EQ(adapter.Insert(3, *FindKind("motor")).Text(), "");
  EXPECT_EQ(Ask({0x10, 0x03, 0x04, 1, 2, 3, 4}), kAcknowledgement);
}

}  // namespace
}  // namespace virtualbus
