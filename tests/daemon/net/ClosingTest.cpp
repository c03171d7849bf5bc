// CloseByCommand and Halt, at whatever the interface is.
#include <sys/ioctl.h>

#include <random>

#include "runtime/Pause.h"
#include "kit/Helper.h"
#include "support/ReadHook.h"
#include "support/Sanitizers.h"
#include "support/SocketTest.h"

namespace {

constexpr const char* kClosedByCommand = "[INF] connection is closed by command on IO interface";

class Closing : public SocketTest {
 protected:
  // The port is closed now, listens after two passes and serves a client.
  void ExpectComesBack(int passes = 2) {
    EXPECT_EQ(State(), 4);
    EXPECT_TRUE(Refuses(Port()));
    for (int i = 0; i < passes; ++i) {
      EXPECT_EQ(State(), 4);
      Pass();
    }
    EXPECT_EQ(State(), 1);
    Interface->OutQueue->DeQueue();  // a greeting that nobody waited for
    ServedClient();
  }
};

}  // namespace

TEST_F(Closing, EndsASession) {
  Build("IO").Init();
  Client client = ServedClient();
  Interface->CloseByCommand();
  client.ExpectClosed();
  EXPECT_EQ(Log.Lines().back(), kClosedByCommand);
  EXPECT_EQ(Interface->RetryCount, 0);
  ExpectComesBack();
  EXPECT_FALSE(Log.Has("[INF] connection is closed by client on IO interface"));
}

TEST_F(Closing, InsideAPassLeavesWhatIsQueuedToTheNextClient) {
  Build("IO").Init();
  Client client = ServedClient();
  Interface->OutQueue->ToQueue(TextBytes("left"));
  client.Send("x");
  ASSERT_TRUE(WaitUntil([&] {
    int waiting = 0;
    ioctl(Interface->ClientSocket.Number(), FIONREAD, &waiting);
    return waiting == 1;
  }));
  {
    const ReadHook at_read([&] { Interface->CloseByCommand(); });
    Pass();
  }
  EXPECT_EQ(State(), 4);
  EXPECT_EQ(TakeTexts(*Interface->OutQueue), Texts{"left"});
  EXPECT_EQ(Log.Lines().back(), kClosedByCommand);
}

TEST_F(Closing, WorksOnAPortThatListens) {
  Build("IO").Init();
  Interface->CloseByCommand();
  ExpectComesBack();
}

TEST_F(Closing, WorksOnAPortThatIsClosed) {
  Build("IO").Init();
  ServedClient();
  Interface->CloseByCommand();
  Interface->CloseByCommand();
  Pass();
  Interface->CloseByCommand();
  EXPECT_EQ(Interface->RetryCount, 0);
  ExpectComesBack();
}

TEST_F(Closing, WorksOnAPortThatNeverListened) {
  Build("IO").CloseByCommand();
  ExpectComesBack();
}

TEST_F(Closing, WakesAPassThatWaitsForAClient) {
  Build("IO").Init();
  Helper pass([&] { Pass(); });
  ASSERT_TRUE(WaitUntil([&] { return State() == 2 && Sleeps.Seconds().size() == 1; }));
  EXPECT_TRUE(pass.WaitUntilBlocked());
  Interface->CloseByCommand();
  pass.Join();
  EXPECT_TRUE(Log.Has("[ERR] socket accept error on IO interface"));
  ExpectComesBack(1);  // the pass that was woken was the first
}

TEST_F(Closing, AClientAcceptedMeanwhileIsDropped) {
  Build("IO").Init();
  Client client(Port());
  Interface->Descriptor.State = 2;
  Interface->CloseByCommand();
  client.ExpectClosed();
  ExpectComesBack();
}

// The listening socket may go just as the state says that it listens.
TEST_F(Closing, AListeningSocketThatIsGoneIsOpenedAgain) {
  Build("IO").Init();
  Interface->ListenSocket.Withdraw();
  Pass();
  EXPECT_TRUE(Log.Has("[ERR] socket accept error on IO interface"));
  ExpectComesBack(1);
}

TEST_F(Closing, OpensNoPortWhoseNumberSomebodyElseHas) {
  Build("IO").Init();
  Client client = ServedClient();
  const int number = Interface->ClientSocket.Number();
  Interface->CloseByCommand();
  const int other = dup(STDERR_FILENO);
  EXPECT_NE(other, number);
  Pass();
  EXPECT_FALSE(Interface->ClientSocket.IsOpen());
  char byte = 0;
  EXPECT_EQ(write(other, &byte, 0), 0);  // still open
  close(other);
}

// A child of another thread holds it until its program begins.
TEST_F(Closing, FreesAPortWhoseSocketSomebodyElseStillHolds) {
  Build("IO").Init();
  ServedClient().Close();
  const int other = dup(Interface->ListenSocket.Number());
  Pass();
  ExpectComesBack(1);
  EXPECT_FALSE(Log.Has("[ERR] couldn't bind socket forIO interface"));
  close(other);
}

TEST_F(Closing, HaltEndsAThreadThatWaitsForAClient) {
  BuildRunning("IO").Init();
  ASSERT_TRUE(WaitUntil([&] { return State() == 2; }));
  Interface->Halt();
  EXPECT_EQ(Interface->ThreadState(), 2);
}

TEST_F(Closing, HaltEndsAThreadThatServes) {
  BuildRunning("IO").Init();
  Client client(Port());
  ASSERT_TRUE(WaitUntil([&] { return State() == 3; }));
  Interface->Halt();
  EXPECT_EQ(Interface->ThreadState(), 2);
  client.ExpectClosed();
}

TEST_F(Closing, HaltEndsAThreadThatWasNeverStarted) {
  BuildRunning("IO").Halt();
  EXPECT_EQ(Interface->ThreadState(), 2);
  Interface->Halt();
}

TEST_F(Closing, AtAnyMomentNeverLeavesThePortDead) {
  BuildRunning("IO").Init();
  std::atomic<bool> is_over{false};
  Helper clients([&] {
    for (int i = 0; !is_over; ++i) {
      Client client = Client::Try(Port());
      if (client.IsOpen() && i % 2 == 0) client.IsServed();
      Sleep(5'000);
    }
  });
  std::mt19937 random(1);
  const int count = kSanitized ? 100 : 200;
  for (int i = 0; i < count; ++i) {
    Sleep(std::uniform_int_distribution<unsigned>(0, 600'000)(random));
    Interface->CloseByCommand();
  }
  is_over = true;
  clients.Join();
  EXPECT_EQ(Log.Count(kClosedByCommand), count);
  EXPECT_TRUE(WaitUntil([&] {
    Client client = Client::Try(Port());
    return client.IsOpen() && client.IsServed() && client.Sees(kGreeting);
  }));
}
