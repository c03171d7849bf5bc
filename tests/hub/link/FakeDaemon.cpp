#include "FakeDaemon.h"

#include <gtest/gtest.h>

namespace hub::link {

namespace {

constexpr Port kAll[] = {Port::kCae, Port::kIo, Port::kMon};

constexpr char kCards[] =
    "DTI:0x0:EMPTY\r\n\r"
    "DTI:0x1:EMPTY\r\n\r"
    "DTI:0x2:EMPTY\r\n\r"
    "DTI:0x3:16 channel DIGITAL INPUT\r\n\r"
    "DTI:0x4:3 channel DC MOTOR CONTROLLER\r\n\r"
    "DTI:0x5:16 channel DIGITAL OUTPUT\r\n\r"
    "DTI:0x6:EMPTY\r\n\r"
    "DTI:0x7:EMPTY\r\n\r"
    "DTI:0x8:EMPTY\r\n\r"
    "DTI:0x9:EMPTY\r\n\r"
    "DTI:0xA:EMPTY\r\n\r"
    "DTI:0xB:EMPTY\r\n\r"
    "DTI:0xC:EMPTY\r\n\r"
    "DTI:0xD:EMPTY\r\n\r"
    "DTI:0xE:ALPHANUMERIC LCD CONTROLLER\r\n\r"
    "DTI:0xF:EMPTY\r\n\r";

}  // namespace

FakeDaemon::FakeDaemon() {
  for (auto& listener : listeners_) listener = std::make_unique<Listener>();
}

std::array<uint16_t, 3> FakeDaemon::Ports() const {
  std::array<uint16_t, 3> ports{};
  for (size_t i = 0; i < ports.size(); ++i) ports[i] = static_cast<uint16_t>(listeners_[i]->Port());
  return ports;
}

void FakeDaemon::Accept(Port port) { client(port) = listener(port).Accept(); }

void FakeDaemon::AcceptAll() {
  for (const Port port : kAll) Accept(port);
}

void FakeDaemon::Greet(Port port) {
  if (port == Port::kCae)
    Say(port, "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
  if (port == Port::kIo) Say(port, "QELM IO interface is ready\r\n\r");
  if (port == Port::kMon) Say(port, "QELM MON interface is ready\r\n\r");
}

void FakeDaemon::GreetAll() {
  for (const Port port : kAll) Greet(port);
}

void FakeDaemon::Answer(const std::string& line, const std::string& lines) {
  EXPECT_EQ(client(Port::kCae).ReadUntil("\r\n"), line + "\r\n");
  Say(Port::kCae, lines + ">\r\n\r");
}

void FakeDaemon::AnswerFirst() {
  Answer("DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r");
  AnswerPolling();
  AnswerCards();
  AnswerInputs();
}

void FakeDaemon::AnswerCards() { Answer("DISCOVER", Table("DISCOVER LIST:")); }

std::string FakeDaemon::Table(const std::string& title) { return title + "\r\n\r" + kCards; }

void FakeDaemon::AnswerPolling() {
  Answer("POLLSTATE", "CIA: GLOBAL POLLING IS ENABLED\r\n\rPTI:0x3:ON\r\n\r");
}

void FakeDaemon::AnswerInputs() {
  for (const char* block : {"0", "1"})
    Answer(std::string("GETLASTINPST:3=") + block,
           "CIA: LAST INPUT STATE SENT ON IO INTERFACE\r\n\r");
}

void FakeDaemon::ExpectCommand(const std::string& line) {
  EXPECT_EQ(client(Port::kIo).ReadUntil("\r\n"), line + "\r\n");
}

bool FakeDaemon::IsClosed(Port port) {
  while (client(port).ReadMore()) {
  }
  return !client(port).TrySend("x") || !client(port).TrySend("x");
}

void FakeDaemon::CloseAll() {
  for (const Port port : kAll) client(port).Close();
}

}  // namespace hub::link
