// hub_pulls [ROUNDS [SEED]]: accidents of chance, an hour of them for a thousand.
#include "LinkPulls.h"
#include "SiteLoad.h"

namespace hub::link {

TEST_F(LinkPulls, Run) {
  RunPulls(std::stoi(Argument(1, "1000")), static_cast<unsigned>(std::stoul(Argument(2, "1"))));
}

}  // namespace hub::link
