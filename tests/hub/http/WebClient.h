// A client of the web server that writes its bytes by hand: requests, answers, the frames of a
// WebSocket. What does not come within the patience of a test throws.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kit/Wait.h"

namespace hub::http {

struct Reply {
  int status = 0;
  std::map<std::string, std::string> fields;  // names in lower case; the last of several
  std::string body;
};

struct Frame {
  int opcode = 0;  // 1 text, 8 close, 9 ping, 10 pong
  std::string payload;
};

class WebClient {
 public:
  static WebClient ToPort(int port, const char* host = "127.0.0.1");
  static WebClient ToPath(const std::string& path);

  WebClient(WebClient&& other) noexcept;
  WebClient& operator=(WebClient&& other) noexcept;
  ~WebClient();

  bool TrySend(std::string_view bytes);  // false where the other end has gone
  void Send(std::string_view bytes);
  // Without waiting; how many bytes went.
  size_t SendWhatFits(std::string_view bytes);
  void HalfClose();
  void Reset();           // ends at once, without a good-bye
  void KeepInputSmall();  // the kernel holds little that is not read

  // An answer; without a body for HEAD.
  Reply Read(bool with_body = true);
  Reply Ask(std::string_view bytes);
  Reply Get(const std::string& path, const std::string& fields = "");
  Reply Write(const std::string& method, const std::string& path, const std::string& json,
              const std::string& fields = "");

  bool IsEnded();  // now, with nothing left to read
  bool Ends();     // at last
  std::string ReadToEnd();

  // The handshake of a WebSocket; its answer.
  Reply Upgrade(const std::string& path = "/api/live", const std::string& fields = "");
  void SendText(std::string_view text);
  void SendFrame(int opcode, std::string_view payload, bool is_final = true);
  Frame ReadFrame();
  std::optional<Frame> TryReadFrame();  // nothing when the other end has gone
  std::string ReadText();               // passes over pings

 private:
  explicit WebClient(int fd) : fd_(fd) {}
  bool ReadMore(std::chrono::milliseconds bound);
  void Need(size_t count);
  std::string Take(size_t count);

  int fd_ = -1;
  std::string unread_;
};

// A request as it goes out: the line, Host, these fields, the empty line.
std::string RequestText(const std::string& method, const std::string& path,
                        const std::string& fields = "");

// A frame of a client: masked, as a client has to.
std::string FrameText(int opcode, std::string_view payload, bool is_final = true);

}  // namespace hub::http
