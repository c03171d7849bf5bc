// hub_flood [SECONDS [PERCENT]]: ten clients that flood the bus.
#include "LinkFlood.h"
#include "SiteLoad.h"

namespace hub::link {

TEST_F(LinkFlood, Run) {
  RunFlood(std::chrono::seconds(std::stoi(Argument(1, "600"))), Argument(2, "100"));
}

}  // namespace hub::link
