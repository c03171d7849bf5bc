// CloseByCommand and Halt, at whatever the interface is.
#include <sys/ioctl.h>

#include <random>

#include "kit/Helper.h"
#include "runtime/Pause.h"
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
    interface->OutQueue->DeQueue();  // a greeting that nobody waited for
    ServedClient();
  }
};

}  // namespace

TEST_F(Closing, EndsASession) {
  Build("IO").Init();
  Client client = ServedClient();
  interface->CloseByCommand();
  client.ExpectClosed();
  EXPECT_EQ(log.Lines().back(), kClosedByCommand);
  EXPECT_EQ(interface->RetryCount, 0);
  ExpectComesBack();
  EXPECT_FALSE(log.Has("[INF] connection is closed by client on IO interface"));
}

TEST_F(Closing, InsideAPassLeavesWhatIsQueuedToTheNextClient) {
  Build("IO").Init();
  Client client = ServedClient();
  interface->OutQueue->ToQueue(List("left"));
  client.Send("x");
  ASSERT_TRUE(WaitUntil([&] {
    int waiting = 0;
    ioctl(interface->ClientSocket.Number(), FIONREAD, &waiting);
    return waiting == 1;
  }));
  {
    const ReadHook at_read([&] { interface->CloseByCommand(); });
    Pass();
  }
  EXPECT_EQ(State(), 4);
  EXPECT_EQ(TakeTexts(*interface->OutQueue), Texts{"left"});
  EXPECT_EQ(log.Lines().back(), kClosedByCommand);
}

TEST_F(Closing, WorksOnAPortThatListens) {
  Build("IO").Init();
  interface->CloseByCommand();
  ExpectComesBack();
}

TEST_F(Closing, WorksOnAPortThatIsClosed) {
  Build("IO").Init();
  ServedClient();
  interface->CloseByCommand();
  interface->CloseByCommand();
  Pass();
  interface->CloseByCommand();
  EXPECT_EQ(interface->RetryCount, 0);
  ExpectComesBack();
}

TEST_F(Closing, WorksOnAPortThatNeverListened) {
  Build("IO").CloseByCommand();
  ExpectComesBack();
}

TEST_F(Closing, WakesAPassThatWaitsForAClient) {
  Build("IO").Init();
  Helper pass([&] { Pass(); });
  ASSERT_TRUE(WaitUntil([&] { return State() == 2 && sleeps.Seconds().size() == 1; }));
  EXPECT_TRUE(pass.WaitUntilBlocked());
  interface->CloseByCommand();
  pass.Join();
  EXPECT_TRUE(log.Has("[ERR] socket accept error on IO interface"));
  ExpectComesBack(1);  // the pass that was woken was the first
}

TEST_F(Closing, AClientAcceptedMeanwhileIsDropped) {
  Build("IO").Init();
  Client client(Port());
  interface->Descriptor.State = 2;
  interface->CloseByCommand();
  client.ExpectClosed();
  ExpectComesBack();
}

// The listening socket may go just as the state says that it listens.
TEST_F(Closing, AListeningSocketThatIsGoneIsOpenedAgain) {
  Build("IO").Init();
  interface->ListenSocket.Withdraw();
  Pass();
  EXPECT_TRUE(log.Has("[ERR] socket accept error on IO interface"));
  ExpectComesBack(1);
}

TEST_F(Closing, OpensNoPortWhoseNumberSomebodyElseHas) {
  Build("IO").Init();
  Client client = ServedClient();
  const int number = interface->ClientSocket.Number();
  interface->CloseByCommand();
  const int other = dup(STDERR_FILENO);
  EXPECT_NE(other, number);
  Pass();
  EXPECT_FALSE(interface->ClientSocket.IsOpen());
  char byte = 0;
  EXPECT_EQ(write(other, &byte, 0), 0);  // still open
  close(other);
}

// A child of another thread holds it until its program begins.
TEST_F(Closing, FreesAPortWhoseSocketSomebodyElseStillHolds) {
  Build("IO").Init();
  ServedClient().Close();
  const int other = dup(interface->ListenSocket.Number());
  Pass();
  ExpectComesBack(1);
  EXPECT_FALSE(log.Has("[ERR] couldn't bind socket forIO interface"));
  close(other);
}

TEST_F(Closing, HaltEndsAThreadThatWaitsForAClient) {
  BuildRunning("IO").Init();
  ASSERT_TRUE(WaitUntil([&] { return State() == 2; }));
  interface->Halt();
  EXPECT_EQ(interface->ThreadState(), 2);
}

TEST_F(Closing, HaltEndsAThreadThatServes) {
  BuildRunning("IO").Init();
  Client client(Port());
  ASSERT_TRUE(WaitUntil([&] { return State() == 3; }));
  interface->Halt();
  EXPECT_EQ(interface->ThreadState(), 2);
  client.ExpectClosed();
}

TEST_F(Closing, HaltEndsAThreadThatWasNeverStarted) {
  BuildRunning("IO").Halt();
  EXPECT_EQ(interface->ThreadState(), 2);
  interface->Halt();
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
    interface->CloseByCommand();
  }
  is_over = true;
  clients.Join();
  EXPECT_EQ(log.Count(kClosedByCommand), count);
  EXPECT_TRUE(WaitUntil([&] {
    Client client = Client::Try(Port());
    return client.IsOpen() && client.IsServed() && client.Sees(kGreeting);
  }));
}
