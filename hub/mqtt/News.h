// What a connection to a broker is made of, and what happens on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "mqtt/Message.h"

namespace hub::mqtt {

struct Server {
  std::string host;
  uint16_t port = 1883;
  std::string user;           // empty: none
  std::string password_file;  // paths; empty: none. The first line of the file is the password
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

enum class Hearing {
  // Once at most: a broker lets no more than some hundred messages wait for their receipts, and
  // drops what else it has kept there.
  kStates,
  // Once at least; in version 5 the broker says of each whether it was sent to be kept.
  kCommands,
};

struct Connected {};

struct Subscribed {
  int id;
  bool is_granted;
};

struct Arrived {
  static constexpr size_t kMostPayload = size_t{64} * 1024;

  Message message;  // without its payload where that is longer
  size_t size = 0;  // of the payload
};

struct Taken {          // a message of ours
  std::string refusal;  // empty: none
};

struct Ended {
  std::string why = {};       // for people; no secret
  bool is_refusal = false;    // the same would happen again until somebody does something
  bool speaks_older = false;  // version 3.1.1 may be welcome
};

using News = std::variant<Connected, Subscribed, Arrived, Taken, Ended>;

}  // namespace hub::mqtt
