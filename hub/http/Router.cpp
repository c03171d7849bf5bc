#include "http/Router.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "access/Cookie.h"
#include "api/Json.h"
#include "http/Answers.h"

namespace hub::http {

namespace asio = boost::asio;
using access::Caller;
using access::Role;
using api::Problem;
using api::ProblemOf;
using api::Verb;

namespace {

constexpr std::string_view kLive = "/api/live";
constexpr std::string_view kOpenApi = "/api/openapi.json";

struct VerbRow {
  std::string_view method;
  Verb verb;
  bool writes;
};

constexpr std::array<VerbRow, 6> kVerbs{{
    {"GET", Verb::kGet, false},
    {"HEAD", Verb::kGet, false},
    {"PUT", Verb::kPut, true},
    {"POST", Verb::kPost, true},
    {"PATCH", Verb::kPatch, true},
    {"DELETE", Verb::kDelete, false},  // no page of another site can send one unasked
}};

// What a path takes, and who may know: whoever may do the least of it.
struct Allowed {
  std::string verbs;  // empty: there is no such path
  Role role = Role::kAdmin;
};

Allowed AllowedOn(std::string_view path) {
  Allowed allowed;
  for (const VerbRow& row : kVerbs) {
    const api::Method* const method = api::FindRoute(row.verb, path).method;
    if (method == nullptr) continue;
    allowed.verbs += std::string(row.method) + ", ";
    allowed.role = std::min(allowed.role, method->role);
  }
  if (!allowed.verbs.empty()) allowed.verbs += "OPTIONS";
  return allowed;
}

Response WithAllow(Response response, std::string allowed) {
  response.fields.push_back({"Allow", std::move(allowed)});
  return response;
}

Response OtherVerb(const std::string& allowed) {
  return WithAllow(Refusal(ProblemOf(405, "here go " + allowed)), allowed);
}

bool IsJson(const Request& request) {
  std::string_view type = request.Find("Content-Type").value_or("");
  type = type.substr(0, type.find(';'));
  type = type.substr(0, type.find_last_not_of(' ') + 1);
  return IsSameName(type, "application/json");
}

// A form of another site can send anything but this type without asking first. What is no form has
// neither a type nor a body, or it has an Origin, which was looked at.
std::optional<Problem> CheckType(const Request& request, const VerbRow& verb) {
  const bool is_typed = verb.writes && request.Find("Content-Type").has_value();
  if ((request.body.empty() && !is_typed) || IsJson(request)) return {};
  return ProblemOf(415, "a request with a body has Content-Type: application/json");
}

// Reading is not free: it may stop the bus for a second. A picture or a link of another site can
// make a browser read here, which says so then.
std::optional<Problem> CheckSite(const Request& request) {
  const std::string_view site = request.Find("Sec-Fetch-Site").value_or("none");
  if (site == "same-origin" || site == "none") return {};
  return ProblemOf(403, "a page of another site may not ask");
}

bool NeedsBody(const api::Method& method) {
  return std::ranges::any_of(method.parameters, [](const api::Parameter& parameter) {
    return parameter.place == api::Place::kBody && parameter.required;
  });
}

std::optional<Problem> Collect(const Request& request, const api::Method& method,
                               boost::json::object& parameters) {
  const std::optional<Fields> query = ParseQuery(request.query);
  if (!query) return ProblemOf(400, "an escape in the query is broken");
  for (const Field& field : *query)
    if (auto problem = api::AddQuery(method, field.name, field.value, parameters)) return problem;
  if (request.body.empty() && !(IsJson(request) && NeedsBody(method))) return {};
  const auto body = api::ParseJson(request.body);
  if (const auto* problem = std::get_if<Problem>(&body)) return *problem;
  return api::AddBody(method, std::get<boost::json::value>(body), parameters);
}

Response ToResponse(const api::Reply& reply, bool is_tls) {
  const auto* problem = std::get_if<Problem>(&reply.result);
  Response response = problem != nullptr
                          ? Refusal(*problem)
                          : Json(api::ToText(std::get<boost::json::value>(reply.result)));
  if (reply.cookie)
    response.fields.push_back({"Set-Cookie", access::FormatSessionCookie(*reply.cookie, is_tls)});
  return response;
}

std::string TicketIn(const Request& request) {
  const auto query = ParseQuery(request.query);
  if (!query) return {};
  const auto found = std::ranges::find(*query, "ticket", &Field::name);
  return found == query->end() ? std::string() : found->value;
}

Response Health(const model::Bus& bus) {
  using model::AdapterState;
  using model::DaemonState;
  const DaemonState daemon = bus.DaemonNow().state;
  const AdapterState adapter = bus.AdapterNow().state;
  return Json(
      api::ToText(boost::json::object{{"hub", "up"},
                                      {"daemon", daemon == DaemonState::kUp        ? "up"
                                                 : daemon == DaemonState::kWaiting ? "waiting"
                                                                                   : "absent"},
                                      {"adapter", adapter == AdapterState::kUp     ? "up"
                                                  : adapter == AdapterState::kDown ? "down"
                                                                                   : "unknown"}}));
}

std::optional<Problem> CheckRole(const Caller& caller, Role least) {
  if (caller.role >= least) return {};
  if (caller.role == Role::kNone) return ProblemOf(401, "log in, or send a token");
  return ProblemOf(403, "this takes the role " + std::string(access::NameOf(least)));
}

}  // namespace

Router::Router(api::House& house, GateOptions gate, std::string page_folder,
               std::function<std::string()> metrics)
    : house_(house),
      gate_(house.access, std::move(gate)),
      page_(std::move(page_folder)),
      metrics_(std::move(metrics)) {}

// A fault ends with its request, not with the hub.
asio::awaitable<Answer> Router::Ask(Request request) {
  try {
    auto finding = Find(std::move(request));
    Answer answer = co_await std::move(finding);
    co_return answer;
  } catch (const std::exception& fault) {
    co_return Answer{Refusal(ProblemOf(fault)), {}};
  }
}

asio::awaitable<Answer> Router::Find(Request request) {
  if (request.path == kLive) co_return AskLive(request);
  auto admitted = gate_.Admit(request);
  if (const auto* problem = std::get_if<Problem>(&admitted))
    co_return Answer{Refusal(*problem), {}};
  Caller caller = std::get<Caller>(std::move(admitted));
  caller.door = request.peer.is_local ? access::Door::kLocal : access::Door::kHttp;
  const bool is_api = request.path.starts_with("/api/") && request.path != kOpenApi;
  if (!is_api) co_return Answer{AskRest(request, caller), {}};
  auto asking = AskApi(std::move(request), std::move(caller));
  Response response = co_await std::move(asking);
  co_return Answer{std::move(response), {}};
}

Answer Router::AskLive(const Request& request) const {
  const auto admitted = gate_.Admit(request, TicketIn(request));
  if (const auto* problem = std::get_if<Problem>(&admitted)) return {Refusal(*problem), {}};
  const Caller& caller = std::get<Caller>(admitted);
  if (auto problem = CheckRole(caller, Role::kView)) return {Refusal(*problem), {}};
  if (request.method != "GET") return {OtherVerb("GET"), {}};
  if (!request.is_upgrade) {
    Response response = Refusal(ProblemOf(426, "this is a WebSocket"));
    response.fields.push_back({"Upgrade", "websocket"});
    return {std::move(response), {}};
  }
  return {{}, caller};
}

asio::awaitable<Response> Router::AskApi(Request request, Caller caller) {
  const auto [verbs, role] = AllowedOn(request.path);
  if (verbs.empty()) co_return NotFound();
  if (request.method == "OPTIONS") {
    if (const auto problem = CheckRole(caller, role)) co_return Refusal(*problem);
    co_return WithAllow({204, {}, {}}, verbs);
  }
  const auto* verb = std::ranges::find(kVerbs, request.method, &VerbRow::method);
  if (verb == kVerbs.end()) co_return OtherVerb(verbs);
  api::RouteMatch match = api::FindRoute(verb->verb, request.path);
  if (match.method == nullptr) co_return OtherVerb(verbs);
  if (const auto problem = CheckRole(caller, match.method->role)) co_return Refusal(*problem);
  if (const auto problem = CheckSite(request)) co_return Refusal(*problem);
  if (const auto problem = CheckType(request, *verb)) co_return Refusal(*problem);
  if (const auto problem = Collect(request, *match.method, match.parameters))
    co_return Refusal(*problem);
  const bool is_tls = gate_.IsTls(request);
  api::Request call{std::move(match.parameters), std::move(caller)};
  auto calling = api::Call(house_, *match.method, std::move(call));
  const api::Reply reply = co_await std::move(calling);
  co_return ToResponse(reply, is_tls);
}

// What only reads, and is no method.
Response Router::AskRest(const Request& request, const Caller& caller) const {
  const bool is_open = request.path != kOpenApi && request.path != "/metrics";
  if (!is_open)
    if (const auto problem = CheckRole(caller, Role::kView)) return Refusal(*problem);
  if (request.method == "OPTIONS") return WithAllow({204, {}, {}}, "GET, HEAD, OPTIONS");
  if (request.method != "GET" && request.method != "HEAD") return OtherVerb("GET, HEAD, OPTIONS");
  if (request.path == "/healthz") return Health(house_.bus);
  if (is_open) return page_.Answer(request);
  if (request.path == kOpenApi) return Json(api::ToText(api::OpenApiDocument()));
  Response response = Json(metrics_());
  response.fields[0].value = "text/plain; version=0.0.4; charset=utf-8";
  return response;
}

}  // namespace hub::http
