#include <algorithm>

#include "core/editor.h"

namespace brenlow {

void Editor::move(int key) {
  switch (key) {
    case KEY_LEFT:
      _move_left();
      break;
    case KEY_RIGHT:
      _move_right();
      break;
    case KEY_UP:
      _move_rows(-1, true);
      break;
    case KEY_DOWN:
      _move_rows(1, true);
      break;
    case KEY_PPAGE:
      _move_rows(-edit_rows(), false);
      break;
    case KEY_NPAGE:
      _move_rows(edit_rows(), false);
      break;
    case KEY_HOME:
      _preferred_col.reset();
      cx = 0;
      break;
    case KEY_END:
      _preferred_col.reset();
      cx = _line_length(cy);
      break;
    default:
      break;
  }
  _sync_cur_fmt();
}

void Editor::_move_left() {
  _preferred_col.reset();
  _within_shown_lines(-1, [this] {
    if (cx > 0) {
      --cx;
    } else if (cy > 0) {
      --cy;
      cx = _line_length(cy);
    }
  });
}

void Editor::_move_right() {
  _preferred_col.reset();
  _within_shown_lines(1, [this] {
    if (cx < _line_length(cy)) {
      ++cx;
    } else if (cy + 1 < _line_count()) {
      ++cy;
      cx = 0;
    }
  });
}

void Editor::_within_shown_lines(int direction, const std::function<void()>& motion) {
  int old_cy = cy;
  int old_cx = cx;
  motion();
  if (_kgrep_folds.empty() && _folded_chapters.empty()) return;
  if (!_folded_chapters.empty()) _build_screen_map();
  auto hidden = [this](int ly) {
    return _kgrep_folds.contains(ly) || (!_folded_chapters.empty() && _sm_lines[static_cast<std::size_t>(ly)] == 0);
  };
  if (!hidden(cy)) return;
  int shown = cy + direction;
  while (shown >= 0 && shown < _line_count() && hidden(shown)) shown += direction;
  if (shown < 0 || shown == _line_count()) {
    cy = old_cy;
    cx = old_cx;
  } else {
    cy = shown;
    cx = direction < 0 ? _line_length(shown) : 0;
  }
}

// Moves by displayed rows to the remembered column; `within_row` keeps the cursor inside the row's text.
void Editor::_move_rows(int rows_down, bool within_row) {
  const ScreenMap& map = _build_screen_map();
  if (map.empty()) return;
  int last = static_cast<int>(map.size()) - 1;
  int row = _logical_to_screen_row(cy, cx, map);
  int target = std::clamp(row + rows_down, 0, last);
  if (target == row) return;
  if (!_preferred_col) _preferred_col = cx - map[static_cast<std::size_t>(row)].start;
  const MapEntry entry = map[static_cast<std::size_t>(target)];
  cy = entry.ly;
  cx = std::min(entry.start + *_preferred_col, _line_length(cy));
  if (within_row) cx = std::min(cx, entry.start + entry.length);
  cx = std::max(cx, 0);
}

void Editor::_word_left() {
  _within_shown_lines(-1, [this] {
    if (cx == 0) {
      if (cy == 0) return;
      --cy;
      cx = _line_length(cy);
      return;
    }
    TextView text = _line(cy);
    auto blank_before = [&] { return text[static_cast<std::size_t>(cx - 1)] == U' '; };
    while (cx > 0 && blank_before()) --cx;
    while (cx > 0 && !blank_before()) --cx;
  });
}

void Editor::_word_right() {
  _within_shown_lines(1, [this] {
    int length = _line_length(cy);
    if (cx >= length) {
      if (cy + 1 == _line_count()) return;
      ++cy;
      cx = 0;
      return;
    }
    TextView text = _line(cy);
    auto blank_here = [&] { return text[static_cast<std::size_t>(cx)] == U' '; };
    while (cx < length && !blank_here()) ++cx;
    while (cx < length && blank_here()) ++cx;
  });
}

int Editor::_fmt_at(int ly, int col) const {
  return static_cast<std::size_t>(ly) < fmt_lines.size() ? format_at(_fmt(ly).view(), col) : 0;
}

void Editor::_sync_cur_fmt() { _cur_fmt = _fmt_at(cy, std::max(cx - 1, 0)); }

}  // namespace brenlow
