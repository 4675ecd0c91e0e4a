#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "screen/canvas.h"

struct _win_st;  // the screen library's window

namespace brenlow::screen {

// Brings a canvas on to the terminal, each frame in one write. The screen library starts and ends the screen,
// knows the terminal's capabilities and makes its sequences; its own window stays blank.
class Painter {
 public:
  // `output` is the descriptor of the terminal that the library was started on.
  explicit Painter(int output) : _output(output) {}

  // Draws what changed since the last call, and puts the cursor in its place. A terminal that takes no more
  // output is left alone: the end of its input tells.
  void show(_win_st* window, Canvas& canvas);

 private:
  bool _scroll(RowShift band);
  void _stretch(int row, int column, std::span<const Cell> cells);
  std::span<const Cell>::iterator _plain_run(std::span<const Cell>::iterator cell, std::span<const Cell>::iterator end,
                                             int room);
  void _move(int row, int column);
  void _character(const Cell& cell);
  void _set_look(std::uint64_t look);
  std::string _sequence_for(std::uint64_t look);
  void _clear_screen();
  void _write();

  int _output;
  bool _started = false;
  int _rows = 0, _cols = 0;                     // of the canvas that is being shown
  std::string _frame;                           // what goes to the terminal
  std::map<std::uint64_t, std::string> _looks;  // the sequence that sets a look, whatever was set before
  std::uint64_t _current = 0;                   // the look that is set in the terminal
  std::pair<int, int> _cursor{-1, -1};          // where the terminal's cursor was left
};

}  // namespace brenlow::screen
