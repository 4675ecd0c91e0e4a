#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "screen/curses.h"
#include "screen/wrap.h"
#include "structure/matching.h"

namespace brenlow {

namespace {

using Stretch = RowLayers::Stretch;

// The non-overlapping occurrences of a term, searched from the start of the line.
std::vector<Stretch> occurrences(TextView text, const std::u32string& term, bool case_insensitive) {
  std::vector<Stretch> found;
  Needle needle(term, case_insensitive);
  for (int at = needle.find(text, 0); at >= 0; at = needle.find(text, at + needle.length()))
    found.emplace_back(at, at + needle.length());
  return found;
}

// Clips ranges of the line to the row from `start` to `end` and counts them from the row's start.
void clip(const std::vector<Stretch>& line, int start, int end, std::vector<Stretch>& row) {
  row.clear();
  auto first = std::partition_point(line.begin(), line.end(), [&](const Stretch& s) { return s.second <= start; });
  for (auto it = first; it != line.end() && it->first < end; ++it)
    row.emplace_back(std::max(it->first, start) - start, std::min(it->second, end) - start);
}

template <class Source, class Target>
void clip_spans(const Source& line, int start, int end, Target& row) {
  row.clear();
  for (auto span : line) {
    span.start = std::max(span.start, start) - start;
    span.end = std::min(span.end, end) - start;
    if (span.start < span.end) row.push_back(span);
  }
}

const Stretch* covering(const std::vector<Stretch>& stretches, int position) {
  for (const Stretch& s : stretches)
    if (s.first <= position && position < s.second) return &s;
  return nullptr;
}

template <class Spans>
auto covering_span(const Spans& spans, int position) {
  auto found =
      std::find_if(spans.begin(), spans.end(), [&](const auto& s) { return s.start <= position && position < s.end; });
  return found == spans.end() ? nullptr : &*found;
}

// The first place behind `position` where any layer begins or ends, at most `end`.
int next_boundary(const RowLayers& layers, int position, int end) {
  auto consider = [&](int place) {
    if (place > position && place < end) end = place;
  };
  auto both = [&](int from, int to) {
    consider(from);
    consider(to);
  };
  for (const Span& s : layers.format) both(s.start, s.end);
  for (const SyntaxSpan& s : layers.syntax) both(s.start, s.end);
  for (const Stretch& s : layers.kgrep) both(s.first, s.second);
  for (const Stretch& s : layers.find) both(s.first, s.second);
  both(layers.selection.first, layers.selection.second);
  return end;
}

}  // namespace

void Editor::draw() {
  _canvas.erase();
  _build_screen_map();
  if (_syn_dirty && !_syn_rules.empty()) _compute_syn_lines();
  if (_title_bar_shown()) _draw_titlebar();
  _draw_text();
  if (_status_bar_shown()) _draw_statusbar();
  _place_cursor();
  _painter.show(stdscr, _canvas);
}

void Editor::_draw_titlebar() {
  std::string size = std::to_string(font_size) + "pt";
  if (_on_console && console_font_ctrl && console_font_ctrl->available())
    size = "zoom " + console_font_ctrl->current_label();
  std::string flags;
  if (_cur_fmt & FMT_BOLD) flags += " │ B";
  if (_cur_fmt & FMT_ITALIC) flags += " │ I";
  if (_typewriter) flags += " │ TW";
  std::string text = " Brenlow " + std::string(VERSION) + " │ " + (filepath ? path_base_name(*filepath) : "[No Name]") +
                     (modified ? " *" : "  ") + "│ " + size + flags + " │";
  if (text == _drawn_title && _canvas.keep(0, _title_content)) return;
  _drawn_title = std::move(text);
  _title_content = ++_row_contents;
  _canvas.put_row(0, decode_utf8(_drawn_title), cols(), {0, screen::PAIR_BAR});
  _canvas.mark(0, _title_content);
}

void Editor::_draw_text() {
  std::vector<DrawnRow> planned = _planned_rows();
  _drawn_rows.resize(planned.size());
  _keep_standing_rows(planned, _text_top(), static_cast<int>(planned.size()));
  _move_drawn_rows(planned);
  RowLayers layers;
  for (std::size_t row = static_cast<std::size_t>(_text_top()); row < planned.size(); ++row)
    _draw_row(static_cast<int>(row), planned[row], layers);
  _drawn_rows = std::move(planned);
}

// What belongs on every row of the screen from the first one down to the last one of the text.
std::vector<DrawnRow> Editor::_planned_rows() {
  const ScreenMap& map = _build_screen_map();
  int map_size = static_cast<int>(map.size());
  int first = scroll_y;
  int row = 0;
  int limit = edit_rows();
  if (_typewriter) {
    int cursor_row = _logical_to_screen_row(cy, cx, map);
    row = std::max(edit_rows() - 2, 0) - (cursor_row - scroll_y) - _count_separators(map, scroll_y, cursor_row + 1);
    for (; row < 0 && first < map_size; ++row, ++first) {
      const MapEntry entry = map[static_cast<std::size_t>(first)];
      if (entry.start == 0 && pagebreak_lines.contains(entry.ly) && ++row >= 0) break;
    }
    limit = std::min(edit_rows() + 1, rows() - _text_top());
  }
  DrawnRow rule{.margins = {_lmargin(), _rmargin()}};
  std::vector<DrawnRow> planned(static_cast<std::size_t>(std::max(limit, 0) + _text_top()), rule);
  auto at = [&](int text_row) -> DrawnRow& { return planned[static_cast<std::size_t>(text_row + _text_top())]; };
  for (row = std::max(row, 0); row < limit && first <= map_size; ++row, ++first) {
    if (first == map_size) {
      at(row).kind = DrawnRow::Kind::END;
      break;
    }
    const MapEntry entry = map[static_cast<std::size_t>(first)];
    if (_has_separator(entry)) {
      at(row).kind = DrawnRow::Kind::PAGE_BREAK;
      if (++row >= limit) break;
    }
    at(row) = _planned_text_row(entry);
  }
  return planned;
}

DrawnRow Editor::_planned_text_row(const MapEntry& entry) {
  std::pair<int, int> selection{0, 0};
  if (std::optional<Range> range = _sel_range(); range && entry.ly >= range->sy && entry.ly <= range->ey) {
    auto [from, to] = _range_columns(*range, entry.ly);
    selection = {from - entry.start, to - entry.start};
  }
  return {.kind = DrawnRow::Kind::TEXT,
          .entry = entry,
          .line = _line(entry.ly),
          .format = _fmt(entry.ly),
          .syntax = _syn_rules.empty() ? SharedArray<SyntaxSpan>() : _syn_spans(entry.ly),
          .selection = selection,
          .margins = {_lmargin(), _rmargin()},
          .lasting = !_find_active && _kgrep_term.empty() && !_folded_chapters.contains(entry.ly)};
}

// Whether a row would look just as the one that was drawn at a place.
bool Editor::_row_stands(const DrawnRow& row, int at) const {
  const DrawnRow& drawn = _drawn_rows[static_cast<std::size_t>(at)];
  return row.made_of_the_same(drawn) && _canvas.holds(at, drawn.content);
}

// Gives the rows that stand on the screen the numbers that they have there, and the others none.
void Editor::_keep_standing_rows(std::vector<DrawnRow>& planned, int first, int end) const {
  for (int at = first; at < end; ++at) {
    DrawnRow& row = planned[static_cast<std::size_t>(at)];
    row.content = _row_stands(row, at) ? _drawn_rows[static_cast<std::size_t>(at)].content : 0;
  }
}

// Where many rows stand on the screen already, only higher or lower, they are moved there: a line that comes or goes
// costs no more than itself.
void Editor::_move_drawn_rows(std::vector<DrawnRow>& planned) {
  constexpr int FEWEST = 4;
  auto stands = [&](int row, int at) { return _row_stands(planned[static_cast<std::size_t>(row)], at); };
  auto kept = [](const DrawnRow& row) { return row.content != 0; };
  const auto first_changed = std::find_if_not(planned.begin() + _text_top(), planned.end(), kept);
  const auto last_changed = std::find_if_not(planned.rbegin(), std::make_reverse_iterator(first_changed), kept);
  const int first = static_cast<int>(first_changed - planned.begin());
  const int end = static_cast<int>(last_changed.base() - planned.begin());
  if (end - first < FEWEST) return;
  // A row from the middle tells how far; blank lines are alike everywhere.
  int probe = (first + end) / 2;
  while (probe < end && planned[static_cast<std::size_t>(probe)].entry.length == 0) ++probe;
  if (probe == end) return;
  int by = 0;
  for (int distance = 1; by == 0 && distance < end - first; ++distance) {
    if (probe - distance >= first && stands(probe, probe - distance)) by = distance;
    if (probe + distance < end && stands(probe, probe + distance)) by = -distance;
  }
  if (by == 0) return;
  int top = probe, bottom = probe + 1;  // of the rows that will stand where they belong
  while (top > first && top - by > first && stands(top - 1, top - 1 - by)) --top;
  while (bottom < end && bottom - by < end && stands(bottom, bottom - by)) ++bottom;
  if (bottom - top < FEWEST) return;
  screen::RowShift band{.top = std::min(top, top - by), .bottom = std::max(bottom, bottom - by), .by = by};
  _canvas.shift(band);
  band.move(_drawn_rows, DrawnRow{});
  _keep_standing_rows(planned, band.top, band.bottom);
}

void Editor::_draw_row(int screen_row, DrawnRow& row, RowLayers& layers) {
  if (_canvas.keep(screen_row, row.content)) return;
  switch (row.kind) {
    case DrawnRow::Kind::BLANK:
      _canvas.put(screen_row, 0, U" ");
      break;
    case DrawnRow::Kind::TEXT:
      _draw_text_row(screen_row, row, layers);
      break;
    case DrawnRow::Kind::PAGE_BREAK:
      _draw_rule_row(screen_row, U"Page Break ──");
      break;
    case DrawnRow::Kind::END:
      _draw_rule_row(screen_row, U"End ──");
      break;
  }
  row.content = ++_row_contents;
  _canvas.mark(screen_row, row.content);
}

// A rule with its label at the right end of the text width.
void Editor::_draw_rule_row(int screen_row, std::u32string_view label) {
  int width = cols() - _lmargin() - _rmargin();
  std::u32string text(static_cast<std::size_t>(std::max(width - static_cast<int>(label.size()) - 1, 0)), U'─');
  text += U' ';
  text += label;
  text.resize(std::min(text.size(), static_cast<std::size_t>(std::max(width, 0))));
  _canvas.put(screen_row, _lmargin(), text, {A_DIM, screen::PAIR_RULE});
}

// What the searches mark in the whole line; kept while rows of the same line follow.
void Editor::_collect_line_layers(int ly, RowLayers& layers) {
  if (layers.ly == ly) return;
  layers.ly = ly;
  layers.line_kgrep.clear();
  layers.line_find.clear();
  if (!_kgrep_term.empty() && !_kgrep_folds.empty())
    layers.line_kgrep = occurrences(_line(ly), _kgrep_term, _kgrep_case_insensitive);
  if (!search_term.empty() && _find_active)
    layers.line_find = occurrences(_line(ly), search_term, _find_case_insensitive);
}

// The look of the run that begins at `position`; `run_end` is shortened to its end.
screen::Style Editor::_cell_style(const RowLayers& layers, int position, int& run_end) {
  run_end = next_boundary(layers, position, run_end);
  const Span* format = covering_span(layers.format, position);
  int mask = format ? format->bits : 0;
  screen::Style style;
  if (mask & FMT_BOLD) style.attributes |= A_BOLD;
  if (mask & FMT_ITALIC) style.attributes |= A_ITALIC;
  auto mark = [&](bool inverse) {
    style.attributes |= inverse ? A_REVERSE : A_BOLD;
    if (!inverse) style.pair = screen::PAIR_HIGHLIGHT;
  };
  if (layers.selection.first <= position && position < layers.selection.second) {
    style.attributes |= A_REVERSE;
  } else if (covering(layers.kgrep, position)) {
    mark(_kgrep_highlight_inverse);
  } else if (covering(layers.find, position)) {
    mark(_find_highlight_inverse);
  } else if (const SyntaxSpan* syntax = covering_span(layers.syntax, position)) {
    if (syntax->style.kind == StyleSpec::Kind::inverse)
      style.attributes |= A_REVERSE;
    else
      style.pair = _syn_pair_for(syntax->style);
  }
  return style;
}

void Editor::_draw_text_row(int screen_row, const DrawnRow& row, RowLayers& layers) {
  const MapEntry& entry = row.entry;
  int start = entry.start;
  int end = start + entry.length;
  layers.selection = row.selection;
  std::u32string composed;
  TextView text = _row_text(entry, composed);
  clip_spans(row.format, start, end, layers.format);
  clip_spans(row.syntax, start, end, layers.syntax);
  _collect_line_layers(entry.ly, layers);
  clip(layers.line_kgrep, start, end, layers.kgrep);
  clip(layers.line_find, start, end, layers.find);

  int column = _lmargin();
  int edge = cols() - _rmargin();
  if (_is_list_continuation(entry)) {
    _canvas.put(screen_row, column, U"  ");
    column += 2;
  }
  int size = static_cast<int>(text.size());
  for (int position = 0; position < size && column < edge;) {
    int run_end = size;
    screen::Style style = _cell_style(layers, position, run_end);
    int length = std::min(run_end - position, edge - column);
    _canvas.put(screen_row, column, text.substr(static_cast<std::size_t>(position), static_cast<std::size_t>(length)),
                style);
    column += length;
    position = run_end;
  }
}

}  // namespace brenlow
