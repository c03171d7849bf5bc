// The table of methods and the way through it: role, parameters, handler.
//
// Every door (HTTP, WebSocket, broker) comes in by Call. A row says all of a method: its names,
// its role, its parameters, an example; the OpenAPI document and the manual page are made of it.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "access/Access.h"
#include "access/Role.h"
#include "api/CardMemory.h"
#include "api/PageJson.h"
#include "api/Problem.h"
#include "api/Traffic.h"
#include "boards/Boards.h"
#include "link/Link.h"
#include "model/Bus.h"
#include "model/Clock.h"
#include "store/Store.h"
#include "virtualbus/Control.h"

namespace hub::api {

// What handlers work with. Outlives every call.
struct House {
  boost::asio::io_context& context;
  model::Bus& bus;
  link::Link& link;
  store::Store& store;
  access::Access& access;
  const model::Clock& clock;
  model::Settings file = {};  // what the file settles; whoever changes it calls ApplySettings
  CardMemory card_memory = {};
  Traffic traffic = {};
  boost::json::object page = ReadPage({});     // what the page keeps, as in effect
  virtualbus::Control* virtual_bus = nullptr;  // none: the bus is a real one
  boards::Boards boards = {};                  // the other hubs on the broker

  // Null where nobody listens to them.
  const boards::Boards* Neighbours() const { return boards.IsOn() ? &boards : nullptr; }
};

struct Request {
  boost::json::object parameters;  // the route's, the query's and the body's together
  access::Caller caller;
};

// A result, or what is wrong; and what the door has to do besides.
struct Reply {
  std::variant<boost::json::value, Problem> result;
  std::optional<std::string> cookie;        // to be set; empty: to be deleted
  std::optional<uint64_t> live_after = {};  // changes behind this number are to follow
};

enum class Verb { kGet, kPut, kPost, kPatch, kDelete };

enum class Type { kText, kInteger, kNumber, kBoolean, kObject, kList, kTime, kValue };

// A whole body is one parameter by itself: its members are no parameters.
enum class Place { kPath, kQuery, kBody, kWholeBody };

struct Parameter {
  std::string_view name;
  Type type;
  Place place;
  bool required;
  std::string_view summary;
  double least = 0;  // of a number, of a text's characters; with `most` 0 as well: any
  double most = 0;
  std::span<const std::string_view> words = {};  // all that a text may be; empty: any
};

// Throws a Problem for what is wrong with the request.
using Handler = boost::asio::awaitable<Reply> (*)(House& house, Request request);

struct Method {
  std::string_view name;  // "channels.set"
  Verb verb;
  std::string_view route;  // "/api/channels/{id}"; empty: by name only
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

// Adds what a request over HTTP carries to what its path held. A name that is no parameter of
// that place is a problem.
std::optional<Problem> AddQuery(const Method& method, std::string_view name, std::string_view value,
                                boost::json::object& parameters);
std::optional<Problem> AddBody(const Method& method, const boost::json::value& body,
                               boost::json::object& parameters);

// Role, then parameters (types, missing and unknown ones by name), then the handler. Never throws.
boost::asio::awaitable<Reply> Call(House& house, const Method& method, Request request);

boost::json::value OpenApiDocument();

}  // namespace hub::api
