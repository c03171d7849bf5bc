// One connection to a broker, from the first packet to the last: the only file that knows the
// library. Whoever wants another connection makes another Client, so nothing that was under way on
// one is sent again on the next.
//
// The library has no thread here: the io_context watches its socket, and what its callbacks say is
// queued as News. Only the name of the host is looked up aside, in a thread that ends with it. While
// more than kMostNews wait, nothing is read. One thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "mqtt/Message.h"

namespace hub::mqtt {

struct Server {
  std::string host;
  uint16_t port = 1883;
  std::string user;           // empty: none
  std::string password_file;  // paths; empty: none. A file's last line end is none of the password
  std::string ca;             // with it or a certificate the connection is TLS
  std::string certificate;
  std::string key;
  bool operator==(const Server&) const = default;
};

struct Greeting {
  std::string client_id;
  std::optional<Message> will;
  bool is_version_5 = true;  // else 3.1.1
};

// What happens on the connection, in order.
struct Connected {};
struct Subscribed {
  int id;
  bool is_granted;
};
struct Arrived {
  static constexpr size_t kMostPayload = 64 * 1024;

  Message message;  // its payload is left out where it is longer
  size_t size = 0;  // of the payload
};
struct Taken {  // a message of ours
  std::string refusal;  // empty: none
};
struct Ended {
  std::string why;            // for people; no secret
  bool is_refusal = false;    // the broker does not want us
  bool speaks_older = false;  // another try with version 3.1.1 may help
};
using News = std::variant<Connected, Subscribed, Arrived, Taken, Ended>;

class Client {
 public:
  static constexpr size_t kMostNews = 64;

  explicit Client(boost::asio::io_context& context);
  ~Client();  // closes without a word: the broker publishes the will
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void Connect(const Server& server, const Greeting& greeting);

  // Ended comes once, as the last.
  boost::asio::awaitable<News> Next();

  // At QoS 1. True where it is under way: it will be Taken, or the connection ends.
  bool Publish(const Message& message);
  int Subscribe(const std::string& filter);  // will be Subscribed with this id
  void Disconnect();                         // says good-bye, so there is no will; then it has Ended

 private:
  class Session;
  std::shared_ptr<Session> session_;
};

}  // namespace hub::mqtt
