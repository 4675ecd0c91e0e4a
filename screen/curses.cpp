#include "screen/curses.h"

#include <array>
#include <cwchar>
#include <vector>

#include "core/unicode.h"
#include "terminal/font_control.h"

namespace brenlow::screen {

namespace {

constexpr char32_t TAB_SIGN = U'→';
constexpr char32_t FORMAT_SIGN = U'·';
constexpr char32_t UNPRINTABLE_SIGN = U'\uFFFD';

// Characters without a sign of their own: zero-width blanks and joiners, direction and annotation signs.
bool is_format_character(char32_t c) {
  return c == 0x061C || c == 0x180E || (c >= 0x200B && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF || (c >= 0xFFF9 && c <= 0xFFFB) || (c >= 0xE0000 && c <= 0xE007F);
}

// What stands for `character` in its cell, as a text of one cell.
std::array<wchar_t, 3> shown(char32_t character) {
  auto one = [](char32_t c) { return std::array<wchar_t, 3>{static_cast<wchar_t>(c), 0, 0}; };
  if (character >= 0x20 && character < 0x7F) return one(character);
  if (character == U'\t') return one(TAB_SIGN);
  if (is_format_character(character)) return one(FORMAT_SIGN);
  int width = ::wcwidth(static_cast<wchar_t>(character));
  if (character < 0xA0 || width < 0) return one(UNPRINTABLE_SIGN);
  if (width > 0) return one(character);
  return {L' ', static_cast<wchar_t>(character), 0};  // a combining mark, on a blank of its own
}

}  // namespace

void put(WINDOW* window, int row, int column, std::u32string_view text, attr_t attributes, int pair) {
  if (text.empty() || row < 0 || column < 0 || row >= ::getmaxy(window) || column >= ::getmaxx(window)) return;
  auto room = static_cast<std::size_t>(::getmaxx(window) - column);
  if (text.size() > room) text = text.substr(0, room);
  // One cell is made by the library; the others are copies with a character of their own, which is most of a
  // frame's cost.
  cchar_t blank;
  ::setcchar(&blank, L" ", attributes, static_cast<short>(pair), nullptr);
  static std::vector<cchar_t> cells;
  cells.assign(text.size(), blank);
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::array<wchar_t, 3> characters = shown(text[i]);
    cells[i].chars[0] = characters[0];
    cells[i].chars[1] = characters[1];
  }
  ::mvwadd_wchnstr(window, row, column, cells.data(), static_cast<int>(cells.size()));
}

std::u32string padded(std::u32string_view text, int width) {
  std::u32string row(text);
  row.resize(width > 0 ? static_cast<std::size_t>(width) : 0, U' ');
  return row;
}

void put_row(WINDOW* window, int row, std::u32string_view text, int width, int pair, attr_t attributes) {
  put(window, row, 0, padded(text, width), attributes, pair);
}

void place_cursor(WINDOW* window, int row, int column) {
  if (row >= 0 && column >= 0 && row < ::getmaxy(window) && column < ::getmaxx(window)) ::wmove(window, row, column);
}

void show_cursor(bool visible) { ::curs_set(visible ? 1 : 0); }

void prepare_keyboard(WINDOW* window) {
  ::keypad(window, false);
  ::raw();
  ::nonl();
}

void take_terminal_size(int descriptor) {
  if (auto size = terminal_size(descriptor); size && size->first > 0 && size->second > 0)
    ::resizeterm(size->first, size->second);
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
