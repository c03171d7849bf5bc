// The checks of what is above the adapter: ports, hub, page, broker, cards.
#include <boost/json/array.hpp>

#include "base/Json.h"
#include "doctor/Checks.h"

namespace ctl::doctor {

namespace json = boost::json;

namespace {

constexpr char kLogIn[] = "give a token: --token-file FILE";

std::string NameOf(const PortFacts& port) {
  return port.setting.name + " (" + std::to_string(port.setting.number) + ")";
}

Finding LookAtPort(const PortFacts& port, bool daemon_runs) {
  const std::string name = NameOf(port);
  switch (port.state) {
    case PortState::kGreets:
      return {Verdict::kWell, name + " greets", {}};
    case PortState::kInUse:
      if (port.is_hub) return {Verdict::kWell, name + " serves the hub", {}};
      return {Verdict::kWrong, name + " is held by " + port.who + ": it serves one at a time",
              "end that program, or let it use the hub's text port in its place (5110 to 5112)"};
    case PortState::kForeign:
      return {Verdict::kWrong, name + " belongs to " + port.who + ", not to the daemon",
              "end that program and restart the daemon, or give the port another number"};
    case PortState::kSilent:
      return {Verdict::kWrong,
              name +
                  " takes a connection and does not greet: another client "
                  "holds it, or the daemon hangs",
              "run qelmctl doctor as root, which sees who; or: systemctl restart qelm"};
    case PortState::kStrange:
      return {Verdict::kWrong, name + " says \"" + port.said + "\" in place of a greeting",
              "something stands between; restart the daemon"};
    case PortState::kClosed:
      break;
  }
  if (!daemon_runs) return {Verdict::kUnseen, name + ": the daemon does not run", {}};
  return {Verdict::kWrong, name + " is closed, though the daemon runs",
          "see its log for \"bind\" or \"listening error\"; systemctl restart qelm"};
}

// It answers, but does it have the daemon?
Finding LookAtDaemonOf(const json::value& bus) {
  const json::value& daemon = At(bus, "daemon");
  const std::string state = TextAt(daemon, "state");
  if (state == "up")
    return {Verdict::kWell, "it has the daemon, version " + TextAt(daemon, "version"), {}};
  if (state == "waiting")
    return {Verdict::kWrong,
            "it waits: another client holds the port " + TextAt(daemon, "waiting_for"),
            "see \"ports\" above"};
  return {Verdict::kWrong, "it does not find the daemon (" + state + ")",
          "see \"daemon\" and \"ports\" above; [daemon] of /etc/qelm/qelm-hub.toml has the ports "
          "that it tries"};
}

std::string AddressOf(const json::value& card) {
  const std::string name = TextAt(card, "name");
  return TextAt(card, "address") + (name.empty() ? "" : " (" + name + ")");
}

}  // namespace

Findings CheckPorts(const Facts& facts) {
  Findings findings;
  for (const PortFacts& port : facts.ports)
    findings.push_back(LookAtPort(port, !facts.daemons.empty()));
  if (findings.empty()) return {{Verdict::kUnseen, "the configuration names none", {}}};
  return findings;
}

Findings CheckHub(const Facts& facts) {
  const HubFacts& hub = facts.hub;
  if (!hub.failure.empty()) {
    if (hub.processes.empty())
      return {{Verdict::kWrong, hub.failure, "\"journalctl -u qelm-hub\" has its last words"}};
    return {{Verdict::kWrong, hub.processes.front().Text() + " runs, but " + hub.failure,
             "name its socket with --socket, or its address with --url"}};
  }
  if (hub.status != 200)
    return {{Verdict::kUnseen,
             hub.name + " answers with status " + std::to_string(hub.status) + ": it is there",
             hub.status == 401 || hub.status == 403 ? kLogIn : "journalctl -u qelm-hub"}};
  Findings findings{{Verdict::kWell, "it answers at " + hub.name, {}}};
  findings.push_back(LookAtDaemonOf(hub.bus));
  if (BoolAt(hub.bus, "virtual"))
    findings.push_back({Verdict::kNote, "the bus is a virtual one: no hardware moves", {}});
  return findings;
}

Findings CheckPage(const Facts& facts) {
  const HubFacts& hub = facts.hub;
  const std::string owned = "port 5080 belongs to " + hub.page_owner + ", not to the hub";
  if (hub.processes.empty() && !hub.page_owner.empty())
    return {{Verdict::kWrong, owned,
             "end that program, or give \"listen\" in /etc/qelm/qelm-hub.toml another port"}};
  if (hub.page_is_open && hub.page_owner.empty())
    return {{Verdict::kWell, "http://localhost:5080", {}}};
  if (hub.processes.empty()) return {{Verdict::kUnseen, "the hub does not run", {}}};
  // One that could not have its port would not run.
  return {{Verdict::kNote, hub.page_is_open ? owned : "nobody listens on port 5080",
           "\"listen\" in /etc/qelm/qelm-hub.toml says where the page is"}};
}

Findings CheckBroker(const Facts& facts) {
  const json::value& broker = At(facts.hub.bus, "broker");
  const std::string state = TextAt(broker, "state");
  if (facts.hub.bus.is_null()) return {{Verdict::kUnseen, "only the hub knows it", {}}};
  if (state.empty()) return {{Verdict::kWell, "none is set", {}}};
  const std::string host = TextAt(broker, "host");
  if (state == "up") return {{Verdict::kWell, "the hub has the one at " + host, {}}};
  const std::string why = TextAt(broker, "detail");
  return {{Verdict::kWrong,
           "the hub does not have the one at " + host + ": " + (why.empty() ? state : why),
           "see [broker] in /etc/qelm/qelm-hub.toml, and the broker's own log"}};
}

Findings CheckCards(const Facts& facts) {
  const json::array& cards = ItemsAt(facts.hub.cards, "cards");
  if (facts.hub.cards.is_null()) return {{Verdict::kUnseen, "only the hub knows them", {}}};
  Findings findings;
  size_t present = 0;
  for (const json::value& card : cards) {
    const std::string state = TextAt(card, "state");
    present += state == "present" ? 1 : 0;
    if (state == "silent" || state == "absent")
      findings.push_back({Verdict::kNote, "card " + AddressOf(card) + " does not answer",
                          "look at its plug and power, then: qelmctl discover"});
  }
  if (present == 0)
    return {{Verdict::kWrong, "no card is known", "qelmctl discover; look at the bus's power"}};
  findings.insert(findings.begin(), {Verdict::kWell, std::to_string(present) + " answer", {}});
  return findings;
}

}  // namespace ctl::doctor
