#include <array>

#include "core/editor.h"
#include "core/unicode.h"
#include "documents/plain_text.h"

namespace brenlow {

namespace {

// A command without arguments: its action name, and whether a Ctrl shortcut reaches it as well as the
// command letter.
struct Command {
  std::string_view action;
  void (Editor::*run)();
  bool has_shortcut;
};

constexpr std::array COMMANDS = {
    Command{"copy", &Editor::do_copy, true},
    Command{"cut", &Editor::do_cut, true},
    Command{"paste", &Editor::do_paste, true},
    Command{"open", &Editor::do_open, true},
    Command{"create_newdoc", &Editor::do_create_newdoc, true},
    Command{"save", &Editor::do_save, true},
    Command{"save_as", &Editor::do_save_as, true},
    Command{"find", &Editor::do_find, true},
    Command{"replace", &Editor::do_replace, true},
    Command{"undo", &Editor::do_undo, true},
    Command{"redo", &Editor::do_redo, true},
    Command{"redo_compat", &Editor::do_redo, true},
    Command{"delete_line", &Editor::delete_line, true},
    Command{"mark", &Editor::_mark_command, true},
    Command{"insert_document", &Editor::do_insert_document, true},
    Command{"doc_begin", &Editor::_to_doc_begin, true},
    Command{"doc_end", &Editor::_to_doc_end, true},
    Command{"toggle_bars", &Editor::do_toggle_bars, true},
    Command{"zoom_in", &Editor::font_increase, true},
    Command{"zoom_out", &Editor::font_decrease, true},
    Command{"zoom_reset", &Editor::font_reset, true},
    Command{"zoom_reset2", &Editor::font_reset, true},
    Command{"exit", &Editor::do_exit, true},
    Command{"page_break", &Editor::_page_break_command, true},
    Command{"select_all", &Editor::do_select_all, true},
    Command{"about", &Editor::do_about, false},
    Command{"typewriter", &Editor::do_typewriter_toggle, false},
    Command{"special_char", &Editor::do_unicode_picker, false},
    Command{"fold_chapter", &Editor::do_fold_chapter, false},
    Command{"fold_all_chapters", &Editor::do_fold_all_chapters, false},
    Command{"chapter_swap_down", &Editor::do_chapter_swap_down, false},
    Command{"chapter_swap_up", &Editor::do_chapter_swap_up, false},
    Command{"kgrep", &Editor::do_kgrep, false},
};

struct ActionKey {
  int key;
  std::string_view action;
};

constexpr std::array ACTION_KEYS = {
    ActionKey{'?', "about"},
    ActionKey{'t', "typewriter"},
    ActionKey{'q', "exit"},
    ActionKey{'o', "open"},
    ActionKey{'n', "create_newdoc"},
    ActionKey{'d', "insert_document"},
    ActionKey{'s', "save"},
    ActionKey{'a', "save_as"},
    ActionKey{'u', "undo"},
    ActionKey{'w', "redo"},
    ActionKey{'l', "delete_line"},
    ActionKey{'f', "find"},
    ActionKey{'r', "replace"},
    ActionKey{'k', "special_char"},
    ActionKey{'b', "bold"},
    ActionKey{'i', "italic"},
    ActionKey{'p', "page_break"},
    ActionKey{'e', "select_all"},
    ActionKey{'m', "mark"},
    ActionKey{'c', "copy"},
    ActionKey{'x', "cut"},
    ActionKey{'v', "paste"},
    ActionKey{'[', "doc_begin"},
    ActionKey{']', "doc_end"},
    ActionKey{'+', "zoom_in"},
    ActionKey{'-', "zoom_out"},
    ActionKey{'0', "zoom_reset"},
    ActionKey{'1', "margin_left"},
    ActionKey{'2', "margin_right"},
    ActionKey{'3', "margin_top"},
    ActionKey{'4', "margin_bottom"},
    ActionKey{'h', "toggle_bars"},
    ActionKey{'*', "fold_all_chapters"},
    ActionKey{'#', "fold_chapter"},
    ActionKey{KEY_DOWN, "chapter_swap_down"},
    ActionKey{KEY_UP, "chapter_swap_up"},
    ActionKey{'g', "kgrep"},
};

constexpr std::string_view MARGIN_PREFIX = "margin_";

}  // namespace

void Editor::_build_action_map() {
  for (const ActionKey& entry : ACTION_KEYS) {
    _ACTION_MAP[entry.key] = entry.action;
    if (entry.key >= 'a' && entry.key <= 'z') _ACTION_MAP[entry.key - 32] = entry.action;
  }
}

void Editor::_dispatch_action(std::string_view action) {
  if (action.starts_with(MARGIN_PREFIX)) return do_set_margin(action.substr(MARGIN_PREFIX.size()));
  if (action == "bold") return _toggle_format(FMT_BOLD, "Bold");
  if (action == "italic") return _toggle_format(FMT_ITALIC, "Italic");
  for (const Command& command : COMMANDS)
    if (command.action == action) (this->*command.run)();
  if (action == "doc_begin" || action == "doc_end") _sync_cur_fmt();
}

bool Editor::_run_shortcut(std::string_view action) {
  if (action == "bold" || action == "italic") {
    _dispatch_action(action);
    return true;
  }
  for (const Command& command : COMMANDS) {
    if (command.action != action || !command.has_shortcut) continue;
    (this->*command.run)();
    return true;
  }
  return false;
}

// An unnamed document counts as formatted.
bool Editor::_is_plain_text_document() const { return filepath && is_plain_text_extension(path_extension(*filepath)); }

void Editor::_toggle_format(int bit, std::string_view name) {
  if (_is_plain_text_document()) {
    _mid_notice(std::string(name) + " is not supported in plain-text formats (.txt / .md / .fountain)");
  } else if (_sel_range()) {
    _apply_fmt_to_selection(bit);
  } else {
    _cur_fmt ^= bit;
    _show_message(std::string(name) + (_cur_fmt & bit ? " on" : " off"));
  }
}

void Editor::_page_break_command() {
  if (_is_plain_text_document()) {
    _mid_notice("Page breaks are not supported in plain-text formats (.txt / .md / .fountain)");
    return;
  }
  _sel_clear();
  _preferred_col.reset();
  insert_pagebreak();
}

void Editor::_mark_command() {
  if (_sel_anchor) {
    _sel_clear();
    _show_message("Selection cleared");
  } else {
    _sel_anchor = {cy, cx};
    _show_message("Anchor set — navigate to extend, press mark key or ESC to cancel");
  }
}

void Editor::_to_doc_begin() {
  cy = 0;
  cx = 0;
}

void Editor::_to_doc_end() {
  cy = _line_count() - 1;
  cx = _line_length(cy);
}

}  // namespace brenlow
