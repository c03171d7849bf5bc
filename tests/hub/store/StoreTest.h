// A store in a folder of its own, on a clock that the test moves.
#pragma once

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <memory>
#include <string>
#include <vector>

#include "hub/FakeClock.h"
#include "kit/TempDir.h"
#include "store/Store.h"

namespace hub::store {

using namespace std::chrono_literals;

class StoreTest : public testing::Test {
 protected:
  static constexpr model::ChannelId kKnob{0xF, 3};
  static constexpr model::ChannelId kLamp{0x5, 0};

  // A point, its time as seconds since noon.
  struct Seen {
    double time, mean, min, max;
    bool operator==(const Seen&) const = default;
  };
  using Curve = std::vector<Seen>;

  StoreTest() { options.folder = dir.Path("store"); }

  void Start();
  void Stop() { store.reset(); }
  void Restart();
  void LosePower();  // what was written so far is what the next start finds
  std::string File() const { return options.folder + "/hub.db"; }

  void Add(double value, model::ChannelId channel = kKnob) {
    store->AddValue(channel, clock.Now(), value);
  }
  void Happen(const std::string& text) {
    store->AddJournal({0, clock.Now(), "card", text, "anna"});
  }
  // An hour of a value a second, each minute written for itself; returns how many.
  int AddHour(double first = 0);

  // Waits until no document and at most so many values wait for the disk.
  void Written(uint64_t values);
  void WriteGathered();     // what is a minute old now
  void WriteAfterMinute();  // a minute passes, and what is gathered is written

  model::Time Noon(std::chrono::milliseconds later = 0ms) const {
    return model::Time(1795262400s) + later;
  }
  History Read(model::ChannelId channel, model::Time from, model::Time to, size_t points);
  // A day around noon.
  Curve ReadDay(size_t points = 500, model::ChannelId channel = kKnob);
  static Curve ToCurve(const History& history);
  JournalPage Journal(std::optional<uint64_t> after = {}, size_t limit = 1000,
                      uint64_t before = std::numeric_limits<uint64_t>::max());
  std::vector<std::string> JournalTexts(std::optional<uint64_t> after = {}, size_t limit = 1000,
                                        uint64_t before = std::numeric_limits<uint64_t>::max());

  TempDir dir;
  FakeClock clock;
  boost::asio::io_context context;
  StoreOptions options;
  std::unique_ptr<Store> store;
  std::vector<model::JournalEntry> heard;
};

}  // namespace hub::store
