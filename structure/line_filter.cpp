#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "structure/matching.h"

namespace brenlow {

IndexSet Editor::_lines_without_kgrep_term() const {
  Needle needle(_kgrep_term, _kgrep_case_insensitive);
  std::vector<int> without;
  for (int ly = 0; ly < _line_count(); ++ly)
    if (!needle.in(_line(ly))) without.push_back(ly);
  return IndexSet::from_sorted(without);
}

std::string Editor::_kgrep_quoted_term() const {
  return "'" + encode_utf8(_kgrep_term) + "'" + (_kgrep_case_insensitive ? " (case-insensitive)" : "");
}

void Editor::_clear_kgrep() {
  _kgrep_folds.clear();
  _kgrep_term.clear();
  _invalidate_map();
  _ensure_cursor_visible();
}

void Editor::do_kgrep() {
  if (_kgrep_folds.contains(cy)) {
    _kgrep_folds.erase(cy);
    _invalidate_map();
    _ensure_cursor_visible();
    _show_message("Line " + std::to_string(cy + 1) + " unfolded.  ESC to restore all.");
    return;
  }
  bool active = !_kgrep_folds.empty();
  std::optional<std::u32string> answer = _prompt("kGrep: ", _kgrep_term, active);
  if (!answer) {
    _show_message("kGrep cancelled.");
    return;
  }
  if (answer->empty()) {
    if (active) _clear_kgrep();
    _show_message(active ? "kGrep cleared — all lines restored." : "Empty search term.");
    return;
  }
  _kgrep_term = *answer;
  IndexSet hidden = _lines_without_kgrep_term();
  if (hidden.size() == _line_count()) {
    _show_message("'" + encode_utf8(_kgrep_term) + "' not found in any line" +
                  (_kgrep_case_insensitive ? " (case-insensitive)" : "") + " — kGrep not applied.");
    return;
  }
  _kgrep_folds = hidden;
  if (_kgrep_folds.contains(cy)) {
    cy = 0;
    while (_kgrep_folds.contains(cy)) ++cy;
    cx = std::min(cx, _line_length(cy));
  }
  _invalidate_map();
  _ensure_cursor_visible();
  _show_message("kGrep " + _kgrep_quoted_term() + ": " + std::to_string(_line_count() - hidden.size()) +
                " line(s) shown, " + std::to_string(hidden.size()) + " hidden.  ESC to restore all.");
}

void Editor::_kgrep_refresh() {
  if (_kgrep_term.empty()) return;
  auto report = [&](const std::string& text) {
    message += "  [" + text + "]";
    message = trimmed(std::string_view(message));
  };
  IndexSet hidden = _lines_without_kgrep_term();
  if (hidden.size() == _line_count()) {
    _clear_kgrep();
    report("kGrep cleared — no matches left");
    return;
  }
  bool changed = !(hidden == _kgrep_folds);
  _kgrep_folds = hidden;
  if (_kgrep_folds.contains(cy)) {
    int visible = cy;
    while (visible < _line_count() && _kgrep_folds.contains(visible)) ++visible;
    if (visible == _line_count())
      for (visible = cy; _kgrep_folds.contains(visible);) --visible;
    cy = visible;
    cx = std::min(cx, _line_length(cy));
  }
  if (changed) _invalidate_map();
  _ensure_cursor_visible();
  report("kGrep " + _kgrep_quoted_term() + ": " + std::to_string(_line_count() - hidden.size()) + " shown, " +
         std::to_string(hidden.size()) + " hidden");
}

}  // namespace brenlow
