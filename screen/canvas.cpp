#include "screen/canvas.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>

#include "core/unicode.h"

namespace brenlow::screen {

namespace {

constexpr char32_t TAB_SIGN = U'→';
constexpr char32_t FORMAT_SIGN = U'·';
constexpr char32_t UNPRINTABLE_SIGN = U'\uFFFD';

// What stands for `character` in its cell.
std::uint64_t shown_as(char32_t character) {
  if (character >= 0x20 && character < 0x7F) return character;
  if (character == U'\t') return TAB_SIGN;
  if (is_format_character(character)) return FORMAT_SIGN;
  if (character == U'─') return character;
  int width = ::wcwidth(static_cast<wchar_t>(character));
  if (character < 0xA0 || width < 0) return UNPRINTABLE_SIGN;
  return character | (width == 0 ? Cell::COMBINING : width > 1 ? Cell::WIDE : std::uint64_t{0});
}

}  // namespace

void Canvas::reset(int rows, int cols) {
  _rows = std::max(rows, 0);
  _cols = std::max(cols, 0);
  _drawn.assign(static_cast<std::size_t>(_rows), Row(static_cast<std::size_t>(_cols)));
  _shown = _drawn;
  _states.assign(static_cast<std::size_t>(_rows), {});
  _shifts.clear();
  _reset = true;
  _cursor = {0, 0};
  _written_end = {-1, -1};
}

void Canvas::erase() {
  for (RowState& state : _states) state.stale = true;
  _written_end = {-1, -1};
}

void Canvas::_blank(int row) {
  Row& cells = _drawn[static_cast<std::size_t>(row)];
  std::fill(cells.begin(), cells.end(), Cell{});
  _states[static_cast<std::size_t>(row)] = {.touched = true};
}

void Canvas::mark(int row, std::uint64_t content) {
  if (row >= 0 && row < _rows) _states[static_cast<std::size_t>(row)].content = content;
}

bool Canvas::holds(int row, std::uint64_t content) const {
  if (row < 0 || row >= _rows || content == 0) return false;
  const RowState& state = _states[static_cast<std::size_t>(row)];
  return state.stale && state.content == content;
}

bool Canvas::keep(int row, std::uint64_t content) {
  if (!holds(row, content)) return false;
  _states[static_cast<std::size_t>(row)].stale = false;
  return true;
}

void Canvas::shift(RowShift band) {
  band.move(_drawn, Row(static_cast<std::size_t>(_cols)));
  band.move(_states, {.stale = true, .touched = true});
  _shifts.push_back(band);
}

void Canvas::put(int row, int column, TextView text, Style style) {
  if (text.empty() || row < 0 || column < 0 || row >= _rows || column >= _cols) return;
  text = text.substr(0, static_cast<std::size_t>(_cols - column));
  RowState& state = _states[static_cast<std::size_t>(row)];
  if (state.stale) _blank(row);
  state.touched = true;
  state.content = 0;
  Cell* cell = &_drawn[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
  std::uint64_t look = Cell::look_of(style);
  text.visit([&](auto characters) {
    // Plain text, which is most of it, in loops that the compiler can run on several cells at once.
    bool plain = true;
    for (auto character : characters) {
      auto number = raw(character);
      plain &= (number >= 0x20) & (number < 0x7F);
    }
    if (plain)
      for (std::size_t i = 0; i < characters.size(); ++i) cell[i].bits = look | raw(characters[i]);
    else
      for (std::size_t i = 0; i < characters.size(); ++i) cell[i].bits = look | shown_as(characters[i]);
  });
  if (_written_end != std::pair(row, column)) cell->bits |= Cell::ANCHOR;
  _written_end = {row, column + static_cast<int>(text.size())};
}

void Canvas::put_row(int row, std::u32string_view text, int width, Style style) {
  put(row, 0, padded(text, width), style);
}

void Canvas::place_cursor(int row, int column) {
  if (row >= 0 && column >= 0 && row < _rows && column < _cols) _cursor = {row, column};
}

void Canvas::show(const Scroll& scroll, const Emit& emit) {
  for (RowShift band : std::exchange(_shifts, {})) {
    if (scroll(band))
      band.move(_shown, Row(static_cast<std::size_t>(_cols)));
    else
      for (int row = band.top; row < band.bottom; ++row) _states[static_cast<std::size_t>(row)].touched = true;
  }
  for (int row = 0; row < _rows; ++row) {
    RowState& state = _states[static_cast<std::size_t>(row)];
    if (state.stale) _blank(row);
    if (std::exchange(state.touched, false)) _show_row(row, emit);
  }
}

void Canvas::_show_row(int row, const Emit& emit) {
  std::span<const Cell> drawn = _drawn[static_cast<std::size_t>(row)];
  std::span<Cell> shown = _shown[static_cast<std::size_t>(row)];
  if (std::memcmp(drawn.data(), shown.data(), drawn.size_bytes()) == 0) return;
  auto first = std::mismatch(drawn.begin(), drawn.end(), shown.begin()).first;
  auto wide = [](const Cell& cell) { return cell.is(Cell::WIDE); };
  if (std::none_of(drawn.begin(), drawn.end(), wide) && std::none_of(shown.begin(), shown.end(), wide)) {
    auto last = std::mismatch(drawn.rbegin(), drawn.rend(), shown.rbegin()).first.base();
    emit(row, static_cast<int>(first - drawn.begin()), {first, last});
  } else {
    // A wide character pushes what follows it to the right, as far as the next anchor: from the first column
    // on, so that a stretch covers what was pushed over it before.
    for (auto at = drawn.begin(); at != drawn.end();) {
      auto next = std::find_if(at + 1, drawn.end(), [](const Cell& cell) { return cell.is(Cell::ANCHOR); });
      emit(row, static_cast<int>(at - drawn.begin()), {at, next});
      at = next;
    }
  }
  std::copy(drawn.begin(), drawn.end(), shown.begin());
}

std::u32string padded(std::u32string_view text, int width) {
  std::u32string row(text);
  row.resize(width > 0 ? static_cast<std::size_t>(width) : 0, U' ');
  return row;
}

}  // namespace brenlow::screen
