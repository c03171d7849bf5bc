// The administration commands that reach into a card.
#include "support/QelmTest.h"

namespace {

struct Request {
  unsigned char address;
  unsigned char type;
  const char* line;
  QList payload;
  Texts replies;  // once the card has answered with the byte 0x5A
  const char* failed;
};

// Each request once, and again with odd parameters. First the address and the type code.
const std::vector<Request> kRequests{
    {14,
     9,
     "LCDSELFTEST:E=ON",
     List({0x50, 0x0E, 0x01, 0x01, 0xFF}),
     {"CIA: SELFTEST STATE IS SET TO ON at address E"},
     "CIE: STATE WRITE ERROR"},
    {14,
     9,
     "LCDSELFTEST:E=OFF",
     List({0x50, 0x0E, 0x01, 0x01, 0x00}),
     {"CIA: SELFTEST STATE IS SET TO OFF at address E"},
     "CIE: STATE WRITE ERROR"},
    {14,
     9,
     "LCDSELFTEST:E=OF",
     List({0x50, 0x0E, 0x01, 0x01, 0x00}),
     {"CIA: SELFTEST STATE IS SET TO OFF at address E"},
     "CIE: STATE WRITE ERROR"},
    {1,
     9,
     "LCDINITLIGHT:1=ON",
     List({0x50, 0x01, 0x01, 0x02, 0xFF}),
     {"CIA: INITLIGHT STATE IS SET TO ON at address 1"},
     "CIE: STATE WRITE ERROR"},
    {1,
     9,
     "LCDINITLIGHT:1=OFX",
     List({0x50, 0x01, 0x01, 0x02, 0x00}),
     {"CIA: INITLIGHT STATE IS SET TO OFF at address 1"},
     "CIE: STATE WRITE ERROR"},
    {10,
     0,
     "REBOOT:A",
     List({0x50, 0x0A, 0x01, 0xAB}),
     {"CIA: Card is REBOOTED", "RBT:0xA:OK"},
     "CIE: BUS WRITE ERROR"},
    {0,
     3,
     "REBOOT:g",
     List({0x50, 0x00, 0x01, 0xAB}),
     {"CIA: Card is REBOOTED", "RBT:0x0:OK"},
     "CIE: BUS WRITE ERROR"},
    {15,
     7,
     "SETANMASK:F=3F",
     List({0x50, 0x0F, 0x01, 0x01, 0x3F}),
     {"CIA: Channel MASK of the card is SET", "AMS:0xF:0x3F"},
     "CIE: MASK WRITE ERROR"},
    {15,
     7,
     "SETANMASK:F=3Z",
     List({0x50, 0x0F, 0x01, 0x01, 0x30}),
     {"CIA: Channel MASK of the card is SET", "AMS:0xF:0x30"},
     "CIE: MASK WRITE ERROR"},
    {15,
     7,
     "SETANMASK:F",
     List({0x50, 0x0F, 0x01, 0x01, 0x00}),
     {"CIA: Channel MASK of the card is SET", "AMS:0xF:0x00"},
     "CIE: MASK WRITE ERROR"},
    {15,
     7,
     "GETANMASK:F",
     List({0x50, 0x0F, 0x40, 0x01}),
     {"CIA: MASK is GOT from card", "AMV:0xF:0x5A"},
     "CIE: MASK READ ERROR"},
    {15,
     7,
     "STOREANMASK:F",
     List({0x50, 0x0F, 0x01, 0x02}),
     {"CIA: MASK IS STORED at address F"},
     "CIE: MASK STORE ERROR"},
    {1,
     5,
     "STORESRVPOS:1",
     List({0x50, 0x01, 0x01, 0x74}),
     {"CIA: POSITIONS ARE STORED at address 1"},
     "CIE: POSITION STORING ERROR"},
    {1,
     5,
     "MOVESTRPOS:1",
     List({0x50, 0x01, 0x01, 0x3F}),
     {"CIA: SERVOS ARE MOVED TO STORED POSITIONS at address 1"},
     "CIE: POSITIONS MOVING ERROR"},
    {2,
     5,
     "SETSCA0:2=00",
     List({0x50, 0x02, 0x01, 0xC0, 0x00}),
     {"CIA: SERVO PARAM of the card is SET", "SPS:0x2:SCA0:0x00"},
     "CIE: PARAM WRITE ERROR"},
    {2,
     5,
     "SETSCB3:2=7F",
     List({0x50, 0x02, 0x01, 0xD3, 0x7F}),
     {"CIA: SERVO PARAM of the card is SET", "SPS:0x2:SCB3:0x7F"},
     "CIE: PARAM WRITE ERROR"},
    {2,
     5,
     "SETSCX3:2=7F",
     List({0x50, 0x02, 0x01, 0xC3, 0x7F}),
     {"CIA: SERVO PARAM of the card is SET", "SPS:0x2:SCX3:0x7F"},
     "CIE: PARAM WRITE ERROR"},
    {2,
     5,
     "SETSCBF:2=7F",
     List({0x50, 0x02, 0x01, 0xDF, 0x7F}),
     {"CIA: SERVO PARAM of the card is SET", "SPS:0x2:SCBF:0x7F"},
     "CIE: PARAM WRITE ERROR"},
    {2,
     5,
     "GETSCA5:2",
     List({0x50, 0x02, 0x40, 0x26}),
     {"CIA: SERVO PARAM is GOT from card", "SPG:0x2:SCA5:0x5A"},
     "CIE: PARAM READ ERROR"},
    {2,
     5,
     "GETSCB0:2",
     List({0x50, 0x02, 0x40, 0x27}),
     {"CIA: SERVO PARAM is GOT from card", "SPG:0x2:SCB0:0x5A"},
     "CIE: PARAM READ ERROR"},
    {2,
     5,
     "GETSCbx:2",
     List({0x50, 0x02, 0x40, 0x21}),
     {"CIA: SERVO PARAM is GOT from card", "SPG:0x2:SCbx:0x5A"},
     "CIE: PARAM READ ERROR"},
    {4,
     6,
     "SETMSR2:4=20",
     List({0x50, 0x04, 0x01, 0xC2, 0x20}),
     {"CIA: MSR value of the card is SET", "MPS:0x4:MSR2:0x20"},
     "CIE: PARAM WRITE ERROR"},
    {4,
     6,
     "SETMSRx:4=20",
     List({0x50, 0x04, 0x01, 0xC0, 0x20}),
     {"CIA: MSR value of the card is SET", "MPS:0x4:MSRx:0x20"},
     "CIE: PARAM WRITE ERROR"},
    {4,
     6,
     "GETMSR2:4",
     List({0x50, 0x04, 0x40, 0x03}),
     {"CIA: MSR value is GOT from card", "MSR2:0x4:0x5A"},
     "CIE: PARAM READ ERROR"},
    {4,
     6,
     "GETMSRF:4",
     List({0x50, 0x04, 0x40, 0x10}),
     {"CIA: MSR value is GOT from card", "MSR15:0x4:0x5A"},
     "CIE: PARAM READ ERROR"},
    {4,
     6,
     "GETMSRB2:4",
     List({0x50, 0x04, 0x40, 0x03}),
     {"CIA: MSR value is GOT from card", "MSR2:0x4:0x5A"},
     "CIE: PARAM READ ERROR"},
    {4,
     6,
     "STOREMSRS:4",
     List({0x50, 0x04, 0x01, 0xCD}),
     {"CIA: MSR values are STORED at address 4"},
     "CIE: MSR STORING ERROR"},
};

void PrintTo(const Request& request, std::ostream* out) { *out << request.line; }

class CardRequest : public CaeTest, public testing::WithParamInterface<Request> {
 protected:
  Texts Lines(Texts texts) const {
    texts.emplace_back(">");
    for (std::string& text : texts) text += "\r\n";
    return texts;
  }
};

class OneRequest : public CaeTest {};

std::string NameOf(const testing::TestParamInfo<Request>& info) {
  std::string name;
  for (const char c : std::string(info.param.line)) name += std::isalnum(c) != 0 ? c : '_';
  return name;
}

}  // namespace

TEST_P(CardRequest, IsSentAndItsAnswerReported) {
  const Request& r = GetParam();
  PlugCard(r.address, r.type);
  const SleepRecord sleeps;
  EXPECT_EQ(Run(std::string(r.line) + "\r\n", {List({'Q', r.address, 0x40, 0x5A})}),
            Lines(r.replies));
  EXPECT_EQ(requests, std::vector<QList>{r.payload});
  EXPECT_EQ(sleeps.Seconds(), Texts{"1"});
}

TEST_P(CardRequest, WithoutAnAnswerIsAnError) {
  const Request& r = GetParam();
  PlugCard(r.address, r.type);
  qelm.Cards[r.address].FileQueryReply(std::vector<unsigned char>{'Q', r.address, 1, 2});  // late
  EXPECT_EQ(Run(std::string(r.line) + "\r\n", {QList()}), Lines({r.failed}));
  EXPECT_EQ(requests, std::vector<QList>{r.payload});
}

INSTANTIATE_TEST_SUITE_P(Every, CardRequest, testing::ValuesIn(kRequests), NameOf);

TEST_F(OneRequest, ToAnotherCardIsRefusedAndNotSent) {
  struct Case {
    unsigned char type;
    std::vector<const char*> lines;
    const char* refusal;
  };
  const std::vector<Case> cases{
      {9,
       {"LCDSELFTEST:3=ON", "LCDINITLIGHT:3=ON"},
       "CIE: THIS COMMAND IS VALID FOR LCD CONTROL CARD ONLY"},
      {7,
       {"SETANMASK:3=3F", "GETANMASK:3", "STOREANMASK:3"},
       "CIE: THIS COMMAND IS VALID ON ANALOG INPUT CARD ONLY"},
      {5,
       {"STORESRVPOS:3", "SETSCA1:3=7F", "GETSCA1:3"},
       "CIE: THIS COMMAND IS VALID ON SERVO CONTROLLER CARD ONLY"},
      {5, {"MOVESTRPOS:3"}, "CIE: THIS COMMAND IS LEGAL ON SERVO CONTROLLER CARD ONLY"},
      {6,
       {"SETMSR1:3=01", "GETMSR1:3", "STOREMSRS:3"},
       "CIE: THIS COMMAND IS VALID ON DC MOTOR CONTROLLER CARD ONLY"}};
  for (const Case& c : cases)
    for (const int type : {0x00, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0xFF}) {
      if (type == c.type) continue;
      PlugCard(3, type);
      for (const char* line : c.lines)
        EXPECT_EQ(Run(std::string(line) + "\r\n"),
                  (Texts{c.refusal + std::string("\r\n"), ">\r\n"}))
            << line << " on " << type;
    }
}

TEST_F(OneRequest, TheLcdStatesAreRememberedApart) {
  PlugCard(14, 9);
  const std::vector<QList> answer{List({'Q', 14})};
  struct Case {
    const char* line;
    QList payload;
    const char* reply;
  };
  for (const Case& c : {Case{"LCDSELFTEST:E=XX", List({0x50, 0x0E, 0x01, 0x01, 0x00}),
                             "CIA: SELFTEST STATE IS SET TO XX at address E"},
                        Case{"LCDSELFTEST:E=ON", List({0x50, 0x0E, 0x01, 0x01, 0xFF}),
                             "CIA: SELFTEST STATE IS SET TO ON at address E"},
                        Case{"LCDSELFTEST:E=XX", List({0x50, 0x0E, 0x01, 0x01, 0xFF}),
                             "CIA: SELFTEST STATE IS SET TO XX at address E"},
                        Case{"LCDINITLIGHT:E=on", List({0x50, 0x0E, 0x01, 0x02, 0x00}),
                             "CIA: INITLIGHT STATE IS SET TO on at address E"},
                        Case{"LCDINITLIGHT:E=ON", List({0x50, 0x0E, 0x01, 0x02, 0xFF}),
                             "CIA: INITLIGHT STATE IS SET TO ON at address E"},
                        Case{"LCDSELFTEST:E=OFF", List({0x50, 0x0E, 0x01, 0x01, 0x00}),
                             "CIA: SELFTEST STATE IS SET TO OFF at address E"},
                        Case{"LCDINITLIGHT:E=of", List({0x50, 0x0E, 0x01, 0x02, 0xFF}),
                             "CIA: INITLIGHT STATE IS SET TO of at address E"}}) {
    EXPECT_EQ(Run(std::string(c.line) + "\r\n", answer),
              (Texts{c.reply + std::string("\r\n"), ">\r\n"}));
    EXPECT_EQ(requests, std::vector<QList>{c.payload}) << c.line;
  }
}

TEST_F(OneRequest, AnLcdStateIsRememberedAlsoWhereTheCardIsAnother) {
  PlugCard(14, 9);
  Run("LCDSELFTEST:0=ON\r\n");
  Run("LCDSELFTEST:E=XX\r\n", {List({'Q', 14})});
  EXPECT_EQ(requests, std::vector<QList>{List({0x50, 0x0E, 0x01, 0x01, 0xFF})});
}

TEST_F(OneRequest, AnAnswerOfAnotherCardIsNone) {
  EXPECT_EQ(Run("REBOOT:3\r\n", {List({'Q', 4})}), (Texts{"CIE: BUS WRITE ERROR\r\n", ">\r\n"}));
}

TEST_F(OneRequest, AnAnswerThatIsTooShortReadsAsZero) {
  PlugCard(15, 7);
  EXPECT_EQ(Run("GETANMASK:F\r\n", {List({'Q', 15})}),
            (Texts{"CIA: MASK is GOT from card\r\n", "AMV:0xF:0x00\r\n", ">\r\n"}));
}

TEST_F(OneRequest, AbsentParametersReadAsZeroAndEchoAsNothing) {
  qelm.Config.CaeDescriptor.InpSeparator = "";
  PlugCard(0, 5);
  EXPECT_EQ(Run("SETSC", {List({'Q', 0})}),
            (Texts{"CIA: SERVO PARAM of the card is SET\r\n", "SPS:0x0:SC:0x00\r\n", ">\r\n"}));
  EXPECT_EQ(requests, std::vector<QList>{List({0x50, 0x00, 0x01, 0xC0, 0x00})});
  EXPECT_EQ(Run("STORESRVPOS:", {List({'Q', 0})}),
            (Texts{"CIA: POSITIONS ARE STORED at address \r\n", ">\r\n"}));
}

TEST_F(OneRequest, ColonsInOddPlacesAreHarmless) {
  PlugCard(2, 5);
  EXPECT_EQ(Run(":2 SETSC\r\n", {List({'Q', 2})}),
            (Texts{"CIA: SERVO PARAM of the card is SET\r\n", "SPS:0x2:SC:0x00\r\n", ">\r\n"}));
  EXPECT_EQ(Run("4:2 GETSC\r\n", {List({'Q', 2})}),
            (Texts{"CIA: SERVO PARAM is GOT from card\r\n", "SPG:0x2:SC4:0x00\r\n", ">\r\n"}));
  EXPECT_EQ(requests, std::vector<QList>{List({0x50, 0x02, 0x40, 0x25})});
}
