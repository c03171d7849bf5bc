#include "text/TextSession.h"

#include <netinet/tcp.h>

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <utility>
#include <vector>

#include "api/DaemonLines.h"
#include "model/Fault.h"
#include "protocol/IoCommand.h"
#include "protocol/LineReader.h"

namespace hub::text {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using protocol::Port;

// The daemon writes one more CR behind each item.
constexpr std::string_view kItemEnd = "\r\n\r";
constexpr std::string_view kExit = "EXIT";
constexpr std::string_view kFarewell = "QELM: Bye Bye...";
constexpr std::string_view kTokenWord = "TOKEN ";
constexpr std::string_view kAskForToken = "QELM: a token is needed: TOKEN ...";

// Of the API's problems.
constexpr int kDoesNotFit = 422;
constexpr int kTooFast = 429;

// Between two looks at the time, while a client has given no token.
constexpr std::chrono::milliseconds kLook{250};

// The other end of a silent connection is asked after so many seconds, then a few times more. What
// it was sent, it must have taken within the same time.
constexpr int kSilence = 30;
constexpr int kProbeEvery = 5;
constexpr int kProbes = 3;
constexpr int kMilliseconds = 1000;

// Until a text that was refused is tried again.
constexpr std::chrono::milliseconds kPause{20};

// Bytes: what the kernel holds for a client, and what it is given at once.
constexpr int kKernelBytes = 16 * 1024;
constexpr size_t kPiece = 16 * 1024;

// Any page can have its reader's browser send a request to this port, with lines of the page's own
// as its body; the line before them is the browser's. One that is too long to be told may be, too.
// The hello of TLS, where a page's own bytes can stand as well, begins with a control byte.
bool IsOfABrowser(std::string_view first_line) {
  constexpr std::string_view kVersions[] = {" HTTP/1.0", " HTTP/1.1", " HTTP/2.0"};
  if (!first_line.empty() && static_cast<unsigned char>(first_line.front()) < ' ') return true;
  return std::ranges::any_of(
      kVersions, [first_line](std::string_view version) { return first_line.ends_with(version); });
}

std::string Item(std::string_view text) { return std::string(text) + std::string(kItemEnd); }

asio::steady_timer NeverExpiring(const asio::any_io_executor& executor) {
  return asio::steady_timer(executor, asio::steady_timer::time_point::max());
}

}  // namespace

TextSession::TextSession(api::House& house, asio::ip::tcp::socket socket, Port port)
    : house_(house),
      socket_(std::move(socket)),
      port_(port),
      has_output_(NeverExpiring(socket_.get_executor())),
      has_receipt_(NeverExpiring(socket_.get_executor())) {
  guest_.emplace(house.traffic, access::Door::kText);
  error_code error;
  socket_.set_option(asio::ip::tcp::no_delay(true), error);
  socket_.set_option(asio::socket_base::send_buffer_size(kKernelBytes), error);
  ProbeWhenSilent();
  const auto peer = socket_.remote_endpoint(error);
  if (!error) caller_.address = peer.address().to_string();
}

// A client that was switched off says no good-bye: it would keep its place for ever.
void TextSession::ProbeWhenSilent() {
  error_code error;
  socket_.set_option(asio::socket_base::keep_alive(true), error);
  const auto set = [this](int option, int value) {
    setsockopt(socket_.native_handle(), IPPROTO_TCP, option, &value, sizeof value);
  };
  set(TCP_KEEPIDLE, kSilence);
  set(TCP_KEEPINTVL, kProbeEvery);
  set(TCP_KEEPCNT, kProbes);
  set(TCP_USER_TIMEOUT, (kSilence + kProbes * kProbeEvery) * kMilliseconds);
}

void TextSession::Start() {
  if (!house_.access.HasAccounts()) {
    caller_.role = access::Role::kAdmin;
    may_enter_ = true;
    Greet();
  } else {
    asio::co_spawn(socket_.get_executor(), EndWithoutToken(shared_from_this()),
                   model::EndOnFault{});
  }
  asio::co_spawn(socket_.get_executor(), Read(shared_from_this()), model::EndOnFault{});
  asio::co_spawn(socket_.get_executor(), Write(shared_from_this()), model::EndOnFault{});
}

void TextSession::Close() {
  error_code error;
  socket_.close(error);
  guest_.reset();
  has_output_.cancel();
  has_receipt_.cancel();
}

// Lines that were read already find a caller without a role, as do those that are tried again.
void TextSession::End() {
  caller_.role = access::Role::kNone;
  Close();
}

void TextSession::Greet() {
  switch (port_) {
    case Port::kCae:
      return Send("QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n\r");
    case Port::kIo:
    case Port::kMon:
      return Send(Item(protocol::TextOf(port_).greeting));
  }
}

void TextSession::Show(std::string_view line) {
  if (may_enter_ && !is_done_) Send(Item(line));
}

void TextSession::Send(std::string_view bytes) {
  if (!IsOpen()) return;
  if (waiting_.size() + bytes.size() > kMostWaiting) return Close();
  waiting_ += bytes;
  has_output_.cancel();
}

asio::awaitable<void> TextSession::Write(Self self) {
  error_code error;
  while (self->IsOpen()) {
    if (self->waiting_.empty()) {
      if (self->is_done_) break;
      co_await self->has_output_.async_wait(asio::redirect_error(asio::use_awaitable, error));
      continue;
    }
    const std::string piece = self->waiting_.substr(0, kPiece);
    const auto buffer = asio::buffer(piece);
    co_await asio::async_write(self->socket_, buffer,
                               asio::redirect_error(asio::use_awaitable, error));
    if (error) break;
    self->waiting_.erase(0, piece.size());
  }
  self->Close();
}

asio::awaitable<void> TextSession::Read(Self self) {
  protocol::LineReader reader(kLongestLine);
  std::vector<std::string> lines;
  std::array<char, 4096> chunk;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by reads
  uint64_t lost = 0;
  error_code error;
  bool has_begun = false;
  bool goes_on = true;
  while (goes_on && self->IsOpen()) {
    const auto buffer = asio::buffer(chunk);
    const size_t count = co_await self->socket_.async_read_some(
        buffer, asio::redirect_error(asio::use_awaitable, error));
    reader.Take({chunk.data(), count}, [&](std::string line) { lines.push_back(std::move(line)); });
    // The daemon takes what stands behind the last line end as a command, too.
    if (error && !reader.Unfinished().empty()) lines.push_back(reader.Unfinished());
    if (!has_begun && !lines.empty()) {
      if (reader.LostLines() > 0 || IsOfABrowser(lines.front())) co_return self->Close();
      has_begun = true;
    }
    for (std::string& line : lines) {
      auto taking = self->Take(std::move(line));
      goes_on = co_await std::move(taking);
      if (!goes_on) break;
    }
    lines.clear();
    if (std::exchange(lost, reader.LostLines()) != reader.LostLines()) self->RefuseLongLine();
    goes_on = goes_on && !error;
  }
  co_await self->Settle();
  self->is_done_ = true;
  self->has_output_.cancel();
}

asio::awaitable<bool> TextSession::Take(std::string line) {
  if (!may_enter_) {
    const bool is_good = LogIn(line);
    co_return is_good;
  }
  // Nobody asks for one (any more), and it is for nobody else.
  if (line.starts_with(kTokenWord)) co_return true;
  if (line == kExit && port_ != Port::kMon) {
    co_await Settle();
    Send(Item(kFarewell));
    co_return false;
  }
  if (port_ == Port::kCae) co_await TakeConsoleLine(std::move(line));
  if (port_ == Port::kIo && !line.empty()) co_await TakeCommand(std::move(line));
  co_return true;
}

asio::awaitable<void> TextSession::EndWithoutToken(Self self) {
  const auto end = self->house_.clock.Steady() + kTokenTime;
  asio::steady_timer pause(self->socket_.get_executor());
  while (!self->may_enter_ && self->IsOpen()) {
    if (self->house_.clock.Steady() >= end) {
      self->Send(Item(kAskForToken));
      self->is_done_ = true;
      co_return;
    }
    pause.expires_after(kLook);
    co_await pause.async_wait(asio::use_awaitable);
  }
}

bool TextSession::LogIn(std::string_view line) {
  if (line.starts_with(kTokenWord)) {
    const std::string_view secret = line.substr(kTokenWord.size());
    if (const auto caller = house_.access.ByToken(secret, caller_.address)) {
      caller_ = *caller;
      may_enter_ = true;
      Greet();
      return true;
    }
  }
  Send(Item(kAskForToken));
  return false;
}

asio::awaitable<void> TextSession::TakeConsoleLine(std::string line) {
  auto running = api::RunConsoleLine(house_, caller_, std::move(line));
  const auto answer = co_await std::move(running);
  if (const auto* good = std::get_if<protocol::Answer>(&answer)) {
    Send(good->wire);
    co_return;
  }
  Refuse(std::get<api::Problem>(answer).detail);
}

void TextSession::Refuse(std::string_view why) {
  Send(Item("CIE: " + std::string(why)));
  Send(Item(">"));
}

void TextSession::RefuseLongLine() {
  const std::string why = "a line of more than " + std::to_string(kLongestLine) + " characters";
  if (may_enter_ && port_ == Port::kCae) Refuse(why);
  if (may_enter_ && port_ == Port::kIo) Send(Item("COE:" + why));
}

// Blocks go on without waiting for each other's receipt, as at the daemon; the bound slows down
// whoever sends faster than the bus. Texts and codes cannot be merged, so each waits for the one
// before it, and the client with it.
asio::awaitable<void> TextSession::TakeCommand(std::string line) {
  error_code error;
  while (commands_under_way_ >= kMostUnderWay)
    co_await has_receipt_.async_wait(asio::redirect_error(asio::use_awaitable, error));
  const auto command = protocol::ParseIoCommand(line);
  const bool is_block = command && std::holds_alternative<protocol::WriteBlock>(*command);
  ++commands_under_way_;
  auto running = RunCommand(shared_from_this(), std::move(line));
  if (is_block)
    asio::co_spawn(socket_.get_executor(), std::move(running), model::EndOnFault{});
  else
    co_await std::move(running);
}

asio::awaitable<void> TextSession::RunCommand(Self self, std::string line) {
  asio::steady_timer pause(self->socket_.get_executor());
  std::optional<api::Problem> problem;
  const model::SteadyTime begin = self->house_.clock.Steady();
  while (true) {
    auto running = api::RunCommandLine(self->house_, self->caller_, line);
    problem = co_await std::move(running);
    if (!problem || problem->status != kTooFast || !self->IsOpen()) break;
    pause.expires_after(kPause);
    co_await pause.async_wait(asio::use_awaitable);
  }
  self->house_.traffic.Count(access::Door::kText, problem ? &*problem : nullptr,
                             self->house_.clock.Steady() - begin);
  --self->commands_under_way_;
  self->has_receipt_.cancel();
  if (!problem) co_return;
  const bool is_illegal = problem->status == kDoesNotFit;
  const std::string what = is_illegal ? "Illegal command" : problem->detail;
  self->Send(Item("COE:" + what + " -> " + line));
}

asio::awaitable<void> TextSession::Settle() {
  error_code error;
  while (commands_under_way_ > 0 && IsOpen())
    co_await has_receipt_.async_wait(asio::redirect_error(asio::use_awaitable, error));
}

}  // namespace hub::text
