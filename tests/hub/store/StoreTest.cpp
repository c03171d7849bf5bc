#include "StoreTest.h"

#include <boost/asio/co_spawn.hpp>
#include <optional>

#include "kit/Wait.h"

namespace hub::store {

namespace asio = boost::asio;

namespace {

// Runs the context until the answer is there.
template <typename Answer>
Answer Get(asio::io_context& context, asio::awaitable<Answer> question) {
  std::optional<Answer> answer;
  asio::co_spawn(context, std::move(question), [&](const std::exception_ptr& error, Answer got) {
    EXPECT_FALSE(error);
    answer = std::move(got);
  });
  const auto work = asio::make_work_guard(context);
  WaitUntil([&] {
    context.poll();
    return answer.has_value();
  });
  return answer.value();
}

}  // namespace

void StoreTest::Start() {
  store = std::make_unique<Store>(context, options, clock);
  store->OnJournal([this](model::JournalEntry entry) { heard.push_back(std::move(entry)); });
}

void StoreTest::Restart() {
  Stop();
  Start();
}

int StoreTest::AddHour(double first) {
  for (int second = 0; second < 3600; ++second) {
    Add(first + second % 60);
    clock.Pass(1s);
    if (second % 60 == 59) WriteGathered();
  }
  return 3600;
}

void StoreTest::Written(uint64_t values) {
  const auto work = asio::make_work_guard(context);
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  const auto is_written = [&] {
    const auto count = store->Count();
    return count.values_waiting <= values && count.documents_waiting == 0;
  };
  context.restart();
  while (!is_written() && context.run_one_until(deadline) != 0) {
  }
  EXPECT_TRUE(is_written()) << store->Trouble();
}

void StoreTest::WriteGathered() {
  Happen("a minute has passed");  // whoever comes next finds that it is time to write
  Written(0);
}

void StoreTest::WriteAfterMinute() {
  clock.Pass(60s);
  WriteGathered();
}

History StoreTest::Read(model::ChannelId channel, model::Time from, model::Time to, size_t points) {
  context.restart();
  return Get(context, store->ReadHistory(channel, from, to, points)).value();
}

StoreTest::Curve StoreTest::ToCurve(const History& history) {
  Curve curve;
  for (const Point& point : history.points)
    curve.push_back({std::chrono::duration<double>(point.time - model::Time(1795262400s)).count(),
                     point.mean, point.min, point.max});
  return curve;
}

StoreTest::Curve StoreTest::ReadDay(size_t points, model::ChannelId channel) {
  return ToCurve(Read(channel, Noon(-12h), Noon(12h), points));
}

void StoreTest::LosePower() {
  const std::string copy = dir.Path("copy");
  std::filesystem::copy(options.folder, copy);
  Stop();
  for (const char* name : {"hub.db", "hub.db-wal"}) {
    std::filesystem::remove(options.folder + "/" + name);
    if (std::filesystem::exists(copy + "/" + name))
      std::filesystem::copy(copy + "/" + name, options.folder + "/" + name);
  }
  std::filesystem::remove_all(copy);
}

JournalPage StoreTest::Journal(std::optional<uint64_t> after, size_t limit, uint64_t before) {
  context.restart();
  const JournalSpan span{.after = after, .before = before, .limit = limit};
  return Get(context, store->ReadJournal(span)).value();
}

std::vector<std::string> StoreTest::JournalTexts(std::optional<uint64_t> after, size_t limit,
                                                 uint64_t before) {
  std::vector<std::string> texts;
  for (const auto& entry : Journal(after, limit, before).entries) texts.push_back(entry.text);
  return texts;
}

}  // namespace hub::store
