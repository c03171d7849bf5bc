// JSON-RPC 2.0 as the WebSocket speaks it: one request a text, by name; batches are refused.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "api/Api.h"

namespace hub::api {

enum class RpcCode {
  kNoJson = -32700,
  kNoRequest = -32600,
  kNoMethod = -32601,
  kWrongParameters = -32602,
  kFault = -32603,
  kProblem = -32000,  // every other problem; its data says which
};

struct RpcRequest {
  std::optional<boost::json::value> id;  // nothing: no answer is wanted
  const Method* method = nullptr;        // nothing: there is none, and no answer is wanted
  boost::json::object parameters;
};

struct RpcError {
  boost::json::value id;  // null where the request has none that could be read
  RpcCode code;
  Problem problem;
};

std::variant<RpcRequest, RpcError> ParseRpc(std::string_view text);

std::string RpcErrorText(const RpcError& error);
std::string RpcResultText(const boost::json::value& id, const boost::json::value& result);

struct RpcAnswer {
  std::string text;                    // empty: none is wanted
  std::optional<uint64_t> live_after;  // as in Reply
};

// Parses, calls, words the answer. Never throws.
boost::asio::awaitable<RpcAnswer> AnswerRpc(House& house, access::Caller caller, std::string text);

}  // namespace hub::api
