#pragma once

// The only file that includes the screen library. Its key and colour macros give way to the constants of
// core/keys.h and core/colours.h, which curses.cpp checks against them.

#include "core/colours.h"
#include "core/keys.h"

#define _XOPEN_SOURCE_EXTENDED 1  // NOLINT(bugprone-reserved-identifier): asked for by the library
#include <curses.h>
#undef KEY_DOWN
#undef KEY_UP
#undef KEY_LEFT
#undef KEY_RIGHT
#undef KEY_HOME
#undef KEY_BACKSPACE
#undef KEY_DC
#undef KEY_NPAGE
#undef KEY_PPAGE
#undef KEY_ENTER
#undef KEY_END
#undef KEY_RESIZE
#undef COLOR_BLACK
#undef COLOR_RED
#undef COLOR_GREEN
#undef COLOR_YELLOW
#undef COLOR_BLUE
#undef COLOR_MAGENTA
#undef COLOR_CYAN
#undef COLOR_WHITE

#include "screen/canvas.h"

namespace brenlow::screen {

// The fixed colour pairs.
inline constexpr int PAIR_BAR = 1;        // title and status bar, headers
inline constexpr int PAIR_PROMPT = 2;     // prompts, notices, footers
inline constexpr int PAIR_SELECTED = 3;   // selected row of the file browser
inline constexpr int PAIR_RULE = 4;       // page-break and end rows
inline constexpr int PAIR_HIGHLIGHT = 5;  // search matches

void show_cursor(bool visible);

// Keypad translation off, raw mode on, line-ending translation off.
void prepare_keyboard(WINDOW* window);
// Tells the library the size that the terminal behind `descriptor` has now; the canvas takes it, blank.
void take_terminal_size(int descriptor, WINDOW* window, Canvas& canvas);
// Starts colours and defines the fixed pairs.
void start_colours();

}  // namespace brenlow::screen
