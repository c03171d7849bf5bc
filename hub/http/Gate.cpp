#include "http/Gate.h"

#include <algorithm>

#include "access/Cookie.h"
#include "access/ForwardedFor.h"
#include "access/Network.h"
#include "access/Origin.h"

namespace hub::http {

using access::Caller;
using access::Role;
using api::Problem;
using api::ProblemOf;

namespace {

constexpr std::string_view kBearer = "Bearer ";

// Those of which a second one would leave open which of them counts.
constexpr std::string_view kOnce[] = {"Host", "Origin", "Authorization"};

std::string Joined(const Request& request, std::string_view name, std::string_view between) {
  std::string all;
  for (const Field& field : request.fields) {
    if (!IsSameName(field.name, name)) continue;
    if (!all.empty()) all += between;
    all += field.value;
  }
  return all;
}

}  // namespace

Gate::Gate(access::Access& access, GateOptions options)
    : access_(access), hosts_(options.hosts), proxies_(std::move(options.proxies)) {}

bool Gate::IsFromProxy(const Request& request) const {
  return std::ranges::any_of(proxies_, [&request](const std::string& proxy) {
    return access::ParseAddress(proxy) == request.peer.address;
  });
}

std::string Gate::AddressOf(const Request& request) const {
  if (request.peer.is_local) return {};
  return access::ClientAddress(request.peer.address, Joined(request, "X-Forwarded-For", ","),
                               proxies_);
}

bool Gate::IsTls(const Request& request) const {
  if (request.peer.is_tls) return true;
  return IsFromProxy(request) && request.Find("X-Forwarded-Proto") == "https";
}

std::optional<Problem> Gate::CheckOrigin(const Request& request) const {
  const std::string_view host = request.Find("Host").value_or("");
  if (!request.peer.is_local && !hosts_.Allow(host))
    return ProblemOf(403, "the hub is not reached under this name; see `hosts` in its settings");
  const std::string_view scheme = IsTls(request) ? "https" : "http";
  if (access::IsOwnOrigin(request.Find("Origin"), scheme, host, access::AbsentOrigin::kAllowed))
    return {};
  return ProblemOf(403, "a page of another origin may not ask");
}

std::variant<Caller, Problem> Gate::Admit(const Request& request, std::string_view ticket) const {
  for (const std::string_view name : kOnce)
    if (request.Count(name) > 1) return ProblemOf(400, std::string(name) + " comes twice");
  if (auto problem = CheckOrigin(request)) return *problem;
  std::string address = AddressOf(request);
  if (!ticket.empty()) {
    if (auto caller = access_.TakeTicket(ticket, address)) return *caller;
    return ProblemOf(401, "this ticket is not good (any more)");
  }
  if (const auto credentials = request.Find("Authorization")) return ByToken(*credentials, address);
  if (auto caller = ByCookie(request, address)) {
    // A cookie is a browser's, and a browser says which page opens a WebSocket.
    if (request.is_upgrade && !request.Find("Origin"))
      return ProblemOf(403, "a WebSocket with a cookie comes with an Origin");
    return *caller;
  }
  return WithoutCredentials(request, std::move(address));
}

Gate::Found Gate::ByToken(std::string_view credentials, std::string_view address) const {
  const bool is_bearer = IsSameName(credentials.substr(0, kBearer.size()), kBearer);
  if (is_bearer)
    if (auto caller = access_.ByToken(credentials.substr(kBearer.size()), address)) return *caller;
  return ProblemOf(401, "this token is not known");
}

std::optional<Caller> Gate::ByCookie(const Request& request, std::string_view address) const {
  const std::string cookies = Joined(request, "Cookie", "; ");
  const auto secret = access::SessionCookie(cookies);
  return secret ? access_.BySecret(*secret, address) : std::nullopt;
}

Caller Gate::WithoutCredentials(const Request& request, std::string address) const {
  Caller caller;
  const bool is_open = access::IsLoopback(address) && !access_.HasAccounts();
  if (request.peer.is_local || is_open) caller.role = Role::kAdmin;
  caller.address = std::move(address);
  return caller;
}

}  // namespace hub::http
