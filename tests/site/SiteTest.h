// The whole site: the real daemon on the real virtual bus. The bus takes orders
// through its control socket, the daemon through its three ports.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "BusProcess.h"
#include "DaemonTest.h"

inline constexpr char kDevice[] = "/dev/ttyUSB0";
inline constexpr char kControlPath[] = "/run/test/bus";

class SiteTest : public DaemonTest {
 protected:
  SiteTest() { daemon.BePatient(); }
  void TearDown() override;

  // One card of each kind, unless the options name others.
  void StartBus(std::vector<std::string> options = {});
  // The daemon on the bus. A CAE client is connected from here on, and so many
  // cards are found.
  void StartDaemonOnBus(std::size_t cards = 8, const LaunchOptions& options = {},
                        Place place = Place::current());
  // Both, with the cards at their usual places.
  void StartSite(Place place = Place::current());

  // What the bus answers to a control line, without the "ok" that must end it.
  std::string Bus(const std::string& line, Place place = Place::current());
  // A frame of the daemon that begins so: "10 05 02 FF FB", where ".." is any byte.
  // It may have come already, after the last one that was waited for.
  void WaitFrame(const std::string& bytes, Place place = Place::current());
  // `show` prints this line of the card, now or soon.
  void ExpectHeld(const std::string& address, const std::string& line,
                  Place place = Place::current());
  // A CAE line that asks a card, and its answer. Asked again, as an administrator would,
  // when the card did not answer in time, or the link was lost and found again meanwhile:
  // both happen on a busy machine.
  void Request(const std::string& line, const std::string& lines, Place place = Place::current());

  // Data bytes of the writes to a card that came to the adapter, in order.
  std::vector<std::string> WritesTo(const std::string& address) const;
  // Writes to a card that came to the adapter and were taken by a fault.
  int WritesLostOnTheLine(const std::string& address) const;
  // Exchanges that timed out, hardware checks not counted.
  static int ExchangeTimeouts();

  std::unique_ptr<virtualbus::Program> bus;

 private:
  TempDir folder_;
  std::unique_ptr<virtualbus::Script> script_;
};
