// The translation between logical lines and displayed rows. `_screen_map` is one flat array of rows, so the
// cursor's row is a binary search and a page of text a slice. `_sm_line_starts` leads from a line to its
// rows, `_sep_prefix` counts the page-break rows, which are no entries of the map, before each entry; as long as
// the document has none, it is a single 0.
//
// A change of a few lines re-wraps those lines and splices the arrays; the text of no other line is looked
// at. Folds, the line filter when it hides other lines, margins and whole-document commands mark the map dirty
// instead, and it is built anew at the next use. A change of the width is noticed by `_map_cache_cols`.

#include <algorithm>

#include "core/editor.h"
#include "screen/wrap.h"
#include "structure/chapters.h"

namespace brenlow {

namespace {

// The rows of one line as map entries behind those of the lines before.
void append_rows(std::vector<MapEntry>& rows, int ly, TextView text, int width, std::vector<Chunk>& scratch) {
  scratch.clear();
  _chunks_for_line(text, width, scratch);
  for (const Chunk& chunk : scratch) rows.push_back({ly, chunk.start, chunk.length});
}

}  // namespace

const ScreenMap& Editor::_build_screen_map() {
  int columns = std::max(cols(), 1);
  if (!_map_dirty && _map_cache_cols == columns && _map_cache_nlines == _line_count() && !_screen_map.empty())
    return _screen_map;

  int width = _wrap_width();
  std::vector<bool> hidden;
  if (!_folded_chapters.empty()) hidden = hidden_by_folds(lines, _folded_chapters, _fold_hierarchical);
  const int* filtered = _kgrep_folds.begin();

  std::vector<MapEntry> rows;
  std::vector<int> counts;
  std::vector<int> starts;
  rows.reserve(std::max(lines.size(), _screen_map.size()));
  counts.reserve(lines.size());
  starts.reserve(lines.size());
  std::vector<Chunk> scratch;
  for (int ly = 0; ly < _line_count(); ++ly) {
    int first = static_cast<int>(rows.size());
    starts.push_back(first);
    while (filtered != _kgrep_folds.end() && *filtered < ly) ++filtered;
    bool shown = (hidden.empty() || !hidden[static_cast<std::size_t>(ly)]) &&
                 (filtered == _kgrep_folds.end() || *filtered != ly);
    if (shown && _folded_chapters.contains(ly))
      rows.push_back({ly, 0, width});
    else if (shown)
      append_rows(rows, ly, _line(ly), width, scratch);
    counts.push_back(static_cast<int>(rows.size()) - first);
  }
  _screen_map = std::move(rows);
  _sm_lines = std::move(counts);
  _sm_line_starts = std::move(starts);
  _map_cache_cols = columns;
  _map_cache_nlines = _line_count();
  _map_dirty = false;
  _rebuild_sep_prefix();
  return _screen_map;
}

bool Editor::_has_separator(const MapEntry& entry) const {
  return entry.start == 0 && pagebreak_lines.contains(entry.ly) && !_folded_chapters.contains(entry.ly);
}

void Editor::_rebuild_sep_prefix() {
  std::vector<int> counts(pagebreak_lines.empty() ? 1 : _screen_map.size() + 1, 0);
  for (std::size_t i = 0; i + 1 < counts.size(); ++i)
    counts[i + 1] = counts[i] + (_has_separator(_screen_map[i]) ? 1 : 0);
  _sep_prefix = std::move(counts);
}

void Editor::_update_map_lines(int lo, int hi_old, int new_count) {
  int growth = new_count - (hi_old - lo);
  bool patchable = !_map_dirty && _map_cache_cols == std::max(cols(), 1) && !_sm_lines.empty() &&
                   _sm_line_starts.size() == _sm_lines.size() &&
                   static_cast<int>(_sm_lines.size()) + growth == _line_count() && _folded_chapters.empty() &&
                   (_kgrep_folds.empty() || growth == 0);
  if (!patchable) {
    _map_dirty = true;
    return;
  }
  auto first_row = [&](int ly) {
    return ly < static_cast<int>(_sm_line_starts.size()) ? _sm_line_starts[static_cast<std::size_t>(ly)]
                                                         : static_cast<int>(_screen_map.size());
  };
  int first = first_row(lo);
  int end = first_row(hi_old);

  std::vector<MapEntry> entries;
  std::vector<int> counts;
  std::vector<int> starts;
  std::vector<Chunk> scratch;
  for (int ly = lo; ly < lo + new_count; ++ly) {
    int before = static_cast<int>(entries.size());
    starts.push_back(first + before);
    if (!_kgrep_folds.contains(ly)) append_rows(entries, ly, _line(ly), _wrap_width(), scratch);
    counts.push_back(static_cast<int>(entries.size()) - before);
  }
  int rows_now = static_cast<int>(entries.size());
  auto at = [](int index) { return static_cast<std::size_t>(index); };
  _screen_map.splice(at(first), at(end - first), std::move(entries));
  _screen_map.shift(at(first + rows_now), growth);
  _sm_lines.splice(at(lo), at(hi_old - lo), std::move(counts));
  _sm_line_starts.splice(at(lo), at(hi_old - lo), std::move(starts));
  _sm_line_starts.shift(at(lo + new_count), rows_now - (end - first));
  _splice_sep_prefix(first, end - first, rows_now);
  _map_cache_nlines = _line_count();
}

void Editor::_splice_sep_prefix(int first, int old_rows, int new_rows) {
  if (_sep_prefix.size() == 1 || pagebreak_lines.empty()) return _rebuild_sep_prefix();
  auto at = [](int index) { return static_cast<std::size_t>(index); };
  std::vector<int> counts{_sep_prefix[at(first)]};
  for (int i = first; i < first + new_rows; ++i)
    counts.push_back(counts.back() + (_has_separator(_screen_map[at(i)]) ? 1 : 0));
  int growth = counts.back() - _sep_prefix[at(first + old_rows)];
  _sep_prefix.splice(at(first), at(old_rows + 1), std::move(counts));
  _sep_prefix.shift(at(first + new_rows + 1), growth);
}

void Editor::_invalidate_map() {
  _map_dirty = true;
  _syn_dirty = true;
}

int Editor::_logical_to_screen_row(int ly, int column, const ScreenMap& screen_map) const {
  auto before_line = [](const MapEntry& entry, int line) { return entry.ly < line; };
  auto first = std::lower_bound(screen_map.begin(), screen_map.end(), ly, before_line);
  if (first == screen_map.end() || (*first).ly != ly)
    return std::max(static_cast<int>(first - screen_map.begin()) - 1, 0);
  auto end = std::lower_bound(first, screen_map.end(), ly + 1, before_line);
  auto behind = std::upper_bound(first, end, column, [](int at, const MapEntry& entry) { return at < entry.start; });
  return static_cast<int>(std::max(first, behind - 1) - screen_map.begin());
}

int Editor::_count_separators(const ScreenMap& screen_map, int first, int end) const {
  int high = std::min(end, static_cast<int>(screen_map.size()));
  int low = std::max(first, 0);
  if (low >= high || _sep_prefix.size() == 1) return 0;
  return _sep_prefix[static_cast<std::size_t>(high)] - _sep_prefix[static_cast<std::size_t>(low)];
}

// The text of a row; that of a folded header is put together in `composed`.
TextView Editor::_row_text(const MapEntry& entry, std::u32string& composed) const {
  if (_folded_chapters.contains(entry.ly)) {
    composed = folded_header_row(_line(entry.ly), entry.length);
    return composed;
  }
  return _line(entry.ly).view().substr(static_cast<std::size_t>(entry.start), static_cast<std::size_t>(entry.length));
}

bool Editor::_is_list_continuation(const MapEntry& entry) const {
  return entry.start > 0 && entry.ly < _line_count() && is_list_item(_line(entry.ly));
}

}  // namespace brenlow
