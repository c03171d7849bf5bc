// A request and an answer as plain data, so that nobody but the reader of bytes knows how they
// look on the line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hub::http {

struct Field {
  std::string name;
  std::string value;
};

using Fields = std::vector<Field>;

// The other end of a connection.
struct Peer {
  bool is_local = false;  // came by the Unix socket
  bool is_tls = false;
  std::string address;  // of the network; empty on the Unix socket
};

struct Request {
  std::string method;
  std::string path;   // as it came, still with its %-escapes
  std::string query;  // behind the "?"
  Fields fields;
  std::string body;
  bool keep_alive = false;
  bool is_upgrade = false;  // asks for a WebSocket
  Peer peer;

  // The field's value; nothing where it is missing. The first, where there are several.
  std::optional<std::string_view> Find(std::string_view name) const;
  size_t Count(std::string_view name) const;
};

struct Response {
  int status = 200;
  Fields fields;
  std::string body;
};

bool IsSameName(std::string_view left, std::string_view right);  // of fields: in any case

// "a=1&b" as fields, unescaped; nothing where an escape is broken.
std::optional<Fields> ParseQuery(std::string_view query);

// The answer as it goes out, up to and with the empty line. Each answer carries the fields that
// tell a browser to trust nothing but this hub.
std::string HeadOf(const Response& response, bool keep_alive, std::string_view date);

}  // namespace hub::http
