#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/document.h"
#include "documents/line_storage.h"
#include "documents/odt_styles.h"
#include "documents/xml_tree.h"

namespace brenlow {

// The text of one paragraph, with "\n" for a line break, and the formats of its stretches.
struct RunList {
  struct Run {
    std::size_t length;  // characters, never 0
    int bits;
  };
  std::u32string text;
  std::vector<Run> runs;  // together as long as the text
};

// Whether a paragraph or a heading, in whatever namespace.
bool is_paragraph(const XmlNode* node);

// Reads one paragraph into `out`, whose storage is used again; anything but a paragraph gives no run.
// `spaces_left` is how many blanks counted ones (text:s) may still make. Throws Failure.
void _collect_rich(const XmlNode* elem, TextAttributes base, const StyleMap& style_map, std::size_t& spaces_left,
                   RunList& out);

// More lines than anybody's prose, and than a saved document can have.
inline constexpr std::size_t MAX_ODT_LINES = std::size_t{16} << 20;

// Appends the lines of the paragraph to `document`, at least one. Throws Failure.
void _runs_to_line_fmt(const RunList& runs, LineStorage& storage, DocumentTriple& document);

}  // namespace brenlow
