#include <algorithm>

#include "core/editor.h"
#include "structure/chapters.h"

namespace brenlow {

void Editor::do_chapter_swap_down() { _do_chapter_swap(1); }

void Editor::do_chapter_swap_up() { _do_chapter_swap(-1); }

void Editor::_do_chapter_swap(int direction) {
  std::optional<int> header = _find_chapter_header(cy);
  if (!header) {
    _show_message("Not inside a chapter (chapters start with '#').");
    return;
  }
  std::optional<int> sibling = find_sibling_chapter(lines, *header, direction);
  if (!sibling) {
    _show_message(std::string("No ") + (direction > 0 ? "next" : "previous") + " chapter at this level to swap with.");
    return;
  }
  auto [a, b] = std::minmax(*header, *sibling);
  const ChapterSwap swap{a, chapter_swap_end(lines, a), b, chapter_swap_end(lines, b)};
  auto moved = [&](int ly) { return swapped_line(swap, ly); };
  std::string title = _chapter_title(*header);

  _sel_clear();
  _preferred_col.reset();
  _push_undo(swap.a, swap.b_end + 1);
  auto exchange = [&](auto& list) {
    // Two rotations: the second block to the front, then the middle stretch before the first block.
    std::vector block(list.begin() + swap.a, list.begin() + swap.b_end + 1);
    auto behind = std::rotate(block.begin(), block.begin() + (swap.b - swap.a), block.end());
    std::rotate(behind, behind + (swap.a_end - swap.a + 1), block.end());
    std::size_t count = block.size();
    list.splice(static_cast<std::size_t>(swap.a), count, std::move(block));
  };
  exchange(lines);
  exchange(fmt_lines);
  // A break on the first line of a block stays with its place in the document.
  pagebreak_lines.renumber([&](int ly) { return ly == swap.a ? ly : ly == swap.b ? moved(swap.a) : moved(ly); });
  _folded_chapters.renumber(moved);
  _go_to_header(moved(*header));
  _finalize_undo(swap.b_end + 1);
  modified = true;
  _sync_cur_fmt();
  _invalidate_map();
  _ensure_cursor_visible();
  _kgrep_refresh();
  _show_message("Chapter '" + title + "' moved " + (direction > 0 ? "down." : "up."));
}

}  // namespace brenlow
