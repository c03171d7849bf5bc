// Real sites, each broken in one way, and what doctor finds. The daemon is the real one on the
// virtual bus; the hub is a fake one that answers like a hub that has them.
#pragma once

#include <unistd.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Ctl.h"
#include "FakeHub.h"
#include "SiteTest.h"

class Doctor : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    hub = std::make_unique<FakeHub>();
    SayBus(R"({"state":"up","version":"1.20","waiting_for":null})");
    hub->Answer("GET /api/cards",
                R"({"cards":[{"address":"5","name":"Relays","state":"present"}]})");
  }

  void SayBus(const std::string& daemon_state, int status = 200) {
    hub->Answer("GET /api/bus", R"({"name":"bench","virtual":true,"daemon":)" + daemon_state + "}",
                status);
  }

  // The daemon on the bus; nobody is connected.
  void StartQuietSite(const std::vector<std::string>& options = {}) {
    StartBus(options);
    StartDaemon();
    ExpectLog("INF", "hardware found on /dev/ttyUSB0 version: v1.2");
  }

  // With the patience for a port that greets.
  void Examine(const std::string& patience = "60s",
               const std::map<std::string, std::string>& environment = {}) {
    report = RunCtl({"--socket", hub ? hub->SocketPath() : "/run/test/hub.sock", "--json", "doctor",
                     "--wait", patience},
                    {}, environment);
  }

  // A check says this, in these words or with them.
  void ExpectFound(const std::string& check, const std::string& verdict, const std::string& words,
                   Place place = Place::current()) {
    const std::string start =
        "{\"check\":\"" + check + "\",\"verdict\":\"" + verdict + "\",\"found\":\"";
    for (size_t at = report.out.find(start); at != std::string::npos;
         at = report.out.find(start, at + 1)) {
      const size_t end = report.out.find('}', at);
      if (report.out.substr(at, end - at).find(words) != std::string::npos) return;
    }
    FAIL_AT(place) << check << " is not " << verdict << " with \"" << words << "\":\n"
                   << report.out << report.err;
  }

  // That, and the status that says that something is wrong.
  void ExpectWrong(const std::string& check, const std::string& words,
                   Place place = Place::current()) {
    ExpectFound(check, "wrong", words, place);
    if (report.status != 1) FAIL_AT(place) << "status " << report.status;
  }

  // In the configuration, the first of these words.
  void ReplaceInConfiguration(const std::string& word, const std::string& other) {
    std::string text = ReadFile(kConfigPath);
    WriteConfigText(text.replace(text.find(word), word.size(), other));
  }

  // Whom the daemon will run as, as long as it does not.
  void AddDaemonsUser() {
    WriteFile("/etc/passwd", "root:x:0:0::/:/bin/sh\nqelm:x:990:990::/:/bin/false\n");
  }

  std::string Self() const { return "(process " + std::to_string(getpid()) + ")"; }

  std::unique_ptr<FakeHub> hub;
  Outcome report;
};
