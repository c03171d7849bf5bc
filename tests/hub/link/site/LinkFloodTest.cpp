#include "LinkFlood.h"

namespace hub::link {

TEST_F(LinkFlood, TheDaemonStaysSmallAndTheLastValuesCount) {
  RunFlood(std::chrono::seconds(5), "50");
}

}  // namespace hub::link
