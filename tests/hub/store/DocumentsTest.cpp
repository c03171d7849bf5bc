#include <random>

#include "StoreTest.h"
#include "kit/Wait.h"

namespace hub::store {
namespace {

class StoreDocuments : public StoreTest {};

TEST_F(StoreDocuments, NoneAtFirst) {
  Start();
  EXPECT_EQ(store->Document("names"), std::nullopt);
  EXPECT_FALSE(store->DocumentsLost());
  EXPECT_EQ(store->Trouble(), "");
}

TEST_F(StoreDocuments, APutOneIsReadAtOnceAndAfterARestart) {
  Start();
  store->PutDocument("names", R"({"bus":"bench"})");
  EXPECT_EQ(store->Document("names"), R"({"bus":"bench"})");
  Restart();
  EXPECT_EQ(store->Document("names"), R"({"bus":"bench"})");
}

TEST_F(StoreDocuments, TheLastOfManyStays) {
  Start();
  for (int i = 0; i < 1000; ++i) store->PutDocument("outputs", std::to_string(i));
  EXPECT_EQ(store->Count().documents_waiting, 1u);
  Restart();
  EXPECT_EQ(store->Document("outputs"), "999");
}

TEST_F(StoreDocuments, ARemovedOneIsGone) {
  Start();
  store->PutDocument("accounts", "{}");
  Restart();
  store->RemoveDocument("accounts");
  store->RemoveDocument("never there");
  EXPECT_EQ(store->Document("accounts"), std::nullopt);
  Restart();
  EXPECT_EQ(store->Document("accounts"), std::nullopt);
}

TEST_F(StoreDocuments, AreWrittenByThemselvesWhenNobodyCalls) {
  const model::Clock real;
  Store ticking(context, options, real);
  ticking.PutDocument("names", "{}");
  EXPECT_EQ(ticking.Count().documents_waiting, 1u);
  EXPECT_TRUE(WaitUntil([&] {
    context.restart();
    context.poll();
    return ticking.Count().documents_waiting == 0;
  }));
}

TEST_F(StoreDocuments, TheSameTextIsNotWrittenAgain) {
  Start();
  store->PutDocument("names", "");
  EXPECT_EQ(store->Count().documents_waiting, 1u);
  Restart();
  store->PutDocument("names", "");
  EXPECT_EQ(store->Count().documents_waiting, 0u);
}

TEST_F(StoreDocuments, AnyBytesComeBackEqual) {
  std::mt19937 random(11);
  const auto any_text = [&random](size_t longest) {
    static constexpr std::string_view kOdd("\0'\"\\;%?\n\r\xFF\xC3\xA4--", 14);
    std::string text(random() % (longest + 1), '\0');
    for (char& byte : text)
      byte = random() % 2 == 0 ? kOdd[random() % kOdd.size()] : static_cast<char>(random());
    return text;
  };
  std::map<std::string, std::string> expected;
  Start();
  for (int round = 0; round < 400; ++round) {
    const std::string name = any_text(12);
    expected[name] = any_text(round % 50 == 0 ? 100'000 : 60);
    store->PutDocument(name, expected[name]);
    if (round % 100 == 99) Restart();
  }
  store->AddJournal({0, clock.Now(), any_text(20), expected.begin()->second, any_text(20)});
  const auto entry = Journal().entries.back();
  Restart();
  for (const auto& [name, text] : expected) EXPECT_EQ(store->Document(name), text);
  const auto kept = Journal().entries.back();
  EXPECT_EQ(kept.kind, entry.kind);
  EXPECT_EQ(kept.text, entry.text);
  EXPECT_EQ(kept.by, entry.by);
}

TEST_F(StoreDocuments, TheFileIsForItsOwnerOnly) {
  dir.Write("there", "");
  std::filesystem::create_directories(options.folder);
  WriteFile(File(), "");
  std::filesystem::permissions(File(), std::filesystem::perms(0644));
  Start();
  store->PutDocument("accounts", "{}");
  EXPECT_EQ(std::filesystem::status(File()).permissions(), std::filesystem::perms(0600));
  EXPECT_EQ(std::filesystem::status(File() + "-wal").permissions(), std::filesystem::perms(0600));
}

}  // namespace
}  // namespace hub::store
