#include "PowerCuts.h"
#include "StoreTest.h"

namespace hub::store {
namespace {

TEST(PowerCut, TwentyTimesNothingPromisedIsLost) {
  const TempDir dir;
  CutPower(dir.Path("store"), 20);
}

}  // namespace
}  // namespace hub::store
