// What passes between a client and the queues, over a pair of sockets.
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "support/SocketTest.h"

namespace {

class Transfer : public SocketTest {
 protected:
  ~Transfer() override {
    if (peer >= 0) close(peer);
  }

  // A connected interface; each of its writes is one packet to the peer, or part of
  // a stream.
  void Connect(int data_mode, int type = SOCK_SEQPACKET) {
    Build("IO", data_mode);
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()), 0);
    interface->ClientSocket.Adopt(ends[0]);
    peer = ends[1];
    StoreShared<int>(interface->Descriptor.State, 3);
  }

  void PeerSends(const std::string& bytes) const {
    ASSERT_EQ(send(peer, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }

  // The next write as a whole; empty where there was none.
  std::string NextWrite() const {
    std::array<char, 2048> buffer{};
    const ssize_t count = recv(peer, buffer.data(), buffer.size(), MSG_DONTWAIT);
    return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : "";
  }

  void PeerLeaves() {
    close(peer);
    peer = -1;
  }

  int peer = -1;
};

}  // namespace

TEST_F(Transfer, WhatTheClientSendsIsQueuedAsItCame) {
  Connect(kTextData);
  PeerSends("HELP\r\n");
  Pass();
  EXPECT_EQ(TakeTexts(received), Texts{"HELP\r\n"});
}

TEST_F(Transfer, OneReadIsOneItem) {
  Connect(kTextData, SOCK_STREAM);
  PeerSends("HELP\r\nDRV");
  Pass();
  PeerSends("VER\r\n");
  Pass();
  EXPECT_EQ(TakeTexts(received), (Texts{"HELP\r\nDRV", "VER\r\n"}));
}

TEST_F(Transfer, ABurstIsCutAfter255Bytes) {
  Connect(kTextData, SOCK_STREAM);
  PeerSends(std::string(255, 'a') + std::string(45, 'b'));
  Pass();
  Pass();
  Pass();
  EXPECT_EQ(TakeTexts(received), (Texts{std::string(255, 'a'), std::string(45, 'b')}));
}

TEST_F(Transfer, AZeroByteEndsATextItem) {
  Connect(kTextData);
  PeerSends(std::string("AB\0CD", 5));
  Pass();
  PeerSends(std::string("\0CD", 3));
  Pass();
  EXPECT_EQ(TakeAll(received), (std::vector<QList>{List("AB"), QList()}));
}

TEST_F(Transfer, NoInputQueuesNothing) {
  Connect(kTextData);
  Pass();
  EXPECT_TRUE(received.IsEmpty());
  EXPECT_EQ(State(), 3);
}

TEST_F(Transfer, AnItemAndItsCarriageReturnAreOneWrite) {
  Connect(kTextData);
  interface->OutQueue->ToQueue(List("OK"));
  Pass();
  EXPECT_EQ(NextWrite(), "OK\r");
}

TEST_F(Transfer, OneItemGoesOutInAPass) {
  Connect(kTextData);
  for (const char* text : {"1", "2", "3"}) interface->OutQueue->ToQueue(List(text));
  for (const char* text : {"1\r", "2\r", "3\r"}) {
    Pass();
    EXPECT_EQ(NextWrite(), text);
    EXPECT_EQ(NextWrite(), "");
  }
}

TEST_F(Transfer, AnEmptyItemIsACarriageReturn) {
  Connect(kTextData);
  interface->OutQueue->ToQueue({});
  Pass();
  EXPECT_EQ(NextWrite(), "\r");
}

TEST_F(Transfer, ZeroBytesGoOutToo) {
  Connect(kTextData);
  interface->OutQueue->ToQueue(List({'A', 0, 'B'}));
  Pass();
  EXPECT_EQ(NextWrite(), std::string("A\0B\r", 4));
}

TEST_F(Transfer, ALongItemGoesOutWhole) {
  Connect(kTextData);
  interface->OutQueue->ToQueue(QList(700, 'x'));
  Pass();
  EXPECT_EQ(NextWrite(), std::string(700, 'x') + "\r");
}

TEST_F(Transfer, BinaryItemsHaveTheirLengthInFront) {
  Connect(kBinaryData);
  interface->OutQueue->ToQueue(List({'A', 0, 'B'}));
  interface->OutQueue->ToQueue({});
  interface->OutQueue->ToQueue(QList(258, 'x'));
  Pass();
  EXPECT_EQ(NextWrite(), std::string("\x03"
                                     "A\0B",
                                     4));
  Pass();
  EXPECT_EQ(NextWrite(), std::string("\0", 1));
  Pass();
  EXPECT_EQ(NextWrite(), "\x02" + std::string(258, 'x'));
}

TEST_F(Transfer, ABinaryReadIsCountedByItsFirstByte) {
  Connect(kBinaryData);
  PeerSends(std::string("\x03\x41\x00\x42zz", 6));
  Pass();
  EXPECT_EQ(TakeAll(received), std::vector<QList>{List({0x41, 0x00, 0x42})});
}

TEST_F(Transfer, WhatABinaryCountPromisesTooMuchIsZero) {
  Connect(kBinaryData);
  PeerSends("\xFFz");
  Pass();
  QList expected = List("z");
  expected.resize(255);
  EXPECT_EQ(TakeAll(received), std::vector<QList>{expected});
}

TEST_F(Transfer, AnItemTakenAsTheClientGoesIsLost) {
  Connect(kTextData);
  PeerLeaves();
  interface->OutQueue->ToQueue(List("1"));
  interface->OutQueue->ToQueue(List("2"));
  Pass();
  EXPECT_EQ(State(), 4);
  EXPECT_EQ(log.Lines(), (Texts{"[INF] connection is closed by client on IO interface",
                                "[ERR] socket write error on IO interface"}));
  EXPECT_EQ(TakeTexts(*interface->OutQueue), Texts{"2"});
}

TEST_F(Transfer, AWriteThatFailsIsLoggedAndRaisesNoSignal) {
  Connect(kTextData, SOCK_STREAM);
  shutdown(peer, SHUT_RD);
  interface->OutQueue->ToQueue(List("lost"));
  Pass();
  EXPECT_EQ(log.Lines(), Texts{"[ERR] socket write error on IO interface"});
  EXPECT_TRUE(interface->OutQueue->IsEmpty());
  EXPECT_EQ(State(), 3);
}

// No descriptor may be waited for, so the log cannot say it either.
TEST_F(Transfer, AWaitThatFailsStillSends) {
  Connect(kTextData);
  PeerSends("not read");
  interface->OutQueue->ToQueue(List("sent"));
  {
    const NoDescriptors limit;
    Pass();
  }
  EXPECT_EQ(NextWrite(), "sent\r");
  EXPECT_TRUE(received.IsEmpty());
}

TEST_F(Transfer, PacesItselfByTheThreadDelay) {
  Connect(kTextData);
  for (const int delay : {0, -2147483647, 1}) {
    StoreShared(interface->Descriptor.ThreadDelay, delay);
    Pass();
  }
  EXPECT_EQ(State(), 3);
}
