#include <algorithm>
#include <limits>

#include "core/editor.h"
#include "core/unicode.h"
#include "structure/chapters.h"

namespace brenlow {

namespace {

// An edit of the line itself, such as a paste in front of the "#", may have left a fold on plain text.
IndexSet headers_among(const LineList& lines, const IndexSet& folded) {
  std::vector<int> headers;
  for (int ly : folded)
    if (is_header(lines[static_cast<std::size_t>(ly)])) headers.push_back(ly);
  return IndexSet::from_sorted(headers);
}

}  // namespace

bool Editor::_cursor_on_folded_chapter() const { return _folded_chapters.contains(cy) || _kgrep_folds.contains(cy); }

std::optional<int> Editor::_find_chapter_header(int ly) const { return find_chapter_header(lines, ly); }

std::string Editor::_chapter_title(int ly) const { return encode_utf8(chapter_title(_line(ly))); }

void Editor::_reset_folds() {
  _folded_chapters.clear();
  _kgrep_folds.clear();
  _kgrep_term.clear();
  _find_active = false;
}

void Editor::_shift_folded_chapters(int start, int delta) {
  if (delta < 0) _folded_chapters.erase_range(start, start - delta - 1);
  _folded_chapters.shift(start, delta);
}

std::vector<int> Editor::_headers_in_subtree(int header) const {
  std::vector<int> headers;
  if (std::optional<LineRange> range = chapter_subtree_range(lines, header))
    for (int ly = range->first; ly <= range->last; ++ly)
      if (is_header(_line(ly))) headers.push_back(ly);
  return headers;
}

void Editor::do_fold_chapter() {
  std::optional<int> header = _find_chapter_header(cy);
  if (!header) {
    _show_message("Not inside a chapter (chapters start with '#').");
    return;
  }
  if (_folded_chapters.contains(*header)) {
    std::optional<LineRange> below = chapter_subtree_range(lines, *header);
    _folded_chapters.erase_range(*header, below && !_fold_hierarchical ? below->last : *header);
    _show_message("Chapter unfolded: " + _chapter_title(*header));
  } else {
    _folded_chapters.insert(*header);
    _folded_chapters.merge(IndexSet::from_sorted(_headers_in_subtree(*header)));
    _show_message("Chapter folded: " + _chapter_title(*header));
    _go_to_header(*header);
  }
  _invalidate_map();
  _ensure_cursor_visible();
}

// The cursor goes onto the line of a header, at its column as far as that line reaches.
void Editor::_go_to_header(int header) {
  cy = header;
  cx = std::min(cx, _line_length(cy));
}

void Editor::do_fold_all_chapters() {
  if (!_kgrep_folds.empty()) {
    _clear_kgrep();
    _show_message("kGrep folds cleared — all lines restored.");
    return;
  }
  std::vector<int> headers = chapter_headers(lines);
  if (headers.empty()) {
    _show_message("No chapters found (chapters start with '#').");
    return;
  }
  std::string count = std::to_string(headers.size());
  if (std::any_of(headers.begin(), headers.end(), [&](int ly) { return !_folded_chapters.contains(ly); })) {
    _folded_chapters.merge(IndexSet::from_sorted(headers));
    if (!_folded_chapters.contains(cy))
      if (std::optional<int> header = _find_chapter_header(cy)) _go_to_header(*header);
    _show_message("All " + count + " chapters folded.");
  } else {
    _folded_chapters.clear();
    _show_message("All " + count + " chapters unfolded.");
  }
  _invalidate_map();
  _keep_cursor_seen();
  _ensure_cursor_visible();
}

// Whether a folded chapter, and not the line filter, hides the line.
bool Editor::_hidden_by_fold(int ly) {
  if (_folded_chapters.empty() || _kgrep_folds.contains(ly)) return false;
  _build_screen_map();
  return _sm_lines[static_cast<std::size_t>(ly)] == 0;
}

void Editor::_keep_cursor_seen() {
  if (IndexSet headers = headers_among(lines, _folded_chapters); headers.size() != _folded_chapters.size()) {
    _folded_chapters = headers;
    _invalidate_map();
  }
  if (!_hidden_by_fold(cy)) return;
  auto shown = [&](int ly) { return _sm_lines[static_cast<std::size_t>(ly)] != 0; };
  int seen = cy;
  while (seen > 0 && !shown(seen)) --seen;
  // The line filter may hide the header too, and all above it.
  if (!shown(seen))
    for (seen = cy; seen + 1 < _line_count() && !shown(seen);) ++seen;
  _go_to_header(shown(seen) ? seen : _find_chapter_header(cy).value_or(0));
}

// Opens every folded chapter that hides the line: those that own it, from the nearest header upward.
void Editor::_unfold_around(int ly) {
  int folded = _folded_chapters.size();
  int level = is_header(_line(ly)) ? header_level(_line(ly)) : std::numeric_limits<int>::max();
  if (level < std::numeric_limits<int>::max() && !_fold_hierarchical) return;  // every header is shown
  for (int above = ly - 1; folded > 0 && above >= 0 && level > 1; --above) {
    if (!is_header(_line(above)) || header_level(_line(above)) >= level) continue;
    level = header_level(_line(above));
    _folded_chapters.erase(above);
    if (!_fold_hierarchical) break;  // a shallower folded chapter hides its own body only
  }
  if (_folded_chapters.size() != folded) _invalidate_map();
}

}  // namespace brenlow
