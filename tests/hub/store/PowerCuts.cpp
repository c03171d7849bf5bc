#include "PowerCuts.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/asio/co_spawn.hpp>
#include <optional>
#include <thread>

#include "StoreTest.h"
#include "kit/Wait.h"
#include "store/Database.h"

namespace hub::store {

namespace asio = boost::asio;

namespace {

constexpr model::ChannelId kChannel{0xF, 3};
constexpr int kSpan = 1000;  // steps that are looked at after a cut

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
[[noreturn]] void Store4Ever(const std::string& folder, int told) {
  FakeClock clock;
  asio::io_context context;
  Store store(context, {.folder = folder}, clock);
  int step = LastStep(store);
  clock.Pass(std::chrono::seconds(step));
  int oldest_waiting = step + 1;
  while (true) {
    ++step;
    clock.Pass(500ms);
    store.PutDocument("step", std::to_string(step));
    store.AddValue(kChannel, TimeOf(step), step % 256);
    store.AddJournal({0, TimeOf(step), "hub", std::to_string(step), ""});
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

// The last step that the process told before it was killed.
int RunAndKill(const std::string& folder, std::chrono::microseconds life) {
  int pipe_ends[2];
  if (pipe(pipe_ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    close(pipe_ends[0]);
    Store4Ever(folder, pipe_ends[1]);
  }
  close(pipe_ends[1]);
  std::this_thread::sleep_for(life);
  kill(child, SIGKILL);
  int last = 0;
  int step = 0;
  while (read(pipe_ends[0], &step, sizeof step) == sizeof step) last = step;
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

History ReadLast(asio::io_context& context, Store& store, int to) {
  std::optional<History> history;
  asio::co_spawn(context,
                 store.ReadHistory(kChannel, TimeOf(std::max(1, to - kSpan)), TimeOf(to + 1000),
                                   10 * kSpan),
                 [&](const std::exception_ptr&, History answer) { history = std::move(answer); });
  RunUntil(context, [&] { return history.has_value(); });
  return *history;
}

void ExpectKept(const std::string& folder, int told) {
  FakeClock clock;
  asio::io_context context;
  Store store(context, {.folder = folder}, clock);
  EXPECT_EQ(store.Trouble(), "");
  EXPECT_GE(LastStep(store), told);

  // No gap, and nothing that nobody stored, up to a minute before the end.
  const History history = ReadLast(context, store, told);
  std::optional<int> last;
  for (const Point& point : history.points) {
    const auto step = static_cast<int>((point.time - TimeOf(0)) / 1s);
    EXPECT_EQ(point.mean, step % 256);
    last = step;
  }
  if (told > 61) {
    ASSERT_TRUE(last);
    EXPECT_GE(*last, told - 61);
  }
}

}  // namespace

void CutPower(const std::string& folder, int times) {
  std::mt19937 random(3);
  int told = 0;
  for (int cut = 0; cut < times && !testing::Test::HasFailure(); ++cut) {
    SCOPED_TRACE("cut " + std::to_string(cut));
    const int last = RunAndKill(folder, std::chrono::microseconds(random() % 400'000));
    told = std::max(told, last);
    if (told == 0) continue;
    ExpectIntact(folder);
    ExpectKept(folder, told);
  }
  EXPECT_GT(told, times) << "it hardly came to store anything";
}

}  // namespace hub::store
