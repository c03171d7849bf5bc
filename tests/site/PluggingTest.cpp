// Cards and the cable, pulled and plugged while the daemon runs.
#include <filesystem>

#include "SiteTest.h"

namespace {

class Plugging : public SiteTest {
 protected:
  // The table that the bus is asked for anew holds this line.
  void ExpectDiscovered(const std::string& line, Place place = Place::current()) {
    std::string table;
    const bool settled = WaitUntil([&] {
      cae.Send("FORCEDISCOVER\r\n", place);
      table = cae.ReadUntil(">\r\n\r", place);
      return table.find(line + "\r\n\r") != std::string::npos || ExchangeTimeouts() == 0;
    });
    if (!settled || table.find(line + "\r\n\r") == std::string::npos) {
      FAIL_AT(place) << line << " is not in " << table;
    }
  }
};

}  // namespace

TEST_F(Plugging, EveryKindOfCardIsDiscovered) {
  StartSite();
  Command("DISCOVER",
          "DISCOVER LIST:\r\n\r"
          "DTI:0x0:6 channel RC SERVO CONTROLLER\r\n\r"
          "DTI:0x1:EMPTY\r\n\r"
          "DTI:0x2:EMPTY\r\n\r"
          "DTI:0x3:16 channel DIGITAL INPUT\r\n\r"
          "DTI:0x4:3 channel DC MOTOR CONTROLLER\r\n\r"
          "DTI:0x5:16 channel DIGITAL OUTPUT\r\n\r"
          "DTI:0x6:EMPTY\r\n\r"
          "DTI:0x7:EMPTY\r\n\r"
          "DTI:0x8:KEYMX and ROTE CONTROLLER\r\n\r"
          "DTI:0x9:IR REMOTE CONTROLLER\r\n\r"
          "DTI:0xA:EMPTY\r\n\r"
          "DTI:0xB:EMPTY\r\n\r"
          "DTI:0xC:EMPTY\r\n\r"
          "DTI:0xD:EMPTY\r\n\r"
          "DTI:0xE:ALPHANUMERIC LCD CONTROLLER\r\n\r"
          "DTI:0xF:6 channel ANALOGUE INPUT\r\n\r");
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2");
}

TEST_F(Plugging, PulledCardIsMissedAndFoundAgain) {
  StartSite();
  Bus("card 3 pull");
  ExpectDiscovered("DTI:0x3:CARD?");
  Bus("card 3 plug");
  ExpectDiscovered("DTI:0x3:16 channel DIGITAL INPUT");
}

TEST_F(Plugging, AnotherCardTakesThePlaceOfAPulledOne) {
  StartSite();
  Bus("card 5 pull");
  Bus("card 5 plug servo");
  ExpectDiscovered("DTI:0x5:6 channel RC SERVO CONTROLLER");
  Connect(kIo).Send("a5b0d10\r\n");
  WaitFrame("10 05 06 10 80 80 80 80 80");
}

TEST_F(Plugging, PulledCardDoesNotAnswerARequest) {
  StartSite();
  Bus("card 5 pull");
  Command("REBOOT:5", "CIE: BUS WRITE ERROR\r\n\r");
  Bus("card 5 plug");
  Request("REBOOT:5", "CIA: Card is REBOOTED\r\n\rRBT:0x5:OK\r\n\r");
}

TEST_F(Plugging, PolledCardIsReportedAgainOncePlugged) {
  WriteConfig({.poll = "TRUE"});
  StartSite();
  Client io = Connect(kIo);
  Bus("card 3 pull");
  Bus("press 8 01");
  io.ExpectBytes("a8b0d01\r\n\r");
  Bus("card 3 plug");
  Bus("press 3 01");
  io.ExpectBytes("a3b0d02\r\n\r");
}

TEST_F(Plugging, CommandsGivenWithoutTheCableArriveOnceItIsPlugged) {
  WriteConfig({.poll = "TRUE"});
  StartSite();
  Client io = Connect(kIo);
  Bus("cable pull");
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  io.Send("a5b0d01\r\na5b0d02\r\naElLF\r\n");
  Bus("press 3 00");
  Bus("cable plug");
  WaitFrame("10 05 02 01 FF");
  WaitFrame("10 05 02 02 FF");
  io.ExpectBytes("a3b0d01\r\n\r");
  ExpectHeld("E", "light off");
  ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2", 2);
}

TEST_F(Plugging, BusThatIsReplacedIsFoundAgain) {
  WriteConfig({.poll = "TRUE"});
  StartSite();
  Client io = Connect(kIo);
  bus.reset();
  ExpectLog("ERR", "ttyUSB devices couldn't be found");
  EXPECT_FALSE(std::filesystem::exists(kControlPath));
  StartBus({"--card", "3=digital-input", "--do", "set 3 0 08"});
  io.ExpectBytes("a3b0d08\r\n\r");
}
