// Random actions on a site with the hub between clients and cards, against a model of one
// sentence: what clients asked for is what cards show. Whatever is killed or pulled, an output
// never has a value that nobody asked for, but for the start value that the daemon's own table
// falls back to.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "HubSite.h"
#include "Scripted.h"

class HubStateful : public Scripted<HubStateful, HubSite> {
 private:
  friend Scripted;

  // One line of a digital output, or one byte of another card.
  using Output = std::pair<char, int>;  // digit of the card, and number of the channel
  using Values = std::set<int>;         // more than one where nobody can know which came last

  static const std::vector<Action>& Actions();
  void Begin();
  void ExpectWell();
  void NoteCounts();
  std::string Told();
  void End();

  // What the actions do.
  void Set(const std::string& channel_and_value) { SetOne(channel_and_value); }
  void SetLamps(const std::string& lines);
  void Pulse(const std::string& line_and_time);
  void WriteText(const std::string& commands);
  void Discover(const std::string&);
  void RebootCard(const std::string& card);
  void BusCable(const std::string& what);
  void KillDaemon(const std::string&);
  void StartDaemonAgain(const std::string&);
  void KillHub(const std::string&);
  void StopHub(const std::string&);
  void Wait(const std::string& milliseconds);
  void CheckAll(const std::string&);

  // Their common parts.
  int SetOne(const std::string& channel_and_value);  // the status of the answer
  void Count(const std::string& answer);
  void Take(Output output, int value, bool is_sure);
  bool IsReady();
  static bool IsKnown(const Output& output);  // to the hub
  std::map<Output, int> Shown();
  std::string Difference();  // of what is shown and what was asked for; empty where there is none
  void CheckFrames();

  std::map<Output, Values> wanted_;
  std::map<Output, Values> asked_;  // since the last check, with what was there before
  std::map<char, std::size_t> frames_seen_;
  bool is_cable_in_ = true;
  bool is_daemon_there_ = true;
};
