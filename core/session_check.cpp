#include <algorithm>
#include <stdexcept>

#include "core/editor.h"

namespace brenlow {

namespace {

// Documents of more lines are not held against a map and colours made afresh: the check would grow with them.
constexpr int MAP_CHECK_LINES = 2000;
constexpr int COLOUR_CHECK_LINES = 200;

void require(bool holds, const char* invariant) {
  if (!holds) throw std::logic_error(std::string("session: ") + invariant);
}

}  // namespace

bool Editor::_has_true_colours(int ly) const {
  const SyntaxLine& kept = _syn_lines[static_cast<std::size_t>(ly)];
  return !kept.computed() ||
         std::ranges::equal(kept.spans, _compute_syn_spans(_line(ly).view().str(), _syn_rules, _fmt(ly)));
}

void Editor::_check_session() {
  require(!lines.empty(), "a document has at least one line");
  require(lines.size() == fmt_lines.size(), "one span list per line");
  require(_syn_dirty || _syn_lines.size() == lines.size(), "one syntax entry per line");
  require(cy >= 0 && cy < _line_count(), "the cursor is on a line");
  require(cx >= 0 && cx <= _line_length(cy), "the cursor is within its line");
  require(!pagebreak_lines.contains(0), "no page break on the first line");
  for (int ly : pagebreak_lines) require(ly > 0 && ly < _line_count(), "a page break is on a line");
  if (_line_count() > MAP_CHECK_LINES) return;
  for (int ly = 0; ly < _line_count(); ++ly)
    for (const Span& span : _fmt(ly))
      require(
          span.start >= 0 && span.start < span.end && span.end <= _line_length(ly) && span.bits >= 1 && span.bits <= 3,
          "a span lies within its line");
  if (_word_count) {
    long counted = *_word_count;
    _word_count.reset();
    require(_count_document_words() == counted, "the word count follows the edits");
  }
  if (!_syn_dirty && _line_count() <= COLOUR_CHECK_LINES)
    for (int ly = 0; ly < _line_count(); ++ly) require(_has_true_colours(ly), "the colours kept are those of the line");
  if (_map_dirty || _map_cache_cols != cols() || _map_cache_nlines != _line_count()) return;
  auto patched = std::tuple(_screen_map, _sm_lines, _sm_line_starts, _sep_prefix);
  _map_dirty = true;
  _build_screen_map();
  require(patched == std::tuple(_screen_map, _sm_lines, _sm_line_starts, _sep_prefix),
          "the patched screen map equals one built afresh");
}

}  // namespace brenlow
