#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "screen/curses.h"
#include "screen/help_text.h"

namespace brenlow {

namespace {

std::vector<std::u32string> wrapped(const std::vector<std::string>& paragraphs, int width) {
  std::vector<std::u32string> rows;
  for (const std::string& paragraph : paragraphs)
    for (std::u32string& row : wrap_paragraph(decode_utf8(paragraph), width)) rows.push_back(std::move(row));
  return rows;
}

std::string footer(int top, int last_top) {
  std::string hint;
  if (top > 0 && top < last_top)
    hint = "↑↓ PgUp PgDn scroll   ";
  else if (top > 0)
    hint = "↑ PgUp scroll up   ";
  else if (top < last_top)
    hint = "↓ PgDn scroll down   ";
  return " " + hint + "Press any key to return";
}

}  // namespace

int Editor::_overlay_scroll(const std::string& title, const std::vector<std::string>& lines_in) {
  std::vector<std::u32string> display;
  int wrapped_for = 0;
  for (;;) {
    int width = std::max(cols() - 3, 1);
    if (width != wrapped_for) display = wrapped(lines_in, width);
    wrapped_for = width;
    int text_rows = std::max(rows() - 2, 0);
    int last_top = std::max(static_cast<int>(display.size()) - text_rows, 0);
    _overlay_top = std::clamp(_overlay_top, 0, last_top);

    _canvas.erase();
    _canvas.put_row(0, decode_utf8(" " + title), cols(), {0, screen::PAIR_BAR});
    for (int row = 0; row < text_rows && _overlay_top + row < static_cast<int>(display.size()); ++row) {
      std::u32string_view text = display[static_cast<std::size_t>(_overlay_top + row)];
      _canvas.put(row + 1, 1, text.substr(0, static_cast<std::size_t>(width)));
    }
    _canvas.put_row(rows() - 1, decode_utf8(footer(_overlay_top, last_top)), cols(), {0, screen::PAIR_PROMPT});
    _painter.show(stdscr, _canvas);

    int key = _getch_key();
    switch (key) {
      case KEY_RESIZE:
        _serve_resize();
        break;
      case KEY_UP:
      case 'k':
        --_overlay_top;
        break;
      case KEY_DOWN:
      case 'j':
        ++_overlay_top;
        break;
      case KEY_PPAGE:
        _overlay_top -= text_rows;
        break;
      case KEY_NPAGE:
        _overlay_top += text_rows;
        break;
      case KEY_HOME:
        _overlay_top = 0;
        break;
      case KEY_END:
        _overlay_top = last_top;
        break;
      default:
        _overlay_top = 0;
        return key;
    }
  }
}

}  // namespace brenlow
