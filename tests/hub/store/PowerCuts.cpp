#include "PowerCuts.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include "StoreTest.h"
#include "kit/Wait.h"
#include "store/Database.h"

namespace hub::store {

namespace asio = boost::asio;

namespace {

constexpr model::ChannelId kChannel{0xF, 3};
constexpr int kMostSteps = 150;  // of one life

model::Time TimeOf(int step) { return FakeClock().Now() + std::chrono::seconds(step); }

int LastStep(const Store& store) { return std::stoi(store.Document("step").value_or("0")); }

template <typename Condition>
void RunUntil(asio::io_context& context, Condition holds) {
  const bool held = WaitUntil([&] {
    context.restart();
    context.poll();
    return holds();
  });
  if (!held) _exit(1);
}

// A step is a second. Each is told to the parent when its promise is due: the documents of a
// second ago are written, the history of a minute ago is.
[[noreturn]] void StoreForEver(const std::string& folder, int told) {
  FakeClock clock;
  asio::io_context context;
  Store store(context, {.folder = folder}, clock);
  // Behind a step whose value may be written already, and its document not.
  int step = LastStep(store) + 1;
  clock.Pass(std::chrono::seconds(step));
  int oldest_waiting = step + 1;
  while (true) {
    ++step;
    clock.Pass(500ms);
    store.AddValue(kChannel, TimeOf(step), step % 256);
    store.AddJournal({0, TimeOf(step), "hub", std::to_string(step), ""});
    store.PutDocument("step", std::to_string(step));
    clock.Pass(500ms);
    store.PutDocument("tick", std::to_string(step));
    RunUntil(context, [&] { return store.Count().documents_waiting == 0; });
    if (store.Count().values_waiting == 0) oldest_waiting = step + 1;
    if (step - oldest_waiting >= 60) {
      RunUntil(context, [&] { return store.Count().values_waiting == 0; });
      oldest_waiting = step + 1;
    }
    if (write(told, &step, sizeof step) != sizeof step) _exit(1);
  }
}

// Lets the process take so many steps, and some time more. Returns the last one that it told.
int RunAndKill(const std::string& folder, int steps, std::chrono::microseconds more) {
  int pipe_ends[2];
  if (pipe(pipe_ends) != 0) return 0;
  const pid_t child = fork();
  if (child == 0) {
    close(pipe_ends[0]);
    StoreForEver(folder, pipe_ends[1]);
  }
  close(pipe_ends[1]);
  int last = 0;
  int step = 0;
  const auto is_told = [&] { return read(pipe_ends[0], &step, sizeof step) == sizeof step; };
  for (int i = 0; i < steps && is_told(); ++i) last = step;
  std::this_thread::sleep_for(more);
  kill(child, SIGKILL);
  while (is_told()) last = step;
  close(pipe_ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status)) << "the store did not write in time";
  return last;
}

void ExpectIntact(const std::string& folder) {
  Database database(folder + "/hub.db", Database::Access::kWrite);
  Statement check(database, "PRAGMA integrity_check");
  ASSERT_TRUE(check.Next());
  EXPECT_EQ(check.Text(0), "ok");
}

History ReadAll(asio::io_context& context, Store& store) {
  std::optional<History> history;
  asio::co_spawn(context, store.ReadHistory(kChannel, TimeOf(0), TimeOf(1'000'000), 1'000'000),
                 [&](const std::exception_ptr&, std::optional<History> answer) {
                   history = std::move(answer);
                 });
  RunUntil(context, [&] { return history.has_value(); });
  return *history;
}

// Returns the step that the next life begins behind.
int ExpectKept(const std::string& folder, int told, const std::set<int>& promised) {
  FakeClock clock;
  asio::io_context context;
  Store store(context, {.folder = folder}, clock);
  EXPECT_EQ(store.Trouble(), "");
  EXPECT_GE(LastStep(store), told);

  std::set<int> kept;
  const History history = ReadAll(context, store);
  for (const Point& point : history.points) {
    const auto step = static_cast<int>((point.time - TimeOf(0)) / 1s);
    EXPECT_EQ(point.mean, step % 256);
    EXPECT_TRUE(kept.insert(step).second) << step << " is there twice";
  }
  EXPECT_TRUE(std::ranges::includes(kept, promised));
  return LastStep(store);
}

}  // namespace

void CutPower(const std::string& folder, int times) {
  std::mt19937 random(3);
  std::set<int> promised;  // history that must be there
  int start = 0;           // the last step before this life
  for (int cut = 0; cut < times && !testing::Test::HasFailure(); ++cut) {
    SCOPED_TRACE("cut " + std::to_string(cut));
    const std::chrono::microseconds more(random() % 5000);
    const int told = RunAndKill(folder, static_cast<int>(random() % kMostSteps), more);
    for (int step = start + 2; step <= told - 61; ++step) promised.insert(step);
    ExpectIntact(folder);
    start = ExpectKept(folder, told, promised);
  }
  EXPECT_FALSE(promised.empty());
}

}  // namespace hub::store
