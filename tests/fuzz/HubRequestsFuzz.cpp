// What clients of the web server send: HTTP requests and messages of the WebSocket, to the table
// of methods on a bus with a card of each kind.
//
// The first byte sets the stage, see Stage. A unit separator ends each request. One that begins
// with a capital is of HTTP, its lines end at LF:
//
//   PUT /api/channels/5.0?pulse=500
//   Content-Type: application/json
//
//   {"value":true}
#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/json/parse.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Finding.h"
#include "HubBus.h"
#include "api/Api.h"
#include "api/Json.h"
#include "api/JsonRpc.h"
#include "api/KeptSettings.h"
#include "api/fakes/FakeAccess.h"
#include "api/fakes/FakeLink.h"
#include "api/fakes/FakeStore.h"
#include "api/fakes/FakeVirtualBus.h"
#include "http/Router.h"
#include "hub/CardsOfEachKind.h"
#include "protocol/Console.h"
#include "protocol/IoCommand.h"

namespace {

namespace api = hub::api;
namespace http = hub::http;
namespace json = boost::json;
namespace model = hub::model;
namespace protocol = hub::protocol;
using hub::access::Role;

constexpr char kEndMark = '\x1f';

// By the bits of one byte.
struct Stage {
  explicit Stage(unsigned bits)
      : role(static_cast<Role>(3 - bits % 4)),
        outcome(static_cast<FakeLink::Outcome>(bits / 4 % 4)),
        is_daemon_there((bits & 16U) == 0),
        is_console_mute((bits & 32U) != 0),
        is_bus_real((bits & 64U) != 0),
        has_accounts((bits & 128U) != 0) {}

  Role role;  // of the WebSocket's caller
  FakeLink::Outcome outcome;
  bool is_daemon_there;
  bool is_console_mute;
  bool is_bus_real;
  bool has_accounts;
};

// Beast's reader lets no other text through.
bool IsText(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c == '\t' || (c >= ' ' && c != '\x7f'); });
}

bool IsToken(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  });
}

std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

std::optional<http::Request> ReadRequest(std::string_view text) {
  http::Request request;
  const std::string_view first = TakeLine(text);
  const size_t blank = std::min(first.find(' '), first.size());
  const std::string_view target = first.substr(std::min(blank + 1, first.size()));
  if (!IsToken(first.substr(0, blank)) || !target.starts_with('/') || !IsText(target)) return {};
  request.method = first.substr(0, blank);
  request.path = target.substr(0, target.find('?'));
  request.query = target.substr(std::min(request.path.size() + 1, target.size()));
  for (std::string_view line = TakeLine(text); !line.empty(); line = TakeLine(text)) {
    const size_t colon = line.find(": ");
    if (colon == std::string_view::npos || !IsToken(line.substr(0, colon)) || !IsText(line))
      return {};
    request.fields.push_back(
        {std::string(line.substr(0, colon)), std::string(line.substr(colon + 2))});
  }
  request.body = text;
  request.is_upgrade = http::IsSameName(request.Find("Upgrade").value_or(""), "websocket");
  request.peer.is_local = request.Find("Host") == std::nullopt;
  if (!request.peer.is_local) request.peer.address = "127.0.0.1";
  return request;
}

class Hub {
 public:
  explicit Hub(const Stage& stage)
      : link_(Context(), {}, bus_, {}),
        store_(Context(), {}, clock_),
        access_(Context(), clock_, std::nullopt, {}),
        control_(Context(), ""),
        house_{Context(), bus_, link_, store_, access_, clock_},
        router_(house_, {.hosts = {"bench"}, .proxies = {}}, "", [] { return std::string(); }) {
    caller_ = {.account = "operator", .role = stage.role, .session = "session-7", .address = ""};
    fake_link_.outcome = stage.outcome;
    fake_link_.is_mute = stage.is_console_mute;
    fake_link_.answers["SPEED=7"] = {"CIA: SPEED IS SET to 7%"};
    if (stage.has_accounts) fake_access_.accounts = {{"operator", stage.role}};
    if (!stage.is_bus_real) house_.virtual_bus = &control_;
    bus_.SetCards(hub::CardsOfEachKind());
    for (unsigned address = 0; address < protocol::kCardCount; ++address)
      for (uint8_t block = 0; block < 2; ++block) {
        bus_.TakeInput({static_cast<uint8_t>(address), block, 0xA5}, {});
        bus_.TakeOutput(protocol::WriteBlock{static_cast<uint8_t>(address), block, 0x5A}, {});
      }
    if (stage.is_daemon_there)
      bus_.SetDaemon(
          {.state = model::DaemonState::kUp, .version = "1.20", .since = {}, .waiting_for = {}});
    bus_.Publish();
  }

  void Take(std::string_view request) {
    if (request.empty()) return;
    if (request[0] >= 'A' && request[0] <= 'Z')
      AskOverHttp(request);
    else
      AskOverWebSocket(request);
    CheckBus(bus_);
    CheckDaemonsLines();
  }

  // What people have settled is kept, and can be put back.
  void CheckBackup() {
    caller_.role = Role::kAdmin;
    const std::string backup = Result("backup.get", {});
    const std::string again = Result("backup.put", json::parse(backup).get_object());
    Require(again == backup, "a backup that is put back is another one");
    api::ApplySettings(house_);
    Require(Result("backup.get", {}) == backup, "what is kept is not what is there");
    for (const std::string& entry : fake_store_.journal)
      Require(entry.find("passed over") == std::string::npos, "what was kept cannot be read");
    Result("live.subscribe", {});
    CheckBus(bus_);
  }

 private:
  static boost::asio::io_context& Context() {
    static boost::asio::io_context context;
    return context;
  }

  template <class Value>
  static Value Run(boost::asio::awaitable<Value> work) {
    std::optional<Value> result;
    boost::asio::co_spawn(Context(), std::move(work),
                          [&result](const std::exception_ptr& fault, Value value) {
                            Require(!fault, "an exception gets out");
                            result = std::move(value);
                          });
    Context().restart();
    Context().run();
    Require(result.has_value(), "a call does not end");
    return std::move(*result);
  }

  static json::value ReadBack(const std::string& text) {
    auto value = api::ParseJson(text);
    Require(std::holds_alternative<json::value>(value), "an answer is no JSON");
    return std::get<json::value>(std::move(value));
  }

  void AskOverWebSocket(std::string_view text) {
    const api::RpcAnswer answer = Run(api::AnswerRpc(house_, caller_, std::string(text)));
    if (answer.text.empty()) return;
    const json::object message = ReadBack(answer.text).as_object();
    const json::value* const error = message.if_contains("error");
    Require((error != nullptr) != message.contains("result"), "an answer is neither");
    Require(message.contains("id"), "an answer has no id");
    if (error == nullptr) return;
    Require(error->at("code").as_int64() != -32603, "a method breaks");
  }

  void AskOverHttp(std::string_view text) {
    auto request = ReadRequest(text);
    if (!request) return;
    const http::Answer answer = Run(router_.Ask(std::move(*request)));
    if (answer.live) return;
    const http::Response& response = answer.response;
    Require(response.status != 500, "a method breaks");
    const std::string head = http::HeadOf(response, true, "Sat, 21 Nov 2026 12:00:00 GMT");
    Require(head.find(" Unknown\r\n") == std::string::npos, "a status has no words");
    Require(head.find("\r\n\r\n") == head.size() - 4, "a head has two ends");
    Require(static_cast<size_t>(std::ranges::count(head, '\n')) ==
                12 + response.fields.size() - (response.status == 204 ? 1 : 0),
            "a field of the head is two");
    if (response.body.starts_with('{')) ReadBack(response.body);
  }

  std::string Result(std::string_view name, json::object parameters) {
    api::Request request{std::move(parameters), caller_};
    const api::Reply reply = Run(api::Call(house_, *api::FindMethod(name), std::move(request)));
    Require(std::holds_alternative<json::value>(reply.result), "a method refuses what it gave");
    return api::ToText(std::get<json::value>(reply.result));
  }

  void CheckDaemonsLines() {
    for (const std::string& line : fake_link_.asked)
      Require(protocol::IsConsoleLine(line), "a line is not for the console");
    for (const std::string& line : fake_link_.sent) {
      const auto command = protocol::ParseIoCommand(line);
      Require(command && !protocol::Pieces(*command).empty(), "a command that cannot go out");
      for (const protocol::IoCommand& piece : protocol::Pieces(*command))
        Require(protocol::Format(piece).size() <= 253, "a command is cut by the daemon");
    }
    fake_link_.asked.clear();
    fake_link_.sent.clear();
  }

  FakeLink fake_link_;
  FakeStore fake_store_;
  FakeVirtualBus fake_virtual_bus_;
  FakeAccess fake_access_;
  model::Clock clock_;
  model::Bus bus_{"3f9a21c0"};
  BusWatch watch_{bus_};
  hub::link::Link link_;
  hub::store::Store store_;
  hub::access::Access access_;
  hub::virtualbus::Control control_;
  api::House house_;
  http::Router router_;
  hub::access::Caller caller_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Hub hub{Stage(data[0])};
  std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  while (!rest.empty()) {
    const std::string_view request = rest.substr(0, rest.find(kEndMark));
    rest.remove_prefix(std::min(request.size() + 1, rest.size()));
    hub.Take(request);
  }
  hub.CheckBackup();
  return 0;
}
