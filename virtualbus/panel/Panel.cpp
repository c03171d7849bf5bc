#include "panel/Panel.h"

#include <curses.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>

namespace virtualbus {

namespace {

constexpr size_t kEventsKept = 200;
constexpr int kFewestEvents = 4;
constexpr int kColumnWidth = kViewWidth + 1;
constexpr std::chrono::milliseconds kDrawPause{50};  // between two pictures
constexpr std::chrono::seconds kSecond{1};
constexpr int kEnter = '\n';

}  // namespace

struct Panel::Key {
  int code;
  void (Panel::*run)();
  std::string_view help;  // in the last line; empty for a second key of the same effect
};

constexpr std::array<Panel::Key, 12> Panel::kKeys{{
    {KEY_UP, &Panel::SelectPrevious, ""},
    {KEY_DOWN, &Panel::SelectNext, "up/down card"},
    {'\t', &Panel::SelectNext, ""},
    {KEY_LEFT, &Panel::PreviousItem, ""},
    {KEY_RIGHT, &Panel::NextItem, "left/right part"},
    {' ', &Panel::Act, "space press"},
    {kEnter, &Panel::Act, ""},
    {'+', &Panel::More, "+/- move"},
    {'-', &Panel::Less, ""},
    {'p', &Panel::OnPullKey, "p pull"},
    {'c', &Panel::OnCableKey, "c cable"},
    {'q', &Panel::Quit, "q quit"},
}};

Panel::Panel(VirtualBus& bus) : bus_(bus) {
  const std::vector<CardBox> boxes = Boxes();
  if (!boxes.empty()) selected_ = boxes.front().address;
  bus_.loop.Watch(STDIN_FILENO, [this] { OnInput(); });
  EverySecond();
}

Panel::~Panel() { bus_.loop.Unwatch(STDIN_FILENO); }

void Panel::OnEvent(const Entry& entry) {
  // What can be clicked may have been replaced by another card: wait for the next picture.
  if (entry.what == Entry::What::kNote) spots_.clear();
  events_.push_back(FormatEntryWithMeaning(entry));
  if (events_.size() > kEventsKept) events_.pop_front();
  Redraw();
}

void Panel::OnResize() {
  terminal_.Resize();
  Redraw();
}

void Panel::EverySecond() {
  const uint64_t frames = bus_.exchange.Totals().frames;
  frames_per_second_ = frames - frames_before_;
  frames_before_ = frames;
  for (size_t address = 0; address < kAddressCount; ++address) {
    const BusAdapter::Slot& slot = bus_.adapter.At(address);
    if (slot.kind == nullptr || slot.kind->id != KindId::kAnalogueInput) continue;
    histories_[address].Sample(static_cast<const AnalogueInput&>(*slot.card));
  }
  Redraw();
  bus_.loop.After(kSecond, [this] { EverySecond(); });
}

// However much happens, a picture is drawn only so often; the frames of the bus come first.
void Panel::Redraw() {
  if (drawing_due_) return;
  drawing_due_ = true;
  bus_.loop.After(kDrawPause, [this] {
    drawing_due_ = false;
    if (terminal_.IsReady()) Draw();
  });
}

void Panel::Draw() {
  const int rows_left = terminal_.Rows() - 3 - kFewestEvents;  // title, rule, keys
  const int columns = std::max(1, terminal_.Columns() / kColumnWidth);
  const int height = CardsHeight(Boxes(), columns, std::max(1, rows_left));
  terminal_.Clear();
  spots_.clear();
  DrawCards(height);
  DrawTitle();
  DrawEvents(1 + height);
  DrawKeys();
  terminal_.Show();
}

void Panel::DrawTitle() {
  const bool plugged = bus_.cable.IsPlugged();
  const std::string state = plugged ? "cable plugged" : "cable pulled ";
  const std::string rest = "  " + bus_.cable.Where() + "  " + std::to_string(frames_per_second_) +
                           " frames/s, " + std::to_string(frames_before_) + " in all";
  terminal_.Put(0, 0, "qelm-bus  ", Look::kBold);
  terminal_.Put(0, 10, state, plugged ? Look::kGood : Look::kBad);
  terminal_.Put(0, 10 + static_cast<int>(state.size()), rest, Look::kPlain);
  spots_.push_back(
      {0, 10, static_cast<int>(state.size()), [this](int) { return PullOrPlugCable(); }, {}});
}

// Cards that do not fit stand in columns to the right; the panel shows those around the selected.
void Panel::DrawCards(int height) {
  const std::vector<Place> places = PlaceCards(Boxes(), height);
  const auto selected = std::ranges::find(places, selected_, &Place::address);
  const int visible = std::max(1, terminal_.Columns() / kColumnWidth);
  const int column = selected != places.end() ? selected->column : 0;
  const int first = std::max(0, column - visible + 1);
  for (const Place& place : places) {
    if (place.column >= first && place.column < first + visible) DrawCard(place, first);
  }
}

void Panel::DrawCard(const Place& place, int first_column) {
  const BusAdapter::Slot& slot = bus_.adapter.At(place.address);
  Pen pen(terminal_, spots_, 1 + place.row, (place.column - first_column) * kColumnWidth);
  std::string heading = HexDigit(place.address) + " " + std::string(slot.kind->word);
  heading.resize(kViewWidth, ' ');
  pen.Put(0, 0, heading, place.address == selected_ ? Look::kSelected : Look::kBold);
  const auto select = [this, address = place.address](int) {
    selected_ = address;
    return Problem();
  };
  pen.AddSpot({0, 0, kViewWidth - 8, select, {}});
  pen.Put(0, kViewWidth - 7, slot.pulled ? "pulled" : "plugged",
          slot.pulled ? Look::kBad : Look::kDim);
  pen.AddSpot({0,
               kViewWidth - 7,
               7,
               [this, address = place.address](int) { return PullOrPlugCard(address); },
               {}});
  if (slot.pulled) return;
  const CardView& view = ViewOf(*slot.kind);
  Pen body(terminal_, spots_, 2 + place.row, (place.column - first_column) * kColumnWidth);
  view.draw(body, CardAt(place.address));
}

void Panel::DrawEvents(int first_row) {
  const int rows = terminal_.Rows() - first_row - 2;
  terminal_.Put(first_row, 0, std::string(static_cast<size_t>(terminal_.Columns()), '-'),
                Look::kDim);
  const auto count = std::min<size_t>(events_.size(), static_cast<size_t>(std::max(rows, 0)));
  for (size_t i = 0; i < count; ++i) {
    const std::string& event = events_[events_.size() - count + i];
    terminal_.Put(first_row + 1 + static_cast<int>(i), 0, event, Look::kPlain);
  }
}

void Panel::DrawKeys() {
  std::string line;
  for (const Key& key : kKeys) {
    if (key.help.empty()) continue;
    line.append(key.help).append("  ");
  }
  terminal_.Put(terminal_.Rows() - 1, 0, line, Look::kDim);
}

void Panel::OnInput() {
  termios settings{};
  if (tcgetattr(STDIN_FILENO, &settings) != 0) Quit();  // the terminal has gone
  for (int key = getch(); key != ERR; key = getch()) OnKey(key);
  Redraw();
}

void Panel::OnKey(int key) {
  if (key == KEY_MOUSE) return OnMouse();
  const auto found = std::ranges::find(kKeys, key, &Key::code);
  if (found != kKeys.end()) (this->*found->run)();
}

void Panel::OnMouse() {
  MEVENT event{};
  if (getmouse(&event) != OK) return;
  for (const Spot& spot : spots_) {
    const int offset = event.x - spot.column;
    if (event.y != spot.row || offset < 0 || offset >= spot.width) continue;
    const auto on_click = spot.on_click;  // the spots are made anew by the next picture
    const auto on_wheel = spot.on_wheel;
    if ((event.bstate & (BUTTON1_PRESSED | BUTTON1_CLICKED)) != 0) return Report(on_click(offset));
    if (!on_wheel) return;
    if ((event.bstate & BUTTON4_PRESSED) != 0) return Report(on_wheel(1));
    if ((event.bstate & BUTTON5_PRESSED) != 0) return Report(on_wheel(-1));
    return;
  }
}

void Panel::Report(const Problem& problem) {
  if (problem) bus_.journal.Note(problem.Text());
}

void Panel::SelectNext() {
  const std::vector<CardBox> boxes = Boxes();
  if (boxes.empty()) return;
  const auto next =
      std::ranges::find_if(boxes, [this](const CardBox& box) { return box.address > selected_; });
  selected_ = next != boxes.end() ? next->address : boxes.front().address;
}

void Panel::SelectPrevious() {
  const std::vector<CardBox> boxes = Boxes();
  if (boxes.empty()) return;
  const auto at =
      std::ranges::find_if(boxes, [this](const CardBox& box) { return box.address >= selected_; });
  selected_ = at != boxes.begin() ? std::prev(at)->address : boxes.back().address;
}

void Panel::MoveItem(int steps) {
  const CardView* const view = SelectedView();
  if (view == nullptr || view->items == 0) return;
  items_[selected_] = (items_[selected_] + steps + view->items) % view->items;
}

void Panel::Act() {
  const CardView* const view = SelectedView();
  if (view == nullptr || view->act == nullptr) return;
  Report(view->act(CardAt(selected_), items_[selected_]));
}

void Panel::MoveValue(int steps) {
  const CardView* const view = SelectedView();
  if (view == nullptr || view->move == nullptr) return;
  Report(view->move(CardAt(selected_), items_[selected_], steps));
}

Problem Panel::PullOrPlugCard(uint8_t address) {
  const bool pulled = bus_.adapter.At(address).pulled;
  return pulled ? bus_.card_operator.PlugCard(address, nullptr)
                : bus_.card_operator.PullCard(address);
}

Problem Panel::PullOrPlugCable() {
  return bus_.cable.IsPlugged() ? bus_.cable.Pull() : bus_.cable.Plug();
}

std::vector<CardBox> Panel::Boxes() const {
  std::vector<CardBox> boxes;
  for (size_t address = 0; address < kAddressCount; ++address) {
    const CardKind* const kind = bus_.adapter.At(address).kind;
    if (kind != nullptr) boxes.push_back({static_cast<uint8_t>(address), 1 + ViewOf(*kind).rows});
  }
  return boxes;
}

ViewedCard Panel::CardAt(uint8_t address) {
  return {bus_.adapter.At(address), address,
          bus_.card_operator,       bus_.loop,
          histories_[address],      address == selected_ ? items_[address] : -1};
}

// Null while there is nothing to act on.
const CardView* Panel::SelectedView() {
  if (bus_.adapter.Present(selected_) == nullptr) return nullptr;
  return &ViewOf(*bus_.adapter.At(selected_).kind);
}

}  // namespace virtualbus
