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
  _canvas.put_row(0, decode_utf8(text), cols(), {0, screen::PAIR_BAR});
}

void Editor::_draw_text() {
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
    limit = edit_rows() + 1;
  }
  RowLayers layers;
  for (; row < limit; ++row, ++first) {
    if (first >= map_size) {
      if (first == map_size) _draw_rule_row(row, U"End ──");
      continue;
    }
    const MapEntry entry = map[static_cast<std::size_t>(first)];
    if (_has_separator(entry)) {
      _draw_rule_row(row, U"Page Break ──");
      if (++row >= limit) break;
    }
    _draw_text_row(row, entry, layers);
  }
}

// A rule with its label at the right end of the text width.
void Editor::_draw_rule_row(int row, std::u32string_view label) {
  int width = cols() - _lmargin() - _rmargin();
  std::u32string text(static_cast<std::size_t>(std::max(width - static_cast<int>(label.size()) - 1, 0)), U'─');
  text += U' ';
  text += label;
  text.resize(std::min(text.size(), static_cast<std::size_t>(std::max(width, 0))));
  _canvas.put(row + _text_top(), _lmargin(), text, {A_DIM, screen::PAIR_RULE});
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

// Whether the row still holds what it would be drawn from; if not, takes down what it will.
bool Editor::_row_is_drawn(int screen_row, const MapEntry& entry, std::pair<int, int> selection) {
  bool marked = _find_active || !_kgrep_term.empty() || _folded_chapters.contains(entry.ly);
  DrawnRow row{.line = _line(entry.ly),
               .format = _fmt(entry.ly),
               .syntax = _syn_rules.empty() ? SharedArray<SyntaxSpan>() : _syn_spans(entry.ly),
               .start = entry.start,
               .length = entry.length,
               .selection = selection,
               .margins = {_lmargin(), _rmargin()},
               .content = marked ? 0 : ++_row_contents};
  DrawnRow& before = _drawn_rows[screen_row];
  if (!marked && before.made_of_the_same(row) && _canvas.keep(screen_row, before.content)) return true;
  before = std::move(row);
  return false;
}

void Editor::_draw_text_row(int row, const MapEntry& entry, RowLayers& layers) {
  int start = entry.start;
  int end = start + entry.length;
  int screen_row = row + _text_top();
  layers.selection = {0, 0};
  if (std::optional<Range> range = _sel_range(); range && entry.ly >= range->sy && entry.ly <= range->ey) {
    auto [from, to] = _range_columns(*range, entry.ly);
    layers.selection = {from - start, to - start};
  }
  if (_row_is_drawn(screen_row, entry, layers.selection)) return;

  std::u32string composed;
  TextView text = _row_text(entry, composed);
  clip_spans(_fmt(entry.ly), start, end, layers.format);
  if (_syn_rules.empty())
    layers.syntax.clear();
  else
    clip_spans(_syn_spans(entry.ly), start, end, layers.syntax);
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
  _canvas.mark(screen_row, _drawn_rows[screen_row].content);
}

}  // namespace brenlow
