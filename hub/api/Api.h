// The table of methods and the way through it: role, parameters, handler.
//
// Every door (HTTP, WebSocket, broker) comes in by Call. A row says all of a method: its names,
// its role, its parameters, an example; the OpenAPI document and the manual page are made of it.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "access/Access.h"
#include "access/Role.h"
#include "api/Problem.h"
#include "link/Link.h"
#include "model/Bus.h"
#include "model/Clock.h"
#include "store/Store.h"

namespace hub::api {

// What handlers work with. Outlives every call.
struct House {
  boost::asio::io_context& context;
  model::Bus& bus;
  link::Link& link;
  store::Store& store;
  access::Access& access;
  const model::Clock& clock;
};

struct Request {
  boost::json::object parameters;  // the route's, the query's and the body's together
  access::Caller caller;
};

// A result, or what is wrong. A handler that opens or ends a session says so: the door has the
// cookie to set (or, empty, to delete).
struct Reply {
  std::variant<boost::json::value, Problem> result;
  std::optional<std::string> cookie;
};

enum class Verb { kGet, kPut, kPost, kPatch, kDelete };

enum class Type { kText, kInteger, kNumber, kBoolean, kObject, kValue };
enum class Place { kPath, kQuery, kBody };

struct Parameter {
  std::string_view name;
  Type type;
  Place place;
  bool required;
  std::string_view summary;
};

using Handler = boost::asio::awaitable<Reply> (*)(House& house, Request request);

struct Method {
  std::string_view name;   // "channels.set"
  Verb verb;
  std::string_view route;  // "/api/channels/{id}"
  access::Role role;       // kNone: anybody
  std::string_view summary;
  std::span<const Parameter> parameters;
  Handler handler;
  std::string_view request_example;  // JSON of the body; empty: none
  std::string_view reply_example;    // JSON
  std::string_view reply_shape;      // the schema's name: "Channel"
};

std::span<const Method> Methods();
const Method* FindMethod(std::string_view name);

// By verb and path; `parameters` gets what the path holds. Where the path is there but not with
// that verb, `allowed` lists the verbs ("GET, PUT").
struct RouteMatch {
  const Method* method = nullptr;
  std::string allowed;
  boost::json::object parameters;
};
RouteMatch FindRoute(Verb verb, std::string_view path);

// Role, then parameters (types, missing and unknown ones by name), then the handler. Never throws.
boost::asio::awaitable<Reply> Call(House& house, const Method& method, Request request);

boost::json::value OpenApiDocument();

}  // namespace hub::api
