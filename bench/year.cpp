// Fills a store with a year of ten channels that ends now.
//   bench-year FOLDER
#include <cstdio>

#include "hub/store/Year.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  hub::FakeClock clock;
  const auto year = std::chrono::hours(365 * 24);
  clock.Jump(std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::system_clock::now() - year - clock.Now()));
  hub::store::AddYear({.folder = argv[1]}, clock);
}
