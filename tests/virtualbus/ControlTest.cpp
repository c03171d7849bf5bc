#include "BusProcess.h"

namespace virtualbus {
namespace {

using Control = BusTest;

const std::string kKinds =
    "servo, digital-input, motor, digital-output, keys, ir, lcd, analogue-input";

TEST_F(Control, SetChangesInputBlocks) {
  Start();
  EXPECT_EQ(Order("set 3 0 40"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x40, 0x00}));
  EXPECT_EQ(Order("set F 2 01 02 03"), "ok");
  EXPECT_EQ(Ask({0x20, 0x0F, 0x06}), (Bytes{0x21, 0x0F, 0, 0, 1, 2, 3, 0}));
  EXPECT_EQ(Order("set 8 0 C5"), "ok");
  EXPECT_EQ(Ask({0x20, 0x08, 0x01}), (Bytes{0x21, 0x08, 0xC5}));
}

TEST_F(Control, ARampEndsAtItsLastValue) {
  Start();
  EXPECT_EQ(Order("ramp F 3 10 FF 50ms"), "ok");
  Bytes reply;
  uint8_t before = 0x10;
  EXPECT_TRUE(WaitUntil([&] {
    reply = Ask({0x20, 0x0F, 0x06});
    EXPECT_GE(reply[5], before) << "it never goes back";
    before = reply[5];
    return reply[5] == 0xFF;
  }));
  EXPECT_EQ(Order("ramp F 3 FF 00 0ms"), "ok");
  EXPECT_EQ(Ask({0x20, 0x0F, 0x06})[5], 0x00);
}

TEST_F(Control, SetEndsARamp) {
  Start();
  EXPECT_EQ(Order("ramp F 3 00 FF 24000s"), "ok");
  EXPECT_EQ(Order("set F 3 77"), "ok");
  EXPECT_EQ(Order("ramp F 4 00 FF 24000s"), "ok");
  EXPECT_EQ(Order("ramp F 4 42 42 0s"), "ok");
  EXPECT_EQ(Ask({0x20, 0x0F, 0x06}), (Bytes{0x21, 0x0F, 0, 0, 0, 0x77, 0x42, 0}));
}

TEST_F(Control, PressReleaseAndTurn) {
  Start();
  EXPECT_EQ(Order("press 3 06"), "ok");
  EXPECT_EQ(Order("press 3 0F"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x40, 0x80}));
  EXPECT_EQ(Order("release 3 06"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x00, 0x80}));
  EXPECT_EQ(Order("release 3"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x00, 0x00}));
  EXPECT_EQ(Order("press 8 05"), "ok");
  EXPECT_EQ(Order("turn 8 +1"), "ok");
  EXPECT_EQ(Ask({0x20, 0x08, 0x01}), (Bytes{0x21, 0x08, 0x45}));
  EXPECT_EQ(Order("release 8 05"), "ok");
  EXPECT_EQ(Order("turn 8 -1"), "ok");
  EXPECT_EQ(Ask({0x20, 0x08, 0x01}), (Bytes{0x21, 0x08, 0x00}));
}

TEST_F(Control, ShowListsWhatACardHolds) {
  Start();
  EXPECT_EQ(Order("show E"),
            "card E lcd\n"
            "  Row0 \"SELF TEST OK        \"\n"
            "  Row1 \"                    \"\n"
            "  Row2 \"                    \"\n"
            "  Row3 \"                    \"\n"
            "  stored SelfTest FF\n"
            "  stored InitLight FF\n"
            "  light on\n"
            "  cursor off\n"
            "  blinking off\n"
            "ok");
  EXPECT_EQ(Order("show 4"),
            "card 4 motor\n"
            "  Drive 00 00 00 00\n"
            "  SilentRanges 00 00 00\n"
            "  stored SilentRanges 00 00 00\n"
            "  speed 0 0 0\n"
            "ok");
  EXPECT_EQ(Order("card 3 pull"), "ok");
  EXPECT_EQ(Order("show 3"), "card 3 digital-input (pulled)\n  Lines 00 00\nok");
}

TEST_F(Control, CardsArePulledPluggedAndReplaced) {
  Start({"--card", "5=digital-output"});
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0x00, 0x00}), Bytes{0x06});
  EXPECT_EQ(Order("card 5 pull"), "ok");
  EXPECT_EQ(Order("card 5 plug"), "ok");
  EXPECT_EQ(Order("show 5"), "card 5 digital-output\n  Lines FF FF\nok") << "it boots";
  EXPECT_EQ(Order("card 1 plug servo"), "ok");
  EXPECT_EQ(Order("card 5 pull"), "ok");
  EXPECT_EQ(Order("card 5 plug ir"), "ok");
  EXPECT_EQ(Ask({0x30}), (Bytes{0x31, 0, 0x05, 0, 0, 0, 0x0A, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Control, AWaitIsAnsweredByAFrameThatCame) {
  Start();
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0xFF, 0xFB}), Bytes{0x06});
  EXPECT_EQ(Order("wait frame 10 05 .."), "ok");
  EXPECT_EQ(Order("wait frame 10 05 .. within 1ms"), "error: no such frame came")
      << "it is used up";
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0xFF, 0xFA}), Bytes{0x06});
  EXPECT_EQ(Order("mark"), "ok");
  EXPECT_EQ(Order("wait frame 10 05 within 1ms"), "error: no such frame came") << "it is forgotten";
}

TEST_F(Control, AWaitIsAnsweredByAFrameYetToCome) {
  Start();
  script->Send("wait frame 10 05 02 .. FB\nshow 5\n");
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0xFF, 0xFA}), Bytes{0x06});
  EXPECT_EQ(Ask({0x10, 0x05, 0x02, 0xFE, 0xFB}), Bytes{0x06});
  EXPECT_EQ(script->Answer(), "ok");
  EXPECT_EQ(script->Answer(), "card 5 digital-output\n  Lines FE FB\nok")
      << "who waited sees what the frame did";
}

TEST_F(Control, ScriptsDoNotDisturbEachOther) {
  Start();
  Script waiting(folder.Path("control"));
  waiting.Send("wait frame 99\n");
  EXPECT_EQ(Order("set 3 0 01"), "ok");
  {
    Script gone(folder.Path("control"));
    gone.Send("wait frame 99\nset 3 0 FF\n");
  }
  EXPECT_EQ(Ask({0x99}), Bytes{0x4E});
  EXPECT_EQ(waiting.Answer(), "ok");
  EXPECT_EQ(Order("mark"), "ok");
}

TEST_F(Control, StatusShowsTheFaultsThatAreOnAsTheirLines) {
  Start();
  for (const char* line :
       {"drop next 3", "late 40ms", "split 2", "wrong-length 4", "wrong-address 5", "noise 0.1%"})
    EXPECT_EQ(Order(line), "ok") << line;
  const std::string status = Order("status");
  EXPECT_TRUE(
      status.ends_with("shaped 0\n  fault drop next 3\n  fault late 40ms\n  fault split 2\n"
                       "  fault wrong-length 4\n  fault wrong-address 5\n"
                       "  fault noise 0.1%\nok"))
      << status;
  EXPECT_EQ(Order("mute 3600s"), "ok");
  EXPECT_NE(Order("status").find("\n  fault mute 3"), std::string::npos);
  EXPECT_EQ(Order("faults off"), "ok");
  EXPECT_EQ(Order("status").find("fault"), std::string::npos);
}

TEST_F(Control, StatusCounts) {
  Start();
  Ask({0x30});
  Ask({0x99});
  EXPECT_EQ(Order("drop next 1"), "ok");
  host->Send({0x30});
  EXPECT_EQ(Order("wait frame 30"), "ok") << "the one that was answered";
  EXPECT_EQ(Order("wait frame 30"), "ok") << "the one that was lost";
  EXPECT_EQ(Order("split 2"), "ok");
  Ask({0x30});
  const std::string status = Order("status");
  EXPECT_NE(status.find("\n  cable plugged\n  frames 4\n  replies 3\n  lost 1\n  shaped 1\n"
                        "  fault split 2\nok"),
            std::string::npos)
      << status;
  EXPECT_TRUE(status.starts_with("  device /dev/pts/")) << status;
}

TEST_F(Control, ANoteStandsAmongTheEvents) {
  Start();
  EXPECT_EQ(Order("note  the daemon  ended: 3"), "ok");
  ExpectOutput(" # the daemon ended: 3\n");
  EXPECT_EQ(Order("note " + std::string(200, 'x')), "ok");
  ExpectOutput(" # " + std::string(200, 'x') + "\n");
  EXPECT_EQ(Order("note " + std::string(201, 'x')), "error: a note has at most 200 bytes");
}

TEST_F(Control, HelpHasALineForEveryCommand) {
  Start();
  const std::string help = Order("help");
  EXPECT_EQ(std::count(help.begin(), help.end(), '\n'), 24);
  EXPECT_TRUE(help.starts_with("  set ADDR BLOCK BYTE... ")) << help;
}

TEST_F(Control, QuitEndsTheProgram) {
  Start();
  EXPECT_EQ(Order("quit"), "ok");
  EXPECT_EQ(bus->WaitForExit(), 0);
}

TEST_F(Control, BlankLinesAreOkAndBlanksDoNotMatter) {
  Start();
  EXPECT_EQ(Order(""), "ok");
  EXPECT_EQ(Order("   set   3  0   40\r"), "ok");
  EXPECT_EQ(Ask({0x20, 0x03, 0x02}), (Bytes{0x21, 0x03, 0x40, 0x00}));
}

TEST_F(Control, ALineWithoutEndIsGivenUp) {
  Start();
  Script endless(folder.Path("control"));
  endless.Send(std::string(5000, 'x'));
  EXPECT_EQ(endless.Answer(), "error: the line is too long");
  EXPECT_EQ(Order("mark"), "ok");
}

TEST_F(Control, EveryLineThatMakesNoSenseSaysWhy) {
  Start();
  EXPECT_EQ(Order("card 4 pull"), "ok");
  const std::pair<const char*, std::string> lines[] = {
      {"dance", "unknown command \"dance\" (try help)"},
      {"SET 3 0 40", "unknown command \"SET 3 0 40\" (try help)"},
      {"drop 3", "unknown command \"drop 3\" (try help)"},
      {"set", "usage: set ADDR BLOCK BYTE..."},
      {"set 3 0", "usage: set ADDR BLOCK BYTE..."},
      {"set G 0 40", "\"G\" is no address (0 to F)"},
      {"set 3 X 40", "\"X\" is no byte (00 to FF)"},
      {"set 3 0 140", "\"140\" is no byte (00 to FF)"},
      {"set 3 2 40", "card 3 has blocks 0 to 1"},
      {"set 3 1 40 41", "card 3 has blocks 0 to 1"},
      {"set 5 0 40", "card 5 has no inputs"},
      {"set 1 0 40", "no card at 1"},
      {"set 4 0 40", "card 4 is pulled"},
      {"ramp F 3 00 FF", "usage: ramp ADDR BLOCK FROM TO TIME"},
      {"ramp F 3 00 FF 2", "\"2\" is no time (such as 40ms or 2s)"},
      {"ramp F 6 00 FF 2s", "card F has blocks 0 to 5"},
      {"press 8 00", "card 8 has no such key or line"},
      {"press 8 40", "card 8 has no such key or line"},
      {"press 3 10", "card 3 has no such key or line"},
      {"press 5 01", "card 5 has no such key or line"},
      {"press 1 01", "no card at 1"},
      {"release 8 05", "card 8 holds no such key or line"},
      {"release 5", "card 5 holds no such key or line"},
      {"turn 8 x", "\"x\" is no number (-999 to 999)"},
      {"turn 3 1", "card 3 has no encoder"},
      {"show 1", "no card at 1"},
      {"show", "usage: show ADDR"},
      {"card 5", "usage: card ADDR pull|plug [KIND]"},
      {"card 5 push", "a card can \"pull\" or \"plug [KIND]\""},
      {"card 5 pull servo", "a card can \"pull\" or \"plug [KIND]\""},
      {"card 5 plug", "card 5 is plugged"},
      {"card 5 plug servo", "address 5 is taken"},
      {"card 1 plug", "no card at 1"},
      {"card 1 plug toaster", "\"toaster\" is no card kind (" + kKinds + ")"},
      {"card 1 pull", "no card at 1"},
      {"card 4 pull", "card 4 is pulled"},
      {"cable plug", "the cable is plugged"},
      {"cable", "unknown command \"cable\" (try help)"},
      {"wait frame", "usage: wait frame BYTE|.. ... [within TIME]"},
      {"wait frame 1X", "\"1X\" is no byte (00 to FF)"},
      {"wait frame 10 within 5", "\"5\" is no time (such as 40ms or 2s)"},
      {"note", "usage: note TEXT..."},
      {"mute", "usage: mute TIME"},
      {"mute x", "\"x\" is no time (such as 40ms or 2s)"},
      {"drop next x", "\"x\" is no number (0 to 1000000)"},
      {"late 5", "\"5\" is no time (such as 40ms or 2s)"},
      {"garbage 0", "\"0\" is no number (1 to 4096)"},
      {"split 0", "\"0\" is no number (1 to 255)"},
      {"wrong-length x", "\"x\" is no number (0 to 1000000)"},
      {"wrong-address x", "\"x\" is no number (0 to 1000000)"},
      {"noise 5", "\"5\" is no chance (0% to 100%)"},
      {"faults", "unknown command \"faults\" (try help)"},
  };
  for (const auto& [line, why] : lines) EXPECT_EQ(Order(line), "error: " + why) << line;
  EXPECT_EQ(Order("cable pull"), "ok");
  EXPECT_EQ(Order("cable pull"), "error: the cable is pulled");
}

}  // namespace
}  // namespace virtualbus
