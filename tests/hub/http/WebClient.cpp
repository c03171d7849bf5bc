#include "WebClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace hub::http {

namespace {

template <class Address>
int Connect(int family, const Address& address) {
  const int fd = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    throw std::runtime_error(std::string("cannot connect: ") + std::strerror(errno));
  return fd;
}

std::string Lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

std::string BigEndian(size_t number, int bytes) {
  std::string text;
  for (int at = bytes - 1; at >= 0; --at) text += static_cast<char>(number >> (8 * at) & 0xFF);
  return text;
}

size_t FromBigEndian(std::string_view bytes) {
  size_t number = 0;
  for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

}  // namespace

std::string RequestText(const std::string& method, const std::string& path,
                        const std::string& fields) {
  return method + " " + path + " HTTP/1.1\r\nHost: localhost\r\n" + fields + "\r\n";
}

std::string FrameText(int opcode, std::string_view payload, bool is_final) {
  constexpr std::array<char, 4> kMask{0x37, 0x7A, 0x21, 0x3D};
  std::string frame(1, static_cast<char>((is_final ? 0x80 : 0) | opcode));
  const size_t size = payload.size();
  if (size < 126)
    frame += static_cast<char>(0x80 | size);
  else if (size < 65536)
    frame += static_cast<char>(0x80 | 126) + BigEndian(size, 2);
  else
    frame += static_cast<char>(0x80 | 127) + BigEndian(size, 8);
  frame.append(kMask.data(), kMask.size());
  for (size_t at = 0; at < size; ++at) frame += static_cast<char>(payload[at] ^ kMask[at % 4]);
  return frame;
}

WebClient WebClient::ToPort(int port, const char* host) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<in_port_t>(port));
  inet_pton(AF_INET, host, &address.sin_addr);
  return WebClient(Connect(AF_INET, address));
}

WebClient WebClient::ToPath(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return WebClient(Connect(AF_UNIX, address));
}

WebClient::WebClient(WebClient&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)), unread_(std::move(other.unread_)) {}

WebClient& WebClient::operator=(WebClient&& other) noexcept {
  std::swap(fd_, other.fd_);
  std::swap(unread_, other.unread_);
  return *this;
}

WebClient::~WebClient() {
  if (fd_ >= 0) close(fd_);
}

bool WebClient::TrySend(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

void WebClient::Send(std::string_view bytes) {
  if (!TrySend(bytes)) throw std::runtime_error("the server has gone");
}

void WebClient::Reset() {
  const linger at_once{1, 0};
  setsockopt(fd_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  close(std::exchange(fd_, -1));
}

size_t WebClient::SendWhatFits(std::string_view bytes) {
  const ssize_t sent = send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  return sent > 0 ? static_cast<size_t>(sent) : 0;
}

void WebClient::HalfClose() { shutdown(fd_, SHUT_WR); }

void WebClient::KeepInputSmall() {
  const int bytes = 4096;
  setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes);
}

bool WebClient::ReadMore(std::chrono::milliseconds bound) {
  pollfd end{fd_, POLLIN, 0};
  if (poll(&end, 1, static_cast<int>(bound.count())) <= 0) return false;
  std::array<char, 65536> buffer;
  const ssize_t count = read(fd_, buffer.data(), buffer.size());
  if (count <= 0) return false;
  unread_.append(buffer.data(), static_cast<size_t>(count));
  return true;
}

void WebClient::Need(size_t count) {
  while (unread_.size() < count)
    if (!ReadMore(kPatience)) throw std::runtime_error("no more came behind: " + unread_);
}

std::string WebClient::Take(size_t count) {
  Need(count);
  std::string bytes = unread_.substr(0, count);
  unread_.erase(0, count);
  return bytes;
}

Reply WebClient::Read(bool with_body) {
  size_t end = 0;
  while ((end = unread_.find("\r\n\r\n")) == std::string::npos) Need(unread_.size() + 1);
  std::string head = Take(end + 4);
  Reply reply;
  reply.status = std::stoi(head.substr(head.find(' ') + 1));
  for (size_t at = head.find("\r\n") + 2; at + 2 < head.size();) {
    const size_t stop = head.find("\r\n", at);
    const std::string line = head.substr(at, stop - at);
    const size_t colon = line.find(": ");
    reply.fields[Lower(line.substr(0, colon))] = line.substr(colon + 2);
    at = stop + 2;
  }
  const auto length = reply.fields.find("content-length");
  if (with_body && length != reply.fields.end()) reply.body = Take(std::stoul(length->second));
  return reply;
}

Reply WebClient::Ask(std::string_view bytes) {
  Send(bytes);
  return Read();
}

Reply WebClient::Get(const std::string& path, const std::string& fields) {
  return Ask(RequestText("GET", path, fields));
}

Reply WebClient::Write(const std::string& method, const std::string& path, const std::string& json,
                       const std::string& fields) {
  return Ask(RequestText(method, path,
                         "Content-Type: application/json\r\nContent-Length: " +
                             std::to_string(json.size()) + "\r\n" + fields) +
             json);
}

bool WebClient::IsEnded() {
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = recv(fd_, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count > 0) continue;
    return count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
  }
}

bool WebClient::Ends() {
  return WaitUntil([this] { return IsEnded(); });
}

std::string WebClient::ReadToEnd() {
  while (ReadMore(kPatience)) {
  }
  return std::exchange(unread_, "");
}

Reply WebClient::Upgrade(const std::string& path, const std::string& fields) {
  return Ask(RequestText("GET", path,
                         "Upgrade: websocket\r\nConnection: Upgrade\r\n"
                         "Sec-WebSocket-Version: 13\r\n"
                         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n" +
                             fields));
}

void WebClient::SendFrame(int opcode, std::string_view payload, bool is_final) {
  Send(FrameText(opcode, payload, is_final));
}

void WebClient::SendText(std::string_view text) { SendFrame(1, text); }

Frame WebClient::ReadFrame() {
  const std::string head = Take(2);
  size_t size = static_cast<unsigned char>(head[1]);
  if (size == 126) size = FromBigEndian(Take(2));
  if (size == 127) size = FromBigEndian(Take(8));
  return {static_cast<unsigned char>(head[0]) & 0x0F, Take(size)};
}

std::optional<Frame> WebClient::TryReadFrame() {
  if (unread_.empty() && !ReadMore(kPatience)) return {};
  return ReadFrame();
}

std::string WebClient::ReadText() {
  for (;;) {
    const Frame frame = ReadFrame();
    if (frame.opcode == 1) return frame.payload;
    if (frame.opcode != 9)
      throw std::runtime_error("a frame of kind " + std::to_string(frame.opcode));
  }
}

}  // namespace hub::http
