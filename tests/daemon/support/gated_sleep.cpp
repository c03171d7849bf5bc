// Stands in for sleep(1), ahead of it on PATH: five hundred times as fast, or for as long
// as the test holds its gate closed.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  if (const char* record = std::getenv("QELM_TEST_SLEEP_RECORD")) {
    FILE* file = std::fopen(record, "a");
    std::fprintf(file, "%s\n", argv[1]);
    std::fclose(file);
  }
  if (const char* gate = std::getenv("QELM_TEST_SLEEP_GATE")) {
    constexpr unsigned kGiveUpSeconds = 60;
    alarm(kGiveUpSeconds);
    return open(gate, O_RDONLY) >= 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  constexpr unsigned kMicrosecondsPerSecond = 2'000;
  usleep(static_cast<useconds_t>(std::atoi(argv[1])) * kMicrosecondsPerSecond);
  return EXIT_SUCCESS;
}
