#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text_view.h"

namespace brenlow::screen {

// How a cell looks: the attribute bits of the screen library and the number of a colour pair.
struct Style {
  std::uint32_t attributes = 0;
  int pair = 0;
};

// One cell of the screen as one number, so that rows are filled and compared at memory speed.
struct Cell {
  static constexpr std::uint64_t COMBINING = 1U << 24;  // a combining mark, shown on a blank of its own
  static constexpr std::uint64_t WIDE = 1U << 25;       // takes two columns of the terminal
  static constexpr std::uint64_t ANCHOR = 1U << 26;     // stands at its own column, whatever is before it

  // From the low end: 21 bits of the character shown, the flags above, at bit 32 the attributes (they use
  // none of their own low 16 bits), at bit 48 the colour pair.
  std::uint64_t bits = U' ';

  static std::uint64_t look_of(Style style) {
    return static_cast<std::uint64_t>(style.attributes >> 16) << 32 | static_cast<std::uint64_t>(style.pair) << 48;
  }
  char32_t character() const { return static_cast<char32_t>(bits & 0x1FFFFF); }
  bool is(std::uint64_t flag) const { return (bits & flag) != 0; }
  std::uint64_t look() const { return bits & ~std::uint64_t{0xFFFFFFFF}; }
  static Style style(std::uint64_t look) {
    return {static_cast<std::uint32_t>(look >> 32 & 0xFFFF) << 16, static_cast<int>(look >> 48)};
  }
  friend bool operator==(const Cell&, const Cell&) = default;
};

// A band of rows whose content moves down, or up where `by` is negative. What leaves the band is lost.
struct RowShift {
  int top, bottom;  // the first row, and the one below the last
  int by;

  // Moves the elements of a list that has one for each row; `vacated` takes the places that nothing moves to.
  template <class List>
  void move(List& list, const typename List::value_type& vacated) const {
    auto first = list.begin() + top, last = list.begin() + bottom;
    if (by > 0)
      std::fill(first, std::rotate(first, last - by, last), vacated);
    else
      std::fill(std::rotate(first, first - by, last), last, vacated);
  }
};

// The picture that is being drawn and the one that was shown last. Everything that is drawn is drawn into
// here; only what differs goes on to the terminal.
class Canvas {
 public:
  int rows() const { return _rows; }
  int cols() const { return _cols; }
  // Makes both pictures blank; the terminal's screen has to be cleared then, too.
  void reset(int rows, int cols);
  bool take_reset() { return std::exchange(_reset, false); }  // whether reset was called since the last time
  // Begins a new picture: a row that nothing is put on, and that is not kept, becomes blank.
  void erase();
  // For a row that is dear to draw: `mark` gives what was drawn on it a number, not 0. Before anything is put on it,
  // `holds` tells whether that is still there, and `keep` leaves it as it is if so.
  void mark(int row, std::uint64_t content);
  bool holds(int row, std::uint64_t content) const;
  bool keep(int row, std::uint64_t content);
  // Moves rows of the old picture, with their numbers, before anything is put on them.
  void shift(RowShift band);
  // Writes text from a cell on. Every character takes the cells of plain print: controls and characters
  // that cannot be shown become one visible cell, a combining mark stands alone. What falls off the screen is
  // dropped; nothing wraps, scrolls or fails.
  void put(int row, int column, TextView text, Style style = {});
  // A whole row of `width` cells: the text cut or padded with blanks.
  void put_row(int row, std::u32string_view text, int width, Style style);
  // Where the terminal's cursor goes; a place off the screen is ignored.
  void place_cursor(int row, int column);
  std::pair<int, int> cursor() const { return _cursor; }

  // Hands every stretch of cells that differs from what was shown to `emit(row, column, cells)`, and takes it
  // as shown. Before that, `scroll` is asked to move the rows of what was shown; false if it cannot.
  using Scroll = std::function<bool(RowShift)>;
  using Emit = std::function<void(int row, int column, std::span<const Cell>)>;
  void show(const Scroll& scroll, const Emit& emit);

 private:
  struct RowState {
    bool stale = false;         // from before the last erase
    bool touched = false;       // may differ from what was shown
    std::uint64_t content = 0;  // as marked; 0: something else
  };
  using Row = std::vector<Cell>;
  void _blank(int row);
  void _show_row(int row, const Emit& emit);

  int _rows = 0, _cols = 0;
  bool _reset = false;
  std::vector<Row> _drawn, _shown;
  std::vector<RowState> _states;  // one per row
  std::vector<RowShift> _shifts;  // of the old picture, since it was shown
  std::pair<int, int> _cursor{0, 0};
  std::pair<int, int> _written_end{-1, -1};  // the cell behind the last one that put wrote
};

std::u32string padded(std::u32string_view text, int width);  // cut or padded to exactly `width` (0 if negative)

}  // namespace brenlow::screen
