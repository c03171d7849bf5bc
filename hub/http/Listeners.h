// Sockets that listen: TCP addresses, and the Unix socket. All of one type, whatever they are.
#pragma once

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <optional>
#include <string>

#include "http/Message.h"

namespace hub::http {

using Acceptor = boost::asio::basic_socket_acceptor<boost::asio::generic::stream_protocol>;

// "127.0.0.1:5080", "[::1]:5080": a literal address and a port.
struct ListenAddress {
  std::string host;
  uint16_t port = 0;
  bool is_loopback = false;
};

// All of them throw std::runtime_error with a text for people.
ListenAddress ParseListenAddress(const std::string& text);

// Nothing for the loopback address of a family that the machine does not have.
std::optional<Acceptor> ListenTcp(boost::asio::io_context& context, const ListenAddress& address);

// Its group may connect. A socket that an earlier run has left is taken away.
Acceptor ListenUnix(boost::asio::io_context& context, const std::string& path);

// A Unix socket that listens already.
Acceptor Adopt(boost::asio::io_context& context, int descriptor);

// "127.0.0.1:5080"; of a Unix socket its path.
std::string NameOf(const Acceptor& acceptor);

Peer PeerOf(const boost::asio::generic::stream_protocol::socket& socket);

}  // namespace hub::http
