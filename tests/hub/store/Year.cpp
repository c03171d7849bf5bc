#include "Year.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <stdexcept>

#include "kit/Wait.h"

namespace hub::store {

namespace {

constexpr unsigned kChannels = 10;
constexpr int kMinutesOfDay = 24 * 60;
// Of what is older than a week, nobody can see any more in which pieces it was written.
constexpr uint64_t kMayWaitLongAgo = 40'000;
constexpr uint64_t kMayWait = 10;

void AddDays(int days, int every, uint64_t may_wait, TenChannels& channels,
             const StoreOptions& options, const FakeClock& clock) {
  boost::asio::io_context context;
  const auto work = boost::asio::make_work_guard(context);
  Store store(context, options, clock);
  const auto wait = [&] {
    while (store.Count().values_waiting > may_wait)
      if (context.run_one_for(kPatience) == 0) throw std::runtime_error("the store does not write");
  };
  for (int minute = 0; minute < days * kMinutesOfDay; ++minute)
    channels.AddMinute(store, every, wait);
}

}  // namespace

void TenChannels::AddMinute(Store& store, int every, const std::function<void()>& wait) {
  for (int second = 0; second < 60; second += every) {
    for (unsigned channel = 0; channel < kChannels; ++channel) {
      level_ += channel * 7 + 1;
      store.AddValue({channel, channel}, clock_.Now(), level_ % 256);
    }
    if (second == 0) wait();
    clock_.Pass(std::chrono::seconds(every));
  }
}

void AddYear(const StoreOptions& options, FakeClock& clock) {
  TenChannels channels(clock);
  AddDays(351, 30, kMayWaitLongAgo, channels, options, clock);
  AddDays(14, 5, kMayWait, channels, options, clock);
}

}  // namespace hub::store
