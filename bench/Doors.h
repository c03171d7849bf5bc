// Ways from a program to the lamps and contacts of a bus: the daemon's own port, and each door of
// the hub. One client each; only the calls that await something wait.
#pragma once

#include <memory>
#include <vector>

#include "Qelm.h"

inline constexpr int kHubPort = 5080;
inline constexpr int kBrokerPort = 1883;

class Door {
 public:
  virtual ~Door() = default;

  virtual void Switch(int card, int line, bool on) = 0;
  // What the client is told of the end of all that it has switched; not every client is.
  virtual void AwaitAnswers() {}
  // When the client has read that line 0 of this card is at its new level; not every client can.
  virtual Time AwaitContact(int card, bool on) = 0;
};

std::unique_ptr<Door> OpenDirect(Qelm& qelm);  // its client of IO
std::unique_ptr<Door> OpenText();              // the hub's own IO port
std::unique_ptr<Door> OpenWebSocket();
std::unique_ptr<Door> OpenHttp();    // hears of nothing
std::unique_ptr<Door> OpenBroker();  // where the hub is called "bench"

// Clients of the WebSocket, of which the last to read a change counts.
class Crowd final : public Door {
 public:
  void GrowTo(size_t count);

  void Switch(int card, int line, bool on) override { doors_.front()->Switch(card, line, on); }
  Time AwaitContact(int card, bool on) override;

 private:
  std::vector<std::unique_ptr<Door>> doors_;
};
