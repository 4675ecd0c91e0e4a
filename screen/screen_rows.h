#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "core/gap_list.h"
#include "core/spans.h"
#include "core/text.h"
#include "customise/syntax_rules.h"

namespace brenlow {

// One displayed text row: a view into line `ly`, or for a folded header its composed row.
struct MapEntry {
  int ly;
  int start;   // character of the line that the row begins with
  int length;  // characters shown
  friend bool operator==(const MapEntry&, const MapEntry&) = default;
};

// The rows of the document, ascending; those behind an edit move on to other lines.
struct ShiftLine {
  void operator()(MapEntry& entry, int amount) const { entry.ly += amount; }
};
using ScreenMap = GapList<MapEntry, ShiftLine>;

// Ascending numbers that count something before each place.
struct ShiftNumber {
  void operator()(int& number, int amount) const { number += amount; }
};
using PlaceList = GapList<int, ShiftNumber>;

// What a row below the title bar is drawn from. The handles keep it from being anything else meanwhile.
struct DrawnRow {
  enum class Kind { BLANK, TEXT, PAGE_BREAK, END };

  Kind kind = Kind::BLANK;
  MapEntry entry{};
  Text line{};
  SpanList format{};
  SharedArray<SyntaxSpan> syntax{};
  std::pair<int, int> selection{};
  std::pair<int, int> margins{};
  bool lasting = true;        // drawn from nothing else
  std::uint64_t content = 0;  // the number that the canvas has for it

  bool made_of_the_same(const DrawnRow& other) const {
    return lasting && other.lasting && kind == other.kind && entry.start == other.entry.start &&
           entry.length == other.entry.length && line.same(other.line) && format.same(other.format) &&
           syntax.same(other.syntax) && selection == other.selection && margins == other.margins;
  }
};

// What lies over the characters of one line: first the lists of the whole line, kept while its rows are
// drawn one behind the other, then the same clipped to a row and counted from its start.
struct RowLayers {
  using Stretch = std::pair<int, int>;
  int ly = -1;  // line that the line lists belong to
  std::vector<Stretch> line_kgrep, line_find;

  std::vector<Span> format;
  std::vector<SyntaxSpan> syntax;
  std::vector<Stretch> kgrep, find;
  Stretch selection{0, 0};
};

}  // namespace brenlow
