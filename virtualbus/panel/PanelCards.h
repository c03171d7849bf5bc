// The cards of the panel: how each is drawn, which one is selected and which part of it, and what
// a key does to it.
#pragma once

#include <array>
#include <vector>

#include "base/Problem.h"
#include "bus/VirtualBus.h"
#include "panel/AnalogueHistory.h"
#include "panel/CardViews.h"
#include "panel/Layout.h"

namespace virtualbus {

class PanelCards {
 public:
  explicit PanelCards(VirtualBus& bus);

  std::vector<CardBox> Boxes() const;  // in address order
  ViewedCard At(uint8_t address) const;
  void SampleHistories();  // once a second

  uint8_t Selected() const { return selected_; }
  void Select(uint8_t address) { selected_ = address; }
  void SelectNext();
  void SelectPrevious();
  void MoveItem(int steps);

  // Nothing happens where the selected card has no such part.
  Problem Act();
  Problem MoveValue(int steps);
  Problem PullOrPlug(uint8_t address);

 private:
  const CardView* SelectedView() const;

  VirtualBus& bus_;
  uint8_t selected_ = 0;
  std::array<int, kAddressCount> items_{};
  std::array<AnalogueHistory, kAddressCount> histories_;
};

}  // namespace virtualbus
