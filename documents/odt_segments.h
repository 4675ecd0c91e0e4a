#pragma once

#include <vector>

#include "core/spans.h"
#include "core/text_view.h"

namespace brenlow {

// A stretch of one line in one format; `text` lies in the line.
struct Segment {
  TextView text;
  int bits;
  friend bool operator==(const Segment&, const Segment&) = default;
};

// Segments that cover the line, each character once. Spans may overlap and may reach past the line's ends.
std::vector<Segment> _fmt_spans_for_line(TextView line, const SpanList& spans);

}  // namespace brenlow
