#include "Visit.h"

namespace {

constexpr int kSamples = 100;
constexpr int kBurst = 120;  // commands; few enough of a card that the hub merges none

}  // namespace

std::vector<double> Visit::Commands() {
  std::vector<double> times;
  for (int i = 0; i < kSamples; ++i) {
    Pause();
    const Time sent = Clock::now();
    door_.Switch(0, 0, i % 2 == 0);
    times.push_back(Microseconds(bus_.AwaitCommand(0, i % 2 == 0 ? 0xFE : 0xFF) - sent));
    door_.AwaitAnswers();
  }
  return times;
}

std::vector<double> Visit::Changes() {
  std::vector<double> times;
  for (int i = 0; i < kSamples; ++i) {
    Pause();
    const bool on = i % 2 == 0;
    const Time changed = Set(on);
    times.push_back(Microseconds(door_.AwaitContact(bus_.first_input, on) - changed));
  }
  return times;
}

double Visit::Burst() {
  bus_.Order("mark");
  const Time began = Clock::now();
  for (int i = 0; i + 1 < kBurst; ++i) door_.Switch(i % kOutputs, 0, i / kOutputs % 2 == 1);
  door_.Switch(kOutputs - 1, 1, true);  // a frame like no other: the line before it is off
  door_.AwaitAnswers();
  bus_.Order("wait frame 10 05 02 FD within 60s");
  const double rate = kBurst / Seconds(Clock::now() - began);
  for (int card = 0; card < kOutputs; ++card) door_.Switch(card, card == 5 ? 1 : 0, false);
  door_.AwaitAnswers();
  bus_.ForgetEvents(milliseconds(50));
  return rate;
}

Time Visit::Set(bool on) {
  const std::string card = Hex(bus_.first_input, 1);
  const std::string value = on ? "01" : "00";
  bus_.Order("set " + card + " 0 " + value);
  return bus_.AwaitEvent("card " + card + " set to " + value);
}

void Visit::Pause() {
  std::this_thread::sleep_for(microseconds(std::uniform_int_distribution<>(0, 6000)(engine_)));
}
