#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/terminal_screen.h"

namespace brenlow::test {

// What a terminal shows at one moment, to be touched up and drawn.
struct Frame {
  explicit Frame(const TerminalScreen& screen);

  std::string row(int y) const;
  // Writes over cells from column `x` on, which keep their colours. Past the right edge nothing is written.
  void put(int y, int x, std::string_view text);

  std::vector<std::vector<Cell>> cells;
  int cursor_row, cursor_col;
  bool cursor_visible;
  std::map<int, std::string> palette;  // index to "RRGGBB", redefined colours only
};

// The frame as an SVG 1.1 picture on a dark ground, in whatever monospaced font the reader has: every stretch of text
// is given its width. `title` is for those who cannot see it.
std::string svg_picture(const Frame& frame, std::string_view title);

}  // namespace brenlow::test
