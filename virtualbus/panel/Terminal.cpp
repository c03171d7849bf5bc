#include "panel/Terminal.h"

#include <curses.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <string_view>

namespace virtualbus {

namespace {

constexpr int kEscapeDelay = 25;  // milliseconds

enum Pair : short { kGoodPair = 1, kBadPair, kDisplayPair, kSelectedPair };

Glyphs ChooseGlyphs() {
  if (std::string_view(nl_langinfo(CODESET)) == "UTF-8") {
    return {"●", "○", "█", "·", "│", {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"}};
  }
  return {"@", "o", "#", ".", "|", {"_", ".", ":", "-", "=", "+", "*", "#"}};
}

void ChooseColours() {
  if (!has_colors()) return;
  start_color();
  use_default_colors();
  init_pair(kGoodPair, COLOR_GREEN, -1);
  init_pair(kBadPair, COLOR_RED, -1);
  init_pair(kDisplayPair, COLOR_BLACK, COLOR_GREEN);
  init_pair(kSelectedPair, COLOR_YELLOW, -1);
}

// As much of a UTF-8 text as fits; each of our glyphs is one column wide.
std::string Cut(const std::string& text, int columns) {
  size_t end = 0;
  for (; end < text.size(); ++end) {
    const bool begins_glyph = (text[end] & 0xC0) != 0x80;
    if (begins_glyph && columns-- <= 0) break;
  }
  return text.substr(0, end);
}

// Every look differs from the plain one without colour too.
attr_t Attributes(Look look) {
  const auto pair = [](short number) { return static_cast<attr_t>(COLOR_PAIR(number)); };
  switch (look) {
    case Look::kPlain:
      return A_NORMAL;
    case Look::kBold:
      return A_BOLD;
    case Look::kDim:
      return A_DIM;
    case Look::kSelected:
      return A_REVERSE | pair(kSelectedPair);
    case Look::kGood:
      return A_BOLD | pair(kGoodPair);
    case Look::kBad:
      return A_BOLD | A_UNDERLINE | pair(kBadPair);
    case Look::kDisplay:
      return has_colors() ? pair(kDisplayPair) : A_REVERSE;
  }
  return A_NORMAL;
}

}  // namespace

Terminal::Terminal() {
  std::setlocale(LC_ALL, "");
  glyphs_ = ChooseGlyphs();
  set_escdelay(kEscapeDelay);
  initscr();
  cbreak();
  noecho();
  nodelay(stdscr, TRUE);
  keypad(stdscr, TRUE);
  // Presses alone: of clicks that come together curses would make a double one.
  mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
  mouseinterval(0);
  curs_set(0);
  ChooseColours();
}

Terminal::~Terminal() { endwin(); }

int Terminal::Rows() const { return LINES; }

int Terminal::Columns() const { return COLS; }

bool Terminal::IsReady() const {
  pollfd entry{STDOUT_FILENO, POLLOUT, 0};
  return poll(&entry, 1, 0) == 1;
}

void Terminal::Resize() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) resizeterm(size.ws_row, size.ws_col);
}

void Terminal::Clear() { erase(); }

void Terminal::ClearFrom(int row) {
  move(row, 0);
  clrtobot();
}

void Terminal::Put(int row, int column, const std::string& text, Look look) {
  attrset(static_cast<int>(Attributes(look)));
  mvaddstr(row, column, Cut(text, COLS - column).c_str());
}

void Terminal::Show() { refresh(); }

}  // namespace virtualbus
