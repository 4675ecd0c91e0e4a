#include <algorithm>

#include "core/editor.h"

namespace brenlow {

void Editor::_sel_start() {
  if (!_sel_anchor) _sel_anchor = {cy, cx};
}

std::optional<Editor::Range> Editor::_sel_range() const {
  if (!_sel_anchor) return std::nullopt;
  // Undo, redo and delete_line leave the anchor alone, so the text under it may be gone.
  int line = std::clamp(_sel_anchor->first, 0, _line_count() - 1);
  std::pair<int, int> anchor{line, std::clamp(_sel_anchor->second, 0, _line_length(line))};
  std::pair<int, int> cursor{cy, cx};
  if (anchor == cursor) return std::nullopt;
  auto [from, to] = std::minmax(anchor, cursor);
  return Range{from.first, from.second, to.first, to.second};
}

// The selected columns of line `ly`, which must lie in the range.
std::pair<int, int> Editor::_range_columns(const Range& range, int ly) const {
  return {ly == range.sy ? range.sx : 0, ly == range.ey ? range.ex : _line_length(ly)};
}

void Editor::do_select_all() {
  int last = _line_count() - 1;
  int end = _line_length(last);
  if (_sel_anchor == std::pair{0, 0} && cy == last && cx == end) {
    _sel_clear();
    _show_message("Selection cleared.");
    return;
  }
  _sel_anchor = {0, 0};
  cy = last;
  cx = end;
  _unfold_around(cy);  // at a header above, the cursor would leave the document's end unselected
  _preferred_col.reset();
  _show_message("All selected.");
}

void Editor::_apply_fmt_to_selection(int bit) {
  std::optional<Range> range = _sel_range();
  if (!range) return;
  bool all_over = true;
  for (int ly = range->sy; ly <= range->ey && all_over; ++ly) {
    auto [first, last] = _range_columns(*range, ly);
    all_over = format_covers(_fmt(ly), first, last, bit);
  }
  _push_undo_bulk();
  _invalidate_map();
  for (int ly = range->sy; ly <= range->ey; ++ly) {
    auto [first, last] = _range_columns(*range, ly);
    if (first < last) _fmt(ly) = spans_with_bit(_fmt(ly), _line_length(ly), first, last, bit, !all_over);
  }
  modified = true;
  _finalize_undo_bulk();
  _sel_clear();
  _show_message(std::string(bit == FMT_BOLD ? "Bold " : "Italic ") + (all_over ? "off" : "on") + " on selection");
}

void Editor::_delete_selection() {
  if (!_sel_range()) return;
  _push_undo_bulk();
  _invalidate_map();
  Range range = *_sel_range();
  _folded_chapters.erase_range(range.sy, range.ey);

  auto head_end = static_cast<std::size_t>(range.sx);
  auto tail_start = static_cast<std::size_t>(range.ex);
  Text text = joined(_line(range.sy).view().substr(0, head_end), _line(range.ey).view().substr(tail_start));
  if (range.sy == range.ey) {
    _fmt(range.sy) = spans_with_removed(_fmt(range.sy), range.sx, range.ex);
  } else {
    SpanList head = spans_with_removed(_fmt(range.sy), range.sx, _line_length(range.sy));
    SpanList tail = spans_with_removed(_fmt(range.ey), 0, range.ex);
    _fmt(range.sy) = spans_appended(head, tail, range.sx);
  }
  _set_line(range.sy, std::move(text));
  int removed = range.ey - range.sy;
  lines.erase(static_cast<std::size_t>(range.sy + 1), static_cast<std::size_t>(removed));
  fmt_lines.erase(static_cast<std::size_t>(range.sy + 1), static_cast<std::size_t>(removed));

  pagebreak_lines.erase_range(range.sy + 1, range.ey);
  pagebreak_lines.shift(range.ey + 1, -removed);
  _shift_folded_chapters(range.sy + 1, -removed);
  cy = range.sy;
  cx = range.sx;
  _sel_clear();
  modified = true;
  message.clear();
  _finalize_undo_bulk();
}

}  // namespace brenlow
