#include "screen/curses.h"

#include "terminal/font_control.h"

namespace brenlow::screen {

void show_cursor(bool visible) { ::curs_set(visible ? 1 : 0); }

void prepare_keyboard(WINDOW* window) {
  ::keypad(window, false);
  ::raw();
  ::nonl();
}

void take_terminal_size(int descriptor, WINDOW* window, Canvas& canvas) {
  if (auto size = terminal_size(descriptor); size && size->first > 0 && size->second > 0)
    ::resizeterm(size->first, size->second);
  // What was on its way while the size changed may have gone anywhere.
  canvas.reset(::getmaxy(window), ::getmaxx(window));
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
