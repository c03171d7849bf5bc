#include "panel/Layout.h"

#include <algorithm>

namespace virtualbus {

int CardsHeight(const std::vector<CardBox>& boxes, int columns, int most) {
  int height = 1;
  for (const CardBox& box : boxes) height = std::max(height, box.rows);
  while (height < most && !boxes.empty() && PlaceCards(boxes, height).back().column >= columns) {
    ++height;
  }
  return std::min(height, most);
}

std::vector<Place> PlaceCards(const std::vector<CardBox>& boxes, int height) {
  std::vector<Place> places;
  int row = 0;
  int column = 0;
  for (const CardBox& box : boxes) {
    if (row > 0 && row + box.rows > height) {
      row = 0;
      ++column;
    }
    places.push_back({box.address, row, column});
    row += box.rows;
  }
  return places;
}

}  // namespace virtualbus
