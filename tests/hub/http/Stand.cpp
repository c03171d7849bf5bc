#include "Stand.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/use_future.hpp>

namespace hub::http {

namespace {

constexpr unsigned kKeysAt = 0x8;
constexpr unsigned kKnobsAt = 0xF;
constexpr unsigned kKnob = 3;

protocol::CardNames CardsOfTheBus() {
  protocol::CardNames names;
  names.fill("EMPTY");
  names[kKeysAt] = "KEYMX and ROTE CONTROLLER";
  names[kKnobsAt] = "6 channel ANALOGUE INPUT";
  return names;
}

}  // namespace

Stand::Stand(const std::function<void(ServerOptions&)>& change)
    : link(context, {}, bus, {}),
      store(context, {}, clock),
      access(context, clock, std::nullopt,
             {.keep = [](const std::string&) {},
              .ended = [this](const std::string& session) { server->EndSession(session); },
              .token_ended = [this](const std::string& token) { server->EndToken(token); },
              .login_needed = [this] { server->EndNameless(); }},
             {.memory = 8192, .passes = 1}),
      house{context, bus, link, store, access, clock} {
  bus.SetCards(CardsOfTheBus());
  bus.TakeInput({kKeysAt, 0, 0}, clock.Now());
  bus.TakeInput({kKnobsAt, kKnob, 0}, clock.Now());
  bus.Publish();
  ServerOptions options;
  options.listen = {"127.0.0.1:0"};
  options.socket = folder.Path("hub.sock");
  options.look_every = std::chrono::milliseconds(2);
  if (change) change(options);
  server = std::make_unique<Server>(house, options);
  server->Start();
  const std::string address = server->Addresses().front();
  port = std::stoi(address.substr(address.rfind(':') + 1));
  thread_ = std::thread([this] { context.run(); });
}

Stand::~Stand() { Stop(); }

void Stand::Stop() {
  if (!thread_.joinable()) return;
  boost::asio::post(context, [this] { server->Stop(); });
  thread_.join();
}

WebClient Stand::Subscribe() {
  WebClient client = Connect();
  const Reply reply = client.Upgrade();
  EXPECT_EQ(reply.status, 101);
  client.SendText(R"({"jsonrpc":"2.0","id":1,"method":"live.subscribe"})");
  EXPECT_NE(client.ReadText().find(R"("id":1,"result":{"seq":)"), std::string::npos);
  return client;
}

void Stand::Move(unsigned value) {
  Run([&] {
    bus.TakeInput({kKnobsAt, kKnob, static_cast<uint8_t>(value)}, clock.Now());
    bus.Publish();
  });
}

void Stand::PressKey() {
  Run([&] {
    for (const uint8_t byte : {uint8_t{5}, uint8_t{0}})
      bus.TakeInput({kKeysAt, 0, byte}, clock.Now());
    bus.Publish();
  });
}

uint64_t Stand::Sequence() {
  return Run([&] { return bus.Sequence(); });
}

std::string Stand::AddAccount() {
  const auto refusal =
      boost::asio::co_spawn(context,
                            access.AddAccount("operator", "correct horse", access::Role::kAdmin),
                            boost::asio::use_future)
          .get();
  EXPECT_FALSE(refusal);
  const auto session =
      boost::asio::co_spawn(context, access.LogIn("operator", "correct horse", "127.0.0.1"),
                            boost::asio::use_future)
          .get();
  return "qelm_session=" + std::get<access::Session>(session).secret;
}

void Stand::ChangePassword() {
  const auto refusal = boost::asio::co_spawn(
                           context, access.ChangeAccount("operator", "another horse", std::nullopt),
                           boost::asio::use_future)
                           .get();
  EXPECT_FALSE(refusal);
}

std::string Stand::AddToken(const std::string& name, access::Role role) {
  return Run([&] { return std::get<std::string>(access.AddToken(name, role)); });
}

}  // namespace hub::http
