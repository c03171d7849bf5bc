// The virtual bus through the hub: what the page does to it, with the real one at the other end.
#include <signal.h>

#include "HubSite.h"

class VirtualBusTest : public HubSite {
 protected:
  static std::string Run(const std::string& line) {
    return AskLocally("POST", "/api/virtual-bus", "{\"line\":\"" + line + "\"}");
  }
  void ExpectStatus(const std::string& text) {
    EXPECT_TRUE(WaitUntil([&] {
      return AskLocally("GET", "/api/virtual-bus").find(text) != std::string::npos;
    })) << text
        << '\n'
        << AskLocally("GET", "/api/virtual-bus");
  }
};

TEST_F(VirtualBusTest, InputsCardsCableAndFaultsAreMovedAndSeen) {
  StartAll(std::string("[virtual-bus]\ncontrol = \"") + kControlPath + "\"\n");
  EXPECT_NE(AskLocally("GET", "/api/bus").find(R"("virtual":true)"), std::string::npos);
  EXPECT_EQ(StatusOf(Run("press 3 06")), 200);
  EXPECT_TRUE(WaitUntil([] {
    return AskLocally("GET", "/api/channels/3.6").find(R"("value":true)") != std::string::npos;
  }));
  ExpectStatus(R"({"address":"3","kind":"digital-input","plugged":true,"values":[64,0]})");
  EXPECT_EQ(StatusOf(Run("card 5 pull")), 200);
  ExpectStatus(R"({"address":"5","kind":"digital-output","plugged":false,"values":null})");
  EXPECT_EQ(StatusOf(Run("late 2ms")), 200);
  ExpectStatus(R"("faults":["late 2ms"])");
  EXPECT_EQ(StatusOf(Run("cable pull")), 200);
  ExpectStatus(R"({"device":null,"cable":false,)");
  const std::string refused = Run("press 9 01");
  EXPECT_EQ(StatusOf(refused), 422);
  EXPECT_NE(refused.find(R"("where":"line")"), std::string::npos) << refused;
}

TEST_F(VirtualBusTest, ABusThatHangsHoldsUpNobodyElse) {
  StartAll(std::string("[virtual-bus]\ncontrol = \"") + kControlPath + "\"\n");
  bus->Signal(SIGSTOP);
  const std::string answer = AskLocally("GET", "/api/virtual-bus");
  EXPECT_EQ(StatusOf(answer), 503) << answer;
  EXPECT_EQ(StatusOf(AskLocally("GET", "/api/bus")), 200);
  bus->Signal(SIGCONT);
  ExpectStatus(R"("cable":true)");
}

TEST_F(VirtualBusTest, WhereNoneIsNamedThereIsNone) {
  StartAll();
  EXPECT_NE(AskLocally("GET", "/api/bus").find(R"("virtual":false)"), std::string::npos);
  EXPECT_EQ(StatusOf(AskLocally("GET", "/api/virtual-bus")), 404);
  EXPECT_EQ(StatusOf(Run("cable pull")), 404);
  Bus("status");  // it is there all the same
}
