#include "text/TextPorts.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <stdexcept>
#include <vector>

#include "model/Fault.h"
#include "text/TextSession.h"

namespace hub::text {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using protocol::Port;

// Accepts on one port and knows its clients.
class Door {
 public:
  Door(api::House& house, const asio::ip::address& address, uint16_t number, Port port)
      : house_(house), acceptor_(house.context, {address, number}), port_(port) {}

  void Start() { asio::co_spawn(acceptor_.get_executor(), Accept(*this), model::EndOnFault{}); }

  void Stop() {
    error_code error;
    acceptor_.close(error);
    for (const auto& session : sessions_) session->Close();
  }

  void Show(std::string_view line) {
    for (const auto& session : sessions_) session->Show(line);
  }

  void End(std::string_view account) {
    for (const auto& session : sessions_)
      if (session->Account() == account) session->End();
  }

  size_t ClientCount() const {
    return static_cast<size_t>(
        std::ranges::count_if(sessions_, [](const auto& each) { return each->IsOpen(); }));
  }

 private:
  static asio::awaitable<void> Accept(Door& door);

  void Serve(tcp::socket socket) {
    // A closed one acts on the lines that it has read, as long as somebody else holds it.
    std::erase_if(sessions_,
                  [](const auto& each) { return !each->IsOpen() && each.use_count() == 1; });
    if (ClientCount() == TextPorts::kMostClients) return;  // closes the connection
    sessions_.push_back(std::make_shared<TextSession>(house_, std::move(socket), port_));
    sessions_.back()->Start();
  }

  api::House& house_;
  tcp::acceptor acceptor_;
  Port port_;
  std::vector<std::shared_ptr<TextSession>> sessions_;  // some are closed, and still act
};

asio::awaitable<void> Door::Accept(Door& door) {
  asio::steady_timer pause(door.acceptor_.get_executor());
  error_code error;
  while (door.acceptor_.is_open()) {
    tcp::socket socket =
        co_await door.acceptor_.async_accept(asio::redirect_error(asio::use_awaitable, error));
    if (!error) {
      door.Serve(std::move(socket));
      continue;
    }
    // No descriptor is left: one may be free in a while.
    pause.expires_after(std::chrono::milliseconds(100));
    co_await pause.async_wait(asio::redirect_error(asio::use_awaitable, error));
  }
}

struct TextPorts::Parts {
  std::vector<std::unique_ptr<Door>> doors;  // by protocol::Port; empty where none is wanted

  Door* At(Port port) { return doors.empty() ? nullptr : doors[static_cast<size_t>(port)].get(); }
};

TextPorts::TextPorts(api::House& house, const TextOptions& options)
    : parts_(std::make_unique<Parts>()) {
  if (options.listen.empty()) return;
  const auto address = asio::ip::make_address(options.listen);
  for (const protocol::PortText& row : protocol::kPorts) {
    const uint16_t number = options.ports[static_cast<size_t>(row.port)];
    try {
      parts_->doors.push_back(std::make_unique<Door>(house, address, number, row.port));
    } catch (const boost::system::system_error& error) {
      throw std::runtime_error("cannot listen on " + options.listen + ":" + std::to_string(number) +
                               ": " + error.code().message());
    }
  }
}

TextPorts::~TextPorts() { Stop(); }

void TextPorts::Start() {
  for (const auto& door : parts_->doors) door->Start();
}

void TextPorts::Stop() {
  for (const auto& door : parts_->doors) door->Stop();
}

void TextPorts::ShowReport(std::string_view line) {
  if (Door* const door = parts_->At(Port::kIo)) door->Show(line);
}

void TextPorts::ShowMonitored(std::string_view line) {
  if (Door* const door = parts_->At(Port::kMon)) door->Show(line);
}

void TextPorts::EndToken(const std::string& name) {
  for (const auto& door : parts_->doors) door->End("token:" + name);
}

void TextPorts::EndNameless() {
  for (const auto& door : parts_->doors) door->End("");
}

size_t TextPorts::ClientCount() const {
  size_t count = 0;
  for (const auto& door : parts_->doors) count += door->ClientCount();
  return count;
}

}  // namespace hub::text
