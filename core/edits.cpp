#include <algorithm>

#include "core/editor.h"

namespace brenlow {

namespace {

constexpr const char* CHAPTER_IS_FOLDED = "Chapter is folded — press ESC # to unfold before editing.";

}  // namespace

void Editor::_fmt_insert_char(int ly, int col, int fmt) { _fmt(ly) = spans_with_inserted(_fmt(ly), col, 1, fmt); }

void Editor::_fmt_delete_char(int ly, int col) { _fmt(ly) = spans_with_removed(_fmt(ly), col, col + 1); }

SplitSpans Editor::_fmt_split_line(int ly, int col) const { return split_spans(_fmt(ly), col); }

void Editor::_fmt_join_lines(int ly, int offset) { _fmt(ly) = spans_appended(_fmt(ly), _fmt(ly + 1), offset); }

bool Editor::_guard_pagebreak_line_zero() {
  if (!pagebreak_lines.contains(0)) return false;
  pagebreak_lines.erase(0);
  if (lines.size() >= 2) pagebreak_lines.insert(1);
  return true;
}

void Editor::_lines_replaced(int lo, int hi_old, int new_count) {
  _update_map_lines(lo, hi_old, new_count);
  _recompute_syn_range(lo, hi_old, new_count);
}

void Editor::_edit_lines(int lo, int hi_old, const std::function<int()>& change) {
  _push_undo(lo, hi_old);
  int new_count = change();
  modified = true;
  message.clear();
  _lines_replaced(lo, hi_old, new_count);
  _finalize_undo(lo + new_count);
  _kgrep_refresh();
}

void Editor::_edit_document(const std::function<void()>& change) {
  _push_undo_bulk();
  change();
  modified = true;
  _finalize_undo_bulk();
  _kgrep_refresh();
}

// Divides the line; breaks and folds behind it move down. A break on the line stays on the upper part, and a
// folded header that moves down whole takes its fold along.
void Editor::_split_line(int ly, int col) {
  TextView text = _line(ly);
  auto at = static_cast<std::size_t>(col);
  Text upper(text.substr(0, at));
  Text lower_part(text.substr(at));
  SplitSpans spans = _fmt_split_line(ly, col);
  _set_line(ly, std::move(upper));
  lines.insert(static_cast<std::size_t>(ly + 1), std::move(lower_part));
  _fmt(ly) = std::move(spans.left);
  fmt_lines.insert(static_cast<std::size_t>(ly + 1), std::move(spans.right));
  pagebreak_lines.shift(ly + 1, 1);
  _shift_folded_chapters(col == 0 ? ly : ly + 1, 1);
}

void Editor::_remove_line(int ly) {
  lines.erase(static_cast<std::size_t>(ly), 1);
  fmt_lines.erase(static_cast<std::size_t>(ly), 1);
  pagebreak_lines.erase(ly);
  pagebreak_lines.shift(ly + 1, -1);
}

// Appends the next line to this one; a page break on the next line goes.
void Editor::_join_with_next(int ly) {
  _fmt_join_lines(ly, _line_length(ly));
  _set_line(ly, joined(_line(ly), _line(ly + 1)));
  _remove_line(ly + 1);
  _shift_folded_chapters(ly + 1, -1);
}

void Editor::insert_char(char32_t ch) {
  if (_smart_quotes) {
    if (ch == U'`') ch = U'‘';
    if (ch == U'\'') ch = U'’';
  }
  _edit_lines(cy, cy + 1, [&] {
    _set_line(cy, _line(cy).spliced(static_cast<std::size_t>(cx), 0, TextView(&ch, 1)));
    _fmt_insert_char(cy, cx, _cur_fmt);
    ++cx;
    return 1;
  });
}

void Editor::insert_newline() {
  _edit_lines(cy, cy + 1, [&] {
    _split_line(cy, cx);
    ++cy;
    cx = 0;
    const Text& above = _line(cy - 1);
    if (above.starts_with(U"- ") || above.view() == U"-") {
      _set_line(cy, joined(U"- ", _line(cy)));
      for (; cx < 2; ++cx) _fmt_insert_char(cy, cx, 0);
    }
    return 2;
  });
}

void Editor::insert_pagebreak() {
  _edit_document([&] {
    int old = cy;
    if (cx == 0 && cy > 0) {
      pagebreak_lines.insert(cy);
      ++cy;
      if (cy == _line_count()) {
        lines.push_back({});
        fmt_lines.push_back({});
        _lines_replaced(cy, cy, 1);
      }
      _lines_replaced(old, old + 1, 1);
    } else {
      _split_line(cy, cx);
      ++cy;
      cx = 0;
      pagebreak_lines.insert(cy);
      _lines_replaced(old, old + 1, 2);
    }
    _show_message("Page break added (ODT only)");
  });
}

void Editor::backspace() {
  if (cx > 0) {
    _edit_lines(cy, cy + 1, [&] {
      int removed = cx == 2 && _line(cy).view() == U"- " ? 2 : 1;
      for (int i = 0; i < removed; ++i) {
        --cx;
        _fmt_delete_char(cy, cx);
      }
      _set_line(cy, _line(cy).spliced(static_cast<std::size_t>(cx), static_cast<std::size_t>(removed), {}));
      return 1;
    });
  } else if (cy > 0) {
    if (_folded_chapters.contains(cy - 1) || _hidden_by_fold(cy - 1)) {  // the line would vanish from view
      _show_message(CHAPTER_IS_FOLDED);
      return;
    }
    _edit_lines(cy - 1, cy + 1, [&] {
      --cy;
      cx = _line_length(cy);
      _join_with_next(cy);
      return 1;
    });
  }
}

void Editor::delete_char() {
  if (cx < _line_length(cy)) {
    _edit_lines(cy, cy + 1, [&] {
      _fmt_delete_char(cy, cx);
      _set_line(cy, _line(cy).spliced(static_cast<std::size_t>(cx), 1, {}));
      return 1;
    });
  } else if (cy + 1 < _line_count()) {
    if (_folded_chapters.contains(cy + 1)) {
      _show_message(CHAPTER_IS_FOLDED);
      return;
    }
    _edit_lines(cy, cy + 2, [&] {
      _join_with_next(cy);
      return 1;
    });
  }
}

void Editor::delete_line() {
  if (_cursor_on_folded_chapter()) {
    _show_message(CHAPTER_IS_FOLDED);
    return;
  }
  _edit_document([&] {
    message.clear();
    cx = 0;
    if (lines.size() == 1) {
      lines[0] = {};
      fmt_lines[0] = {};
      pagebreak_lines.erase(0);
      _lines_replaced(0, 1, 1);
      return;
    }
    int old = cy;
    _remove_line(old);
    bool guarded = _guard_pagebreak_line_zero();
    _shift_folded_chapters(old, -1);
    cy = std::min(cy, _line_count() - 1);
    if (guarded && pagebreak_lines.contains(1))
      message = "Line deleted. The page break moved down one line so it wouldn't land on the very first line.";
    else if (guarded)
      message =
          "Line deleted. The page break was removed — it would otherwise land on the first line, which can't be "
          "undone.";
    if (guarded)
      _update_map_lines(0, std::min(3, _line_count() + 1), std::min(2, _line_count()));
    else
      _update_map_lines(old, old + 1, 0);
    _recompute_syn_range(old, old + 1, 0);
  });
}

}  // namespace brenlow
