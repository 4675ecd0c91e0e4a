#include "core/spans.h"

#include <algorithm>

namespace brenlow {

namespace {

// Sweeps over a span list that need not be sorted: calls `visit(first, last, bits)` for every stretch
// between neighbouring span ends. Counts the covering spans per bit, so the cost is that of a sort.
template <class Visit>
void for_each_stretch(std::span<const Span> spans, std::vector<int> boundaries, Visit&& visit) {
  struct Edge {
    int at;
    int bits;
    int step;
  };
  std::vector<Edge> edges;
  edges.reserve(spans.size() * 2);
  for (const Span& span : spans) {
    if (span.start >= span.end) continue;
    edges.push_back({span.start, span.bits, 1});
    edges.push_back({span.end, span.bits, -1});
    boundaries.push_back(span.start);
    boundaries.push_back(span.end);
  }
  std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.at < b.at; });
  std::sort(boundaries.begin(), boundaries.end());
  boundaries.erase(std::unique(boundaries.begin(), boundaries.end()), boundaries.end());

  int bold = 0;
  int italic = 0;
  std::size_t next = 0;
  for (std::size_t i = 0; i + 1 < boundaries.size(); ++i) {
    for (; next < edges.size() && edges[next].at <= boundaries[i]; ++next) {
      if (edges[next].bits & FMT_BOLD) bold += edges[next].step;
      if (edges[next].bits & FMT_ITALIC) italic += edges[next].step;
    }
    visit(boundaries[i], boundaries[i + 1], (bold > 0 ? FMT_BOLD : 0) | (italic > 0 ? FMT_ITALIC : 0));
  }
}

// Adds a stretch behind the ones before it, joining equal neighbours; mask 0 adds nothing.
void append_stretch(std::vector<Span>& out, int first, int last, int bits) {
  if (bits == 0 || first >= last) return;
  if (!out.empty() && out.back().end == first && out.back().bits == bits)
    out.back().end = last;
  else
    out.push_back({first, last, bits});
}

template <class Change>
SpanList transformed(const SpanList& spans, Change&& change) {
  if (spans.empty()) return {};
  std::vector<Span> out;
  out.reserve(spans.size());
  for (Span span : spans) {
    change(span);
    if (span.start < span.end) out.push_back(span);
  }
  return span_list(out);
}

}  // namespace

SpanList span_list(const std::vector<Span>& spans) { return SpanList(std::span<const Span>(spans)); }

SpanList spans_with_inserted(const SpanList& spans, int column, int count, int format) {
  if (spans.empty() && format == 0) return {};
  std::vector<Span> out;
  out.reserve(spans.size() + 1);
  for (Span span : spans) {
    if (span.start >= column) span.start += count;
    if (span.end > column) span.end += count;
    out.push_back(span);
  }
  if (format == 0) return span_list(out);

  out.push_back({column, column + count, format});
  std::sort(out.begin(), out.end());
  std::vector<Span> merged;
  merged.reserve(out.size());
  for (const Span& span : out) {
    if (!merged.empty() && merged.back().bits == span.bits && span.start <= merged.back().end)
      merged.back().end = std::max(merged.back().end, span.end);
    else
      merged.push_back(span);
  }
  return span_list(merged);
}

SpanList spans_with_removed(const SpanList& spans, int first, int last) {
  auto cut = [&](int end) { return end <= first ? end : end < last ? first : end - (last - first); };
  return transformed(spans, [&](Span& span) {
    span.start = cut(span.start);
    span.end = cut(span.end);
  });
}

SplitSpans split_spans(const SpanList& spans, int column) {
  return {transformed(spans, [&](Span& span) { span.end = std::min(span.end, column); }),
          transformed(spans, [&](Span& span) {
            span.start = std::max(span.start, column) - column;
            span.end -= column;
          })};
}

SpanList spans_within(const SpanList& spans, int first, int last) {
  return transformed(spans, [&](Span& span) {
    span.start = std::max(span.start, first) - first;
    span.end = std::min(span.end, last) - first;
  });
}

SpanList spans_moved(const SpanList& spans, int distance) { return spans_appended({}, spans, distance); }

SpanList spans_appended(const SpanList& a, const SpanList& b, int offset) {
  if (b.empty()) return a;
  if (a.empty() && offset == 0) return b;
  return SpanList::build(a.size() + b.size(), [&](Span* out) {
    out = std::copy(a.begin(), a.end(), out);
    for (const Span& span : b) *out++ = {span.start + offset, span.end + offset, span.bits};
  });
}

SpanList _merge_spans(std::span<const Span> spans) {
  std::vector<Span> out;
  for_each_stretch(spans, {}, [&](int first, int last, int bits) { append_stretch(out, first, last, bits); });
  return span_list(out);
}

int format_at(std::span<const Span> spans, int column) {
  int bits = 0;
  for (const Span& span : spans)
    if (span.start <= column && column < span.end) bits |= span.bits;
  return bits;
}

bool format_covers(const SpanList& spans, int first, int last, int bit) {
  if (first >= last) return true;
  int reached = first;
  for_each_stretch(spans.view(), {}, [&](int from, int to, int bits) {
    if ((bits & bit) && from <= reached) reached = std::max(reached, to);
  });
  return reached >= last;
}

SpanList spans_with_bit(const SpanList& spans, int length, int first, int last, int bit, bool on) {
  std::vector<Span> out;
  for_each_stretch(spans.view(), {first, last}, [&](int from, int to, int bits) {
    if (from < 0 || to > length) return;
    if (from >= first && from < last) bits = on ? bits | bit : bits & ~bit;
    append_stretch(out, from, to, bits);
  });
  return span_list(out);
}

SpanList spans_from_masks(const std::vector<unsigned char>& masks) {
  std::vector<Span> out;
  for (std::size_t i = 0; i < masks.size(); ++i)
    append_stretch(out, static_cast<int>(i), static_cast<int>(i) + 1, masks[i]);
  return span_list(out);
}

}  // namespace brenlow
