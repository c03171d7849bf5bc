// The daemon's three ports, played by the test: it says what the real one would say, or what it
// never would.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "kit/Listener.h"
#include "protocol/Greeting.h"

namespace hub::link {

using protocol::Port;

class FakeDaemon {
 public:
  FakeDaemon();

  std::array<uint16_t, 3> Ports() const;

  void Accept(Port port);  // the next client of the port
  void AcceptAll();
  void Greet(Port port);
  void GreetAll();
  void Say(Port port, const std::string& bytes) { client(port).Send(bytes); }
  // A line of the console comes, and is answered with these lines and a prompt.
  void Answer(const std::string& line, const std::string& lines);
  // All that a link asks first: the version, what is polled, the cards, what inputs show.
  void AnswerFirst();
  void AnswerPolling();
  void AnswerCards();
  void AnswerInputs();
  // Inputs at 3, motors at 4, lamps at 5, a display at E.
  static std::string Table(const std::string& title);
  // Up to here the link has written this to IO.
  void ExpectCommand(const std::string& line);
  void Echo(const std::string& line) { Say(Port::kMon, line + "\r\n\r"); }
  bool IsClosed(Port port);  // by the link, soon
  void CloseAll();

  Stream& client(Port port) { return clients_[static_cast<size_t>(port)]; }
  Listener& listener(Port port) { return *listeners_[static_cast<size_t>(port)]; }

 private:
  std::array<std::unique_ptr<Listener>, 3> listeners_;
  std::array<Stream, 3> clients_;
};

}  // namespace hub::link
