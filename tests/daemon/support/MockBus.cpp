#include "support/MockBus.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <array>

#include "support/Lists.h"

extern "C" ssize_t __real_read(int fd, void* buffer, size_t size);

MockBus::Exchange& MockBus::Exchange::Reply(const QList& payload) {
  QList wire = List({static_cast<int>(payload.size())});
  wire.insert(wire.end(), payload.begin(), payload.end());
  return Pieces({wire});
}

MockBus::Exchange& MockBus::Exchange::Pieces(std::vector<QList> pieces) {
  replies_ = std::move(pieces);
  return *this;
}

MockBus::Exchange& MockBus::Exchange::AtRead(long read) {
  first_read_ = read;
  return *this;
}

MockBus::MockBus() : hook_([this] { TakeTurn(); }) {
  std::array<char, 64> name{};
  termios raw{};
  cfmakeraw(&raw);
  openpty(&master_, &slave_, name.data(), &raw, nullptr);
  name_ = name.data();
  fcntl(master_, F_SETFL, O_NONBLOCK);
}

MockBus::~MockBus() {
  close(slave_);
  close(master_);
  EXPECT_TRUE(script_.empty()) << script_.size() << " frames did not come";
}

MockBus::Exchange& MockBus::ExpectFrame(QList payload) {
  return script_.emplace_back(std::move(payload));
}

void MockBus::Send(const QList& wire) {
  const std::string bytes = Text(wire);
  EXPECT_EQ(write(master_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string MockBus::ListedName() const {
  const std::string number = name_.substr(name_.rfind('/') + 1);
  return "pts" + std::string(8 - 3 - number.size(), '/') + number;
}

int MockBus::Open() const {
  return open(name_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
}

void MockBus::TakeTurn() {
  std::array<char, 4096> buffer{};
  const ssize_t count = __real_read(master_, buffer.data(), buffer.size());
  if (count > 0) TakeFrame({buffer.begin(), buffer.begin() + count});
  ++read_count_;
  if (pieces_.empty() || read_count_ < first_read_) return;
  Send(pieces_.front());
  pieces_.pop_front();
}

void MockBus::TakeFrame(const QList& wire) {
  ASSERT_EQ(wire.size(), 1U + static_cast<unsigned char>(wire.front()));
  ASSERT_FALSE(script_.empty()) << "frame of " << wire.size() - 1 << " bytes not expected";
  const Exchange exchange = script_.front();
  script_.pop_front();
  EXPECT_EQ(QList(std::next(wire.begin()), wire.end()), exchange.payload_);
  pieces_.assign(exchange.replies_.begin(), exchange.replies_.end());
  first_read_ = exchange.first_read_;
  read_count_ = 0;
}
