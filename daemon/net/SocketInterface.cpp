#include "net/SocketInterface.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <string_view>
#include <utility>

#include "runtime/Pause.h"
#include "runtime/Shared.h"
#include "runtime/Values.h"

namespace {

constexpr int kBacklog = 1;
constexpr std::size_t kReadSize = 255;

struct Greeting {
  std::string_view name;
  const char* text;
};

constexpr auto kGreetings = std::to_array<Greeting>({
    {"CAE", "QELM CAE interface is ready\r\n(Type HELP for help)\r\n>\r\n"},
    {"IO", "QELM IO interface is ready\r\n"},
    {"MON", "QELM MON interface is ready\r\n"},
});
static_assert(kGreetings.size() == 3);

// TCP_NODELAY sends each report at once. SO_KEEPALIVE finds out that a client's host has
// vanished: until then the port would serve nobody else.
void SetClientOptions(int client) {
  const int on = 1;
  setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  setsockopt(client, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
}

std::string DottedAddress(const sockaddr_in& peer) {
  std::array<char, INET_ADDRSTRLEN> text{};
  inet_ntop(AF_INET, &peer.sin_addr, text.data(), text.size());
  return text.data();
}

// The bytes that are sent for an item.
std::string WireBytes(const QList& item, int data_mode) {
  std::string bytes(item.begin(), item.end());
  if (data_mode == kBinaryData)
    bytes.insert(bytes.begin(), static_cast<char>(item.size()));
  else
    bytes += '\r';
  return bytes;
}

}  // namespace

SOCKET_INTERFACE::SOCKET_INTERFACE(INTERFACE_DESCRIPTOR descriptor, const LOGGER& logger,
                                   QEQUEUE* in_queue, int data_mode)
    : Descriptor(std::move(descriptor)), Logger(logger), InQueue(in_queue), DataMode(data_mode) {
  SetThreadType(kIntervalDriven, 1);
  Sleep(50000);
}

SOCKET_INTERFACE::~SOCKET_INTERFACE() {
  Halt();
  delete OutQueue;
}

bool SOCKET_INTERFACE::Init() {
  ListenSocket.Close();
  const int socket_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket_fd < 0) {
    LogEvent("ERR", "couldn't open socket for");
    return false;
  }
  ListenSocket.Adopt(socket_fd);

  const int on = 1;
  if (setsockopt(socket_fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0)
    LogEvent("ERR", "couldn't set socket options for");

  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  address.sin_port = htons(static_cast<uint16_t>(Descriptor.Port));
  if (bind(socket_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    LogEvent("ERR", "couldn't bind socket for");

  const std::string port = ITOA(Descriptor.Port);
  if (listen(socket_fd, kBacklog) != 0) {
    LogEvent("ERR", "", " listening error on port " + port);
    return false;
  }
  // Log before the state changes, or the thread logs first that it waits for a client.
  LogEvent("INF", "", " listening on port " + port);
  EnterListening();
  return true;
}

// CloseByCommand withdraws the socket before it closes the session: whichever of the two
// threads comes last, the state ends at kClosed.
void SOCKET_INTERFACE::EnterListening() {
  Publish<int>(Descriptor.State, kListening);
  if (ListenSocket.IsWithdrawn()) EnterClosed();
}

// Whoever closes has set RetryCount to 0 before: Reopen counts from there.
void SOCKET_INTERFACE::EnterClosed() { Publish<int>(Descriptor.State, kClosed); }

bool SOCKET_INTERFACE::OnTask() {
  SleepMicroseconds(LoadShared(Descriptor.ThreadDelay));
  if (PublishIf<int>(Descriptor.State, kListening, kAccepting)) AcceptClient();
  if (Observe(Descriptor.State) == kConnected) ServeClient();
  if (Observe(Descriptor.State) == kClosed) Reopen();
  if (Descriptor.Name == "DMI") {  // no interface has this name: docs/design/contract.md
    LogEvent("INF", "On task ");
    while (IsRunning()) Sleep(5000);
  }
  return true;
}

void SOCKET_INTERFACE::AcceptClient() {
  LogEvent("INF", "", " is waiting for incoming connection");
  sleepsec(3);
  sockaddr_in peer{};
  socklen_t length = sizeof peer;
  const int client =
      accept4(ListenSocket.Number(), reinterpret_cast<sockaddr*>(&peer), &length, SOCK_CLOEXEC);
  if (client < 0) {
    LogEvent("ERR", "socket accept error on ");
    EnterListening();
    return;
  }
  SetClientOptions(client);
  ClientSocket.Adopt(client);
  if (Observe(Descriptor.State) == kAccepting) Welcome(peer);
}

// Queue the greeting before the state changes, or the master loop may queue a line first.
void SOCKET_INTERFACE::Welcome(const sockaddr_in& peer) {
  // The port number is printed with its bytes swapped: docs/design/contract.md.
  LogEvent("INF", "client is connected on ",
           " from " + DottedAddress(peer) + ":" + ITOA(peer.sin_port));
  for (const Greeting& greeting : kGreetings)
    if (Descriptor.Name == greeting.name) OutQueue->ToQueue(Convert_String2QList(greeting.text));
  PublishIf<int>(Descriptor.State, kAccepting, kConnected);
}

void SOCKET_INTERFACE::ServeClient() {
  Receive();
  Transmit();
}

void SOCKET_INTERFACE::Receive() {
  constexpr timespec kMicrosecond{0, 1000};
  pollfd client{ClientSocket.Number(), POLLIN | POLLOUT, 0};
  if (ppoll(&client, 1, &kMicrosecond, nullptr) < 0) {
    LogEvent("ERR", "socket select error on ");
    return;
  }
  if ((client.revents & (POLLIN | POLLHUP | POLLERR)) == 0) return;

  // The zeros behind the data end a text, and fill up a binary item that came short.
  std::array<char, kReadSize + 1> buffer{};
  if (read(client.fd, buffer.data(), kReadSize) <= 0) {
    LoseClient();
    return;
  }
  InQueue->ToQueue(DataMode == kBinaryData ? Convert_BinBuff2QList(buffer.data())
                                           : Convert_CharBuff2QList(buffer.data()));
}

// In the pass that finds the client gone, one more item is taken and lost. After a close
// by command no item is taken: the items wait for the next client.
void SOCKET_INTERFACE::Transmit() {
  if (OutQueue->IsEmpty() || ClientSocket.IsWithdrawn()) return;
  const std::string bytes = WireBytes(OutQueue->DeQueue(), DataMode);
  if (send(ClientSocket.Number(), bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0)
    LogEvent("ERR", "socket write error on ");
}

void SOCKET_INTERFACE::LoseClient() {
  if (Observe(Descriptor.State) != kConnected) return;  // CloseByCommand was faster
  LogEvent("INF", "connection is closed by client on ");
  ClientSocket.Close();
  ListenSocket.Close();
  StoreShared(RetryCount, 0);
  EnterClosed();
}

// The second pass of two seconds opens the port again.
void SOCKET_INTERFACE::Reopen() {
  ClientSocket.Close();
  ListenSocket.Close();
  SharedRef(RetryCount).fetch_add(1, std::memory_order_relaxed);
  sleepsec(2);
  if (LoadShared(RetryCount) > 1) Init();
}

void SOCKET_INTERFACE::CloseByCommand() {
  StoreShared(RetryCount, 0);
  LogEvent("INF", "connection is closed by command on ");
  ListenSocket.Withdraw();
  // Publish kClosed before withdrawing the client, or the thread logs a client-side close.
  EnterClosed();
  ClientSocket.Withdraw();
}

void SOCKET_INTERFACE::mf_SIGhandler(int signal) {
  LogEvent("INF", "signal " + ITOA(signal) + " on ");
}

void SOCKET_INTERFACE::Halt() {
  EndAfterPass();
  ClientSocket.Withdraw();
  ListenSocket.Withdraw();
  Stop();
}

// The name of the interface stands in the middle of every text.
void SOCKET_INTERFACE::LogEvent(const std::string& tag, const std::string& before,
                                const std::string& after) {
  Logger.LOG(tag, before + Descriptor.Name + " interface" + after, 1);
}
