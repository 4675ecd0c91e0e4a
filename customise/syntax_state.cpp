#include "core/editor.h"

namespace brenlow {

void Editor::_load_syntax(std::string_view extension) {
  _syn_rules = load_syntax_config(_machine.files, extension);
  _compute_syn_lines();
}

// Forgets the spans of every line; each is computed when it is next drawn.
void Editor::_compute_syn_lines() {
  _syn_lines.assign(lines.size(), {});
  _syn_dirty = false;
}

const SharedArray<SyntaxSpan>& Editor::_syn_spans(int ly) {
  SyntaxLine& line = _syn_lines[static_cast<std::size_t>(ly)];
  if (!line.computed()) {
    static const SharedArray<SyntaxSpan> none = SharedArray<SyntaxSpan>::of_none();
    line.spans = SharedArray<SyntaxSpan>(
        std::span<const SyntaxSpan>(_compute_syn_spans(_line(ly).view().str(), _syn_rules, _fmt(ly))));
    if (line.spans.null()) line.spans = none;
  }
  return line.spans;
}

void Editor::_recompute_syn_range(int lo, int hi_old, int new_count) {
  int growth = new_count - (hi_old - lo);
  if (_syn_dirty || static_cast<int>(_syn_lines.size()) + growth != _line_count()) {
    _syn_dirty = true;
    return;
  }
  _syn_lines.splice(static_cast<std::size_t>(lo), static_cast<std::size_t>(hi_old - lo),
                    std::vector<SyntaxLine>(static_cast<std::size_t>(new_count)));
}

}  // namespace brenlow
