#include "documents/odt_segments.h"

#include <algorithm>

namespace brenlow {

std::vector<Segment> _fmt_spans_for_line(TextView line, const SpanList& spans) {
  std::vector<Segment> segments;
  std::size_t position = 0;
  auto add_until = [&](std::size_t end, int bits) {
    if (end > position) segments.push_back({line.substr(position, end - position), bits});
    position = std::max(position, end);
  };
  auto clipped = [&](int column) { return std::min(static_cast<std::size_t>(std::max(column, 0)), line.size()); };
  for (const Span& span : _merge_spans(spans.view())) {
    add_until(clipped(span.start), 0);
    add_until(clipped(span.end), span.bits);
  }
  add_until(line.size(), 0);
  return segments;
}

}  // namespace brenlow
