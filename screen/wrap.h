#pragma once

#include <string>
#include <vector>

#include "core/text_view.h"

namespace brenlow {

// One displayed row of a line: `length` characters of the line from `start` on.
struct Chunk {
  int start;
  int length;
  friend bool operator==(const Chunk&, const Chunk&) = default;
};

// Wraps `text` at blanks to `width` (at least 1) and appends the rows, never none. The blank a row was
// broken at belongs to no row; a word without a blank is cut at the width. `offset` is added to each start.
void _wrap_line(TextView text, int width, std::vector<Chunk>& rows, int offset = 0);

// The rows of one logical line. A line "- x" is a list item: its further rows are two columns narrower,
// for the indent that the drawing adds, and its first row holds the dash.
void _chunks_for_line(TextView text, int width, std::vector<Chunk>& rows);

inline bool is_list_item(TextView text) { return text.starts_with(U"- "); }

// The one row of a folded chapter header, `width` characters.
std::u32string folded_header_row(TextView line, int width);

}  // namespace brenlow
