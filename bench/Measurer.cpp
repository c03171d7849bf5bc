#include "Measurer.h"

#include <thread>

namespace {

// Long enough for any point of a round of whoever polls.
constexpr microseconds kChangeWithin{6'000};
constexpr milliseconds kRateTime{300};
constexpr milliseconds kQuiet{50};  // the bus tries again to print after 20
constexpr int kValues = 255;

}  // namespace

std::vector<double> Measurer::CommandLatencies(int count, microseconds apart) {
  std::vector<double> times;
  for (int i = 0; i < count; ++i) {
    std::this_thread::sleep_for(Upto(apart));
    const Time sent = Clock::now();
    times.push_back(Microseconds(SendOne(1) - sent));
  }
  return times;
}

std::vector<double> Measurer::InputLatencies(int count) {
  const std::string card = Hex(system_.bus.first_input, 1);
  std::vector<double> times;
  for (int i = 0; i < count; ++i) {
    NextValue();
    std::jthread world([&, wait = Upto(kChangeWithin)] {
      std::this_thread::sleep_for(wait);
      system_.bus.Order("set " + card + " 0 " + Hex(value_, 2));
    });
    const Time read = system_.AwaitInput(system_.bus.first_input, value_);
    world.join();
    times.push_back(
        Microseconds(read - system_.bus.AwaitEvent("card " + card + " set to " + Hex(value_, 2))));
  }
  system_.bus.Order("set " + card + " 0 00");
  system_.AwaitInput(system_.bus.first_input, 0);
  return times;
}

double Measurer::CommandRate(int cards, int batch) {
  const Time began = Clock::now();
  int done = 0;
  while (Clock::now() - began < kRateTime) {
    if (batch > 1 && system_.QueuesCommands()) {
      QueueSeconds(cards, batch);
      system_.bus.ForgetEvents(milliseconds(0));
      done += batch;
    } else {
      SendOne(cards);
      ++done;
    }
  }
  const double seconds = Seconds(Clock::now() - began);
  system_.bus.ForgetEvents(kQuiet);
  return done / seconds;
}

double Measurer::QueueSeconds(int cards, int count) {
  system_.bus.Order("mark");
  const Time began = Clock::now();
  int card = 0;
  for (int i = 0; i < count; ++i) {
    card = i % cards;
    // The last one is known by its value.
    value_ = i + 1 == count ? kValues : i % kValues;
    system_.SendCommand(card, value_);
  }
  system_.bus.Order("wait frame 10 " + Hex(card, 2) + " 02 " + Hex(kValues, 2) + " within 60s");
  return Seconds(Clock::now() - began);
}

Activity Measurer::Watch(milliseconds time) {
  const Usage before = system_.process.Used();
  const long frames = system_.bus.Frames();
  const Time began = Clock::now();
  system_.KeepPolling(time);
  const double seconds = Seconds(Clock::now() - began);
  const long exchanges = system_.bus.Frames() - frames;
  const Usage after = system_.process.Used();
  return {.percent = (after.seconds - before.seconds) / seconds * 100,
          .wakeups = static_cast<double>(after.wakeups - before.wakeups) / seconds,
          .exchanges = static_cast<double>(exchanges) / seconds};
}

// A command to the next card in turn, and when the adapter had it.
Time Measurer::SendOne(int cards) {
  card_ = (card_ + 1) % cards;
  NextValue();
  system_.SendCommand(card_, value_);
  const Time came = system_.bus.AwaitCommand(card_, value_);
  system_.FinishCommand();
  return came;
}

void Measurer::NextValue() { value_ = value_ % (kValues - 1) + 1; }

microseconds Measurer::Upto(microseconds most) {
  return microseconds(std::uniform_int_distribution<long>(0, most.count())(engine_));
}
