#include "mqtt/Library.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

namespace hub::mqtt {

namespace {

constexpr int kKeepAliveSeconds = 20;
constexpr int kQos = 1;
// The broker keeps longer ones to itself, so that none has to be taken in whole to be refused: room
// for a payload that is just too long, so that whoever sent it hears of it.
constexpr uint32_t kLargestPacket = 128 * 1024;
constexpr size_t kLongestTopic = 256;  // bytes; no hub has one, and what is heard is kept by topics
constexpr int kRefused = 0x80;         // from here on the answers of version 5 are refusals

struct Words {
  int code;
  std::string_view text;
  bool is_refusal;
};

// What a broker says to a greeting or at an end: 3.1.1 has five answers, 5 has numbers of its own.
constexpr std::array<Words, 16> kAnswers{{
    {1, "it does not speak this version of MQTT", true},
    {2, "it does not take the client id", true},
    {3, "it is not available", false},
    {4, "the user or the password is wrong", true},
    {5, "not authorised", true},
    {MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION, "it does not speak this version of MQTT", true},
    {MQTT_RC_CLIENTID_NOT_VALID, "it does not take the client id", true},
    {MQTT_RC_BAD_USERNAME_OR_PASSWORD, "the user or the password is wrong", true},
    {MQTT_RC_NOT_AUTHORIZED, "not authorised", true},
    {MQTT_RC_SERVER_UNAVAILABLE, "it is not available", false},
    {MQTT_RC_SERVER_BUSY, "it is busy", false},
    {MQTT_RC_BANNED, "this hub is banned", true},
    {MQTT_RC_SERVER_SHUTTING_DOWN, "it shuts down", false},
    {MQTT_RC_SESSION_TAKEN_OVER, "another client has the id of this hub", true},
    {MQTT_RC_QUOTA_EXCEEDED, "a quota is exceeded", true},
    {MQTT_RC_CONNECTION_RATE_EXCEEDED, "too many connections", false},
}};

Ended EndOf(int code) {
  const auto* const row = std::ranges::find(kAnswers, code, &Words::code);
  if (row == kAnswers.end()) return {mosquitto_reason_string(code), true, false};
  const bool is_version = code == 1 || code == MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION;
  return {std::string(row->text), row->is_refusal, is_version};
}

std::string FileTrouble(const std::string& path) { return path + ": " + std::strerror(errno); }

// A key that wants a pass phrase would ask for it on the terminal.
int NoPassPhrase(char*, int, int, void*) { return 0; }

void StartLibrary() {
  static const int result = mosquitto_lib_init();
  static_cast<void>(result);
}

}  // namespace

struct Library::Callbacks {
  static Library& Of(void* library) { return *static_cast<Library*>(library); }

  static void Connect(mosquitto*, void* library, int code, int, const mosquitto_property*) {
    Library& self = Of(library);
    if (code != 0) {
      self.farewell_ = EndOf(code);
      return;
    }
    self.is_connected = true;
    self.news.emplace_back(Connected{});
  }

  static void Disconnect(mosquitto*, void* library, int code, const mosquitto_property*) {
    if (code >= kRefused) Of(library).farewell_ = EndOf(code);
  }

  static void Message(mosquitto*, void* library, const mosquitto_message* message,
                      const mosquitto_property*) {
    Arrived arrived;
    arrived.message.topic = message->topic;
    if (arrived.message.topic.size() > kLongestTopic) return;
    arrived.message.is_retained = message->retain;
    arrived.size = static_cast<size_t>(message->payloadlen);
    if (arrived.size > 0 && arrived.size <= Arrived::kMostPayload)
      arrived.message.payload.assign(static_cast<const char*>(message->payload), arrived.size);
    Of(library).news.emplace_back(std::move(arrived));
  }

  static void Publish(mosquitto*, void* library, int, int code, const mosquitto_property*) {
    Of(library).news.emplace_back(
        Taken{code < kRefused ? "" : std::string(mosquitto_reason_string(code))});
  }

  static void Subscribe(mosquitto*, void* library, int id, int count, const int* granted,
                        const mosquitto_property*) {
    Of(library).news.emplace_back(Subscribed{id, count == 1 && granted[0] < kRefused});
  }

  static void Log(mosquitto*, void* library, int level, const char* text) {
    if (level == MOSQ_LOG_ERR) Of(library).last_error_ = text;
  }
};

Library::Library(Greeting greeting) : greeting_(std::move(greeting)) {
  StartLibrary();
  handle_ = mosquitto_new(greeting_.client_id.c_str(), true, this);
  mosquitto_connect_v5_callback_set(handle_, &Callbacks::Connect);
  mosquitto_disconnect_v5_callback_set(handle_, &Callbacks::Disconnect);
  mosquitto_message_v5_callback_set(handle_, &Callbacks::Message);
  mosquitto_publish_v5_callback_set(handle_, &Callbacks::Publish);
  mosquitto_subscribe_v5_callback_set(handle_, &Callbacks::Subscribe);
  mosquitto_log_callback_set(handle_, &Callbacks::Log);
}

Library::~Library() { mosquitto_destroy(handle_); }

void Library::Connect(const Server& server) {
  if (auto trouble = SetUp(server)) return End({.why = std::move(*trouble), .is_refusal = true});
  mosquitto_property* properties = nullptr;
  if (greeting_.is_version_5)
    mosquitto_property_add_int32(&properties, MQTT_PROP_MAXIMUM_PACKET_SIZE, kLargestPacket);
  const int result = mosquitto_connect_bind_v5(handle_, server.host.c_str(), server.port,
                                               kKeepAliveSeconds, nullptr, properties);
  mosquitto_property_free_all(&properties);
  if (result != MOSQ_ERR_SUCCESS) End(EndFor(result));
}

std::optional<std::string> Library::SetUp(const Server& server) {
  mosquitto_int_option(handle_, MOSQ_OPT_PROTOCOL_VERSION,
                       greeting_.is_version_5 ? MQTT_PROTOCOL_V5 : MQTT_PROTOCOL_V311);
  mosquitto_int_option(handle_, MOSQ_OPT_TCP_NODELAY, 1);
  if (!server.user.empty() || !server.password_file.empty()) {
    std::string password;
    if (!server.password_file.empty()) {
      std::ifstream file(server.password_file);
      if (!file) return FileTrouble(server.password_file);
      std::getline(file, password);
      if (password.ends_with('\r')) password.pop_back();
    }
    mosquitto_username_pw_set(handle_, server.user.c_str(),
                              server.password_file.empty() ? nullptr : password.c_str());
  }
  if (const auto& will = greeting_.will)
    mosquitto_will_set(handle_, will->topic.c_str(), static_cast<int>(will->payload.size()),
                       will->payload.data(), kQos, will->is_retained);
  return SetUpTls(server);
}

std::optional<std::string> Library::SetUpTls(const Server& server) {
  if (server.ca.empty() && server.certificate.empty()) return std::nullopt;
  for (const std::string* const file : {&server.ca, &server.certificate, &server.key})
    if (!file->empty() && ::access(file->c_str(), R_OK) != 0) return FileTrouble(*file);
  const auto or_null = [](const std::string& path) {
    return path.empty() ? nullptr : path.c_str();
  };
  if (server.ca.empty()) mosquitto_int_option(handle_, MOSQ_OPT_TLS_USE_OS_CERTS, 1);
  const int result =
      mosquitto_tls_set(handle_, or_null(server.ca), nullptr, or_null(server.certificate),
                        or_null(server.key), &NoPassPhrase);
  if (result == MOSQ_ERR_SUCCESS) return std::nullopt;
  return std::string("TLS: ") + mosquitto_strerror(result);
}

int Library::Socket() const { return mosquitto_socket(handle_); }

bool Library::WantsToWrite() const { return mosquitto_want_write(handle_); }

// The library takes a packet a call, and errno says where there was none left. Brokers gather small
// packets until the ones before are acknowledged, which the kernel puts off by 40 ms.
void Library::Read(size_t most) {
  do {
    errno = 0;
    Note(mosquitto_loop_read(handle_, 1));
  } while (errno != EAGAIN && !has_ended_ && news.size() < most);
  const int on = 1;
  setsockopt(Socket(), IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
}

void Library::Write() { Note(mosquitto_loop_write(handle_, 1)); }

void Library::LookAfter() { Note(mosquitto_loop_misc(handle_)); }

int Library::Subscribe(const std::string& filter, Hearing hearing) {
  int id = 0;
  const bool is_command = hearing == Hearing::kCommands;
  const int options = is_command && greeting_.is_version_5 ? MQTT_SUB_OPT_RETAIN_AS_PUBLISHED : 0;
  Note(mosquitto_subscribe_v5(handle_, &id, filter.c_str(), is_command ? kQos : 0, options,
                              nullptr));
  return id;
}

void Library::Unsubscribe(const std::string& filter) {
  Note(mosquitto_unsubscribe(handle_, nullptr, filter.c_str()));
}

// What this broker does not take, as it is too long for it, ends nothing.
void Library::Publish(const Message& message) {
  const int result = mosquitto_publish(handle_, nullptr, message.topic.c_str(),
                                       static_cast<int>(message.payload.size()),
                                       message.payload.data(), kQos, message.is_retained);
  if (result == MOSQ_ERR_OVERSIZE_PACKET || result == MOSQ_ERR_RETAIN_NOT_SUPPORTED)
    news.emplace_back(Taken{mosquitto_strerror(result)});
  else
    Note(result);
}

void Library::Disconnect() { Note(mosquitto_disconnect(handle_)); }

void Library::Note(int result) {
  if (result != MOSQ_ERR_SUCCESS || Socket() < 0) End(EndFor(result));
}

void Library::End(Ended ended) {
  if (std::exchange(has_ended_, true)) return;
  news.emplace_back(std::move(ended));
}

// The library calls a fault of TLS EPROTO, where it has not read yet what the other end says of it.
// Where nothing was said at all, that may be one that hangs up on version 5.
Ended Library::EndFor(int result) const {
  const int system_error = errno;
  const Ended without_certificate{.why = "it ends TLS; it may want a certificate",
                                  .is_refusal = true};
  if (farewell_) return *farewell_;
  if (last_error_.find("alert certificate required") != std::string::npos)
    return without_certificate;
  if (!is_connected && !last_error_.empty()) return {.why = last_error_, .is_refusal = true};
  switch (result) {
    case MOSQ_ERR_ERRNO:
      if (system_error == EPROTO) return without_certificate;
      return {.why = std::strerror(system_error)};
    case MOSQ_ERR_EAI:
      return {.why = "the name of the host is not known"};
    case MOSQ_ERR_KEEPALIVE:
      return {.why = "it does not answer any more"};
    default:
      return {.why = "it has closed the connection", .speaks_older = !is_connected};
  }
}

}  // namespace hub::mqtt
