// The daemon's three ports again, for up to 64 clients each: what was written for the daemon runs
// here unchanged, beside everybody else.
//
// A client of CAE gets the answers to its own lines, one of IO every report and the errors of its
// own commands, one of MON a copy of all. Other than at the daemon, a line may come in any pieces,
// LF alone ends one too, and what is sent before the greeting is not lost.
//
// Where there are accounts, a client's first line is "TOKEN " and a token's secret; nothing else
// is acted on before. Owned by main, one io_context, one thread.
#pragma once

#include <array>
#include <boost/asio/io_context.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "api/Api.h"
#include "protocol/Greeting.h"

namespace hub::text {

struct TextOptions {
  std::string listen = "127.0.0.1";                 // an IP address; empty: no text ports
  std::array<uint16_t, 3> ports{5110, 5111, 5112};  // by protocol::Port
};

class TextPorts {
 public:
  static constexpr size_t kMostClients = 64;  // a port

  // Listens. Throws std::runtime_error, naming the address, where it cannot.
  TextPorts(api::House& house, const TextOptions& options);
  ~TextPorts();
  TextPorts(const TextPorts&) = delete;
  TextPorts& operator=(const TextPorts&) = delete;

  void Start();
  void Stop();  // closes all

  // What the daemon wrote, without its end: a report, and a line of MON.
  void ShowReport(std::string_view line);
  void ShowMonitored(std::string_view line);

  // Clients end with their token; and all that came in without one when one is needed.
  void EndToken(const std::string& name);
  void EndNameless();

  size_t ClientCount() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace hub::text
