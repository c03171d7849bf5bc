// The live front panel: the cards, what goes over the line, and keys and mouse to act on them.
#pragma once

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "bus/VirtualBus.h"
#include "journal/Journal.h"
#include "panel/Layout.h"
#include "panel/PanelCards.h"
#include "panel/Pen.h"
#include "panel/Terminal.h"

namespace virtualbus {

class Panel {
 public:
  // The path of the control socket is empty where there is none.
  Panel(VirtualBus& bus, std::string control_path);
  ~Panel();
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;

  void OnEvent(const Entry& entry);
  void OnResize();

 private:
  struct Key;
  static const std::array<Key, 12> kKeys;
  struct Hidden {  // how many cards are beside those on the screen
    int to_the_left = 0;
    int to_the_right = 0;
  };

  // Of the mouse: its button, or its wheel where that is 1 (up) or -1.
  struct Press {
    int row;
    int column;
    int wheel;
  };

  void EverySecond();
  void Redraw();
  void Draw();
  void DrawTitle();
  Hidden DrawCards(int height, int columns);
  void DrawCard(const Place& place, int first_column);
  void DrawRule(int row, const Hidden& hidden);
  void DrawEvents(int first_row, int end_row);
  std::vector<std::string> KeyLines() const;

  void OnInput();
  void OnKey(int key);
  void OnMouse();
  void OnPress(const Press& press);
  void Report(const Problem& problem);

  // What the keys do.
  void SelectNext() { cards_.SelectNext(); }
  void SelectPrevious() { cards_.SelectPrevious(); }
  void NextItem() { cards_.MoveItem(1); }
  void PreviousItem() { cards_.MoveItem(-1); }
  void Act() { Report(cards_.Act()); }
  void More() { Report(cards_.MoveValue(1)); }
  void Less() { Report(cards_.MoveValue(-1)); }
  void PullOrPlugCard() { Report(cards_.PullOrPlug(cards_.Selected())); }
  void PullOrPlugCable() { Report(bus_.cable.PullOrPlug()); }
  void Quit() { bus_.loop.Stop(); }

  VirtualBus& bus_;
  std::string control_path_;
  PanelCards cards_;
  Terminal terminal_;
  std::deque<std::string> events_;
  std::vector<Spot> spots_;
  uint64_t frames_before_ = 0;
  uint64_t frames_per_second_ = 0;
  bool drawing_due_ = false;
};

}  // namespace virtualbus
