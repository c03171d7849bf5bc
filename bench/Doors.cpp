#include "Doors.h"

#include <mosquitto.h>

#include <cstring>

#include "hub/http/WebClient.h"

namespace {

constexpr int kHubIoPort = 5111;
constexpr int kPing = 9;  // kinds of frames
constexpr int kPong = 10;

using hub::http::WebClient;

std::string Channel(int card, int line) { return Hex(card, 1) + '.' + std::to_string(line); }

// A line is low where its lamp is on.
int BlockOf(int line, bool on) { return on ? 0xFF & ~(1 << line) : 0xFF; }

class Direct final : public Door {
 public:
  explicit Direct(Qelm& qelm) : qelm_(qelm) {}

  void Switch(int card, int line, bool on) override { qelm_.SendCommand(card, BlockOf(line, on)); }
  Time AwaitContact(int card, bool on) override { return qelm_.AwaitInput(card, on ? 1 : 0); }

 private:
  Qelm& qelm_;
};

class Text final : public Door {
 public:
  Text() : io_(ConnectTo(kHubIoPort)) { io_.ReadUntil("\r\n\r"); }

  void Switch(int card, int line, bool on) override {
    io_.Send("a" + Hex(card, 1) + "b0d" + Hex(BlockOf(line, on), 2) + "\r\n");
  }
  Time AwaitContact(int card, bool on) override {
    io_.ReadUntil("a" + Hex(card, 1) + "b0d" + (on ? "01" : "00") + "\r\n\r");
    return Clock::now();
  }

 private:
  Stream io_;
};

class WebSocket final : public Door {
 public:
  WebSocket() : client_(WebClient::ToPort(kHubPort)) {
    client_.Upgrade();
    client_.SendText(R"({"jsonrpc":"2.0","id":0,"method":"live.subscribe"})");
    ReadText();
  }

  void Switch(int card, int line, bool on) override {
    client_.SendText(R"({"jsonrpc":"2.0","id":1,"method":"channels.set","params":{"id":")" +
                     Channel(card, line) + R"(","value":)" + (on ? "true}}" : "false}}"));
    ++unanswered_;
  }

  void AwaitAnswers() override {
    while (unanswered_ > 0)
      if (ReadText().find(R"("result")") != std::string::npos) --unanswered_;
  }

  Time AwaitContact(int card, bool on) override {
    const std::string id = R"("id":")" + Channel(card, 0) + '"';
    const std::string value = on ? R"("value":true)" : R"("value":false)";
    while (true) {
      const std::string text = ReadText();
      const auto at = text.find(id);
      if (at != std::string::npos && text.substr(at, 200).find(value) != std::string::npos)
        return Clock::now();
    }
  }

 private:
  // The hub drops a client that answers no ping for a while.
  std::string ReadText() {
    hub::http::Frame frame = client_.ReadFrame();
    while (frame.opcode == kPing) {
      client_.SendFrame(kPong, frame.payload);
      frame = client_.ReadFrame();
    }
    return frame.payload;
  }

  WebClient client_;
  int unanswered_ = 0;
};

class Http final : public Door {
 public:
  Http() : client_(WebClient::ToPort(kHubPort)) {}

  void Switch(int card, int line, bool on) override {
    const std::string body = on ? R"({"value":true})" : R"({"value":false})";
    client_.Send("PUT /api/channels/" + Channel(card, line) +
                 " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
                 "Content-Length: " +
                 std::to_string(body.size()) + "\r\n\r\n" + body);
  }
  void AwaitAnswers() override { client_.Read(); }
  Time AwaitContact(int, bool) override { throw std::logic_error("HTTP hears of nothing"); }

 private:
  WebClient client_;
};

// The library without a thread: it reads and writes in the calls that wait.
class Broker final : public Door {
 public:
  Broker() : library_((mosquitto_lib_init(), mosquitto_new(nullptr, true, this))) {
    mosquitto_int_option(library_, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_message_callback_set(library_, [](mosquitto*, void* self, const auto* message) {
      static_cast<Broker*>(self)->last_ = {static_cast<const char*>(message->payload),
                                           static_cast<size_t>(message->payloadlen)};
    });
    mosquitto_publish_callback_set(
        library_, [](mosquitto*, void* self, int) { --static_cast<Broker*>(self)->unanswered_; });
    mosquitto_connect(library_, "127.0.0.1", kBrokerPort, 60);
    mosquitto_subscribe(library_, nullptr, "qelm/bench/6/0", 1);
    AwaitLast("OFF");
  }
  ~Broker() override { mosquitto_destroy(library_); }

  void Switch(int card, int line, bool on) override {
    const std::string topic = "qelm/bench/" + Hex(card, 1) + '/' + std::to_string(line) + "/set";
    const char* const word = on ? "ON" : "OFF";
    mosquitto_publish(library_, nullptr, topic.c_str(), static_cast<int>(std::strlen(word)), word,
                      1, false);
    ++unanswered_;
  }
  void AwaitAnswers() override {
    while (unanswered_ > 0) mosquitto_loop(library_, 100, 1);
  }
  Time AwaitContact(int, bool on) override {
    AwaitLast(on ? "ON" : "OFF");
    return Clock::now();
  }

 private:
  void AwaitLast(std::string_view payload) {
    while (last_ != payload)
      if (mosquitto_loop(library_, 100, 1) != MOSQ_ERR_SUCCESS)
        throw std::runtime_error("the broker has gone");
  }

  std::string last_;  // of the contact
  int unanswered_ = 0;
  mosquitto* library_;
};

}  // namespace

std::unique_ptr<Door> OpenDirect(Qelm& qelm) { return std::make_unique<Direct>(qelm); }
std::unique_ptr<Door> OpenText() { return std::make_unique<Text>(); }
std::unique_ptr<Door> OpenWebSocket() { return std::make_unique<WebSocket>(); }
std::unique_ptr<Door> OpenHttp() { return std::make_unique<Http>(); }
std::unique_ptr<Door> OpenBroker() { return std::make_unique<Broker>(); }

void Crowd::GrowTo(size_t count) {
  while (doors_.size() < count) doors_.push_back(OpenWebSocket());
}

Time Crowd::AwaitContact(int card, bool on) {
  Time last;
  for (const auto& door : doors_) last = door->AwaitContact(card, on);
  return last;
}
