#include "core/editor.h"
#include "core/unicode.h"
#include "structure/matching.h"

namespace brenlow {

void Editor::do_find() {
  std::optional<std::u32string> answer = _prompt("Find: ", search_term, _find_active);
  if (!answer) {
    _show_message("Find cancelled.");
    return;
  }
  if (answer->empty()) {
    if (!_find_active) {
      _show_message("Empty search term.");
      return;
    }
    _find_active = false;
    search_term.clear();
    _invalidate_map();
    _show_message("Find cleared — highlighting removed.");
    return;
  }
  search_term = *answer;
  _find_active = true;
  _find_next(cy, cx + 1);
  _find_navigate_loop();
}

// Right and Left step through the occurrences; any other key ends the loop and is the main loop's.
void Editor::_find_navigate_loop() {
  while (!search_term.empty()) {
    draw();
    int key = _getch_key();
    if (key == KEY_RIGHT) {
      _find_next(cy, cx + 1);
    } else if (key == KEY_LEFT) {
      _find_prev(cy, cx - 1);
    } else if (key == KEY_RESIZE) {
      _redraw_behind();
    } else {
      _pending_main_ch = key;
      return;
    }
  }
}

void Editor::_found_at(int ly, int col) {
  cy = ly;
  cx = col;
  _preferred_col.reset();
  _unfold_around(ly);
  _sync_cur_fmt();
  _ensure_cursor_visible();
  _show_message("Found '" + encode_utf8(search_term) + "' at line " + std::to_string(ly + 1) + "  (← prev  → next)");
}

void Editor::_find_next(int from_line, int from_col) {
  Needle needle(search_term, _find_case_insensitive);
  int count = _line_count();
  for (int i = 0; i < count; ++i) {
    int ly = (from_line + i) % count;
    int at = needle.find(_line(ly), i == 0 ? from_col : 0);
    if (at >= 0) return _found_at(ly, at);
  }
  _show_message("'" + encode_utf8(search_term) + "' not found.");
}

void Editor::_find_prev(int from_line, int from_col) {
  Needle needle(search_term, _find_case_insensitive);
  int count = _line_count();
  for (int i = 0; i < count; ++i) {
    int ly = ((from_line - i) % count + count) % count;
    int whole = _line_length(ly);
    int at = needle.rfind(_line(ly), i == 0 ? from_col : whole);
    if (at < 0 && i == 0 && from_col >= 0) {
      // One that begins before the cursor and runs past it.
      at = needle.rfind(_line(ly), whole);
      if (at > from_col) at = -1;
    }
    if (at >= 0) return _found_at(ly, at);
  }
  _show_message("'" + encode_utf8(search_term) + "' not found.");
}

}  // namespace brenlow
