// The fixture of the whole-daemon tests: the real program on a fake bus, in
// the words that the tests are written in. Every test ends with the daemon
// gone and nothing of a sanitizer on its standard error.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DaemonProcess.h"
#include "FakeAdapter.h"
#include "Front.h"
#include "kit/Client.h"
#include "kit/Files.h"
#include "kit/Ports.h"

inline constexpr char kLogFile[] = "/run/test/qelm.log";
inline constexpr char kConfigPath[] = "/etc/qelm/qelmconf.xml";

// The values of the configuration file, as they stand between its quotes.
struct ConfigFile {
  std::string log_file = kLogFile;
  std::string log_level = "1";
  std::string percent = "80";
  std::string poll = "FALSE";
  std::string discover = "TRUE";
  std::string io_input = R"(\r\n)";
  std::string io_output = R"(\r\n)";
  std::string cae_input = R"(\r\n)";
  std::string cae_output = R"(\r\n)";
};

class DaemonTest : public testing::Test {
 protected:
  DaemonTest();
  void SetUp() override;
  void TearDown() override;

  static void WriteConfig(const ConfigFile& config);
  static void WriteConfigText(const std::string& xml);

  void PlugCard(int address, std::uint8_t type);
  // Launches the daemon, and waits until its pid is known.
  void StartDaemon(const LaunchOptions& options = {}, Place place = Place::current());
  // The same with the adapter plugged in; waits until DISCOVER shows its cards.
  // A CAE client is connected from here on.
  void StartOnBus(const LaunchOptions& options = {}, Place place = Place::current());
  // SIGTERM; the daemon ends with status 0.
  void StopDaemon(Place place = Place::current());
  // Launches the daemon and returns the exit status with which it ends by itself.
  int RunToItsEnd(Place place = Place::current());
  // The daemon ends through abort(), with one line on standard error.
  void ExpectAbort(Place place = Place::current());
  void ExpectAlive(Place place = Place::current());

  // A client that the daemon has begun to write to. One that still met the
  // listening socket of an ended session is turned away, and connects again.
  static Client Dial(Port port);
  // A client that has read its greeting: from here its session is open.
  static Client Connect(Port port, Place place = Place::current());
  // Sends a CAE line and reads its answer: lines that end with "\r\n\r", then the prompt.
  void Command(const std::string& line, const std::string& lines, Place place = Place::current());
  // The last command of IO was illegal: CAE says so.
  void ExpectIllegal(Client& io, const std::string& command, Place place = Place::current());
  // The daemon works: CAE still answers.
  void ExpectAnswer(Place place = Place::current());

  static void ExpectLog(const std::string& tag, const std::string& text, int times = 1,
                        Place place = Place::current());
  static void ExpectNotLogged(const std::string& text, Place place = Place::current());
  // These lines stand in the log in this order, others between them.
  static void ExpectLogOrder(const std::vector<std::string>& lines, Place place = Place::current());
  // The lines of the log from the tag on: "[INF] text".
  static std::vector<std::string> LogLines();
  static int CountLogged(const std::string& line);

  FakeAdapter adapter;
  DaemonProcess daemon;
  Client cae;  // connected by StartOnBus

 private:
  bool CardsAreFound();
  void ExpectCleanStderr();

  std::string plugged_;  // address digits of the cards
};
