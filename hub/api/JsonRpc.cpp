#include "api/JsonRpc.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "api/Json.h"
#include "api/Parameters.h"

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr const char* kVersion = "2.0";
constexpr std::array<std::string_view, 4> kMembers{"jsonrpc", "id", "method", "params"};

RpcCode CodeOf(const Problem& problem) {
  if (problem.status == 422) return RpcCode::kWrongParameters;
  if (problem.status == 500) return RpcCode::kFault;
  return RpcCode::kProblem;
}

RpcError NoRequest(json::value id, std::string where, std::string detail) {
  return {std::move(id), RpcCode::kNoRequest, ProblemOf(400, std::move(detail), std::move(where))};
}

RpcError NoRequest(json::value id, Problem problem) {
  return NoRequest(std::move(id), std::move(problem.where), std::move(problem.detail));
}

// Whoever wants no answer hears of no error either: there is nothing to call.
std::variant<RpcRequest, RpcError> Failed(RpcRequest request, RpcCode code, Problem problem) {
  request.method = nullptr;
  if (!request.id) return request;
  return RpcError{*request.id, code, std::move(problem)};
}

bool IsId(const json::value& id) { return id.is_string() || id.is_number() || id.is_null(); }

std::variant<RpcRequest, RpcError> Read(const json::object& message) {
  RpcRequest request;
  if (const json::value* id = message.if_contains("id")) {
    if (!IsId(*id)) return NoRequest(nullptr, "id", "id takes a text or a number");
    request.id = *id;
  }
  const json::value id = request.id.value_or(nullptr);
  for (const auto& member : message)
    if (std::ranges::find(kMembers, std::string_view(member.key())) == kMembers.end())
      return NoRequest(id, UnknownField("a request", "", member.key(), kMembers));
  const json::value* const version = message.if_contains("jsonrpc");
  if (version == nullptr || *version != kVersion)
    return NoRequest(id, "jsonrpc", "jsonrpc has to be \"2.0\"");
  const json::value* const name = message.if_contains("method");
  if (name == nullptr || !name->is_string())
    return NoRequest(id, "method", "method takes the name of a method");
  request.method = FindMethod(std::string_view(name->get_string()));
  if (request.method == nullptr)
    return Failed(std::move(request), RpcCode::kNoMethod,
                  ProblemOf(404, "there is no such method", "method"));
  if (const json::value* parameters = message.if_contains("params")) {
    if (!parameters->is_object())
      return Failed(std::move(request), RpcCode::kWrongParameters,
                    DoesNotFit("params", "params takes an object: parameters go by name"));
    request.parameters = parameters->get_object();
  }
  return request;
}

}  // namespace

std::variant<RpcRequest, RpcError> ParseRpc(std::string_view text) {
  auto parsed = ParseJson(text);
  if (auto* problem = std::get_if<Problem>(&parsed))
    return RpcError{nullptr, RpcCode::kNoJson, std::move(*problem)};
  const auto& message = std::get<json::value>(parsed);
  if (message.is_array())
    return NoRequest(nullptr, "", "one request at a time: batches are not taken");
  if (!message.is_object()) return NoRequest(nullptr, "", "a request is an object");
  return Read(message.get_object());
}

std::string RpcErrorText(const RpcError& error) {
  json::object body{{"code", static_cast<int>(error.code)}, {"message", error.problem.title}};
  body["data"] = error.problem.ToJson();
  json::object message{{"jsonrpc", kVersion}, {"id", error.id}};
  message["error"] = std::move(body);
  return ToText(message);
}

std::string RpcResultText(const json::value& id, const json::value& result) {
  json::object message{{"jsonrpc", kVersion}, {"id", id}};
  message["result"] = result;
  return ToText(message);
}

boost::asio::awaitable<RpcAnswer> AnswerRpc(House& house, access::Caller caller, std::string text) {
  auto parsed = ParseRpc(text);
  if (const auto* error = std::get_if<RpcError>(&parsed))
    co_return RpcAnswer{RpcErrorText(*error), std::nullopt};
  auto& request = std::get<RpcRequest>(parsed);
  if (request.method == nullptr) co_return RpcAnswer{};
  Request asked{std::move(request.parameters), std::move(caller)};
  auto calling = Call(house, *request.method, std::move(asked));
  const Reply reply = co_await std::move(calling);
  RpcAnswer answer{"", reply.live_after};
  if (!request.id) co_return answer;
  if (const auto* problem = std::get_if<Problem>(&reply.result))
    answer.text = RpcErrorText({*request.id, CodeOf(*problem), *problem});
  else
    answer.text = RpcResultText(*request.id, std::get<json::value>(reply.result));
  co_return answer;
}

}  // namespace hub::api
