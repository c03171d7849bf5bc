// From a request to its answer: who asks, what for, and which part of the hub knows.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <functional>
#include <optional>
#include <string>

#include "api/Api.h"
#include "http/Gate.h"
#include "http/Message.h"
#include "http/Page.h"

namespace hub::http {

// An answer, or the caller of a WebSocket that is to be opened.
struct Answer {
  Response response;
  std::optional<access::Caller> live;
};

class Router {
 public:
  // `metrics` makes the text for the monitoring system.
  Router(api::House& house, GateOptions gate, std::string page_folder,
         std::function<std::string()> metrics);

  boost::asio::awaitable<Answer> Ask(Request request);

 private:
  boost::asio::awaitable<Answer> Find(Request request);
  Answer AskLive(const Request& request) const;
  boost::asio::awaitable<Response> AskApi(Request request, access::Caller caller);
  Response AskRest(const Request& request, const access::Caller& caller) const;

  api::House& house_;
  Gate gate_;
  Page page_;
  std::function<std::string()> metrics_;
};

}  // namespace hub::http
