#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/shared_array.h"

namespace brenlow {

inline constexpr int FMT_BOLD = 1;
inline constexpr int FMT_ITALIC = 2;

// The characters `start` up to, not including, `end` of one line carry `bits`.
struct Span {
  int start;
  int end;
  int bits;
  friend bool operator==(const Span&, const Span&) = default;
  friend auto operator<=>(const Span&, const Span&) = default;
};

// The spans of one line: a shared value, replaced and never changed in place. Spans may touch and may
// overlap; a character's format is the OR of the spans that cover it.
using SpanList = SharedArray<Span>;

SpanList span_list(const std::vector<Span>& spans);

// Makes room for `count` characters at `column`. A span that begins at `column` moves whole, one that
// ends there stays, one that contains it grows. With `format` not 0 the new characters get it.
SpanList spans_with_inserted(const SpanList& spans, int column, int count, int format);

// The spans without the characters from `first` up to `last`; spans that become empty are dropped.
SpanList spans_with_removed(const SpanList& spans, int first, int last);

// The parts of the spans before `column`, and behind it counted from `column`.
struct SplitSpans {
  SpanList left;
  SpanList right;
};
SplitSpans split_spans(const SpanList& spans, int column);

// The part of the spans within `first` up to `last`, counted from `first`.
SpanList spans_within(const SpanList& spans, int first, int last);

SpanList spans_moved(const SpanList& spans, int distance);

// `a` followed by `b` moved right by `offset`, with no merging.
SpanList spans_appended(const SpanList& a, const SpanList& b, int offset);

// Sorted spans that do not overlap; neighbours with equal bits are one span.
SpanList _merge_spans(std::span<const Span> spans);

// The OR of the bits of the spans that cover `column`.
int format_at(std::span<const Span> spans, int column);

// Whether every character of `first` up to `last` has `bit`.
bool format_covers(const SpanList& spans, int first, int last, int bit);

// The flattened spans with `bit` set or cleared from `first` up to `last`.
SpanList spans_with_bit(const SpanList& spans, int length, int first, int last, int bit, bool on);

// One mask per character as spans: runs of equal masks, none for mask 0.
SpanList spans_from_masks(const std::vector<unsigned char>& masks);

}  // namespace brenlow
