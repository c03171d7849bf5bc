// One client of a text port: its lines in their order, and what it is sent.
//
// It lives as long as one of its two coroutines, the one that reads or the one that writes. Output
// waits in memory up to 64 KB; a client that does not read is closed there.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "access/Role.h"
#include "api/Api.h"
#include "protocol/Greeting.h"

namespace hub::text {

class TextSession : public std::enable_shared_from_this<TextSession> {
 public:
  static constexpr size_t kMostWaiting = 64 * 1024;  // bytes that were not read yet
  static constexpr size_t kMostUnderWay = 64;        // commands without their receipt
  static constexpr size_t kLongestLine = 1024;       // bytes
  static constexpr std::chrono::seconds kTokenTime{30};

  TextSession(api::House& house, boost::asio::ip::tcp::socket socket, protocol::Port port);

  void Start();
  void Close();
  void End();  // closes, and acts on nothing more
  bool IsOpen() const { return socket_.is_open(); }

  // A line for the client: what is not for it yet (no token) is dropped.
  void Show(std::string_view line);

  const std::string& Account() const { return caller_.account; }  // "token:NAME", or empty

 private:
  using Self = std::shared_ptr<TextSession>;

  static boost::asio::awaitable<void> Read(Self self);
  static boost::asio::awaitable<void> Write(Self self);
  static boost::asio::awaitable<void> EndWithoutToken(Self self);
  static boost::asio::awaitable<void> RunCommand(Self self, std::string line);

  boost::asio::awaitable<bool> Take(std::string line);  // false: the client is done
  boost::asio::awaitable<void> TakeConsoleLine(std::string line);
  boost::asio::awaitable<void> TakeCommand(std::string line);
  boost::asio::awaitable<void> Settle();  // until every command has its receipt
  bool LogIn(std::string_view line);
  void Refuse(std::string_view why);  // a line of the console
  void RefuseLongLine();
  void Greet();
  void ProbeWhenSilent();
  void Send(std::string_view bytes);

  api::House& house_;
  std::optional<api::Guest> guest_;  // while it is open
  boost::asio::ip::tcp::socket socket_;
  protocol::Port port_;
  access::Caller caller_;
  bool may_enter_ = false;  // no token is asked for, or it was good
  std::string waiting_;     // to be written, with what is on its way to the kernel
  size_t commands_under_way_ = 0;
  bool is_done_ = false;                  // nothing is read any more; closed when all is written
  boost::asio::steady_timer has_output_;  // never expires: cancelled to wake the writer
  boost::asio::steady_timer has_receipt_;
};

}  // namespace hub::text
