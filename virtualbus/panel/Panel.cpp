#include "panel/Panel.h"

#include <curses.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <ranges>

namespace virtualbus {

namespace {

constexpr size_t kEventsKept = 200;
constexpr int kFewestEvents = 4;
constexpr int kTitleRows = 1;
constexpr int kRuleRows = 1;
constexpr int kRuleMargin = 2;
constexpr int kCableColumn = 10;
constexpr int kColumnWidth = kViewWidth + 1;
constexpr int kStateColumn = kViewWidth - 7;         // "plugged" ends at the right edge of its card
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
    {'p', &Panel::PullOrPlugCard, "p pull"},
    {'c', &Panel::PullOrPlugCable, "c cable"},
    {'q', &Panel::Quit, "q quit"},
}};

Panel::Panel(VirtualBus& bus, std::string control_path)
    : bus_(bus), control_path_(std::move(control_path)), cards_(bus) {
  bus_.loop.Watch(STDIN_FILENO, [this] { OnInput(); });
  EverySecond();
}

Panel::~Panel() { bus_.loop.Unwatch(STDIN_FILENO); }

void Panel::OnEvent(const Entry& entry) {
  // A card may have been replaced: nothing can be clicked before the next picture.
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
  cards_.SampleHistories();
  Redraw();
  bus_.loop.After(kSecond, [this] { EverySecond(); });
}

// Pictures have a pause between them, however much happens: the frames of the bus come first.
void Panel::Redraw() {
  if (drawing_due_) return;
  drawing_due_ = true;
  bus_.loop.After(kDrawPause, [this] {
    drawing_due_ = false;
    if (terminal_.IsReady()) Draw();
  });
}

void Panel::Draw() {
  const std::vector<std::string> key_lines = KeyLines();
  const int first_key_row = terminal_.Rows() - static_cast<int>(key_lines.size());
  const int rows_left = first_key_row - kTitleRows - kRuleRows - kFewestEvents;
  const int columns = std::max(1, terminal_.Columns() / kColumnWidth);
  const int height = CardsHeight(cards_.Boxes(), columns, std::max(1, rows_left));
  const int rule_row = kTitleRows + height;
  terminal_.Clear();
  spots_.clear();
  DrawTitle();
  const Hidden hidden = DrawCards(height, columns);
  terminal_.ClearFrom(rule_row);  // a card may be higher than the terminal
  DrawRule(rule_row, hidden);
  DrawEvents(rule_row + kRuleRows, first_key_row);
  for (size_t i = 0; i < key_lines.size(); ++i) {
    terminal_.Put(first_key_row + static_cast<int>(i), 0, key_lines[i], Look::kDim);
  }
  terminal_.Show();
}

void Panel::DrawTitle() {
  const bool plugged = bus_.cable.IsPlugged();
  const std::string state = plugged ? "cable plugged" : "cable pulled ";
  const int rest_column = kCableColumn + static_cast<int>(state.size());
  std::string rest = "  " + bus_.cable.Where();
  for (const std::string& part : {"  " + std::to_string(frames_per_second_) + " frames/s",
                                  ", " + std::to_string(frames_before_) + " in all"}) {
    if (rest_column + std::ssize(rest + part) > terminal_.Columns()) break;
    rest += part;
  }
  terminal_.Put(0, 0, "qelm-bus", Look::kBold);
  terminal_.Put(0, kCableColumn, state, plugged ? Look::kGood : Look::kBad);
  terminal_.Put(0, rest_column, rest, Look::kPlain);
  const auto pull_or_plug = [this](int) { return bus_.cable.PullOrPlug(); };
  spots_.push_back({0, kCableColumn, static_cast<int>(state.size()), pull_or_plug, {}});
}

// Cards that do not fit stand in columns to the right; the panel shows those around the selected.
Panel::Hidden Panel::DrawCards(int height, int columns) {
  const std::vector<Place> places = PlaceCards(cards_.Boxes(), height);
  const auto selected = std::ranges::find(places, cards_.Selected(), &Place::address);
  const int selected_column = selected != places.end() ? selected->column : 0;
  const int first = std::max(0, selected_column - columns + 1);
  Hidden hidden;
  for (const Place& place : places) {
    if (place.column < first) {
      ++hidden.to_the_left;
    } else if (place.column >= first + columns) {
      ++hidden.to_the_right;
    } else {
      DrawCard(place, first);
    }
  }
  return hidden;
}

void Panel::DrawCard(const Place& place, int first_column) {
  const uint8_t address = place.address;
  const auto select = [this, address](int) {
    cards_.Select(address);
    return Problem();
  };
  const auto pull_or_plug = [this, address](int) { return cards_.PullOrPlug(address); };

  const BusAdapter::Slot& slot = bus_.adapter.At(address);
  Pen pen(terminal_, spots_, 1 + place.row, (place.column - first_column) * kColumnWidth);
  std::string heading = HexDigit(address) + " " + std::string(slot.kind->word);
  heading.resize(kViewWidth, ' ');
  pen.Put(0, 0, heading, address == cards_.Selected() ? Look::kSelected : Look::kBold);
  pen.AddSpot({0, 0, kStateColumn - 1, select, {}});
  pen.Put(0, kStateColumn, slot.pulled ? "pulled" : "plugged",
          slot.pulled ? Look::kBad : Look::kDim);
  pen.AddSpot({0, kStateColumn, kViewWidth - kStateColumn, pull_or_plug, {}});
  if (slot.pulled) return;
  const CardView& view = ViewOf(*slot.kind);
  Pen body(terminal_, spots_, 2 + place.row, (place.column - first_column) * kColumnWidth);
  view.draw(body, cards_.At(address));
}

// Between the cards and the events: where control lines go, and which way the other cards are.
void Panel::DrawRule(int row, const Hidden& hidden) {
  terminal_.Put(row, 0, std::string(static_cast<size_t>(terminal_.Columns()), '-'), Look::kDim);
  if (!control_path_.empty()) {
    terminal_.Put(row, kRuleMargin, " control lines: " + control_path_ + " ", Look::kPlain);
  }
  std::string hint;
  if (hidden.to_the_left > 0) hint += " <- " + std::to_string(hidden.to_the_left) + " more ";
  if (hidden.to_the_right > 0) hint += " " + std::to_string(hidden.to_the_right) + " more -> ";
  const int hint_column = terminal_.Columns() - kRuleMargin - static_cast<int>(hint.size());
  terminal_.Put(row, std::max(0, hint_column), hint, Look::kBold);
}

void Panel::DrawEvents(int first_row, int end_row) {
  const int rows = end_row - first_row;
  const auto count = std::min<size_t>(events_.size(), static_cast<size_t>(std::max(rows, 0)));
  for (size_t i = 0; i < count; ++i) {
    const std::string& event = events_[events_.size() - count + i];
    terminal_.Put(first_row + static_cast<int>(i), 0, event, Look::kPlain);
  }
}

// The help of the keys in as many lines as the terminal's width needs.
std::vector<std::string> Panel::KeyLines() const {
  const auto width = static_cast<size_t>(terminal_.Columns());
  std::vector<std::string> lines(1);
  for (const Key& key : kKeys) {
    if (key.help.empty()) continue;
    if (!lines.back().empty() && lines.back().size() + 2 + key.help.size() > width) {
      lines.emplace_back();
    }
    lines.back().append(lines.back().empty() ? "" : "  ").append(key.help);
  }
  return lines;
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

// Presses that have come together are one key; the last of them is told first.
void Panel::OnMouse() {
  std::vector<Press> presses;
  for (MEVENT event{}; getmouse(&event) == OK;) {
    const int wheel = (event.bstate & BUTTON4_PRESSED) != 0   ? 1
                      : (event.bstate & BUTTON5_PRESSED) != 0 ? -1
                                                              : 0;
    presses.push_back({event.y, event.x, wheel});
  }
  for (const Press& press : std::ranges::reverse_view(presses)) OnPress(press);
}

void Panel::OnPress(const Press& press) {
  for (const Spot& spot : spots_) {
    const int offset = press.column - spot.column;
    if (press.row != spot.row || offset < 0 || offset >= spot.width) continue;
    const auto on_click = spot.on_click;  // the spots are made anew by the next picture
    const auto on_wheel = spot.on_wheel;
    if (press.wheel == 0) return Report(on_click(offset));
    if (on_wheel) Report(on_wheel(press.wheel));
    return;
  }
}

void Panel::Report(const Problem& problem) {
  if (problem) bus_.journal.Note(problem.Text());
}

}  // namespace virtualbus
