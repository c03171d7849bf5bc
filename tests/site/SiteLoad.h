// What goes on at a busy site: ten polled input cards whose values change, an output card
// that is written to ten times a second, and an IO client that checks every report. As it
// runs in the field: SPEED=100, a wire of 460800 baud, real waits, the scheduler as it is.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "SiteTest.h"

class SiteLoad : public SiteTest {
 protected:
  using Clock = std::chrono::steady_clock;

  // The cards of the load, at 0 to A, and others that the options name.
  void StartLoad(const std::vector<std::string>& options = {});
  // For so long. With each write, at the start of a tenth of a second, `also` is called.
  void RunLoad(double minutes, const std::function<void(long write)>& also);
  // Every change must be reported by now, or soon.
  void EndLoad();

  // The byte that a write puts out; the same one comes back after 25 seconds.
  static std::string ValueOf(long write);
  // Seconds from a change to its report, of the reports since the last call; an average
  // takes its time and is left out.
  std::vector<double> TakeLatencies();
  void PrintReports();
  // No report was lost, came twice or was wrong.
  void ExpectGoodReports();

  Client io;  // reports are read by a thread of the load; anybody may send
  std::atomic<long> writes = 0;

 private:
  static constexpr int kInputs = 10;

  // The first block of a card: changed again only when its last change was reported.
  struct Input {
    std::string kind;
    int reported = 0;
    int target = 0;
    Clock::time_point changed{};
    bool averaged = false;  // an average of old and new may come before the new value
  };

  void ChangeInputs();
  long Pending();
  void ReadReports();
  void TakeReport(const std::string& report);

  std::mutex lock_;  // of all below
  Input inputs_[kInputs];
  std::vector<double> latencies_;
  long changes_ = 0;
  long reports_ = 0;
  long doubled_ = 0;
  long wrong_ = 0;
  long lost_ = 0;
  std::jthread reader_;
};

// An argument of the program, from 1 on, or what stands for one that is missing.
std::string Argument(std::size_t number, const std::string& otherwise);
