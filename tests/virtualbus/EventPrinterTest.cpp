#include "journal/EventPrinter.h"

#include <unistd.h>

#include <array>
#include <sstream>

#include "BusProcess.h"
#include "journal/PollFilter.h"

namespace virtualbus {
namespace {

class PrintedEvents : public BusTest {
 protected:
  // The lines without their times.
  std::string Lines() const {
    std::string text;
    std::istringstream output(bus->Output());
    for (std::string line; std::getline(output, line);) text += line.substr(13) + '\n';
    return text;
  }
};

TEST_F(PrintedEvents, ShowFramesWithTheirMeaning) {
  Start({"--card", "3=digital-input", "--card", "5=digital-output"});
  Ask({0x40, 0x6F, 0x9A});
  Ask({0x30});
  Ask({0x10, 0x05, 0x02, 0xFF, 0xFB});
  Order("press 3 06");
  Ask({0x50, 0x05, 0x01, 0xAB});
  Order("card 5 pull");
  Ask({0x10, 0x05, 0x02, 0xFF, 0xFB});
  Order("cable pull");
  EXPECT_TRUE(WaitUntil([&] { return Lines().ends_with("# cable pulled\n"); })) << Lines();
  const std::string lines = Lines();
  EXPECT_EQ(lines.substr(lines.find("> 40")),
            "> 40 6F 9A                       hardware check\n"
            "< 58 76 31 2E 32 20 76 69 72 74 75 61 6C 20 62 75 73  version v1.2\n"
            "> 30                             discover\n"
            "< 31 00 00 00 04 00 03 00 00 00 00 00 00 00 00 00 00  found 3:04 5:03\n"
            "> 10 05 02 FF FB                 write card 5: FF FB\n"
            "< 06                             taken\n"
            "# card 3 pressed 06\n"
            "> 50 05 01 AB                    card 5: reboot\n"
            "< 51 05 AB 00                    card 5: register AB = 00\n"
            "# card 5 pulled\n"
            "> 10 05 02 FF FB                 write card 5: FF FB\n"
            "< 4E                             refused\n"
            "# cable pulled\n");
}

TEST_F(PrintedEvents, ShowAPollOnlyWhenItsAnswerIsNew) {
  Start({"--card", "3=digital-input"});
  for (int i = 0; i < 5; ++i) Ask({0x20, 0x03, 0x02});
  Order("set 3 1 01");
  for (int i = 0; i < 5; ++i) Ask({0x20, 0x03, 0x02});
  Ask({0x99});
  EXPECT_TRUE(WaitUntil([&] { return Lines().ends_with("refused\n"); })) << Lines();
  const std::string lines = Lines();
  EXPECT_EQ(lines.substr(lines.find("> 20")),
            "> 20 03 02                       poll card 3\n"
            "< 21 03 00 00                    card 3 reads 00 00\n"
            "# card 3 set to 00 01\n"
            "> 20 03 02                       poll card 3\n"
            "< 21 03 00 01                    card 3 reads 00 01\n"
            "> 99                             unknown frame\n"
            "< 4E                             refused\n");
}

TEST_F(PrintedEvents, SayWhatAFaultDid) {
  Start({"--card", "3=digital-input", "--plain"});
  Order("drop next 1");
  host->Send({0x20, 0x03, 0x02});
  Order("wrong-address");
  Ask({0x20, 0x03, 0x02});
  ExpectOutput("# frame lost: dropped\n");
  ExpectOutput("< 21 03 00 00  # wrong address");
}

TEST(EventPrinter, AReaderThatStopsLosesLinesAndHoldsUpNothing) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  Loop loop;
  EventPrinter printer(loop, ends[1]);
  for (int i = 0; i < 10000; ++i) printer.Print({0, Entry::What::kNote, {}, "something happened"});

  std::string read_back;
  loop.Watch(ends[0], [&] {
    std::array<char, 4096> buffer;
    read_back.append(buffer.data(),
                     static_cast<size_t>(read(ends[0], buffer.data(), buffer.size())));
    if (read_back.ends_with(" lines dropped\n")) loop.Stop();
  });
  loop.After(kPatience, [&] { loop.Stop(); });
  loop.Run();
  const auto lines = std::count(read_back.begin(), read_back.end(), '\n') - 1;
  EXPECT_NE(read_back.find("# " + std::to_string(10000 - lines) + " lines dropped"),
            std::string::npos);
  close(ends[0]);
  close(ends[1]);
}

TEST(PollFilter, KeepsAPollThatGetsNoAnswer) {
  std::string seen;
  PollFilter filter([&](const Entry& entry) { seen += Hex(entry.frame) + ";"; });
  const Entry poll{0, Entry::What::kFromHost, {0x20, 0x03, 0x02}, {}};
  const Entry reply{0, Entry::What::kToHost, {0x21, 0x03, 0x00, 0x00}, {}};
  filter(poll);
  filter(reply);
  filter(poll);
  filter(reply);
  filter(poll);
  filter(poll);
  filter(reply);
  EXPECT_EQ(seen, "20 03 02;21 03 00 00;20 03 02;");
}

TEST(PollFilter, PassesARefusedPollOnce) {
  std::string seen;
  PollFilter filter([&](const Entry& entry) { seen += Hex(entry.frame) + ";"; });
  for (int i = 0; i < 3; ++i) {
    filter({0, Entry::What::kFromHost, {0x20, 0x03, 0x02}, {}});
    filter({0, Entry::What::kToHost, {0x4E}, {}});
  }
  EXPECT_EQ(seen, "20 03 02;4E;");
}

}  // namespace
}  // namespace virtualbus
