#include "Hub.h"

#include <filesystem>
#include <fstream>

#include "Doors.h"
#include "Qelm.h"
#include "hub/http/WebClient.h"

namespace {

using hub::http::WebClient;

constexpr char kSettings[] = "/run/bench/hub.toml";
constexpr char kBrokerSettings[] = "/run/bench/mosquitto.conf";
constexpr char kNewStore[] = "/run/bench/store";

void WriteSettings(const std::string& store) {
  std::ofstream(kSettings)
      << "[http]\nmax-connections = 1200\n[daemon]\nlog = \"/run/qelm/qelm.log\"\n"
      << "[store]\nfolder = \"" << (store.empty() ? kNewStore : store) << "\"\n"
      << "[broker]\nhost = \"127.0.0.1\"\nname = \"bench\"\n";
  std::ofstream(kBrokerSettings) << "user root\npersistence false\nlistener " << kBrokerPort
                                 << " 127.0.0.1\nallow_anonymous true\nset_tcp_nodelay true\n";
  std::filesystem::remove_all(kNewStore);
  std::filesystem::create_directory(kNewStore);
}

bool Says(const std::string& path, const std::string& part) {
  return WebClient::ToPort(kHubPort).Get(path).body.find(part) != std::string::npos;
}

}  // namespace

Hub::Hub(const BusSetup& setup, const std::string& store) : bus(setup), daemon_(StartDaemon(100)) {
  WriteSettings(store);
  broker_ = Process({"/usr/sbin/mosquitto", "-c", kBrokerSettings});
  Await("the broker", [] { return IsListening(kBrokerPort); });
  Start();
  const std::string last = Hex(setup.cards - 1, 1);
  Await("the cards", [&] { return Says("/api/cards/" + last, R"("state":"present")"); });
  WebClient::ToPort(kHubPort).Write("PUT", "/api/bus/polling", R"({"polling":true})");
  if (setup.cards > setup.outputs)
    Await("the inputs", [&] { return Says("/api/channels/" + last + ".0", R"("known":true)"); });
}

void Hub::Start() {
  const Time began = Clock::now();
  process =
      Process({BUILD_FOLDER "/qelm-hub", "--config", kSettings, "--socket", "/run/bench/hub.sock"});
  Await(
      "the hub", [] { return IsListening(kHubPort); }, microseconds(100));
  Says("/api/bus", "");
  start_time = Clock::now() - began;
}
