#include <algorithm>

#include "core/editor.h"
#include "core/unicode.h"
#include "structure/matching.h"

namespace brenlow {

void Editor::do_replace() {
  std::optional<std::u32string> term = _prompt("Find: ", search_term);
  if (!term) {
    _show_message("Replace cancelled.");
    return;
  }
  if (term->empty()) {
    _show_message("Empty search term.");
    return;
  }
  search_term = *term;
  std::optional<std::u32string> replacement = _prompt("Replace with: ");
  if (!replacement) {
    _show_message("Replace cancelled.");
    return;
  }
  Needle needle(search_term, false);
  if (std::none_of(lines.begin(), lines.end(), [&](const Text& line) { return needle.in(line); })) {
    _show_message("'" + encode_utf8(search_term) + "' not found.");
    return;
  }
  _edit_document([&] {
    long count = 0;
    for (std::size_t ly = 0; ly < lines.size(); ++ly) {
      if (!needle.in(lines[ly])) continue;
      ReplacedLine replaced = replace_all(lines[ly], fmt_lines[ly], needle, *replacement);
      lines[ly] = std::move(replaced.line);
      fmt_lines[ly] = std::move(replaced.spans);
      count += replaced.count;
    }
    _invalidate_map();
    cx = std::min(cx, _line_length(cy));
    _show_message("Replaced " + std::to_string(count) + " occurrence(s).");
  });
}

}  // namespace brenlow
