#include <algorithm>
#include <cmath>

#include "core/editor.h"
#include "screen/curses.h"

namespace brenlow {

namespace {

// Half a cell rounds to the even neighbour (the default rounding mode).
int share(int whole, int percent) { return static_cast<int>(std::nearbyint(whole * percent / 100.0)); }

}  // namespace

int Editor::rows() const { return ::getmaxy(stdscr); }

int Editor::cols() const { return ::getmaxx(stdscr); }

int Editor::_lmargin() const { return MARGIN + share(cols(), _margin_left_pct); }

int Editor::_rmargin() const { return MARGIN + share(cols(), _margin_right_pct); }

int Editor::_tmargin() const { return share(rows(), _margin_top_pct); }

int Editor::_bmargin() const { return share(rows(), _margin_bottom_pct); }

int Editor::edit_rows() const {
  int bars = (_title_bar_shown() ? 1 : 0) + (_status_bar_shown() ? 1 : 0);
  return std::max(rows() - bars - _tmargin() - _bmargin(), 1);
}

int Editor::_wrap_width() const { return std::max(std::max(cols(), 1) - _lmargin() - _rmargin(), 1); }

int Editor::_text_top() const { return (_title_bar_shown() ? 1 : 0) + _tmargin(); }

}  // namespace brenlow
