#include "screen/wrap.h"

#include <algorithm>
#include <string>

#include "core/unicode.h"

namespace brenlow {

namespace {

template <class Character>
void wrap(std::span<Character> text, int width, std::vector<Chunk>& rows, int offset) {
  int size = static_cast<int>(text.size());
  int at = 0;
  while (size - at > width) {
    int blank = width;
    while (blank > 0 && text[static_cast<std::size_t>(at + blank)] != U' ') --blank;
    if (blank == 0) {
      rows.push_back({offset + at, width});
      at += width;
    } else {
      rows.push_back({offset + at, blank});
      at += blank + 1;
    }
  }
  rows.push_back({offset + at, size - at});
}

}  // namespace

void _wrap_line(TextView text, int width, std::vector<Chunk>& rows, int offset) {
  text.visit([&](auto characters) { wrap(characters, width, rows, offset); });
}

void _chunks_for_line(TextView text, int width, std::vector<Chunk>& rows) {
  if (!is_list_item(text) || text.size() < 3) {
    _wrap_line(text, width, rows);
    return;
  }
  std::size_t first = rows.size();
  _wrap_line(text.substr(2), std::max(width - 2, 1), rows, 2);
  rows[first].start = 0;
  rows[first].length += 2;
}

std::u32string folded_header_row(TextView line, int width) {
  constexpr std::u32string_view marker = U" ── Folded (ESC # to unfold)";
  std::size_t total = static_cast<std::size_t>(width);
  std::u32string row = trimmed_right(line).substr(0, total).str();
  row.resize(total > marker.size() ? total - marker.size() : 0, U' ');
  row += marker;
  row.resize(total);
  return row;
}

}  // namespace brenlow
