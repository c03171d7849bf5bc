#include "panel/PanelCards.h"

#include <algorithm>
#include <iterator>

namespace virtualbus {

PanelCards::PanelCards(VirtualBus& bus) : bus_(bus) {
  const std::vector<CardBox> boxes = Boxes();
  if (!boxes.empty()) selected_ = boxes.front().address;
}

std::vector<CardBox> PanelCards::Boxes() const {
  std::vector<CardBox> boxes;
  for (size_t address = 0; address < kAddressCount; ++address) {
    const CardKind* const kind = bus_.adapter.At(address).kind;
    if (kind != nullptr) boxes.push_back({static_cast<uint8_t>(address), 1 + ViewOf(*kind).rows});
  }
  return boxes;
}

ViewedCard PanelCards::At(uint8_t address) const {
  return {bus_.adapter.At(address), address,
          bus_.card_operator,       bus_.loop,
          histories_[address],      address == selected_ ? items_[address] : -1};
}

void PanelCards::SampleHistories() {
  for (size_t address = 0; address < kAddressCount; ++address) {
    const BusAdapter::Slot& slot = bus_.adapter.At(address);
    if (slot.kind == nullptr || slot.kind->id != KindId::kAnalogueInput) continue;
    histories_[address].Sample(static_cast<const AnalogueInput&>(*slot.card));
  }
}

void PanelCards::SelectNext() {
  const std::vector<CardBox> boxes = Boxes();
  if (boxes.empty()) return;
  const auto next =
      std::ranges::find_if(boxes, [this](const CardBox& box) { return box.address > selected_; });
  selected_ = next != boxes.end() ? next->address : boxes.front().address;
}

void PanelCards::SelectPrevious() {
  const std::vector<CardBox> boxes = Boxes();
  if (boxes.empty()) return;
  const auto at =
      std::ranges::find_if(boxes, [this](const CardBox& box) { return box.address >= selected_; });
  selected_ = at != boxes.begin() ? std::prev(at)->address : boxes.back().address;
}

void PanelCards::MoveItem(int steps) {
  const CardView* const view = SelectedView();
  if (view == nullptr || view->items == 0) return;
  items_[selected_] = (items_[selected_] + steps * view->right + view->items) % view->items;
}

Problem PanelCards::Act() {
  const CardView* const view = SelectedView();
  if (view == nullptr || view->act == nullptr) return {};
  return view->act(At(selected_), items_[selected_]);
}

Problem PanelCards::MoveValue(int steps) {
  const CardView* const view = SelectedView();
  if (view == nullptr || view->move == nullptr) return {};
  return view->move(At(selected_), items_[selected_], steps);
}

Problem PanelCards::PullOrPlug(uint8_t address) {
  const bool pulled = bus_.adapter.At(address).pulled;
  return pulled ? bus_.card_operator.PlugCard(address, nullptr)
                : bus_.card_operator.PullCard(address);
}

// Null while there is nothing to act on.
const CardView* PanelCards::SelectedView() const {
  if (bus_.adapter.Present(selected_) == nullptr) return nullptr;
  return &ViewOf(*bus_.adapter.At(selected_).kind);
}

}  // namespace virtualbus
