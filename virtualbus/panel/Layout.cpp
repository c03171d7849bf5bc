#include "panel/Layout.h"

#include <algorithm>

namespace virtualbus {

int CardsHeight(const std::vector<Block>& blocks, int columns, int most) {
  int height = 1;
  for (const Block& block : blocks) height = std::max(height, block.rows);
  while (height < most && !blocks.empty() && PlaceCards(blocks, height).back().column >= columns) {
    ++height;
  }
  return std::min(height, most);
}

std::vector<Place> PlaceCards(const std::vector<Block>& blocks, int height) {
  std::vector<Place> places;
  int row = 0;
  int column = 0;
  for (const Block& block : blocks) {
    if (row > 0 && row + block.rows > height) {
      row = 0;
      ++column;
    }
    places.push_back({block.address, row, column});
    row += block.rows;
  }
  return places;
}

}  // namespace virtualbus
