// Floods and repetitions, in the small size that every test run can bear.
#include <random>

#include "Endurance.h"

TEST_F(Endurance, TwentySessionsOnEachPortLeaveNothingBehind) { UseAndResetSessions(20); }

TEST_F(Endurance, FloodOfLinesOnIoIsWorkedOff) {
  PlugCard(5, kDigitalOutput);
  StartOnBus();
  Client io = Connect(kIo);
  std::string line = "a5b0d77\r\n";
  line.resize(255, ' ');
  for (int item = 0; item < 500; ++item) io.Send(line);
  io.Send("a5b1d01\r\n");
  adapter.ExpectFrame({0x10, 5, 2, 0x77, 0x01});
  cae.ReadUntil("COE:Illegal command -> ");
}

TEST_F(Endurance, FloodOnCaeIsAnswered) {
  StartDaemon();
  cae = Connect(kCae);
  for (int item = 0; item < 500; ++item) cae.Send(std::string(255, 'z'));
  for (int item = 0; item < 500; ++item) cae.ExpectBytes("CIE: UNKNOWN COMMAND \r\n>\r\n\r");
  ExpectAnswer();
}

TEST_F(Endurance, NoiseOnEveryPortIsSurvived) {
  StartOnBus();
  Client io = Connect(kIo);
  Client mon = Connect(kMon);
  std::mt19937 chance(1);
  std::string noise(100'000, '\0');
  for (char& byte : noise) byte = static_cast<char>(chance() & 0xFF);
  io.Send(noise);
  mon.Send(noise);
  cae.Send(noise);
  for (Client* client : {&io, &mon, &cae}) client->Reset();
  for (const char* name : {"IO", "MON", "CAE"}) {
    ExpectLog("INF", std::string("connection is closed by client on ") + name + " interface");
  }
  cae = Dial(kCae);
  cae.ReadUntil("(Type HELP for help)\r\n>\r\n\r");
  ExpectAlive();
}
