#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/document.h"

namespace brenlow::test {

// A document with cursor and anchor, as a test writes and prints it:
//
//   "first |line\n⏎<b>bold <i>both</i></b> and ^plain"
//
// Lines are joined by line feeds; "⏎" at the head of a line: it begins a new page; "|" the cursor, "^" the
// selection's anchor; <b>, </b>, <i>, </i> bold and italic. A backslash takes the next character as it is.
// Printed, ends of formats come first, then the anchor, the cursor and the beginnings of formats; formats
// that cover a character twice or touch print as one.
struct MarkedDocument {
  DocumentTriple document;
  int cy = 0, cx = 0;
  std::optional<std::pair<int, int>> anchor;  // line, column
};

MarkedDocument parse_notation(std::string_view notation);
std::string print_notation(const MarkedDocument& marked);
// The document without cursor and anchor.
std::string print_notation(const DocumentTriple& document);

}  // namespace brenlow::test
