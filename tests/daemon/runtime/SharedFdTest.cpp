#include "runtime/SharedFd.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "kit/Helper.h"

namespace {

int ListeningSocket() {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in loopback{};
  loopback.sin_family = AF_INET;
  loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(fd, reinterpret_cast<const sockaddr*>(&loopback), sizeof loopback);
  listen(fd, 1);
  return fd;
}

bool IsOpenNumber(int fd) { return fcntl(fd, F_GETFD) != -1; }

bool IsDevNull(int fd) {
  struct stat open_file {};
  struct stat null {};
  return fstat(fd, &open_file) == 0 && stat("/dev/null", &null) == 0 &&
         open_file.st_rdev == null.st_rdev && S_ISCHR(open_file.st_mode);
}

struct SocketPair {
  SocketPair() { socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()); }
  std::array<int, 2> ends{};
};

}  // namespace

TEST(SharedFd, StartsClosed) {
  SHARED_FD fd;
  EXPECT_EQ(fd.Number(), -1);
  EXPECT_FALSE(fd.IsOpen());
  EXPECT_FALSE(fd.IsWithdrawn());
  fd.Withdraw();
  fd.Close();
  EXPECT_FALSE(fd.IsWithdrawn());
}

TEST(SharedFd, AFailedOpenLeavesItClosed) {
  SHARED_FD fd;
  fd.Adopt(-1);
  EXPECT_FALSE(fd.IsOpen());
  fd.Close();
}

TEST(SharedFd, CloseFreesTheNumber) {
  SHARED_FD fd;
  const int number = open("/dev/zero", O_RDONLY | O_CLOEXEC);
  fd.Adopt(number);
  EXPECT_EQ(fd.Number(), number);
  EXPECT_TRUE(fd.IsOpen());
  fd.Close();
  EXPECT_FALSE(fd.IsOpen());
  EXPECT_FALSE(IsOpenNumber(number));
}

TEST(SharedFd, WithdrawWakesABlockedAccept) {
  SHARED_FD fd;
  fd.Adopt(ListeningSocket());
  std::atomic<int> client{0};
  Helper owner([&] { client = accept4(fd.Number(), nullptr, nullptr, SOCK_CLOEXEC); });
  EXPECT_TRUE(owner.WaitUntilBlocked());
  fd.Withdraw();
  owner.Join();
  EXPECT_EQ(client, -1);
  EXPECT_TRUE(fd.IsWithdrawn());
  fd.Close();
}

TEST(SharedFd, WithdrawWakesABlockedWrite) {
  const SocketPair pair;
  SHARED_FD fd;
  fd.Adopt(pair.ends[0]);
  std::atomic<int> error{0};
  Helper owner([&] {
    const std::array<char, 4096> data{};
    while (send(fd.Number(), data.data(), data.size(), MSG_NOSIGNAL) > 0) {
    }
    error = errno;
  });
  EXPECT_TRUE(owner.WaitUntilBlocked());
  fd.Withdraw();
  owner.Join();
  EXPECT_TRUE(error == EPIPE || error == ENOTSOCK) << error;
  fd.Close();
  close(pair.ends[1]);
}

TEST(SharedFd, TheOtherSideSeesAWithdrawalAtOnce) {
  const SocketPair pair;
  SHARED_FD fd;
  fd.Adopt(pair.ends[0]);
  fd.Withdraw();
  char byte = 0;
  EXPECT_EQ(read(pair.ends[1], &byte, 1), 0);
  fd.Close();
  close(pair.ends[1]);
}

TEST(SharedFd, AWithdrawnNumberIsNobodyElsesUntilItsOwnerCloses) {
  const SocketPair pair;
  SHARED_FD fd;
  fd.Adopt(pair.ends[0]);
  fd.Withdraw();
  EXPECT_EQ(fd.Number(), pair.ends[0]);
  EXPECT_TRUE(IsDevNull(fd.Number()));
  EXPECT_NE(fcntl(fd.Number(), F_GETFD) & FD_CLOEXEC, 0);
  std::array<int, 64> others{};
  for (int& other : others) {
    other = open("/dev/zero", O_RDONLY | O_CLOEXEC);
    EXPECT_NE(other, fd.Number());
  }
  fd.Close();
  EXPECT_FALSE(IsOpenNumber(pair.ends[0]));
  for (const int other : others) close(other);
  close(pair.ends[1]);
}

TEST(SharedFd, ASecondWithdrawalChangesNothing) {
  const SocketPair pair;
  SHARED_FD fd;
  fd.Adopt(pair.ends[0]);
  const int before = dup(pair.ends[1]);
  close(before);
  fd.Withdraw();
  fd.Withdraw();
  EXPECT_TRUE(fd.IsWithdrawn());
  const int after = dup(pair.ends[1]);
  EXPECT_EQ(after, before);  // no descriptor was left open
  close(after);
  fd.Close();
  close(pair.ends[1]);
}

TEST(SharedFd, AfterAWithdrawalItTakesANewDescriptor) {
  SHARED_FD fd;
  fd.Adopt(ListeningSocket());
  fd.Withdraw();
  fd.Close();
  EXPECT_FALSE(fd.IsWithdrawn());
  fd.Adopt(ListeningSocket());
  EXPECT_TRUE(fd.IsOpen());
  EXPECT_FALSE(fd.IsWithdrawn());
  EXPECT_FALSE(IsDevNull(fd.Number()));
  fd.Close();
}
