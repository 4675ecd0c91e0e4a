#include "tests/support/terminal_screen.h"

#include <vterm.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "core/unicode.h"

namespace brenlow::test {

namespace {

// Whether an escape sequence has come to its end. The ESC of a string terminator ends an OSC before it begins its own.
bool is_whole(std::string_view sequence) {
  if (sequence[1] == ']') return sequence.back() == '\a';
  if (sequence[1] == '[') return sequence.size() > 2 && sequence.back() >= '@' && sequence.back() <= '~';
  return true;
}

}  // namespace

// The terminal library reports through C callbacks; `user` is the TerminalScreen.
struct TerminalScreen::Callbacks {
  static int move_cursor(VTermPos to, VTermPos, int, void* user) {
    auto& screen = *static_cast<TerminalScreen*>(user);
    screen._cursor_row = to.row;
    screen._cursor_col = to.col;
    return 1;
  }
  static int set_property(VTermProp property, VTermValue* value, void* user) {
    auto& screen = *static_cast<TerminalScreen*>(user);
    if (property == VTERM_PROP_CURSORVISIBLE) screen._cursor_visible = value->boolean != 0;
    if (property == VTERM_PROP_ALTSCREEN) screen._alternate = value->boolean != 0;
    return 1;
  }
  static const VTermScreenCallbacks& table() {
    static VTermScreenCallbacks callbacks{};
    callbacks.movecursor = move_cursor;
    callbacks.settermprop = set_property;
    return callbacks;
  }
};

void TerminalScreen::FreeTerminal::operator()(VTerm* terminal) const { ::vterm_free(terminal); }

TerminalScreen::TerminalScreen(int rows, int cols) : _terminal(::vterm_new(rows, cols)), _rows(rows), _cols(cols) {
  ::vterm_set_utf8(_terminal.get(), 1);
  _screen = ::vterm_obtain_screen(_terminal.get());
  ::vterm_screen_set_callbacks(_screen, &Callbacks::table(), this);
  ::vterm_screen_enable_altscreen(_screen, 1);
  ::vterm_screen_reset(_screen, 1);
}

TerminalScreen::~TerminalScreen() = default;

void TerminalScreen::feed(std::string_view bytes) {
  std::string passed;
  for (char byte : bytes) {
    if (byte == '\x1b') {
      passed += _take_sequence();
      _sequence = byte;
    } else if (_sequence.empty()) {
      passed += byte;
    } else {
      _sequence += byte;
      if (is_whole(_sequence)) passed += _take_sequence();
    }
  }
  ::vterm_input_write(_terminal.get(), passed.data(), passed.size());
}

void TerminalScreen::resize(int rows, int cols) {
  ::vterm_set_size(_terminal.get(), rows, cols);
  _rows = rows;
  _cols = cols;
}

std::string TerminalScreen::_whole_row(int y) const {
  std::string text;
  for (int x = 0; x < _cols; ++x) text += cell(y, x).text;
  return text;
}

std::string TerminalScreen::row(int y) const {
  std::string text = _whole_row(y);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::vector<std::string> TerminalScreen::all_rows() const {
  std::vector<std::string> texts;
  for (int y = 0; y < _rows; ++y) texts.push_back(row(y));
  return texts;
}

bool TerminalScreen::shows(std::string_view text) const {
  for (int y = 0; y < _rows; ++y)
    if (_whole_row(y).find(text) != std::string::npos) return true;
  return false;
}

Cell TerminalScreen::cell(int y, int x) const {
  VTermScreenCell found{};
  Cell cell;
  if (!::vterm_screen_get_cell(_screen, VTermPos{y, x}, &found)) return cell;
  for (uint32_t character : found.chars) {
    // The cell behind a character of double width holds -1.
    if (character == 0 || character == static_cast<uint32_t>(-1)) break;
    append_utf8(cell.text, static_cast<char32_t>(character));
  }
  if (cell.text.empty() && found.chars[0] == 0) cell.text = " ";
  cell.bold = found.attrs.bold;
  cell.italic = found.attrs.italic;
  cell.reverse = found.attrs.reverse;
  cell.dim = found.attrs.blink;
  auto index = [](const VTermColor& colour, bool standard) {
    return standard || !VTERM_COLOR_IS_INDEXED(&colour) ? DEFAULT_COLOUR : int{colour.indexed.idx};
  };
  cell.fg = index(found.fg, VTERM_COLOR_IS_DEFAULT_FG(&found.fg));
  cell.bg = index(found.bg, VTERM_COLOR_IS_DEFAULT_BG(&found.bg));
  return cell;
}

std::string TerminalScreen::attributes(int y) const {
  std::string letters;
  for (int x = 0; x < _cols; ++x) {
    Cell shown = cell(y, x);
    char letter = '.';
    if (shown.bg >= 0) letter = static_cast<char>('0' + shown.bg % 10);
    if (shown.bold || shown.italic) letter = shown.bold && shown.italic ? 'B' : shown.bold ? 'b' : 'i';
    if (shown.reverse) letter = 'r';
    letters += letter;
  }
  letters.erase(letters.find_last_not_of('.') + 1);
  return letters;
}

std::string TerminalScreen::picture() const {
  std::string edge = "+" + std::string(static_cast<std::size_t>(_cols), '-') + "+\n";
  std::string picture = edge;
  for (int y = 0; y < _rows; ++y) picture += "|" + row(y) + "\n";
  return picture + edge + "cursor at row " + std::to_string(_cursor_row) + ", column " + std::to_string(_cursor_col) +
         (_cursor_visible ? "" : ", hidden") + (_alternate ? ", alternate screen\n" : "\n");
}

// Notes what the terminal library does not tell, or does not know: the cursor's own shape (DECSCUSR 0) from shape 1,
// palette entries (OSC 4), and dim characters (SGR 2), for which blinking ones (SGR 5) stand in.
std::string TerminalScreen::_take_sequence() {
  std::string sequence = std::exchange(_sequence, "");
  if (sequence.ends_with(" q")) _cursor_shape = std::atoi(sequence.c_str() + 2);
  int index = 0;
  std::array<char, 3> red{}, green{}, blue{};
  if (std::sscanf(sequence.c_str(), "\x1b]4;%d;rgb:%2[^/]/%2[^/]/%2[^/\a]", &index, red.data(), green.data(),
                  blue.data()) == 4)
    _palette[index] = std::string(red.data()) + green.data() + blue.data();
  for (std::string_view dim : {"\x1b[2m", "\x1b[0;2m"})
    if (sequence == dim) sequence[sequence.size() - 2] = '5';
  return sequence;
}

}  // namespace brenlow::test
