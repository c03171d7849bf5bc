#include "FakeHub.h"

#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/sha.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>

namespace {

// Everything up to and with `ending`, and what was read behind it.
std::optional<std::string> ReadUntil(int fd, const std::string& ending, std::string& buffer) {
  while (true) {
    const size_t end = buffer.find(ending);
    if (end != std::string::npos) {
      std::string text = buffer.substr(0, end + ending.size());
      buffer.erase(0, text.size());
      return text;
    }
    std::array<char, 4096> bytes{};
    const ssize_t count = read(fd, bytes.data(), bytes.size());
    if (count <= 0) return std::nullopt;
    buffer.append(bytes.data(), static_cast<size_t>(count));
  }
}

bool ReadCount(int fd, size_t count, std::string& buffer) {
  while (buffer.size() < count) {
    std::array<char, 4096> bytes{};
    const ssize_t taken = read(fd, bytes.data(), bytes.size());
    if (taken <= 0) return false;
    buffer.append(bytes.data(), static_cast<size_t>(taken));
  }
  return true;
}

void Send(int fd, const std::string& text) { send(fd, text.data(), text.size(), MSG_NOSIGNAL); }

std::string HeaderOf(const std::string& headers, const std::string& name) {
  const size_t start = headers.find("\r\n" + name + ": ");
  if (start == std::string::npos) return {};
  const size_t value = start + name.size() + 4;
  return headers.substr(value, headers.find("\r\n", value) - value);
}

std::string AcceptKey(const std::string& key) {
  const std::string text = key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11";
  std::array<unsigned char, SHA_DIGEST_LENGTH> hash{};
  SHA1(reinterpret_cast<const unsigned char*>(text.data()), text.size(), hash.data());
  std::array<unsigned char, 64> encoded{};
  const int size = EVP_EncodeBlock(encoded.data(), hash.data(), hash.size());
  return {reinterpret_cast<const char*>(encoded.data()), static_cast<size_t>(size)};
}

// A text message in one frame, not masked.
std::string Frame(const std::string& text) {
  std::string frame = "\x81";
  if (text.size() < 126) {
    frame += static_cast<char>(text.size());
  } else {
    frame += static_cast<char>(126);
    frame += static_cast<char>(text.size() >> 8U);
    frame += static_cast<char>(text.size() & 0xFFU);
  }
  return frame + text;
}

}  // namespace

FakeHub::FakeHub() {
  unix_listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un path{};
  path.sun_family = AF_UNIX;
  std::strncpy(path.sun_path, SocketPath().c_str(), sizeof path.sun_path - 1);
  bind(unix_listener_, reinterpret_cast<const sockaddr*>(&path), sizeof path);
  tcp_listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(tcp_listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  socklen_t size = sizeof address;
  getsockname(tcp_listener_, reinterpret_cast<sockaddr*>(&address), &size);
  port_ = ntohs(address.sin_port);
  const std::lock_guard guard(lock_);
  for (const int listener : {unix_listener_, tcp_listener_}) {
    listen(listener, 10);
    threads_.emplace_back([this, listener] { Accept(listener); });
  }
}

FakeHub::~FakeHub() {
  std::vector<std::jthread> threads;
  {
    const std::lock_guard guard(lock_);
    shutdown(unix_listener_, SHUT_RDWR);
    shutdown(tcp_listener_, SHUT_RDWR);
    for (const int fd : open_) shutdown(fd, SHUT_RDWR);
    threads = std::move(threads_);
  }
  threads.clear();
  for (const int fd : open_) close(fd);
  close(unix_listener_);
  close(tcp_listener_);
}

void FakeHub::Answer(const std::string& line, const std::string& body, int status) {
  const std::lock_guard guard(lock_);
  answers_[line] = {status, body};
}

void FakeHub::Feed(std::vector<std::string> messages) {
  const std::lock_guard guard(lock_);
  feed_ = std::move(messages);
}

void FakeHub::FeedOnce(std::vector<std::string> messages, std::vector<std::string> next) {
  const std::lock_guard guard(lock_);
  feed_ = std::move(messages);
  next_feed_ = std::move(next);
}

std::vector<FakeHub::Request> FakeHub::Requests() {
  const std::lock_guard guard(lock_);
  return requests_;
}

std::string FakeHub::LastBody(const std::string& line) {
  std::string body = "none came";
  for (const Request& request : Requests())
    if (request.line == line) body = request.body;
  return body;
}

bool FakeHub::Got(const std::string& line) {
  const std::vector<Request> requests = Requests();
  return std::any_of(requests.begin(), requests.end(),
                     [&](const Request& request) { return request.line == line; });
}

FakeHub::Scripted FakeHub::ScriptFor(const std::string& line) {
  const std::lock_guard guard(lock_);
  const auto found = answers_.find(line);
  if (found != answers_.end()) return found->second;
  return {404, R"({"title":"not found","status":404,"detail":"no such thing","where":null})"};
}

void FakeHub::Accept(int listener) {
  while (true) {
    const int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) return;
    const std::lock_guard guard(lock_);
    open_.push_back(fd);
    threads_.emplace_back([this, fd] { Serve(fd); });
  }
}

void FakeHub::Serve(int fd) {
  std::string buffer;
  while (const auto head = ReadUntil(fd, "\r\n\r\n", buffer)) {
    const std::string length = HeaderOf(*head, "Content-Length");
    const size_t size = length.empty() ? 0 : std::stoul(length);
    if (!ReadCount(fd, size, buffer)) return;
    const Request request{.line = head->substr(0, head->find(" HTTP/1.1")),
                          .headers = *head,
                          .body = buffer.substr(0, size)};
    buffer.erase(0, size);
    {
      const std::lock_guard guard(lock_);
      requests_.push_back(request);
    }
    const bool is_feed = !HeaderOf(*head, "Sec-WebSocket-Key").empty();
    const Scripted answer = ScriptFor(request.line);
    if (is_feed && answer.status == 404) return ServeFeed(fd, request);
    if (answer.status == kHangUp) break;
    const bool has_body = answer.status != 204;
    Send(fd, "HTTP/1.1 " + std::to_string(answer.status) + " Said\r\n" +
                 (has_body ? "Content-Type: application/json\r\nContent-Length: " +
                                 std::to_string(answer.body.size()) + "\r\n"
                           : "") +
                 "\r\n" + answer.body);
  }
  shutdown(fd, SHUT_RDWR);
}

void FakeHub::ServeFeed(int fd, const Request& request) {
  Send(fd,
       "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
       "Sec-WebSocket-Accept: " +
           AcceptKey(HeaderOf(request.headers, "Sec-WebSocket-Key")) + "\r\n\r\n");
  // Two bytes, the mask and what it hides: the subscription is shorter than 126 bytes.
  std::string frame;
  if (!ReadCount(fd, 2, frame)) return;
  const size_t size = static_cast<unsigned char>(frame[1]) & 0x7FU;
  if (!ReadCount(fd, 6 + size, frame)) return;
  std::string text = frame.substr(6, size);
  for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>(text[i] ^ frame[2 + i % 4]);
  std::vector<std::string> messages;
  {
    const std::lock_guard guard(lock_);
    requests_.push_back({.line = "subscription", .headers = {}, .body = text});
    messages = feed_;
    if (next_feed_) feed_ = *std::exchange(next_feed_, std::nullopt);
  }
  for (const std::string& message : messages) Send(fd, Frame(message));
  shutdown(fd, SHUT_RDWR);
}
