#include "core/editor.h"

namespace brenlow {

namespace {

// A change of more lines than this, on either side, rebuilds the screen map instead of patching it.
constexpr int PATCH_LIMIT = 20;

void push_bounded(std::deque<UndoRecord>& stack, UndoRecord record, std::size_t depth) {
  if (stack.size() == depth) stack.pop_front();
  stack.push_back(std::move(record));
}

}  // namespace

void Editor::_push_undo(int lo, int hi_old) {
  UndoRecord record = open_record(lines, fmt_lines, pagebreak_lines, lo, hi_old);
  record.old_cx = cx;
  record.old_cy = cy;
  push_bounded(_undo_stack, std::move(record), UNDO_DEPTH);
  _redo_stack.clear();
  _lines_before_edit = _line_count();
}

void Editor::_finalize_undo(int hi_new) {
  _lines_before_edit = -1;
  if (_undo_stack.empty()) return;
  UndoRecord& record = _undo_stack.back();
  finish_record(record, lines, fmt_lines, pagebreak_lines, hi_new);
  record.new_cx = cx;
  record.new_cy = cy;
  if (_word_count) *_word_count += record.word_delta;
}

// Takes back an edit that a failure has cut short: what it had taken out of the document and not yet put back is
// in its record alone.
void Editor::_abandon_open_edit() {
  int before = std::exchange(_lines_before_edit, -1);
  if (before < 0) return;
  UndoRecord& record = _undo_stack.back();
  auto first = static_cast<std::size_t>(record.lo);
  auto behind = static_cast<std::size_t>(before - record.lo - record.old_count);
  lines.splice(first, lines.size() - behind - first, std::move(record.old_lines));
  fmt_lines.splice(first, fmt_lines.size() - behind - first, std::move(record.old_fmt));
  pagebreak_lines = std::move(record.old_pbl);
  _undo_stack.pop_back();
}

void Editor::_push_undo_bulk() { _push_undo(0, _line_count()); }

void Editor::_finalize_undo_bulk() { _finalize_undo(_line_count()); }

Editor::Applied Editor::_apply_snap(const UndoRecord& snap, bool forward) {
  apply_record(snap, forward, lines, fmt_lines, pagebreak_lines);
  cx = forward ? snap.new_cx : snap.old_cx;
  cy = forward ? snap.new_cy : snap.old_cy;
  if (_word_count) *_word_count += forward ? snap.word_delta : -snap.word_delta;
  return forward ? Applied{snap.lo, snap.old_count, snap.new_count} : Applied{snap.lo, snap.new_count, snap.old_count};
}

void Editor::_undo_update_map(const UndoRecord& snap, int lo, int old_count, int new_count) {
  if (old_count <= PATCH_LIMIT && new_count <= PATCH_LIMIT && snap.old_pbl == snap.new_pbl)
    _lines_replaced(lo, lo + old_count, new_count);
  else
    _invalidate_map();
}

void Editor::_step_history(std::deque<UndoRecord>& from, std::deque<UndoRecord>& to, bool forward) {
  UndoRecord record = std::move(from.back());
  from.pop_back();
  Applied done = _apply_snap(record, forward);
  int folds = _folded_chapters.size();
  _folded_chapters.erase_range(done.lo, done.lo + done.old_count - 1);
  if (_folded_chapters.size() != folds) _invalidate_map();  // an opened chapter shows lines outside the record too
  _shift_folded_chapters(done.lo + std::min(done.old_count, done.new_count), done.new_count - done.old_count);
  _undo_update_map(record, done.lo, done.old_count, done.new_count);
  _unfold_around(cy);  // what comes back must be seen
  push_bounded(to, std::move(record), UNDO_DEPTH);
  modified = true;
  _sync_cur_fmt();
  _show_message((forward ? "Redo. (" : "Undo. (") + std::to_string(from.size()) + " left)");
  _kgrep_refresh();
}

void Editor::do_undo() {
  if (_undo_stack.empty()) {
    _show_message("Nothing to undo.");
  } else if (!_undo_stack.back().finished) {
    _undo_stack.pop_back();
    _show_message("Undo error (incomplete snapshot).");
  } else {
    _step_history(_undo_stack, _redo_stack, false);
  }
}

void Editor::do_redo() {
  if (_redo_stack.empty())
    _show_message("Nothing to redo.");
  else
    _step_history(_redo_stack, _undo_stack, true);
}

}  // namespace brenlow
