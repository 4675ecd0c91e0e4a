#pragma once

#include <vector>

#include "core/gap_list.h"
#include "core/index_set.h"
#include "core/spans.h"
#include "core/text.h"

namespace brenlow {

// The lines of the document that is being edited, and their formats.
using LineList = GapList<Text>;
using FormatList = GapList<SpanList>;

// The document as every reader returns it: at least one line, one span list per line, and the lines
// that begin a new page.
struct DocumentTriple {
  std::vector<Text> lines{Text()};
  std::vector<SpanList> fmt_lines{SpanList()};
  IndexSet pagebreak_lines;

  friend bool operator==(const DocumentTriple&, const DocumentTriple&) = default;
};

}  // namespace brenlow
