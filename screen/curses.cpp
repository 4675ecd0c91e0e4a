#include "screen/curses.h"

#include <vector>

#include "terminal/font_control.h"

namespace brenlow::screen {

namespace {

void write_cells(WINDOW* window, int row, int column, std::span<const Cell> cells) {
  // The library makes one cell of each look; the others are copies of it with a character of their own.
  static std::vector<cchar_t> written;
  written.resize(cells.size());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const Cell& cell = cells[i];
    Style style = cell.style();
    if (i == 0 || !cell.looks_like(cells[i - 1]))
      ::setcchar(&written[i], L" ", style.attributes, static_cast<short>(style.pair), nullptr);
    else
      written[i] = written[i - 1];
    bool combining = cell.is(Cell::COMBINING);
    auto character = static_cast<wchar_t>(cell.character());
    written[i].chars[0] = combining ? L' ' : character;
    written[i].chars[1] = combining ? character : L'\0';
  }
  ::mvwadd_wchnstr(window, row, column, written.data(), static_cast<int>(written.size()));
}

}  // namespace

void refresh(WINDOW* window, Canvas& canvas) {
  canvas.show([&](int row, int column, std::span<const Cell> cells) { write_cells(window, row, column, cells); });
  ::wmove(window, canvas.cursor().first, canvas.cursor().second);
  ::wrefresh(window);
}

void show_cursor(bool visible) { ::curs_set(visible ? 1 : 0); }

void prepare_keyboard(WINDOW* window) {
  ::keypad(window, false);
  ::raw();
  ::nonl();
  // The loop decides when a frame is worth drawing; the library need not look at the input in the middle of one.
  ::typeahead(-1);
}

void take_terminal_size(int descriptor, WINDOW* window, Canvas& canvas) {
  if (auto size = terminal_size(descriptor); size && size->first > 0 && size->second > 0)
    ::resizeterm(size->first, size->second);
  ::werase(window);
  canvas.reset(::getmaxy(window), ::getmaxx(window));
  // What was on its way while the size changed may have gone anywhere.
  ::clearok(::curscr, true);
}

void start_colours() {
  ::start_color();
  ::use_default_colors();
  ::init_pair(PAIR_BAR, COLOR_BLACK, COLOR_WHITE);
  ::init_pair(PAIR_PROMPT, COLOR_BLACK, COLOR_YELLOW);
  ::init_pair(PAIR_SELECTED, COLOR_WHITE, COLOR_BLUE);
  ::init_pair(PAIR_RULE, COLOR_WHITE, -1);
  ::init_pair(PAIR_HIGHLIGHT, COLOR_BLACK, COLOR_CYAN);
}

}  // namespace brenlow::screen
