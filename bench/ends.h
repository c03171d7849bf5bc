// The two ends of what passes bytes: the device, and one client on the loopback interface.
#pragma once

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <termios.h>

// -1 where the device cannot be had.
inline int OpenDevice(const char* path, int flags) {
  const int device = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC | flags);
  termios line{};
  cfmakeraw(&line);
  cfsetspeed(&line, B460800);
  line.c_cflag |= CREAD | CLOCAL;
  return tcsetattr(device, TCSANOW, &line) == 0 ? device : -1;
}

// -1 where nobody can come.
inline int AcceptClient(int port) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<in_port_t>(port));
  bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  listen(listener, 1);
  const int client = accept(listener, nullptr, nullptr);
  setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return client;
}
