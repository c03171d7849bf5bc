// Random actions on the daemon and its bus, against the model of Model.h.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Model.h"
#include "Scripted.h"

// The link may have to be found again: an exchange without an answer ends after 300,000
// reads, which take most of a minute where others keep the machine busy.
inline constexpr std::chrono::minutes kLinkPatience{3};

// The report of a block that nothing ever changes: what comes before it was before.
inline constexpr char kSentinel[] = "a2b1d00\r\n\r";

class Stateful : public Scripted<Stateful, SiteTest> {
 private:
  friend Scripted;

  struct Input {
    std::string card;  // its address
    int block;
    InputBlock state{};
  };

  static const std::vector<Action>& Actions();
  void Begin();
  void ExpectWell() { ExpectAlive(); }
  void NoteCounts();
  static std::string Told() { return ""; }
  void End();

  // What the actions do.
  void IoConnect(const std::string&);
  void IoReset(const std::string&);
  void IoClose(const std::string&);
  void IoExit(const std::string&);
  void IoWrite(const std::string& commands);
  void IoThrow(const std::string& command);
  void IoNonsense(const std::string& text);
  void CaeConnect(const std::string&);
  void CaeReset(const std::string&);
  void CaeExit(const std::string&);
  void CaeSay(const std::string& line);
  void CaeStopReading(const std::string& times);
  void CaeAsk(const std::string& value);
  void CaeSpeed(const std::string& percent);
  void CaePolling(const std::string& line);
  void CaeForceDiscover(const std::string&);
  void MonConnect(const std::string&);
  void MonReset(const std::string&);
  void BusSet(const std::string& arguments);
  void BusCard(const std::string& arguments);
  void BusCable(const std::string& what);
  void BusFault(const std::string& fault);
  void BusGarbage(const std::string& count);
  void CheckAll(const std::string&);

  // Their common parts.
  bool IsPolled(const Input& input) const;
  void TakeIo(const std::string& item);
  void AwaitReports(const std::string& card = "");
  void LoseIo();
  void SendIo(const std::string& message);
  void Fence();
  void Accept(const std::string& command, bool must);
  std::string SayOnCae(const std::string& line);
  bool TableIsWhole();
  void HealLine();
  void CheckWrites();
  void TakeWrites(const std::string& address);
  void CheckNothingIsLeft();

  Client io_;
  Client mon_;
  bool io_up_ = false;
  bool cae_up_ = false;
  bool mon_up_ = false;
  bool owed_on_cae_ = false;  // IO sent nonsense while no CAE client was there
  bool cable_plugged_ = true;
  bool polling_ = true;
  std::map<std::string, bool> plugged_;  // by address
  std::map<std::string, bool> sure_;     // the daemon's table is known to hold the card
  std::map<std::string, bool> polled_;   // by POLLON and POLLOFF
  std::vector<Input> inputs_;
  std::map<std::string, OutputCard> outputs_;
  std::map<std::string, std::size_t> writes_taken_;
  int missing_writes_ = 0;
  int threads_ = 0;
  long memory_ = 0;
};
