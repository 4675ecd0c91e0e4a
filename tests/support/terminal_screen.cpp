#include "tests/support/terminal_screen.h"

#include <vterm.h>

#include <algorithm>

#include "core/unicode.h"

namespace brenlow::test {

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
  ::vterm_input_write(_terminal.get(), bytes.data(), bytes.size());
  _note_cursor_shape(bytes);
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

// DECSCUSR, CSI Ps SP q: the terminal library does not tell 0 (its own shape) from 1.
void TerminalScreen::_note_cursor_shape(std::string_view bytes) {
  for (char byte : bytes) {
    if (byte == '\x1b') _sequence.clear();
    if (byte != '\x1b' && _sequence.empty()) continue;
    _sequence += byte;
    bool is_csi = _sequence.size() < 2 || _sequence[1] == '[';
    bool is_final = _sequence.size() > 2 && byte >= '@' && byte <= '~';
    if (is_csi && !is_final) continue;
    if (is_csi && _sequence.ends_with(" q")) _cursor_shape = std::atoi(_sequence.c_str() + 2);
    _sequence.clear();
  }
}

}  // namespace brenlow::test
