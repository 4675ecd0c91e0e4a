#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "core/document.h"
#include "core/index_set.h"

namespace brenlow {

// Chapters are worked out from the text: a line whose first character is "#" is a header, the number of its
// leading "#" is its level. Line arguments lie within `lines`.

// The lines `first` to `last`, both included; never empty.
struct LineRange {
  int first;
  int last;
  friend bool operator==(const LineRange&, const LineRange&) = default;
};

bool is_header(TextView text);
// 0 for a line that is no header.
int header_level(TextView text);
// The text behind the leading "#" without white space around it.
TextView chapter_title(TextView text);

// The header that owns the line: the line itself or the nearest header above.
std::optional<int> find_chapter_header(const LineList& lines, int ly);
// The lines behind the header `h` up to the next header.
std::optional<LineRange> chapter_body_range(const LineList& lines, int h);
// The lines behind the header `h` up to the next header of its level or above.
std::optional<LineRange> chapter_subtree_range(const LineList& lines, int h);
// The nearest header of the level of `h` below it for a positive direction, else above it. Headers of other
// levels are passed over.
std::optional<int> find_sibling_chapter(const LineList& lines, int h, int direction);
// All headers, ascending.
std::vector<int> chapter_headers(const LineList& lines);

// For every line whether a folded chapter hides it: the body of each member of `folded`, or with
// `hierarchical` its whole sub-tree. One walk over the lines.
std::vector<bool> hidden_by_folds(const LineList& lines, const IndexSet& folded, bool hierarchical);

// The last line that moves with the header `h`: its sub-tree without the blank lines at the end.
int chapter_swap_end(const LineList& lines, int h);

// Two chapters that change places, `a` to `a_end` above `b` to `b_end`, both ends included. What lies between
// them stays between them.
struct ChapterSwap {
  int a;
  int a_end;
  int b;
  int b_end;
};
// Where the line `i` stands after the swap.
int swapped_line(const ChapterSwap& swap, int i);

}  // namespace brenlow
