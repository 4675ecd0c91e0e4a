#pragma once

#include <vector>

#include "core/document.h"

namespace brenlow {

// One step of the history. Between push and finish it holds handles of the whole covered slice;
// finishing keeps only the lines that differ, and of a long line only the part that differs, so a record
// costs memory in proportion to the change, also when it covers the whole document.
struct UndoRecord {
  int lo = 0;         // first line covered; 0 in the bulk form
  int old_count = 0;  // lines covered before the edit
  int new_count = 0;  // lines covered after it
  bool finished = false;
  int old_cx = 0, old_cy = 0;
  int new_cx = 0, new_cy = 0;
  int word_delta = 0;  // words gained by the edit
  IndexSet old_pbl, new_pbl;

  // `old_count` lines at `line` became `new_count` lines. Several runs only where every run keeps its count.
  struct Run {
    int line;
    int old_count;
    int new_count;
  };
  std::vector<Run> runs;
  // The lines of all runs, one behind the other.
  std::vector<Text> old_lines, new_lines;
  std::vector<SpanList> old_fmt, new_fmt;

  // When one long line changed, the lists above hold just its middle: this much around it is the same
  // before and after. All 0 otherwise. Spans behind the middle count from the line's end.
  struct Kept {
    int head = 0, tail = 0;              // characters
    int head_spans = 0, tail_spans = 0;  // spans
  };
  Kept kept;
};

// Opens a record over the lines from `lo` up to, not including, `hi_old`.
UndoRecord open_record(const LineList& lines, const FormatList& fmt_lines, const IndexSet& pagebreaks, int lo,
                       int hi_old);

// Finishes it with what stands now in the lines up to, not including, `hi_new`.
void finish_record(UndoRecord& record, const LineList& lines, const FormatList& fmt_lines, const IndexSet& pagebreaks,
                   int hi_new);

// Puts the lines of one side of a finished record into the document, which must be in the state of the
// other side.
void apply_record(const UndoRecord& record, bool forward, LineList& lines, FormatList& fmt_lines, IndexSet& pagebreaks);

}  // namespace brenlow
