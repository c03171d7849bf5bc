// How each card kind looks on the panel, and what its parts do when they are clicked or keyed.
#pragma once

#include "bus/BusAdapter.h"
#include "bus/CardOperator.h"
#include "panel/AnalogueHistory.h"
#include "panel/Pen.h"

namespace virtualbus {

constexpr int kViewWidth = 39;

// What a view needs to draw one card.
struct ViewedCard {
  const BusAdapter::Slot& slot;
  uint8_t address;
  CardOperator& card_operator;
  Loop& loop;
  const AnalogueHistory& history;
  int item;  // the selected line, channel or key; -1 when another card is selected
};

struct CardView {
  KindId kind;
  int rows;   // below the card's heading
  int items;  // 0: nothing to select
  int right;  // from an item to the one on its right: lines are drawn with 00 rightmost
  void (*draw)(Pen& pen, const ViewedCard& viewed);
  Problem (*act)(const ViewedCard& viewed, int item);  // space, click; may be null
  Problem (*move)(const ViewedCard& viewed, int item,
                  int steps);  // plus, minus, wheel; may be null
};

const CardView& ViewOf(const CardKind& kind);

}  // namespace virtualbus
