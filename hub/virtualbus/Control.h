// The control socket of a virtual bus: what hands would do to its cards and its cable.
//
// Each conversation connects anew, so the bus may come and go. A socket at which nobody answers
// costs its caller two seconds and nobody else anything. Owned by the hub; one thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace hub::virtualbus {

struct Answer {
  std::vector<std::string> lines;  // what the order shows
  std::string error;               // why it was not done; empty: it was
  bool operator==(const Answer&) const = default;
};

class Control {
 public:
  Control(boost::asio::io_context& context, std::string path,
          std::chrono::milliseconds patience = std::chrono::seconds(2))
      : context_(context), path_(std::move(path)), patience_(patience) {}

  // Orders without line ends, one after the other, and an answer each. Nothing where no bus is
  // there, or where it has not answered all of them in time.
  boost::asio::awaitable<std::optional<std::vector<Answer>>> Ask(std::vector<std::string> orders);

 private:
  boost::asio::io_context& context_;
  std::string path_;
  std::chrono::milliseconds patience_;
};

}  // namespace hub::virtualbus
