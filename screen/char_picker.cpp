#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "screen/char_table.h"
#include "screen/curses.h"

namespace brenlow {

namespace {

std::u32string row_text(const UnicodeRow& row) {
  std::u32string text = U"  ";
  text += is_space(row.character) ? U'·' : row.character;
  text += U"  " + decode_utf8(row.code) + U"  " + decode_utf8(row.name);
  return text;
}

std::string scroll_hint(int top, int last_top) {
  if (top > 0 && top < last_top) return "  ↑↓ PgUp PgDn";
  if (top > 0) return "  ↑ PgUp";
  return top < last_top ? "  ↓ PgDn" : "";
}

}  // namespace

void Editor::do_unicode_picker() {
  const std::u32string header = U" Unicode character table  —  " + decode_utf8(unicode_input_hint(_terminal_kind()));
  std::u32string filter;
  int top = 0;
  for (;;) {
    std::vector<const UnicodeRow*> matches = filter_unicode_table(filter);
    int count = static_cast<int>(matches.size());
    int list_rows = std::max(rows() - 4, 1);
    int last_top = std::max(count - list_rows, 0);
    top = std::clamp(top, 0, last_top);

    _canvas.erase();
    _canvas.put_row(0, header, cols(), {0, screen::PAIR_BAR});
    std::u32string filter_row = U" Filter: " + filter + U"_";
    _canvas.put_row(1, filter_row, cols(), {0, screen::PAIR_PROMPT});
    auto width = static_cast<std::size_t>(std::max(cols() - 1, 0));
    for (int row = 0; row < list_rows && top + row < count; ++row)
      _canvas.put(row + 2, 0,
                  std::u32string_view(row_text(*matches[static_cast<std::size_t>(top + row)])).substr(0, width));
    if (matches.empty()) _canvas.put(2, 2, U"(no matches)");
    std::string footer = " Type to filter  ESC/Enter close   " +
                         unicode_count_text(matches.size(), !trimmed(filter).empty()) + scroll_hint(top, last_top);
    _canvas.put_row(rows() - 1, decode_utf8(footer), cols(), {0, screen::PAIR_PROMPT});
    _canvas.place_cursor(1, std::min(static_cast<int>(filter_row.size()) - 1, cols() - 1));
    _painter.show(stdscr, _canvas);

    int key = _getch_key();
    if (key == KEY_ESC || key == 10 || key == 13) return;
    if (key == KEY_RESIZE) {
      _serve_resize();
    } else if (is_backspace(key)) {
      if (!filter.empty()) filter.pop_back();
      top = 0;
    } else if (key == KEY_UP || key == KEY_DOWN) {
      top += key == KEY_UP ? -1 : 1;
    } else if (key == KEY_PPAGE || key == KEY_NPAGE) {
      top += key == KEY_PPAGE ? -list_rows : list_rows;
    } else if (key == KEY_HOME) {
      top = 0;
    } else if (key == KEY_END) {
      top = last_top;
    } else if (key >= 32 && key <= 126) {
      filter.push_back(static_cast<char32_t>(key));
      top = 0;
    }
  }
}

}  // namespace brenlow
