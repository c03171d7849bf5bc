// Who a request is from, and whether it may be answered at all. The first thing asked about each
// request, before anybody looks at its path.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "access/Access.h"
#include "access/Hosts.h"
#include "api/Problem.h"
#include "http/Message.h"

namespace hub::http {

struct GateOptions {
  std::vector<std::string> hosts;    // names under which the page is reached, besides localhost
  std::vector<std::string> proxies;  // addresses whose X-Forwarded-For counts
};

class Gate {
 public:
  Gate(access::Access& access, GateOptions options);

  // Whether the other end of it all speaks TLS: with the hub, or with a proxy that says so.
  bool IsTls(const Request& request) const;

  // Without any credentials the caller has no role, but on the Unix socket, and on loopback as
  // long as there are no accounts. A cookie whose session is over is no credential; a token or a
  // ticket that is wrong is refused. `ticket` is what the query brought; empty: none.
  std::variant<access::Caller, api::Problem> Admit(const Request& request,
                                                   std::string_view ticket = {}) const;

 private:
  using Found = std::variant<access::Caller, api::Problem>;

  bool IsFromProxy(const Request& request) const;
  std::string AddressOf(const Request& request) const;
  std::optional<api::Problem> CheckOrigin(const Request& request) const;
  std::optional<access::Caller> ByCookie(const Request& request, std::string_view address) const;
  Found ByToken(std::string_view credentials, std::string_view address) const;
  access::Caller WithoutCredentials(const Request& request, std::string address) const;

  access::Access& access_;
  access::Hosts hosts_;
  std::vector<std::string> proxies_;
};

}  // namespace hub::http
