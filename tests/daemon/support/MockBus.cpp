#include "support/MockBus.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <array>

#include "support/Bytes.h"

extern "C" ssize_t __real_read(int fd, void* buffer, size_t size);

MockBus::Exchange& MockBus::Exchange::Reply(const QList& payload) {
  QList wire = Bytes({static_cast<int>(payload.size())});
  wire.insert(wire.end(), payload.begin(), payload.end());
  return Pieces({wire});
}

MockBus::Exchange& MockBus::Exchange::Pieces(std::vector<QList> pieces) {
  Replies = std::move(pieces);
  return *this;
}

MockBus::Exchange& MockBus::Exchange::AtRead(long read) {
  FirstRead = read;
  return *this;
}

MockBus::MockBus() : Hook([this] { TakeTurn(); }) {
  std::array<char, 64> name{};
  termios raw{};
  cfmakeraw(&raw);
  openpty(&Master, &Slave, name.data(), &raw, nullptr);
  Name = name.data();
  fcntl(Master, F_SETFL, O_NONBLOCK);
}

MockBus::~MockBus() {
  close(Slave);
  close(Master);
  EXPECT_TRUE(Script.empty()) << Script.size() << " frames did not come";
}

MockBus::Exchange& MockBus::ExpectFrame(QList payload) {
  return Script.emplace_back(std::move(payload));
}

void MockBus::Send(const QList& wire) {
  const std::string bytes = Text(wire);
  EXPECT_EQ(write(Master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string MockBus::ListedName() const {
  const std::string number = Name.substr(Name.rfind('/') + 1);
  return "pts" + std::string(8 - 3 - number.size(), '/') + number;
}

int MockBus::Open() const { return open(Name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); }

void MockBus::TakeTurn() {
  std::array<char, 4096> buffer{};
  const ssize_t count = __real_read(Master, buffer.data(), buffer.size());
  if (count > 0) TakeFrame({buffer.begin(), buffer.begin() + count});
  ++ReadCount;
  if (Pieces.empty() || ReadCount < FirstRead) return;
  Send(Pieces.front());
  Pieces.pop_front();
}

void MockBus::TakeFrame(const QList& wire) {
  ASSERT_EQ(wire.size(), 1U + static_cast<unsigned char>(wire.front()));
  ASSERT_FALSE(Script.empty()) << "frame of " << wire.size() - 1 << " bytes not expected";
  const Exchange exchange = Script.front();
  Script.pop_front();
  EXPECT_EQ(QList(std::next(wire.begin()), wire.end()), exchange.Payload);
  Pieces.assign(exchange.Replies.begin(), exchange.Replies.end());
  FirstRead = exchange.FirstRead;
  ReadCount = 0;
}
