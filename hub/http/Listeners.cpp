#include "http/Listeners.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "access/Network.h"

namespace hub::http {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using Generic = asio::generic::stream_protocol;
using Unix = asio::local::stream_protocol;

namespace {

[[noreturn]] void Fail(const std::string& what, const std::string& why) {
  throw std::runtime_error("cannot listen on " + what + ": " + why);
}

error_code Listen(Acceptor& acceptor, const Generic& protocol, const Generic::endpoint& endpoint) {
  error_code error;
  acceptor.open(protocol, error);
  if (!error) acceptor.set_option(asio::socket_base::reuse_address(true), error);
  if (!error && protocol.family() == AF_INET6) acceptor.set_option(asio::ip::v6_only(true), error);
  if (!error) acceptor.bind(endpoint, error);
  if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
  return error;
}

// The generic endpoint as one of its own kind.
template <class Endpoint>
Endpoint ToEndpoint(const Generic::endpoint& generic) {
  Endpoint endpoint;
  if (generic.size() > endpoint.capacity()) return endpoint;
  std::memcpy(endpoint.data(), generic.data(), generic.size());
  endpoint.resize(generic.size());
  return endpoint;
}

// Somebody answers there.
bool IsServed(asio::io_context& context, const std::string& path) {
  Unix::socket socket(context);
  error_code error;
  socket.connect(Unix::endpoint(path), error);
  return !error;
}

void RemoveLeftSocket(asio::io_context& context, const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) return;
  if (IsServed(context, path)) Fail(path, "another program listens there");
  unlink(path.c_str());
}

}  // namespace

ListenAddress ParseListenAddress(const std::string& text) {
  const size_t colon = text.rfind(':');
  if (colon == std::string::npos) Fail(text, "it has no port, as \"127.0.0.1:5080\" has one");
  std::string_view host = std::string_view(text).substr(0, colon);
  const bool in_brackets = host.starts_with('[') && host.ends_with(']');
  if (in_brackets) host = host.substr(1, host.size() - 2);
  const auto address = access::ParseAddress(host);
  const bool is_v6 = host.find(':') != std::string_view::npos;
  if (!address || is_v6 != in_brackets) Fail(text, "before the port goes an IP address");
  const char* const end = text.data() + text.size();
  uint16_t port = 0;
  const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, port);
  if (error != std::errc{} || stop != end) Fail(text, "a port is a number up to 65535");
  return {*address, port, access::IsLoopback(*address)};
}

std::optional<Acceptor> ListenTcp(asio::io_context& context, const ListenAddress& address) {
  const tcp::endpoint endpoint(asio::ip::make_address(address.host), address.port);
  Acceptor acceptor(context);
  const error_code error = Listen(acceptor, endpoint.protocol(), endpoint);
  const bool is_missing = error == asio::error::address_family_not_supported ||
                          error == boost::system::errc::address_not_available;
  if (is_missing && address.is_loopback) return {};
  if (error) Fail(address.host + " port " + std::to_string(address.port), error.message());
  return acceptor;
}

Acceptor ListenUnix(asio::io_context& context, const std::string& path) {
  constexpr mode_t kGroupMay = 0660;
  if (path.size() >= sizeof(sockaddr_un::sun_path)) Fail(path, "the path is too long");
  std::error_code ignored;  // binding says it
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  RemoveLeftSocket(context, path);
  Acceptor acceptor(context);
  const mode_t before = umask(static_cast<mode_t>(~kGroupMay & 0777));
  const error_code error = Listen(acceptor, Unix(), Unix::endpoint(path));
  umask(before);
  if (error) Fail(path, error.message());
  return acceptor;
}

// Who comes by a Unix socket needs no login: another one must not pass for it.
Acceptor Adopt(asio::io_context& context, int descriptor) {
  const std::string name = "descriptor " + std::to_string(descriptor);
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0)
    Fail(name, std::strerror(errno));
  if (address.ss_family != AF_UNIX) Fail(name, "it is no Unix socket");
  Acceptor acceptor(context);
  error_code error;
  acceptor.assign(Unix(), descriptor, error);
  if (error) Fail(name, error.message());
  return acceptor;
}

std::string NameOf(const Acceptor& acceptor) {
  error_code error;
  const Generic::endpoint generic = acceptor.local_endpoint(error);
  if (error) return {};
  if (generic.protocol().family() == AF_UNIX) return ToEndpoint<Unix::endpoint>(generic).path();
  const auto endpoint = ToEndpoint<tcp::endpoint>(generic);
  const std::string host = endpoint.address().to_string();
  return (endpoint.address().is_v6() ? "[" + host + "]" : host) + ":" +
         std::to_string(endpoint.port());
}

Peer PeerOf(const Generic::socket& socket) {
  error_code error;
  const Generic::endpoint generic = socket.remote_endpoint(error);
  Peer peer;
  if (error) return peer;
  peer.is_local = generic.protocol().family() == AF_UNIX;
  if (peer.is_local) return peer;
  const std::string address = ToEndpoint<tcp::endpoint>(generic).address().to_string();
  peer.address = access::ParseAddress(address).value_or(address);
  return peer;
}

}  // namespace hub::http
