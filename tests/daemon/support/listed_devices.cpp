// Stands in for ls(1), ahead of it on PATH: lists what the test has put there
// instead of /dev, so that no test ever touches a device of the machine.
#include <cstdio>
#include <cstdlib>

int main() {
  const char* devices = std::getenv("QELM_TEST_DEVICES");
  std::fputs(devices != nullptr ? devices : "", stdout);
  return EXIT_SUCCESS;
}
