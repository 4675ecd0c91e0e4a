#include "screen/painter.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include "core/signals.h"
#include "screen/curses.h"
// The names of the terminal's capabilities are macros; they end with this file.
#include <term.h>

namespace brenlow::screen {

namespace {

// A run of blanks up to the right edge that is at least this long is erased instead of written.
constexpr std::ptrdiff_t ERASED_RUN = 4;

// The library hands its sequences out byte by byte.
std::string collected;
int collect(int byte) {
  collected.push_back(static_cast<char>(byte));
  return byte;
}
std::string take_collected() { return std::exchange(collected, {}); }

std::string capability(const char* sequence) {
  if (sequence) ::tputs(sequence, 1, collect);
  return take_collected();
}

bool is_plain_blank(const Cell& cell) { return (cell.bits & ~std::uint64_t{Cell::ANCHOR}) == U' '; }

}  // namespace

void Painter::show(_win_st* window, Canvas& canvas) {
  bool cleared = canvas.take_reset();
  if (!_started) {
    ::wrefresh(window);  // the library sets up the terminal, and its screen is blank
    _started = true;
  } else if (cleared) {
    _clear_screen();
  }
  if (cleared) _cursor = {-1, -1};
  _rows = canvas.rows();
  _cols = canvas.cols();
  canvas.show([this](RowShift band) { return _scroll(band); },
              [this](int row, int column, std::span<const Cell> cells) { _stretch(row, column, cells); });
  if (_frame.empty() && canvas.cursor() == _cursor) return;
  _set_look(0);
  _move(canvas.cursor().first, canvas.cursor().second);
  _cursor = canvas.cursor();
  _write();
}

void Painter::_clear_screen() {
  _set_look(0);
  _frame += capability(clear_screen);
}

// Rows that are put in or taken out within a scrolling region are blank if no look is set.
bool Painter::_scroll(RowShift band) {
  const char* change = band.by > 0 ? parm_insert_line : parm_delete_line;
  if (!change_scroll_region || !change) return false;
  _set_look(0);
  _frame += capability(::tiparm(change_scroll_region, band.top, band.bottom - 1));
  _move(band.top, 0);
  _frame += capability(::tiparm(change, std::abs(band.by)));
  _frame += capability(::tiparm(change_scroll_region, 0, _rows - 1));
  return true;
}

void Painter::_stretch(int row, int column, std::span<const Cell> cells) {
  int room = _cols - column;
  // Where the cursor cannot rest behind the last column, its cell in the last row would scroll the screen.
  if (row == _rows - 1 && auto_right_margin && !eat_newline_glitch) --room;
  auto written = cells.end();
  if (column + static_cast<int>(cells.size()) == _cols && clr_eol) {
    while (written != cells.begin() && is_plain_blank(*(written - 1))) --written;
    if (cells.end() - written < ERASED_RUN) written = cells.end();
  }
  _move(row, column);
  for (auto cell = cells.begin(); cell != written; ++cell) {
    if (auto end = _plain_run(cell, written, room); end != cell) {
      room -= static_cast<int>(end - cell);
      cell = end - 1;
      continue;
    }
    room -= cell->is(Cell::WIDE) ? 2 : 1;
    if (room < 0) {                                                         // pushed off the screen by wide characters
      if (room == -1 && cell->is(Cell::WIDE)) _set_look(0), _frame += ' ';  // half of this one would have fitted
      return;
    }
    if (cell->look() != _current) _set_look(cell->look());
    _character(*cell);
  }
  if (written == cells.end() || room <= 0) return;
  _set_look(0);
  _frame += clr_eol;
}

// Writes the ASCII characters of one look that begin at `cell`, at most `room`; returns the end.
std::span<const Cell>::iterator Painter::_plain_run(std::span<const Cell>::iterator cell,
                                                    std::span<const Cell>::iterator end, int room) {
  if (cell->look() != _current) return cell;
  constexpr std::uint64_t NOT_PLAIN = ~Cell::ANCHOR & ~std::uint64_t{0x7F};
  end = std::min(end, cell + std::max(room, 0));
  auto stop = std::find_if(cell, end, [this](const Cell& c) { return (c.bits & NOT_PLAIN) != _current; });
  std::size_t at = _frame.size();
  _frame.resize(at + static_cast<std::size_t>(stop - cell));
  for (; cell != stop; ++cell) _frame[at++] = static_cast<char>(cell->bits & 0x7F);
  return stop;
}

void Painter::_move(int row, int column) {
  // The one that nearly every terminal has needs no interpreter.
  static constexpr std::string_view USUAL = "\x1b[%i%p1%d;%p2%dH";
  if (cursor_address && cursor_address == USUAL)
    _frame.append("\x1b[").append(std::to_string(row + 1)).append(";").append(std::to_string(column + 1)).append("H");
  else
    _frame += capability(::tiparm(cursor_address, row, column));
}

void Painter::_character(const Cell& cell) {
  char32_t character = cell.character();
  if (cell.is(Cell::COMBINING)) _frame += ' ';
  if (character < 0x80) {
    _frame += static_cast<char>(character);
    return;
  }
  std::array<char, MB_LEN_MAX> bytes;
  std::mbstate_t state{};
  std::size_t count = std::wcrtomb(bytes.data(), static_cast<wchar_t>(character), &state);
  if (count == static_cast<std::size_t>(-1))
    _frame += '?';  // the locale's encoding has no such character
  else
    _frame.append(bytes.data(), count);
}

void Painter::_set_look(std::uint64_t look) {
  if (look == _current) return;
  auto [known, is_new] = _looks.try_emplace(look);
  if (is_new) known->second = _sequence_for(look);
  _frame += known->second;
  _current = look;
}

// Ends whatever is set and begins the look. The library, which keeps book of what it has set, is left with
// nothing set.
std::string Painter::_sequence_for(std::uint64_t look) {
  std::string sequence = capability(orig_pair) + capability(exit_attribute_mode);
  if (look == 0) return sequence;
  Style style = Cell::style(look);
  ::vid_puts(style.attributes, static_cast<short>(style.pair), &style.pair, collect);
  sequence += take_collected();
  int no_pair = 0;
  ::vid_puts(A_NORMAL, 0, &no_pair, collect);
  take_collected();
  return sequence;
}

void Painter::_write() {
  std::string_view rest = _frame;
  while (!rest.empty() && noted_end_signal() == 0) {  // a terminal that takes nothing must not hold up the end
    ssize_t count = ::write(_output, rest.data(), rest.size());
    if (count > 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      ::pollfd waiting{_output, POLLOUT, 0};
      ::poll(&waiting, 1, -1);
    } else if (errno != EINTR) {
      break;
    }
  }
  _frame.clear();
}

}  // namespace brenlow::screen
