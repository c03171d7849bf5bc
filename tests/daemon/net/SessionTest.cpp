// A session from the listening socket to the client's leaving.
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "kit/Helper.h"
#include "support/SocketTest.h"

namespace {

class Session : public SocketTest {
 protected:
  // The end of the connection reaches the daemon in its own time.
  void PassUntilClosed() {
    EXPECT_TRUE(WaitUntil([this] {
      if (State() == 3) Pass();
      return State() == 4;
    }));
  }
};

int OptionOf(int fd, int level, int option) {
  int value = 0;
  socklen_t length = sizeof value;
  getsockopt(fd, level, option, &value, &length);
  return value;
}

}  // namespace

TEST_F(Session, APassThatIsNotStartedDoesNothing) {
  Build("IO");
  Pass();
  EXPECT_EQ(State(), 0);
  EXPECT_EQ(log.Lines(), Texts());
}

TEST_F(Session, InitListens) {
  Build("CAE");
  EXPECT_TRUE(interface->Init());
  EXPECT_EQ(State(), 1);
  EXPECT_EQ(log.Lines(), Texts{"[INF] CAE interface listening on port " + PortText()});
  EXPECT_NE(fcntl(interface->ListenSocket.Number(), F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_FALSE(Refuses(Port()));
}

TEST_F(Session, APortThatIsTakenIsLoggedAndListenedOnElsewhere) {
  Build("MON");
  const int other = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in taken{};
  taken.sin_family = AF_INET;
  taken.sin_port = htons(static_cast<uint16_t>(Port()));
  ASSERT_EQ(bind(other, reinterpret_cast<const sockaddr*>(&taken), sizeof taken), 0);
  ASSERT_EQ(listen(other, 1), 0);
  EXPECT_TRUE(interface->Init());
  EXPECT_EQ(State(), 1);
  EXPECT_EQ(log.Lines(), (Texts{"[ERR] couldn't bind socket forMON interface",
                                "[INF] MON interface listening on port " + PortText()}));
  close(other);
}

TEST_F(Session, WithoutADescriptorInitFails) {
  Build("IO");
  {
    const NoDescriptors limit;
    EXPECT_FALSE(interface->Init());
  }
  EXPECT_EQ(State(), 0);
}

TEST_F(Session, GreetsItsClientThreeSecondsAfterListening) {
  struct Case {
    const char* name;
    std::string greeting;
  };
  for (const Case& c :
       {Case{"CAE", "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r"},
        Case{"IO", "QELM IO interface is ready\r\n\r"},
        Case{"MON", "QELM MON interface is ready\r\n\r"}}) {
    Build(c.name);
    interface->Init();
    Client client(Port());
    Pass();
    client.ExpectBytes(c.greeting);
    EXPECT_EQ(State(), 3);
    Pass();
    client.ExpectSilence();
  }
  EXPECT_EQ(sleeps.Seconds(), (Texts{"3", "3", "3"}));
}

TEST_F(Session, AnotherNameHasNoGreeting) {
  Build("SPARE");
  interface->Init();
  Client client(Port());
  Pass();
  EXPECT_EQ(State(), 3);
  EXPECT_TRUE(interface->OutQueue->IsEmpty());
  client.ExpectSilence();
}

TEST_F(Session, LogsTheClientWithThePortsBytesSwapped) {
  Build("IO");
  interface->Init();
  Client client(Port());
  Pass();
  const int port = client.LocalPort();
  const int swapped = port % 256 * 256 + port / 256;
  EXPECT_EQ(log.Lines(), (Texts{"[INF] IO interface listening on port " + PortText(),
                                "[INF] IO interface is waiting for incoming connection",
                                "[INF] client is connected on IO interface from 127.0.0.1:" +
                                    std::to_string(swapped)}));
}

TEST_F(Session, AClientsSocketIsPromptAndStaysWithTheDaemon) {
  Build("IO");
  interface->Init();
  Client client = ServedClient();
  const int fd = interface->ClientSocket.Number();
  EXPECT_NE(OptionOf(fd, IPPROTO_TCP, TCP_NODELAY), 0);
  EXPECT_NE(fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(Session, WhatWaitedGoesOutAheadOfTheGreeting) {
  Build("IO");
  interface->Init();
  interface->OutQueue->ToQueue(List("left"));
  Client client(Port());
  Pass();
  client.ExpectBytes("left\r");
  Pass();
  client.ExpectBytes(kGreeting);
}

TEST_F(Session, AClientThatLeavesClosesThePort) {
  Build("IO");
  interface->Init();
  ServedClient().Close();
  PassUntilClosed();
  EXPECT_EQ(log.Lines().back(), "[INF] connection is closed by client on IO interface");
  EXPECT_FALSE(interface->ClientSocket.IsOpen());
  EXPECT_FALSE(interface->ListenSocket.IsOpen());
  EXPECT_TRUE(Refuses(Port()));
}

TEST_F(Session, ListensAgainOnTheSecondClosedPass) {
  Build("IO");
  interface->Init();
  ServedClient().Close();
  PassUntilClosed();
  EXPECT_EQ(interface->RetryCount, 1);  // the pass that saw the client go counts
  Pass();
  EXPECT_EQ(State(), 1);
  EXPECT_EQ(sleeps.Seconds(), (Texts{"3", "2", "2"}));
  EXPECT_EQ(log.Lines().back(), "[INF] IO interface listening on port " + PortText());
  ServedClient();
}

TEST_F(Session, AClosedPortThatDoesNotOpenIsTriedOnEveryPass) {
  Build("IO");
  interface->Descriptor.State = 4;
  interface->RetryCount = 1;
  {
    const NoDescriptors limit;
    Pass();
  }
  EXPECT_EQ(State(), 4);
  EXPECT_EQ(interface->RetryCount, 2);
  Pass();
  EXPECT_EQ(State(), 1);
}

TEST_F(Session, ASecondClientIsNotServedAndDroppedAtTheClose) {
  Build("IO");
  interface->Init();
  Client first = ServedClient();
  Client second(Port());
  Pass();
  second.ExpectSilence();
  first.Close();
  PassUntilClosed();
  second.ExpectClosed();
}

TEST_F(Session, LogsASignal) {
  Build("CAE");
  interface->mf_SIGhandler(15);
  interface->mf_SIGhandler(2);
  EXPECT_EQ(log.Lines(),
            (Texts{"[INF] signal 15 on CAE interface", "[INF] signal 2 on CAE interface"}));
}

TEST_F(Session, TheOddlyNamedInterfaceNeverEndsItsPass) {
  BuildRunning("DMI");
  EXPECT_TRUE(log.WaitFor("[INF] On task DMI interface"));
  interface.reset();
  EXPECT_EQ(log.Lines(), Texts{"[INF] On task DMI interface"});
}

TEST_F(Session, RunsByItselfFromListeningToListeningAgain) {
  BuildRunning("IO").Init();
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(WaitUntil([&] {
      Client client = Client::Try(Port());
      return client.IsOpen() && client.IsServed() && client.Sees(kGreeting);
    }));
  }
  EXPECT_GE(log.Count("[INF] connection is closed by client on IO interface"), 2);
}
