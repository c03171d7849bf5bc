#include "http/Server.h"

#include <fmt/format.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <iostream>
#include <stdexcept>

#include "http/Answers.h"
#include "http/HttpLine.h"
#include "http/Limits.h"
#include "http/Listeners.h"
#include "http/Live.h"
#include "http/Metrics.h"
#include "http/Router.h"
#include "http/Stream.h"
#include "http/Tls.h"
#include "model/Fault.h"

namespace hub::http {

namespace asio = boost::asio;
using boost::system::error_code;

namespace {

// Out of descriptors: accepting at once again would only fail again.
constexpr std::chrono::milliseconds kBreath{100};

struct Listener {
  Acceptor acceptor;
  bool is_tls;
};

// The request that asked for a WebSocket, and who did.
struct Upgrade {
  Request request;
  access::Caller caller;
};

Response TooMany() {
  return Refusal(api::RetryLater(503, "too many connections; see `max-connections`", 5));
}

}  // namespace

struct Server::Parts {
  Parts(api::House& the_house, ServerOptions the_options)
      : house(the_house),
        options(std::move(the_options)),
        router(house, {options.hosts, options.proxies}, options.page, [this] { return Metrics(); }),
        live(house, counters),
        streams(std::make_shared<Streams>(house.clock,
                                          Places(options.max_connections, options.proxies))),
        look(house.context) {}

  void CheckMayListen(const ListenAddress& address, const std::string& text) const;
  void ListenOn(const std::string& text);
  void ListenOnSocket();
  std::string Metrics();

  asio::awaitable<void> Accept(Listener& listener);
  void Take(Stream::Socket socket, const Listener& listener);
  asio::awaitable<void> Converse(std::shared_ptr<Stream> stream);
  asio::awaitable<std::optional<Upgrade>> AnswerAll(std::shared_ptr<Stream> stream);
  asio::awaitable<void> TurnAway(std::shared_ptr<Stream> stream);
  asio::awaitable<void> Look();

  api::House& house;
  ServerOptions options;
  Counters counters;
  Router router;
  Live live;
  std::shared_ptr<Streams> streams;
  std::unique_ptr<asio::ssl::context> tls;
  std::deque<Listener> listeners;  // each stays where it is
  std::vector<Collector> collectors;
  asio::steady_timer look;
  bool is_stopped = false;
};

Server::Server(api::House& house, ServerOptions options)
    : parts_(std::make_unique<Parts>(house, std::move(options))) {}

Server::~Server() = default;

void Server::Collect(Collector collector) { parts_->collectors.push_back(std::move(collector)); }

void Server::EndSession(const std::string& session) { parts_->live.EndSession(session); }

void Server::EndToken(const std::string& token) { parts_->live.EndToken(token); }

void Server::EndNameless() { parts_->live.EndNameless(); }

Counters Server::Count() const { return parts_->counters; }

std::vector<std::string> Server::Addresses() const {
  std::vector<std::string> names;
  for (const Listener& listener : parts_->listeners) names.push_back(NameOf(listener.acceptor));
  return names;
}

void Server::Start() {
  Parts& parts = *parts_;
  const ServerOptions& options = parts.options;
  if (!options.certificate.empty()) parts.tls = ReadCertificate(options.certificate, options.key);
  for (const std::string& text : options.listen) parts.ListenOn(text);
  if (options.socket_descriptor)
    parts.listeners.push_back({Adopt(parts.house.context, *options.socket_descriptor), false});
  else if (!options.socket.empty())
    parts.ListenOnSocket();
  for (Listener& listener : parts.listeners)
    asio::co_spawn(parts.house.context, parts.Accept(listener), model::EndOnFault{});
  asio::co_spawn(parts.house.context, parts.Look(), model::EndOnFault{});
}

void Server::Stop() {
  parts_->is_stopped = true;
  for (Listener& listener : parts_->listeners) {
    error_code ignored;
    listener.acceptor.close(ignored);
  }
  parts_->look.cancel();
  parts_->streams->CloseAll();
}

void Server::Parts::CheckMayListen(const ListenAddress& address, const std::string& text) const {
  const auto fail = [&text](std::string_view why) {
    throw std::runtime_error(fmt::format("will not listen on {}: {}", text, why));
  };
  if (address.is_loopback) return;
  if (!house.access.HasAccounts())
    fail("others reach it, and there is no account yet; make one over the Unix socket first");
  if (!tls && !options.insecure_http)
    fail(
        "passwords would go over the network in plain; give `certificate` and `key`, or say "
        "`insecure-http = true`");
}

void Server::Parts::ListenOnSocket() {
  try {
    listeners.push_back({ListenUnix(house.context, options.socket), false});
  } catch (const std::runtime_error& error) {
    if (!options.can_be_without_socket || listeners.empty()) throw;
    std::cerr << "qelm-hub: " << error.what() << '\n';
  }
}

void Server::Parts::ListenOn(const std::string& text) {
  const ListenAddress address = ParseListenAddress(text);
  CheckMayListen(address, text);
  const bool is_tls = tls && !address.is_loopback;
  if (auto acceptor = ListenTcp(house.context, address))
    listeners.push_back({std::move(*acceptor), is_tls});
}

std::string Server::Parts::Metrics() {
  std::string text = MetricsText(house, counters);
  for (const Collector& collect : collectors) text += collect();
  return text;
}

asio::awaitable<void> Server::Parts::Accept(Listener& listener) {
  asio::steady_timer pause(house.context);
  while (!is_stopped) {
    error_code error;
    Stream::Socket socket =
        co_await listener.acceptor.async_accept(asio::redirect_error(asio::use_awaitable, error));
    if (is_stopped) co_return;
    if (!error) {
      Take(std::move(socket), listener);
      continue;
    }
    pause.expires_after(kBreath);
    co_await pause.async_wait(asio::redirect_error(asio::use_awaitable, error));
  }
}

void Server::Parts::Take(Stream::Socket socket, const Listener& listener) {
  Peer peer = PeerOf(socket);
  // It was reset before it was taken: its bytes could be anybody's.
  if (peer.address.empty() && !peer.is_local) return;
  peer.is_tls = listener.is_tls;
  const Place place = streams->PlaceFor(peer);
  const bool is_over = place != Place::kFree;
  if (is_over) ++counters.turned_away;
  if (is_over && (listener.is_tls || place == Place::kNotAWord)) return;
  auto stream = std::make_shared<Stream>(streams, std::move(socket), std::move(peer),
                                         listener.is_tls ? tls.get() : nullptr);
  asio::co_spawn(house.context, is_over ? TurnAway(stream) : Converse(stream), asio::detached);
}

asio::awaitable<void> Server::Parts::TurnAway(std::shared_ptr<Stream> stream) {
  HttpLine line(*stream);
  const Response response = TooMany();
  const bool went = co_await line.Write(response, false, false);
  if (went) co_await line.Linger();
}

// A WebSocket takes the stream over: nothing of what was said before it is kept.
asio::awaitable<void> Server::Parts::Converse(std::shared_ptr<Stream> stream) {
  stream->AllowFor(kHeaderTime);
  const bool is_safe = co_await stream->ShakeHands();
  if (!is_safe) co_return;
  std::optional<api::Guest> guest;
  guest.emplace(house.traffic,
                stream->OtherEnd().is_local ? access::Door::kLocal : access::Door::kHttp);
  auto answering = AnswerAll(stream);
  std::optional<Upgrade> upgrade = co_await std::move(answering);
  if (!upgrade) co_return;
  ++counters.requests[101];
  guest.emplace(house.traffic, access::Door::kWebSocket);
  auto talking = live.Talk(stream, std::move(upgrade->request), std::move(upgrade->caller));
  co_await std::move(talking);
}

asio::awaitable<std::optional<Upgrade>> Server::Parts::AnswerAll(std::shared_ptr<Stream> stream) {
  HttpLine line(*stream);
  for (bool keep_alive = true; keep_alive && !is_stopped;) {
    Incoming incoming = co_await line.Read();
    if (std::holds_alternative<Ended>(incoming)) co_return std::nullopt;
    auto* const request = std::get_if<Request>(&incoming);
    keep_alive = request != nullptr && request->keep_alive;
    Answer answer;
    if (request != nullptr) {
      stream->AllowFor(kWorkTime);
      auto asking = router.Ask(*request);
      answer = co_await std::move(asking);
      // Nobody may say anything on a WebSocket before it is accepted.
      if (answer.live && !line.HasMore())
        co_return Upgrade{std::move(*request), std::move(*answer.live)};
    }
    if (request == nullptr || answer.live)
      answer.response =
          MalformedAnswer(request == nullptr ? std::get<Malformed>(incoming).status : 400);
    ++counters.requests[answer.response.status];
    const bool without_body = request != nullptr && request->method == "HEAD";
    const bool went = co_await line.Write(answer.response, keep_alive, without_body);
    if (!went) co_return std::nullopt;
  }
  co_await line.Linger();
  co_return std::nullopt;
}

// Whoever is late has waited for seconds; one more does not matter.
asio::awaitable<void> Server::Parts::Look() {
  while (!is_stopped) {
    error_code error;
    look.expires_after(options.look_every);
    co_await look.async_wait(asio::redirect_error(asio::use_awaitable, error));
    streams->CloseLate();
    live.Look();
  }
}

}  // namespace hub::http
