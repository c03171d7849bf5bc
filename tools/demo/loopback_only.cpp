// Loaded into the demo's daemon. The three ports have no password, so what the daemon
// offers to every host, the demo offers to this one alone.
#include <arpa/inet.h>
#include <dlfcn.h>
#include <netinet/in.h>

#include <cstring>

using Bind = int (*)(int, const sockaddr*, socklen_t);

extern "C" int bind(int socket_fd, const sockaddr* address, socklen_t length) {
  static const auto real = reinterpret_cast<Bind>(dlsym(RTLD_NEXT, "bind"));
  if (address->sa_family != AF_INET || length < sizeof(sockaddr_in))
    return real(socket_fd, address, length);
  sockaddr_in local{};
  std::memcpy(&local, address, sizeof local);
  local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return real(socket_fd, reinterpret_cast<const sockaddr*>(&local), sizeof local);
}
