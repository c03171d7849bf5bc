// What the clients do.
#include <algorithm>
#include <cstdio>
#include <utility>

#include "Stateful.h"

namespace {

constexpr char kIoGreeting[] = "QELM IO interface is ready\r\n\r";
constexpr char kCaeGreeting[] = "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r";
constexpr char kMonGreeting[] = "QELM MON interface is ready\r\n\r";
constexpr char kUnknown[] = "CIE: UNKNOWN COMMAND \r\n>\r\n\r";
constexpr int kHelpItems = 70;  // its lines and the prompt

int CountItems(const std::string& text) {
  int items = 0;
  for (std::size_t at = text.find("\r\n\r"); at != std::string::npos;
       at = text.find("\r\n\r", at)) {
    ++items;
    at += 3;
  }
  return items;
}

}  // namespace

void Stateful::IoConnect(const std::string&) {
  if (io_up_) return;
  io_ = Dial(kIo);
  // What the last client did not get comes before the greeting.
  std::string left = io_.ReadUntil(kIoGreeting);
  left.erase(left.size() - std::min(left.size(), sizeof kIoGreeting - 1));
  io_up_ = true;
  for (std::size_t end = 0; (end = left.find("\r\n\r")) != std::string::npos;) {
    TakeIo(left.substr(0, end + 3));
    left.erase(0, end + 3);
  }
}

void Stateful::TakeIo(const std::string& item) {
  unsigned card = 0, block = 0, value = 0;
  if (item.starts_with("QELM: Bye Bye")) return;
  ++counts_["(reports)"];
  if (std::sscanf(item.c_str(), "a%1Xb%1Xd%2X", &card, &block, &value) == 3) {
    for (Input& input : inputs_) {
      if (std::stoul(input.card, nullptr, 16) != card || input.block != static_cast<int>(block))
        continue;
      const Complaint complaint = input.state.TakeReport(static_cast<int>(value));
      EXPECT_EQ(complaint, "") << item;
      return;
    }
  }
  EXPECT_EQ(item, kSentinel) << "nobody asked for it";
}

// With an address: only those of this card.
void Stateful::AwaitReports(const std::string& card) {
  const auto is_due = [&](const Input& input) {
    return input.state.IsDue() && (card.empty() || input.card == card);
  };
  while (io_up_ && !HasFailed() && std::any_of(inputs_.begin(), inputs_.end(), is_due)) {
    HealLine();
    WaitUntil([this] { return io_.IsServed(); }, kLinkPatience);
    TakeIo(io_.ReadUntil("\r\n\r"));
  }
}

void Stateful::LoseIo() {
  io_up_ = false;
  for (Input& input : inputs_) input.state.BecomeUnheard();
}

// A message is accepted, and no part of another, when the daemon has read it.
void Stateful::SendIo(const std::string& message) {
  io_.Send(message);
  EXPECT_TRUE(WaitUntil([] { return AllIsRead(kIo); })) << "the daemon does not read";
}

// All that IO sent has been handled: the commands of IO are handled in order, and this
// one is answered on CAE.
void Stateful::Fence() {
  if (!io_up_ || !cae_up_) return;
  SendIo("fence\r\n");
  cae.ExpectBytes("COE:Illegal command -> fence\r\n\r>\r\n\r");
}

void Stateful::IoReset(const std::string&) {
  if (!io_up_) return;
  Fence();
  io_.Reset();
  LoseIo();
}

void Stateful::IoClose(const std::string&) {
  if (!io_up_) return;
  Fence();
  io_.Close();
  LoseIo();
}

void Stateful::IoExit(const std::string&) {
  if (!io_up_) return;
  SendIo("EXIT\r\n");
  std::string item;
  do {
    item = io_.ReadUntil("\r\n\r");
    TakeIo(item);
  } while (!HasFailed() && item != "QELM: Bye Bye...\r\n\r");
  io_.ExpectClosed();
  LoseIo();
}

void Stateful::IoWrite(const std::string& commands) {
  if (!io_up_) return;
  std::string message;
  for (const std::string& command : Words(commands)) {
    // To a card that is not surely there a stream is an illegal command, or not.
    if (!sure_[command.substr(1, 1)] && command[2] != 'b') continue;
    message += command + "\r\n";
    Accept(command, sure_[command.substr(1, 1)]);
  }
  SendIo(message);
}

// The connection is reset before the command may have been read.
void Stateful::IoThrow(const std::string& command) {
  if (!io_up_ || !sure_[command.substr(1, 1)]) return;
  Fence();
  Accept(command, false);
  io_.Send(command + "\r\n");
  io_.Reset();
  LoseIo();
}

void Stateful::Accept(const std::string& command, bool must) {
  OutputCard& card = outputs_[command.substr(1, 1)];
  ++counts_["(writes)"];
  switch (command[2]) {
    case 'b':
      return card.Accept(command[3] - '0', std::stoi(command.substr(5), nullptr, 16), must);
    case 's':
      return card.Accept(1, std::stoi(command.substr(5), nullptr, 16), must);
    default:
      return card.Accept(3, command.back(), must);
  }
}

void Stateful::IoNonsense(const std::string& text) {
  if (!io_up_) return;
  SendIo(text + "\r\n");
  if (cae_up_) {
    cae.ExpectBytes("COE:Illegal command -> " + text + "\r\n\r>\r\n\r");
  } else {
    owed_on_cae_ = true;
  }
}

void Stateful::CaeConnect(const std::string&) {
  if (cae_up_) return;
  cae = Dial(kCae);
  cae.ReadUntil(kCaeGreeting);
  cae_up_ = true;
  if (!std::exchange(owed_on_cae_, false)) return;
  // Complaints about what IO sent meanwhile came before the greeting, or come now.
  IoConnect("");
  SendIo("fence\r\n");
  cae.ReadUntil("COE:Illegal command -> fence\r\n\r>\r\n\r");
}

void Stateful::CaeReset(const std::string&) {
  if (!cae_up_) return;
  Fence();
  cae.Reset();
  cae_up_ = false;
}

void Stateful::CaeExit(const std::string&) {
  if (!cae_up_) return;
  Fence();
  cae.Send("EXIT\r\n");
  cae.ExpectBytes("QELM: Bye Bye...\r\n\r");
  cae.ExpectClosed();
  cae_up_ = false;
}

std::string Stateful::SayOnCae(const std::string& line) {
  ++counts_["(CAE lines)"];
  cae.Send(line + "\r\n");
  return cae.ReadUntil(">\r\n\r");
}

void Stateful::CaeSay(const std::string& line) {
  if (!cae_up_) return;
  const std::map<std::string, std::string> answers{
      {"DRVVER", "CIA: DRIVER VERSION 1.20\r\n\r>\r\n\r"},
      {"VALAMI", kUnknown},
      {"", kUnknown},
      {"SPEED=0", "CIE: Parameter is out of range (1..100)\r\n\r>\r\n\r"},
      {"GETLASTINPST:0=0",
       "CIE: THIS COMMAND IS VALID ON ANALOG OR DIGITAL INPUT CARD ONLY\r\n\r>\r\n\r"}};
  const std::map<std::string, int> items{
      {"HELP", kHelpItems}, {"IOEXAMPLES", 23}, {"DISCOVER", 18}};
  const std::string answer = SayOnCae(line);
  if (const auto found = answers.find(line); found != answers.end()) {
    EXPECT_EQ(answer, found->second) << line;
  } else if (const auto counted = items.find(line); counted != items.end()) {
    EXPECT_EQ(CountItems(answer), counted->second) << line << " is answered " << answer;
  } else {
    EXPECT_EQ(line, "POLLSTATE");
    const std::string state = polling_ ? "ENABLED" : "DISABLED";
    EXPECT_TRUE(answer.starts_with("CIA: GLOBAL POLLING IS " + state + "\r\n\r")) << answer;
  }
}

void Stateful::CaeStopReading(const std::string& times) {
  if (!cae_up_) return;
  const int count = std::stoi(times);
  for (int i = 0; i < count; ++i) {
    cae.Send("HELP\r\n");
    EXPECT_TRUE(WaitUntil([] { return AllIsRead(kCae); })) << "the daemon does not read";
  }
  for (int i = 0; i < count && !HasFailed(); ++i) {
    EXPECT_EQ(CountItems(cae.ReadUntil(">\r\n\r")), kHelpItems);
  }
}

// What was set is read back, where the card answers in time at all.
void Stateful::CaeAsk(const std::string& value) {
  if (!cae_up_ || !sure_["4"]) return;
  const std::string set = SayOnCae("SETMSR1:4=" + value);
  const std::string got = SayOnCae("GETMSR1:4");
  if (set != "CIE: PARAM WRITE ERROR\r\n\r>\r\n\r") {
    EXPECT_EQ(set,
              "CIA: MSR value of the card is SET\r\n\rMPS:0x4:MSR1:0x" + value + "\r\n\r>\r\n\r");
    if (got != "CIE: PARAM READ ERROR\r\n\r>\r\n\r") {
      EXPECT_EQ(got, "CIA: MSR value is GOT from card\r\n\rMSR1:0x4:0x" + value + "\r\n\r>\r\n\r");
      ++counts_["(settings read back)"];
    }
  }
}

void Stateful::CaeSpeed(const std::string& percent) {
  if (!cae_up_) return;
  EXPECT_EQ(SayOnCae("SPEED=" + percent), "CIA: SPEED IS SET to " + percent + "%\r\n\r>\r\n\r");
}

void Stateful::MonConnect(const std::string&) {
  if (mon_up_) return;
  mon_ = Dial(kMon);
  mon_.ReadUntil(kMonGreeting);
  mon_up_ = true;
}

void Stateful::MonReset(const std::string&) {
  if (mon_up_) mon_.Reset();
  mon_up_ = false;
}
