// Where the cards stand on the panel: columns of boxes, filled from the left, in address order.
#pragma once

#include <cstdint>
#include <vector>

namespace virtualbus {

struct CardBox {
  uint8_t address;
  int rows;
};

struct Place {
  uint8_t address;
  int row;     // within the cards' area
  int column;  // counted in boxes, not in characters
};

// The lowest height at which the boxes fit side by side in that many columns, but no more than
// most. What does not fit then stands in further columns.
int CardsHeight(const std::vector<CardBox>& boxes, int columns, int most);
std::vector<Place> PlaceCards(const std::vector<CardBox>& boxes, int height);

}  // namespace virtualbus
