#include <sys/mount.h>

#include <algorithm>

#include "StoreTest.h"
#include "kit/Wait.h"
#include "store/Database.h"

namespace hub::store {
namespace {

class StoreFaults : public StoreTest {
 protected:
  ~StoreFaults() override {
    Stop();
    while (umount2(options.folder.c_str(), MNT_DETACH) == 0) {
    }
  }

  // A disk of so many KB at the store's folder.
  void MountDisk(int kilobytes) {
    std::filesystem::create_directories(options.folder);
    const std::string size = "size=" + std::to_string(kilobytes) + "k";
    ASSERT_EQ(mount("tmpfs", options.folder.c_str(), "tmpfs", 0, size.c_str()), 0);
  }
  void MountAgain(unsigned long flags) {
    ASSERT_EQ(mount("tmpfs", options.folder.c_str(), "tmpfs", MS_REMOUNT | flags, ""), 0);
  }
  void FillDisk() {
    std::ofstream file(options.folder + "/filler", std::ios::binary);
    const std::string block(1024, 'x');
    while (file.write(block.data(), 1024).flush()) {
    }
  }
  void MakeRoom() { std::filesystem::remove(options.folder + "/filler"); }

  bool HasTrouble(const std::string& text) {
    return WaitUntil([&] {
      context.restart();
      context.poll();
      return store->Trouble().find(text) != std::string::npos;
    });
  }
  bool HasNoTrouble() {
    return WaitUntil([&] {
      context.restart();
      context.poll();
      return store->Trouble().empty();
    });
  }
  std::vector<std::string> SetAside() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(options.folder)) {
      const std::string name = entry.path().filename();
      if (name.starts_with("hub.db.broken-")) names.push_back(name);
    }
    std::ranges::sort(names);
    return names;
  }
  bool HasHeard(const std::string& text) const {
    return std::ranges::any_of(heard, [&](const auto& entry) {
      return entry.kind == "hub" && entry.text.find(text) != std::string::npos;
    });
  }

  // A store that has run for an hour, with a document.
  void RunForAnHour() {
    Start();
    store->PutDocument("accounts", R"({"anna":"admin"})");
    Happen("before");
    AddHour();
    Stop();
  }
  void Overwrite(std::streamoff place, const std::string& bytes) {
    std::fstream file(File(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(place);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  void ExpectFreshFile() {
    EXPECT_NE(store->Trouble().find("hub.db.broken-20261121-"), std::string::npos)
        << store->Trouble();
    EXPECT_TRUE(HasHeard("set aside as"));
    EXPECT_FALSE(SetAside().empty());
    Add(42);
    Restart();
    EXPECT_EQ(store->Trouble(), "");
    const Curve curve = ReadDay();
    ASSERT_FALSE(curve.empty());
    EXPECT_EQ(curve.back().max, 42);
  }
};

TEST_F(StoreFaults, OnAFullDiskWritingWaits) {
  MountDisk(512);
  Start();
  Add(1);
  WriteAfterMinute();
  FillDisk();
  for (int i = 0; i < 5000; ++i) Add(1.0 / (i + 3));
  store->PutDocument("names", std::string(10'000, 'n'));
  clock.Pass(60s);
  Add(2);
  EXPECT_TRUE(HasTrouble("full"));
  EXPECT_TRUE(HasHeard("full"));
  EXPECT_EQ(store->Count().values_waiting, 5001u);
  EXPECT_EQ(store->Count().documents_waiting, 1u);
  EXPECT_EQ(ReadDay(10'000).size(), 5002u);

  MakeRoom();
  clock.Pass(10s);
  Add(3);
  EXPECT_TRUE(HasNoTrouble());
  EXPECT_TRUE(HasHeard("can be written again"));
  EXPECT_EQ(store->Count().documents_waiting, 0u);
  EXPECT_EQ(store->Count().values_dropped, 0u);
  Restart();
  EXPECT_EQ(ReadDay(10'000).size(), 5003u);
  EXPECT_EQ(store->Document("names"), std::string(10'000, 'n'));
}

TEST_F(StoreFaults, OnAFullDiskMemoryIsBoundedAndWhatIsDroppedIsCounted) {
  MountDisk(256);
  Start();
  WriteAfterMinute();
  FillDisk();
  clock.Pass(1h);
  for (int i = 0; i < 1'000'000; ++i) Add(i);
  EXPECT_TRUE(HasTrouble("full"));
  const auto count = store->Count();
  EXPECT_LE(count.values_waiting, 200'000u);
  EXPECT_EQ(count.values_waiting + count.values_dropped, 1'000'000u);
}

TEST_F(StoreFaults, StartsOnAFullDiskAndWritesLater) {
  MountDisk(128);
  FillDisk();
  Start();
  EXPECT_NE(store->Trouble(), "");
  EXPECT_TRUE(HasHeard("kept in memory"));
  store->PutDocument("names", "{}");
  Add(1);
  EXPECT_EQ(ReadDay(), (Curve{{0, 1, 1, 1}}));
  MakeRoom();
  clock.Pass(60s);
  Add(2);
  EXPECT_TRUE(HasNoTrouble());
  Restart();
  EXPECT_EQ(ReadDay(), (Curve{{0, 1, 1, 1}, {60, 2, 2, 2}}));
  EXPECT_EQ(store->Document("names"), "{}");
}

TEST_F(StoreFaults, AReadOnlyDiskIsReadAndNotWritten) {
  MountDisk(4096);
  RunForAnHour();
  MountAgain(MS_RDONLY);
  Start();
  EXPECT_NE(store->Trouble().find(File()), std::string::npos) << store->Trouble();
  EXPECT_TRUE(HasHeard("kept in memory"));
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
  EXPECT_FALSE(store->DocumentsLost());
  Happen("in memory");
  EXPECT_EQ(JournalTexts().back(), "in memory");
  Add(5);
  EXPECT_EQ(ReadDay(), (Curve{{3600, 5, 5, 5}}));
}

// The last document is in the log beside the file, which cannot be read without writing.
TEST_F(StoreFaults, AReadOnlyDiskAfterAPowerCutHasOldDocuments) {
  MountDisk(4096);
  RunForAnHour();
  Start();
  store->PutDocument("accounts", "{}");
  clock.Pass(1s);
  Written(0);
  LosePower();
  MountAgain(MS_RDONLY);
  Start();
  EXPECT_TRUE(store->DocumentsLost());
  Stop();
  MountAgain(0);
  Start();
  EXPECT_FALSE(store->DocumentsLost());
  EXPECT_EQ(store->Document("accounts"), "{}");
}

TEST_F(StoreFaults, ADiskThatCanBeWrittenLaterGetsAll) {
  MountDisk(4096);
  RunForAnHour();
  MountAgain(MS_RDONLY);
  Start();
  Add(5);
  store->PutDocument("names", "{}");
  MountAgain(0);
  clock.Pass(10s);
  Add(6);
  EXPECT_TRUE(HasNoTrouble());
  EXPECT_EQ(ReadDay(5000).size(), 3602u);
  Restart();
  EXPECT_EQ(ReadDay(5000).size(), 3602u);
  EXPECT_EQ(store->Document("names"), "{}");
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
}

TEST_F(StoreFaults, WithoutAFolderItRunsInMemory) {
  options.folder = dir.Write("a file", "") + "/store";
  Start();
  EXPECT_NE(store->Trouble().find("kept in memory"), std::string::npos);
  EXPECT_FALSE(store->DocumentsLost());
  store->PutDocument("names", "{}");
  EXPECT_EQ(store->Document("names"), "{}");
  for (int i = 0; i < 600; ++i) {
    Add(i % 2);
    clock.Pass(1s);
  }
  EXPECT_EQ(Read(kKnob, Noon(), Noon(10min - 1s), 10).points.size(), 10u);
}

TEST_F(StoreFaults, AFileThatCannotBeLookedAtIsNoEmptyOne) {
  std::filesystem::create_directories(options.folder);
  std::filesystem::create_symlink(File(), File());
  Start();
  EXPECT_TRUE(store->DocumentsLost());
}

TEST_F(StoreFaults, TheFolderIsMade) {
  options.folder = dir.Path("deep/down/store");
  Start();
  EXPECT_EQ(store->Trouble(), "");
  EXPECT_TRUE(std::filesystem::exists(File()));
}

TEST_F(StoreFaults, ASecondHubDoesNotTouchTheFile) {
  RunForAnHour();
  Start();
  const Store second(context, options, clock);
  EXPECT_NE(second.Trouble().find("locked"), std::string::npos) << second.Trouble();
  EXPECT_EQ(second.Document("accounts"), R"({"anna":"admin"})");
  EXPECT_EQ(ReadDay(5000).size(), 3600u);
}

TEST_F(StoreFaults, GarbageIsSetAside) {
  RunForAnHour();
  WriteFile(File(), std::string(50'000, 'g'));
  Start();
  EXPECT_TRUE(store->DocumentsLost());
  ExpectFreshFile();
}

// Or a power cut in the second after it opens the hub to everybody.
TEST_F(StoreFaults, ALossIsMarkedInTheNewFileFromTheFirstMomentOn) {
  RunForAnHour();
  WriteFile(File(), std::string(50'000, 'g'));
  Start();
  LosePower();
  Start();
  EXPECT_FALSE(store->DocumentsLost());
  EXPECT_TRUE(store->Document(Store::kLostMark));
  store->RemoveDocument(Store::kLostMark);
  Restart();
  EXPECT_FALSE(store->Document(Store::kLostMark));
}

TEST_F(StoreFaults, ACutFileIsSetAside) {
  RunForAnHour();
  std::filesystem::resize_file(File(), 2500);
  Start();
  ExpectFreshFile();
}

TEST_F(StoreFaults, ABrokenTableIsSetAsideAndTheDocumentsAreSaved) {
  RunForAnHour();
  {
    Database database(File(), Database::Access::kWrite);
    database.Run("DROP TABLE raw");
  }
  Start();
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
  EXPECT_FALSE(store->DocumentsLost());
  ExpectFreshFile();
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
}

TEST_F(StoreFaults, AnotherVersionIsSetAside) {
  RunForAnHour();
  {
    Database database(File(), Database::Access::kWrite);
    database.Run("PRAGMA user_version = 2");
  }
  Start();
  EXPECT_NE(store->Trouble().find("is of another program or version"), std::string::npos);
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
  ExpectFreshFile();
}

TEST_F(StoreFaults, AnotherProgramsFileIsSetAsideUntouched) {
  std::filesystem::create_directories(options.folder);
  {
    Database database(File(), Database::Access::kWrite);
    database.Run("CREATE TABLE recipe (name TEXT); INSERT INTO recipe VALUES ('soup')");
  }
  const std::string before = ReadFile(File());
  Start();
  ASSERT_EQ(SetAside().size(), 1u);
  EXPECT_EQ(ReadFile(options.folder + "/" + SetAside().front()), before);
  ExpectFreshFile();
}

TEST_F(StoreFaults, AnEmptyFileIsANewOne) {
  std::filesystem::create_directories(options.folder);
  WriteFile(File(), "");
  Start();
  EXPECT_EQ(store->Trouble(), "");
  EXPECT_FALSE(store->DocumentsLost());
}

TEST_F(StoreFaults, WhatBreaksUnderWayIsSetAsideWhenItIsRead) {
  RunForAnHour();
  const auto size = static_cast<std::streamoff>(std::filesystem::file_size(File()));
  // All but the first pages: schema and documents.
  Overwrite(12 * 1024, std::string(static_cast<size_t>(size) - 12 * 1024, '\xA5'));
  Start();
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
  Add(41);
  EXPECT_EQ(ReadDay(5000), (Curve{{3600, 41, 41, 41}}));
  EXPECT_TRUE(HasTrouble("set aside"));
  ExpectFreshFile();
  EXPECT_EQ(store->Document("accounts"), R"({"anna":"admin"})");
}

TEST_F(StoreFaults, TwoBrokenFilesInOneSecondHaveTwoNames) {
  for (int i = 0; i < 2; ++i) {
    std::filesystem::create_directories(options.folder);
    WriteFile(File(), std::string(5000, 'g'));
    Start();
    Stop();
  }
  EXPECT_EQ(SetAside(), (std::vector<std::string>{"hub.db.broken-20261121-120000",
                                                  "hub.db.broken-20261121-120000-2"}));
}

}  // namespace
}  // namespace hub::store
