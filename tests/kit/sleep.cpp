// Stands in for sleep(1) ahead on the daemon's PATH: `sleep n` passes in a
// fraction of n seconds. One-second waits are those in which the bus has to
// answer, so they are shortened least and leave room on a busy machine.
#include <chrono>
#include <cstdlib>
#include <thread>

int main(int argc, char** argv) {
  using std::chrono::milliseconds;
  constexpr long kDivisor = 20;
  constexpr milliseconds kAnswerTime{400};

  const long seconds = argc > 1 ? std::atol(argv[1]) : 0;
  const char* divisor = std::getenv("QUICK_SLEEP_DIVISOR");
  if (seconds == 1) {
    std::this_thread::sleep_for(kAnswerTime);
  } else {
    std::this_thread::sleep_for(
        milliseconds(seconds * 1000 / (divisor ? std::atol(divisor) : kDivisor)));
  }
}
