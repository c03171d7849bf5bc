// Cables that are pulled, daemons and hubs that are killed, at moments of chance, while clients
// go on: after each, every kept output shows what was asked for last.
#pragma once

#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "LinkSite.h"

namespace hub::link {

class LinkPulls : public LinkSite {
 protected:
  // So many rounds; prints what was counted.
  void RunPulls(int rounds, unsigned seed);

 private:
  using Place = std::pair<uint8_t, uint8_t>;  // address and block

  int Draw(int below) { return std::uniform_int_distribution(0, below - 1)(chance_); }
  void Pause() { std::this_thread::sleep_for(std::chrono::milliseconds(Draw(300))); }
  void Ask();      // a client asks for something
  void Disturb();  // one of the accidents
  void KillHub();
  void Recover();
  void NoteWhatCameLast();
  std::map<Place, uint8_t> Stored();  // what the hub's store would have
  bool IsShown(uint8_t address, std::string* seen);
  std::string Wanted(uint8_t address) const;
  void CheckFrames(uint8_t address);

  std::mt19937 chance_;
  std::map<Place, std::set<uint8_t>> wanted_;  // more than one where nobody knows which came last
  std::map<Place, std::set<uint8_t>> asked_;   // in this round, with what was there before
  std::map<uint8_t, size_t> frames_seen_;
  int accidents_ = 0;  // in this round
  bool is_cable_in_ = true;
  bool is_daemon_there_ = true;
  int frames_ = 0;
  int start_frames_ = 0;  // that showed a start value which nobody asked for
  int most_in_a_row_ = 0;
};

}  // namespace hub::link
