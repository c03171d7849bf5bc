// The live front panel: the cards, what goes over the line, and keys and mouse to act on them.
#pragma once

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "bus/VirtualBus.h"
#include "journal/Journal.h"
#include "panel/AnalogueHistory.h"
#include "panel/CardViews.h"
#include "panel/Layout.h"
#include "panel/Terminal.h"

namespace virtualbus {

class Panel {
 public:
  explicit Panel(VirtualBus& bus);
  ~Panel();
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;

  void OnEvent(const Entry& entry);
  void OnResize();

 private:
  struct Key;
  static const std::array<Key, 12> kKeys;

  void EverySecond();
  void Redraw();
  void Draw();
  void DrawTitle();
  void DrawCards(int height);
  void DrawCard(const Place& place, int first_column);
  void DrawEvents(int first_row);
  void DrawKeys();

  void OnInput();
  void OnKey(int key);
  void OnMouse();
  void Report(const Problem& problem);

  void SelectNext();
  void SelectPrevious();
  void NextItem() { MoveItem(1); }
  void PreviousItem() { MoveItem(-1); }
  void MoveItem(int steps);
  void Act();
  void More() { MoveValue(1); }
  void Less() { MoveValue(-1); }
  void MoveValue(int steps);
  Problem PullOrPlugCard(uint8_t address);
  Problem PullOrPlugCable();
  void OnPullKey() { Report(PullOrPlugCard(selected_)); }
  void OnCableKey() { Report(PullOrPlugCable()); }
  void Quit() { bus_.loop.Stop(); }

  std::vector<CardBox> Boxes() const;
  ViewedCard CardAt(uint8_t address);
  const CardView* SelectedView();

  VirtualBus& bus_;
  Terminal terminal_;
  uint8_t selected_ = 0;
  std::array<int, kAddressCount> items_{};
  std::array<AnalogueHistory, kAddressCount> histories_;
  std::deque<std::string> events_;
  std::vector<Spot> spots_;
  uint64_t frames_before_ = 0;
  uint64_t frames_per_second_ = 0;
  bool drawing_due_ = false;
};

}  // namespace virtualbus
