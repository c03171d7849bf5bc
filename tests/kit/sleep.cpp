// Stands in for sleep(1), ahead of it on the PATH of the code under test. What becomes of
// `sleep n`, by its environment:
//   QELM_TEST_SLEEP_RECORD   a file that n is added to
//   QELM_TEST_SLEEP_GATE     a fifo: the sleep lasts until the test opens it
//   QELM_TEST_SLEEP_DIVISOR  how many times as fast as on the clock, 500 unless set
//   QELM_TEST_SLEEP_ANSWER   milliseconds that one second lasts: in it the bus must answer
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

long Number(const char* variable, long otherwise) {
  const char* text = std::getenv(variable);
  return text != nullptr ? std::atol(text) : otherwise;
}

void Record(const char* path, const char* seconds) {
  FILE* file = std::fopen(path, "a");
  std::fprintf(file, "%s\n", seconds);
  std::fclose(file);
}

int WaitForGate(const char* path) {
  constexpr unsigned kGiveUpSeconds = 180;
  alarm(kGiveUpSeconds);
  return open(path, O_RDONLY) >= 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Daemon and bus wake each other several times until the answer is there. The later this
// program gets the processor, the later they do, and the longer they are given.
void LeaveTimeToAnswer(milliseconds time) {
  constexpr milliseconds kStep{10};
  constexpr int kWakeUps = 10;
  constexpr std::chrono::seconds kMost{10};
  steady_clock::duration late{0};
  for (milliseconds slept{0}; slept < time; slept += kStep) {
    const auto due = steady_clock::now() + kStep;
    std::this_thread::sleep_until(due);
    late += steady_clock::now() - due;
  }
  std::this_thread::sleep_for(std::min<steady_clock::duration>(kWakeUps * late, kMost));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  if (const char* record = std::getenv("QELM_TEST_SLEEP_RECORD")) Record(record, argv[1]);
  if (const char* gate = std::getenv("QELM_TEST_SLEEP_GATE")) return WaitForGate(gate);
  const long seconds = std::atol(argv[1]);
  const milliseconds answer(Number("QELM_TEST_SLEEP_ANSWER", 0));
  if (seconds == 1 && answer.count() > 0) {
    LeaveTimeToAnswer(answer);
  } else {
    std::this_thread::sleep_for(
        milliseconds(seconds * 1000 / Number("QELM_TEST_SLEEP_DIVISOR", 500)));
  }
  return EXIT_SUCCESS;
}
