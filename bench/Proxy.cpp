#include "Proxy.h"

#include <fstream>

namespace {

constexpr std::size_t kAckBytes = 2;
constexpr std::size_t kPollReplyBytes = 5;  // length, "!", address and two blocks

std::vector<std::string> Floor(const std::string& port, const std::string& device) {
  return {BUILD_FOLDER "/bench-floor", port, device};
}

std::vector<std::string> Pacing(const std::string& port, const std::string& device) {
  return {BUILD_FOLDER "/bench-pacing", port, device};
}

std::vector<std::string> Socat(const std::string& port, const std::string& device) {
  return {"socat", "TCP-LISTEN:" + port + ",bind=127.0.0.1,reuseaddr,nodelay",
          "OPEN:" + device + ",rawer,b460800"};
}

std::vector<std::string> Ser2net(const std::string& accepter, const std::string& port,
                                 const std::string& device, const std::string& options) {
  const std::string file = device + ".yaml";
  std::ofstream(file) << "connection: &bus\n  accepter: " << accepter << ",127.0.0.1," << port
                      << "\n  connector: serialdev(nouucplock=true)," << device
                      << ",460800n81,local\n"
                      << options;
  // Its standard error says only that a sandbox has no mdns.
  return {"sh", "-c", "exec ser2net -n -c " + file + " 2>/dev/null"};
}

std::vector<std::string> Ser2netTuned(const std::string& port, const std::string& device) {
  return Ser2net("tcp(nodelay)", port, device, "  options:\n    chardelay: false\n");
}

std::vector<std::string> Ser2netShipped(const std::string& port, const std::string& device) {
  return Ser2net("tcp", port, device, "");
}

std::string Frame(std::initializer_list<int> bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace

const std::vector<ProxyKind>& ProxyKinds() {
  static const std::vector<ProxyKind> kinds{{"floor", Floor},
                                            {"pacing alone", Pacing},
                                            {"socat", Socat},
                                            {"ser2net, tuned", Ser2netTuned},
                                            {"ser2net, as shipped", Ser2netShipped}};
  return kinds;
}

Proxy::Proxy(const ProxyKind& kind, int port, const BusSetup& setup)
    : System(kind.name, setup), client_([&] {
        process = Process(kind.command(std::to_string(port), setup.device));
        return ConnectTo(port);
      }()) {
  // The proxy opens the device when it has a client; what comes before that is lost.
  Poll(1);
  PollNext();
}

void Proxy::SendCommand(int address, int value) {
  client_.Send(Frame({5, 0x10, address, 2, value, 0xFF}));
}

void Proxy::FinishCommand() { client_.Read(kAckBytes); }

void Proxy::Poll(int cards) {
  polled_ = cards;
  next_ = 0;
}

Time Proxy::AwaitInput(int address, int value) {
  while (PollNext() != std::pair(address, value)) {
  }
  return Clock::now();
}

void Proxy::KeepPolling(milliseconds time) {
  const Time end = Clock::now() + time;
  if (polled_ == 0) std::this_thread::sleep_until(end);
  while (Clock::now() < end) PollNext();
}

std::pair<int, int> Proxy::PollNext() {
  const int address = bus.first_input + next_;
  next_ = (next_ + 1) % polled_;
  client_.Send(Frame({3, 0x20, address, 2}));
  const std::string reply = client_.Read(kPollReplyBytes);
  return {address, static_cast<unsigned char>(reply[3])};
}
