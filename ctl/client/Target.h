// Where the hub is, and who asks. Pure but for the token's file.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace ctl {

inline constexpr char kHubSocket[] = "/run/qelm-hub/hub.sock";

struct Target {
  std::string socket = kHubSocket;  // used where there is no host
  std::string host;
  std::string port;
  bool tls = false;
  std::string ca_file;                // of the hub's certificate; empty: the system's
  std::string token;                  // empty: none
  std::string board;                  // another one, on the hub's broker; empty: the hub's own
  std::chrono::seconds patience{30};  // for an answer
};

// "http://board:5080", "https://[::1]"; throws Failure(kUsage) where it is none.
void SetUrl(Target& target, const std::string& url);

// The first line of the file. Throws Failure(kUsage) where there is none.
std::string ReadToken(const std::string& file);

// As people know it: the socket's path, or the URL.
std::string NameOf(const Target& target);

}  // namespace ctl
