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

#include <string>
#include <string_view>

namespace brenlow::screen {

// The fixed colour pairs.
inline constexpr int PAIR_BAR = 1;        // title and status bar, headers
inline constexpr int PAIR_PROMPT = 2;     // prompts, notices, footers
inline constexpr int PAIR_SELECTED = 3;   // selected row of the file browser
inline constexpr int PAIR_RULE = 4;       // page-break and end rows
inline constexpr int PAIR_HIGHLIGHT = 5;  // search matches

// Writes text from a cell on. Every character takes the cells of plain print: controls and characters
// that cannot be shown become one visible cell, a combining mark stands alone. What falls off the screen is
// dropped; nothing wraps, scrolls or fails.
void put(WINDOW* window, int row, int column, std::u32string_view text, attr_t attributes = A_NORMAL, int pair = 0);

// A whole row of `width` cells: the text cut or padded with blanks.
void put_row(WINDOW* window, int row, std::u32string_view text, int width, int pair, attr_t attributes = A_NORMAL);

std::u32string padded(std::u32string_view text, int width);  // cut or padded to exactly `width` (0 if negative)

void place_cursor(WINDOW* window, int row, int column);
void show_cursor(bool visible);

// Keypad translation off, raw mode on, line-ending translation off.
void prepare_keyboard(WINDOW* window);
// Tells the library the size that the terminal behind `descriptor` has now.
void take_terminal_size(int descriptor);
// Starts colours and defines the fixed pairs.
void start_colours();

}  // namespace brenlow::screen
