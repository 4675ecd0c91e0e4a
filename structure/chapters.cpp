#include "structure/chapters.h"

#include <algorithm>

#include "core/unicode.h"

namespace brenlow {

namespace {

int count_of(const LineList& lines) { return static_cast<int>(lines.size()); }

const Text& line_at(const LineList& lines, int ly) { return lines[static_cast<std::size_t>(ly)]; }

// The lines behind `h` up to the first header that `ends` accepts.
template <class Ends>
std::optional<LineRange> range_behind(const LineList& lines, int h, Ends&& ends) {
  int ly = h + 1;
  while (ly < count_of(lines) && !(is_header(line_at(lines, ly)) && ends(line_at(lines, ly)))) ++ly;
  if (ly == h + 1) return std::nullopt;
  return LineRange{h + 1, ly - 1};
}

}  // namespace

bool is_header(TextView text) { return !text.empty() && text.front() == U'#'; }

int header_level(TextView text) { return static_cast<int>(std::min(text.find_first_not_of(U'#'), text.size())); }

TextView chapter_title(TextView text) { return trimmed(text.substr(static_cast<std::size_t>(header_level(text)))); }

std::optional<int> find_chapter_header(const LineList& lines, int ly) {
  for (; ly >= 0; --ly)
    if (is_header(line_at(lines, ly))) return ly;
  return std::nullopt;
}

std::optional<LineRange> chapter_body_range(const LineList& lines, int h) {
  return range_behind(lines, h, [](const Text&) { return true; });
}

std::optional<LineRange> chapter_subtree_range(const LineList& lines, int h) {
  int level = header_level(line_at(lines, h));
  return range_behind(lines, h, [&](const Text& line) { return header_level(line) <= level; });
}

std::optional<int> find_sibling_chapter(const LineList& lines, int h, int direction) {
  int level = header_level(line_at(lines, h));
  int step = direction > 0 ? 1 : -1;
  for (int ly = h + step; ly >= 0 && ly < count_of(lines); ly += step)
    if (is_header(line_at(lines, ly)) && header_level(line_at(lines, ly)) == level) return ly;
  return std::nullopt;
}

std::vector<int> chapter_headers(const LineList& lines) {
  std::vector<int> headers;
  for (int ly = 0; ly < count_of(lines); ++ly)
    if (is_header(line_at(lines, ly))) headers.push_back(ly);
  return headers;
}

std::vector<bool> hidden_by_folds(const LineList& lines, const IndexSet& folded, bool hierarchical) {
  std::vector<bool> hidden(lines.size(), false);
  // Of the folded chapters around a line the shallowest reaches furthest, so its level is all to remember.
  std::optional<int> level;
  const int* next = std::lower_bound(folded.begin(), folded.end(), 0);
  for (int ly = 0; ly < count_of(lines); ++ly) {
    const Text& line = line_at(lines, ly);
    if (level && is_header(line) && (!hierarchical || header_level(line) <= *level)) level.reset();
    hidden[static_cast<std::size_t>(ly)] = level.has_value();
    if (next == folded.end() || *next != ly) continue;
    ++next;
    level = std::min(level.value_or(header_level(line)), header_level(line));
  }
  return hidden;
}

int chapter_swap_end(const LineList& lines, int h) {
  std::optional<LineRange> subtree = chapter_subtree_range(lines, h);
  int last = subtree ? subtree->last : h;
  while (last > h && trimmed(line_at(lines, last).view()).empty()) --last;
  return last;
}

int swapped_line(const ChapterSwap& swap, int i) {
  int mid_start = swap.a_end + 1;
  int mid_len = swap.b - mid_start;
  int len_b = swap.b_end - swap.b + 1;
  if (i >= swap.a && i <= swap.a_end) return i + len_b + mid_len;
  if (i >= mid_start && i < swap.b) return i + swap.a + len_b - mid_start;
  if (i >= swap.b && i <= swap.b_end) return i + swap.a - swap.b;
  return i;
}

}  // namespace brenlow
