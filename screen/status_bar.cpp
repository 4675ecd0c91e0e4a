#include <unistd.h>

#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "screen/curses.h"
#include "screen/help_text.h"
#include "terminal/battery.h"

namespace brenlow {

namespace {

constexpr std::chrono::seconds BATTERY_AGE{5};

std::string with_thousands(long number) {
  std::string digits = std::to_string(number);
  for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) digits.insert(static_cast<std::size_t>(at), ",");
  return digits;
}

std::string console_tag(int descriptor) {
  const char* device = ::ttyname(descriptor);
  return device ? "console " + path_base_name(device) : "console";
}

}  // namespace

std::string Editor::_battery_widget() {
  auto now = std::chrono::steady_clock::now();
  if (_battery_text.empty() || now - _battery_read >= BATTERY_AGE) {
    _battery_text = _get_battery_status(_machine.power_supplies);
    _battery_read = now;
  }
  return _battery_text;
}

// Counted once per document; every edit's undo record knows what it added.
long Editor::_count_document_words() {
  if (!_word_count) {
    long words = 0;
    for (const Text& line : lines) words += count_words(line);
    _word_count = words;
  }
  return *_word_count;
}

std::string Editor::_status_text() {
  if (_action_mode) return " CMD — press a command key, or press action key again to cancel";
  if (_expansion_mode) return " EXP — press an expansion letter, or press expansion key again to cancel";
  if (!message.empty()) return " " + message;
  int total = _line_count();
  int percent = total <= 1 ? 100 : static_cast<int>(100LL * cy / (total - 1));
  return " Ln " + std::to_string(cy + 1) + "/" + std::to_string(total) + " (" + std::to_string(percent) + "%) │ Col " +
         std::to_string(cx + 1) + " │ " + with_thousands(_count_document_words()) + " words │ " + _key_name(_key_help) +
         "=help │ [" + (_on_console ? console_tag(_machine.input) : _terminal_kind()) + "] │";
}

void Editor::_draw_statusbar() {
  std::u32string row = screen::padded(decode_utf8(_status_text()), cols());
  std::u32string battery = decode_utf8(" " + _battery_widget() + " ");
  if (battery.size() < row.size()) row.replace(row.size() - battery.size(), battery.size(), battery);
  _canvas.put(rows() - 1, 0, row, {A_NORMAL, screen::PAIR_BAR});
}

void Editor::_place_cursor() {
  const ScreenMap& map = _build_screen_map();
  int row = _logical_to_screen_row(cy, cx, map);
  bool in_map = row < static_cast<int>(map.size());
  int screen_row = _text_top() + (_typewriter ? std::max(edit_rows() - 2, 0)
                                              : row - scroll_y + _count_separators(map, scroll_y, row + 1));
  int column = cx - (in_map ? map[static_cast<std::size_t>(row)].start : 0) + _lmargin();
  if (in_map && _is_list_continuation({cy, map[static_cast<std::size_t>(row)].start, 0})) column += 2;
  int limit = _status_bar_shown() ? rows() - 1 : rows();
  if (screen_row < limit) _canvas.place_cursor(screen_row, column);
}

// The smallest map index whose visual row, page-break rows counted, is at least `target`.
int Editor::_first_row_showing(int target) const {
  int low = 0;
  int high = static_cast<int>(_screen_map.size());
  while (low < high) {
    int middle = low + (high - low) / 2;
    if (middle + _count_separators(_screen_map, 0, middle) >= target)
      high = middle;
    else
      low = middle + 1;
  }
  return low;
}

void Editor::_ensure_cursor_visible() {
  const ScreenMap& map = _build_screen_map();
  scroll_y = std::clamp(scroll_y, 0, static_cast<int>(map.size()));
  int row = _logical_to_screen_row(cy, cx, map);
  int visual = row + _count_separators(map, 0, row + 1);
  if (_typewriter) {
    int target = visual - std::max(edit_rows() - 2, 0);
    scroll_y = target <= 0 ? 0 : _first_row_showing(target);
    return;
  }
  int top = scroll_y + _count_separators(map, 0, scroll_y);
  if (visual < top) scroll_y = row;
  int extra = row == static_cast<int>(map.size()) - 1 ? 1 : 0;  // the end row stays in view
  // Where there is no room for the page break, the row and the end, the row goes first.
  if (visual + extra >= top + edit_rows())
    scroll_y = std::min(_first_row_showing(visual + extra - edit_rows() + 1), row);
}

}  // namespace brenlow
