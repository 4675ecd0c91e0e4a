#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct VTerm;
struct VTermScreen;

namespace brenlow::test {

inline constexpr int DEFAULT_COLOUR = -1;

struct Cell {
  std::string text;  // UTF-8; a blank for an empty cell
  bool bold = false, italic = false, dim = false, reverse = false;
  int fg = DEFAULT_COLOUR, bg = DEFAULT_COLOUR;  // index in the palette

  friend bool operator==(const Cell&, const Cell&) = default;
};

// A terminal as a person sees it: takes a program's output and knows what every cell shows.
class TerminalScreen {
 public:
  TerminalScreen(int rows, int cols);
  ~TerminalScreen();
  TerminalScreen(const TerminalScreen&) = delete;
  TerminalScreen& operator=(const TerminalScreen&) = delete;

  void feed(std::string_view bytes);
  void resize(int rows, int cols);

  int rows() const { return _rows; }
  int cols() const { return _cols; }
  std::string row(int y) const;  // without the blanks at its end
  std::vector<std::string> all_rows() const;
  bool shows(std::string_view text) const;  // within one row
  Cell cell(int y, int x) const;
  // One letter per cell, cut behind the last one that is not ".": "b" bold, "i" italic, "B" both, "r"
  // reverse, a digit the background colour's index, "." plain.
  std::string attributes(int y) const;
  // The screen in a frame, with the cursor's place, for messages.
  std::string picture() const;

  int cursor_row() const { return _cursor_row; }
  int cursor_col() const { return _cursor_col; }
  bool cursor_visible() const { return _cursor_visible; }
  bool alternate() const { return _alternate; }
  // The last DECSCUSR parameter sent: 0 the terminal's own shape, as at the start; 1 to 6.
  int cursor_shape() const { return _cursor_shape; }
  // Colours that were redefined (OSC 4): index to "RRGGBB".
  const std::map<int, std::string>& palette() const { return _palette; }

 private:
  struct Callbacks;
  struct FreeTerminal {
    void operator()(VTerm* terminal) const;
  };

  std::string _whole_row(int y) const;
  std::string _take_sequence();

  std::unique_ptr<VTerm, FreeTerminal> _terminal;
  VTermScreen* _screen;  // owned by _terminal
  int _rows, _cols;
  int _cursor_row = 0, _cursor_col = 0;
  bool _cursor_visible = true;
  bool _alternate = false;
  int _cursor_shape = 0;
  std::map<int, std::string> _palette;
  std::string _sequence;  // the escape sequence that the output is in, held back until it is whole
};

}  // namespace brenlow::test
