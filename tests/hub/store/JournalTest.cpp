#include "StoreTest.h"

namespace hub::store {
namespace {

using Texts = std::vector<std::string>;

class StoreJournal : public StoreTest {};

TEST_F(StoreJournal, EntriesAreNumberedAndTold) {
  Start();
  Happen("one");
  clock.Pass(1500ms);
  Happen("two");
  ASSERT_EQ(heard.size(), 2u);
  EXPECT_EQ(heard[0].sequence, 1u);
  EXPECT_EQ(heard[1].sequence, 2u);
  WriteAfterMinute();
  const JournalPage page = Journal();
  ASSERT_EQ(page.entries.size(), 3u);
  EXPECT_EQ(page.entries[1].sequence, 2u);
  EXPECT_EQ(page.entries[1].time, Noon(1500ms));
  EXPECT_EQ(page.entries[1].kind, "card");
  EXPECT_EQ(page.entries[1].text, "two");
  EXPECT_EQ(page.entries[1].by, "anna");
  EXPECT_EQ(page.lost, 0u);
}

TEST_F(StoreJournal, NumbersGoOnAfterARestart) {
  Start();
  Happen("one");
  Restart();
  Happen("two");
  EXPECT_EQ(heard.back().sequence, 2u);
  EXPECT_EQ(JournalTexts(), (Texts{"one", "two"}));
}

TEST_F(StoreJournal, AStoppedStoreKeepsNobodyRunning) {
  Start();
  Happen("one");
  store->Stop();
  Happen("two");
  context.restart();
  context.poll();
  EXPECT_TRUE(context.stopped());
  Restart();
  EXPECT_EQ(JournalTexts(), (Texts{"one", "two"}));
}

TEST_F(StoreJournal, WithoutANumberTheNewest) {
  Start();
  for (const char* text : {"1", "2", "3"}) Happen(text);
  WriteAfterMinute();  // 4
  for (const char* text : {"5", "6"}) Happen(text);
  EXPECT_EQ(JournalTexts(2), (Texts{"3", "a minute has passed", "5", "6"}));
  EXPECT_EQ(JournalTexts({}, 3), (Texts{"a minute has passed", "5", "6"}));
  EXPECT_EQ(JournalTexts({}, 1), (Texts{"6"}));
  EXPECT_EQ(JournalTexts(6), Texts{});
  EXPECT_EQ(JournalTexts(1000), Texts{});
  EXPECT_EQ(Journal({}, 3).lost, 0u);
  EXPECT_EQ(Journal(1000).lost, 0u);
  EXPECT_EQ(Journal({}, 0).lost, 0u);
}

// Entries on the disk, and others that wait for it.
TEST_F(StoreJournal, IsFollowedWithoutAGap) {
  Start();
  for (const char* text : {"1", "2", "3"}) Happen(text);
  WriteAfterMinute();  // 4
  for (const char* text : {"5", "6"}) Happen(text);
  Texts followed;
  uint64_t after = 0;
  for (int pages = 0; pages < 3; ++pages) {
    const JournalPage page = Journal(after, 2);
    EXPECT_EQ(page.lost, 0u);
    ASSERT_EQ(page.entries.size(), 2u);
    for (const auto& entry : page.entries) followed.push_back(entry.text);
    after = page.entries.back().sequence;
  }
  EXPECT_EQ(followed, (Texts{"1", "2", "3", "a minute has passed", "5", "6"}));
  EXPECT_EQ(JournalTexts(3, 2), (Texts{"a minute has passed", "5"}));
  EXPECT_EQ(JournalTexts(6, 2), Texts{});
}

TEST_F(StoreJournal, IsReadBackwardsPageByPage) {
  Start();
  for (const char* text : {"1", "2", "3"}) Happen(text);
  WriteAfterMinute();  // 4
  for (const char* text : {"5", "6"}) Happen(text);
  EXPECT_EQ(JournalTexts({}, 2, 6), (Texts{"a minute has passed", "5"}));
  EXPECT_EQ(JournalTexts({}, 2, 4), (Texts{"2", "3"}));
  EXPECT_EQ(JournalTexts({}, 2, 2), (Texts{"1"}));
  EXPECT_EQ(JournalTexts({}, 2, 1), Texts{});
  EXPECT_EQ(JournalTexts(2, 9, 6), (Texts{"3", "a minute has passed", "5"}));
  EXPECT_EQ(JournalTexts(4, 9, 4), Texts{});
  EXPECT_EQ(Journal({}, 1, 4).lost, 0u);
}

TEST_F(StoreJournal, AFloodIsBoundedAndWhatIsGoneIsCounted) {
  Start();
  for (int i = 1; i <= 12'000; ++i) Happen(std::to_string(i));
  const JournalPage page = Journal({}, 100'000);
  EXPECT_EQ(page.entries.size(), 10'000u);
  EXPECT_EQ(page.entries.front().text, "2001");
  EXPECT_EQ(page.lost, 2000u);
  EXPECT_EQ(Journal(1500, 10).lost, 500u);
  EXPECT_EQ(Journal(1500, 10).entries.front().text, "2001");
  EXPECT_EQ(Journal(2500, 10).lost, 0u);
  EXPECT_EQ(Journal(2500, 10).entries.front().text, "2501");
  Restart();
  EXPECT_EQ(Journal(1500, 10).lost, 500u);
}

TEST_F(StoreJournal, LongTextsAreBoundedByTheirBytes) {
  Start();
  for (int i = 0; i < 30; ++i) Happen(std::string(100'000, 'x'));
  EXPECT_EQ(Journal().entries.size(), 10u);
  EXPECT_EQ(Journal().lost, 20u);
}

TEST_F(StoreJournal, KeepsTheLastFiftyThousand) {
  Start();
  for (int batch = 1; batch <= 60; ++batch) {
    for (int i = 0; i < 999; ++i) Happen("x");
    Add(batch);
    WriteAfterMinute();
  }
  EXPECT_EQ(Journal({}, 1).lost, 10'000u);
  EXPECT_EQ(Journal({}, 100'000).entries.size(), 50'000u);
  EXPECT_EQ(Journal({}, 100'000).entries.front().sequence, 10'001u);
}

}  // namespace
}  // namespace hub::store
