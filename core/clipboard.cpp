#include <algorithm>

#include "core/clipboard_tools.h"
#include "core/editor.h"
#include "core/unicode.h"

namespace brenlow {

std::vector<Text> Editor::_internal_clipboard;
std::vector<SpanList> Editor::_internal_clipboard_fmt;
IndexSet Editor::_internal_clipboard_pbl;

namespace {

std::vector<std::u32string_view> split_at_line_feeds(std::u32string_view text) {
  std::vector<std::u32string_view> parts;
  for (;;) {
    std::size_t end = text.find(U'\n');
    parts.push_back(text.substr(0, end));
    if (end == std::u32string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

std::string Editor::_internal_clipboard_text() const {
  std::string text;
  for (std::size_t i = 0; i < _internal_clipboard.size(); ++i) {
    if (i > 0) text += '\n';
    append_utf8_text(text, _internal_clipboard[i]);
  }
  return text;
}

// Stores the selection as the rich copy and hands its text to the clipboard tools.
std::optional<Editor::Copied> Editor::_copy_selection() {
  std::optional<Range> range = _sel_range();
  if (!range) {
    _show_message("Nothing selected.");
    return std::nullopt;
  }
  std::vector<Text> pieces;
  std::vector<SpanList> formats;
  std::vector<int> breaks;
  auto characters = static_cast<std::size_t>(range->ey - range->sy);  // the line feeds
  for (int ly = range->sy; ly <= range->ey; ++ly) {
    auto [first, last] = _range_columns(*range, ly);
    bool whole = first == 0 && last == _line_length(ly);
    pieces.push_back(
        whole ? _line(ly)
              : Text(_line(ly).view().substr(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first))));
    formats.push_back(spans_within(_fmt(ly), first, last));
    characters += pieces.back().size();
  }
  for (int ly : pagebreak_lines)
    if (ly >= range->sy && ly <= range->ey) breaks.push_back(ly - range->sy);
  _internal_clipboard = std::move(pieces);
  _internal_clipboard_fmt = std::move(formats);
  _internal_clipboard_pbl = IndexSet::from_sorted(breaks);

  return Copied{characters, _clipboard_copy(_internal_clipboard_text(), _machine.search_path)};
}

void Editor::do_copy() {
  std::optional<Copied> copied = _copy_selection();
  if (!copied) return;
  _show_message("Copied " + std::to_string(copied->characters) +
                (copied->taken ? " character(s) to clipboard."
                               : " character(s) (internal clipboard — no system clipboard found)."));
  _sel_clear();
}

void Editor::do_cut() {
  std::optional<Copied> copied = _copy_selection();
  if (!copied) return;
  _delete_selection();
  _show_message("Cut " + std::to_string(copied->characters) + " character(s) to clipboard.");
  _kgrep_refresh();
}

void Editor::do_paste() {
  std::optional<std::string> bytes = _clipboard_paste(_machine.search_path);
  std::u32string text = decode_utf8(bytes ? *bytes : _internal_clipboard_text());
  if (text.empty()) {
    _show_message("Clipboard is empty.");
    return;
  }
  bool rich = !_internal_clipboard_fmt.empty() && (!bytes || encode_utf8(text) == _internal_clipboard_text());
  _insert_parts(split_at_line_feeds(text), rich, true);
  _show_message("Pasted " + std::to_string(text.size()) + " character(s).");
  _kgrep_refresh();
}

void Editor::do_insert_expansion(std::u32string_view text) {
  _insert_parts(split_at_line_feeds(text), false, false);
  _kgrep_refresh();
}

// Inserts the parts of a text, divided at its line feeds, in place of the selection. A selection's deletion
// is an undo step of its own.
void Editor::_insert_parts(const std::vector<std::u32string_view>& parts, bool rich, bool guard) {
  _delete_selection();
  _push_undo_bulk();
  _invalidate_map();
  if (parts.size() == 1) {
    _insert_one_part(parts[0], rich);
  } else {
    _insert_many_parts(parts, rich);
    if (guard) _guard_pagebreak_line_zero();
  }
  modified = true;
  _sync_cur_fmt();
  _finalize_undo_bulk();
}

void Editor::_insert_one_part(std::u32string_view part, bool rich) {
  int length = static_cast<int>(part.size());
  _set_line(cy, _line(cy).spliced(static_cast<std::size_t>(cx), 0, part));
  if (!rich) {
    if (length > 0) _fmt(cy) = spans_with_inserted(_fmt(cy), cx, length, _cur_fmt);
  } else {
    std::vector<Span> spans;
    for (Span span : _fmt(cy)) {
      if (span.start >= cx) span.start += length;
      if (span.end >= cx) span.end += length;
      spans.push_back(span);
    }
    for (const Span& span : _internal_clipboard_fmt[0]) spans.push_back({span.start + cx, span.end + cx, span.bits});
    _fmt(cy) = _merge_spans(spans);
  }
  cx += length;
}

void Editor::_insert_many_parts(const std::vector<std::u32string_view>& parts, bool rich) {
  std::size_t count = parts.size();
  TextView line = _line(cy);
  auto at = static_cast<std::size_t>(cx);
  SplitSpans split = _fmt_split_line(cy, cx);

  std::vector<Text> new_lines;
  new_lines.reserve(count);
  new_lines.push_back(joined(line.substr(0, at), parts.front()));
  for (std::size_t i = 1; i + 1 < count; ++i) new_lines.emplace_back(parts[i]);
  new_lines.push_back(joined(parts.back(), line.substr(at)));

  std::vector<SpanList> new_fmt(count);
  int last_length = static_cast<int>(parts.back().size());
  if (rich) {
    for (std::size_t i = 0; i < std::min(count, _internal_clipboard_fmt.size()); ++i)
      new_fmt[i] = _internal_clipboard_fmt[i];
    new_fmt.front() = _merge_spans(spans_appended(split.left, new_fmt.front(), cx).view());
    new_fmt.back() = _merge_spans(spans_appended(new_fmt.back(), split.right, last_length).view());
  } else {
    new_fmt.front() = split.left;
    new_fmt.back() = spans_moved(split.right, last_length);
  }

  int added = static_cast<int>(count) - 1;
  lines.splice(static_cast<std::size_t>(cy), 1, std::move(new_lines));
  fmt_lines.splice(static_cast<std::size_t>(cy), 1, std::move(new_fmt));
  pagebreak_lines.shift(cy + 1, added);
  if (rich) {
    IndexSet breaks = _internal_clipboard_pbl;
    breaks.shift(0, cy);
    pagebreak_lines.merge(breaks);
  }
  _shift_folded_chapters(at == 0 ? cy : cy + 1, added);  // a folded header that moves down whole stays folded
  cy += added;
  cx = last_length;
}

std::u32string Editor::_clipboard_as_one_line() const {
  std::optional<std::string> bytes = _clipboard_paste(_machine.search_path);
  if (!bytes || bytes->empty()) bytes = _internal_clipboard_text();
  return one_line(decode_utf8(*bytes));
}

}  // namespace brenlow
