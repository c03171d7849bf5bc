#include "client/Wire.h"

#include <grp.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <boost/asio/error.hpp>
#include <cerrno>
#include <cstring>
#include <utility>

#include "base/Failure.h"

namespace ctl {

namespace {

constexpr char kAskDoctor[] = "\"qelmctl doctor\" says what is wrong";

Wire::Error LastError() {
  if (errno == EAGAIN) return boost::asio::error::timed_out;
  return {errno, boost::system::system_category()};
}

void SetOption(int fd, int level, int option, int value) {
  setsockopt(fd, level, option, &value, sizeof value);
}

// Three questions without an answer in a minute, and the connection is dead.
void NoticeDeath(int fd) {
  SetOption(fd, SOL_SOCKET, SO_KEEPALIVE, 1);
  SetOption(fd, IPPROTO_TCP, TCP_KEEPIDLE, 30);
  SetOption(fd, IPPROTO_TCP, TCP_KEEPINTVL, 10);
  SetOption(fd, IPPROTO_TCP, TCP_KEEPCNT, 3);
  SetOption(fd, IPPROTO_TCP, TCP_NODELAY, 1);
}

std::string GroupOf(const std::string& path) {
  struct stat file {};
  if (stat(path.c_str(), &file) != 0) return "its group";
  const group* entry = getgrgid(file.st_gid);
  return entry != nullptr ? std::string("the group ") + entry->gr_name
                          : "the group " + std::to_string(file.st_gid);
}

std::string WhyNoSocket(const std::string& path, int error) {
  switch (error) {
    case ENOENT:
      return "is not there: qelm-hub does not run; start it (systemctl start qelm-hub)";
    case ECONNREFUSED:
      return "has nobody behind it: qelm-hub does not run; start it (systemctl start qelm-hub)";
    case EACCES:
      return "may be used by " + GroupOf(path) +
             " only: join it (adduser USER GROUP, then log in anew), or be root";
    default:
      return std::strerror(error);
  }
}

std::string TlsReason() {
  const unsigned long code = ERR_get_error();
  const char* reason = code == 0 ? nullptr : ERR_reason_error_string(code);
  return reason != nullptr ? reason : "the connection ended";
}

bool IsAddress(const std::string& host) {
  return host.find(':') != std::string::npos ||
         host.find_first_not_of("0123456789.") == std::string::npos;
}

}  // namespace

Wire::Wire(const Target& target) {
  if (target.host.empty()) {
    ConnectToPath(target);
  } else {
    ConnectToHost(target);
  }
  if (target.tls) StartTls(target);
}

Wire::~Wire() { Close(); }

void Wire::Close() {
  tls_.reset();
  if (fd_ >= 0) close(std::exchange(fd_, -1));
}

void Wire::Fail(const Target& target, const std::string& why) {
  Close();
  throw Failure(kUnreachable, NameOf(target) + ": " + why);
}

void Wire::SetPatience(std::chrono::seconds patience) {
  const timeval time{.tv_sec = patience.count(), .tv_usec = 0};
  setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
  setsockopt(fd_, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
}

void Wire::ConnectToPath(const Target& target) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (target.socket.size() >= sizeof address.sun_path) Fail(target, "the path is too long");
  std::memcpy(address.sun_path, target.socket.data(), target.socket.size());
  fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  SetPatience(target.patience);
  if (connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    Fail(target, WhyNoSocket(target.socket, errno));
}

void Wire::ConnectToHost(const Target& target) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int status = getaddrinfo(target.host.c_str(), target.port.c_str(), &hints, &found);
  if (status != 0) Fail(target, std::string("no such host: ") + gai_strerror(status));
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, &freeaddrinfo);
  int error = 0;
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    fd_ = socket(one->ai_family, one->ai_socktype | SOCK_CLOEXEC, one->ai_protocol);
    SetPatience(target.patience);
    if (connect(fd_, one->ai_addr, one->ai_addrlen) == 0) return NoticeDeath(fd_);
    error = errno;
    Close();
  }
  // Where the time is up, connect says that it is still under way.
  const int why = error == EINPROGRESS ? ETIMEDOUT : error;
  Fail(target, std::string(std::strerror(why)) + "; does qelm-hub listen there? On the board, " +
                   kAskDoctor);
}

void Wire::StartTls(const Target& target) {
  tls_context_.reset(SSL_CTX_new(TLS_client_method()));
  SSL_CTX* context = tls_context_.get();
  SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
  SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
  const bool trusts = target.ca_file.empty()
                          ? SSL_CTX_set_default_verify_paths(context) == 1
                          : SSL_CTX_load_verify_file(context, target.ca_file.c_str()) == 1;
  if (!trusts) throw Failure(kUsage, target.ca_file + " holds no certificate in PEM form");
  tls_.reset(SSL_new(context));
  SSL_set_fd(tls_.get(), fd_);
  if (IsAddress(target.host)) {
    X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(tls_.get()), target.host.c_str());
  } else {
    SSL_set_tlsext_host_name(tls_.get(), target.host.c_str());
    SSL_set1_host(tls_.get(), target.host.c_str());
  }
  if (SSL_connect(tls_.get()) == 1) return;
  const long verdict = SSL_get_verify_result(tls_.get());
  if (verdict == X509_V_OK) Fail(target, "no TLS: " + TlsReason());
  Fail(target, std::string("its certificate is not trusted: ") +
                   X509_verify_cert_error_string(verdict) +
                   "; name the one that signed it with --ca FILE");
}

size_t Wire::Read(void* bytes, size_t count, Error& error) {
  error = {};
  if (count == 0) return 0;
  errno = 0;
  const ssize_t taken =
      tls_ ? SSL_read(tls_.get(), bytes, static_cast<int>(count)) : recv(fd_, bytes, count, 0);
  if (taken > 0) return static_cast<size_t>(taken);
  const bool ended = taken == 0 || (tls_ && errno == 0);
  error = ended ? Error(boost::asio::error::eof) : LastError();
  return 0;
}

size_t Wire::Write(const void* bytes, size_t count, Error& error) {
  error = {};
  if (count == 0) return 0;
  errno = 0;
  const ssize_t taken = tls_ ? SSL_write(tls_.get(), bytes, static_cast<int>(count))
                             : send(fd_, bytes, count, MSG_NOSIGNAL);
  if (taken > 0) return static_cast<size_t>(taken);
  error = errno != 0 ? LastError() : Error(boost::asio::error::connection_reset);
  return 0;
}

}  // namespace ctl
