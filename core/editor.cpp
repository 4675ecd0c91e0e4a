#include "core/editor.h"

#include <algorithm>
#include <filesystem>

#include "core/failure.h"
#include "core/unicode.h"
#include "documents/odt_reader.h"
#include "documents/plain_text.h"
#include "screen/curses.h"

namespace brenlow {

Editor::Editor(_win_st* screen, std::optional<std::string> path, Machine machine)
    : _machine(std::move(machine)), stdscr(screen), filepath(std::move(path)) {
  _load_keys();
  _on_console = _is_linux_console(_machine.tty);
  _start_fonts();
  _load_first_document();
  screen::start_colours();
  _canvas.reset(rows(), cols());
  _load_syntax(filepath ? path_extension(*filepath) : std::string());
  _read_settings();
  screen::show_cursor(true);
  _build_action_map();
}

Editor::~Editor() = default;

void Editor::_start_fonts() {
  if (_on_console) {
    auto dirs = _machine.font_dirs.empty() ? FONT_DIRS : _machine.font_dirs;
    console_font_ctrl =
        std::make_unique<ConsoleFontController>(_machine.files, std::move(dirs), _machine.tty, _machine.search_path);
    _startup_console_font_idx = console_font_ctrl->_idx;
    if (console_font_ctrl->available()) console_font_ctrl->_apply();
    return;
  }
  font_ctrl = std::make_unique<FontController>(_machine.tty, _machine.search_path);
  long long size = setting_integer(load_config(_machine.files), "font_size", FONT_DEFAULT);
  font_size = static_cast<int>(std::clamp(size, -1'000'000LL, 1'000'000LL));
  _startup_font_size = font_size;
  font_ctrl->set_size(font_size);
}

void Editor::_load_first_document() {
  if (!filepath) return;
  std::error_code ignored;
  if (!std::filesystem::exists(*filepath, ignored)) {
    _show_message("New file: " + path_base_name(*filepath));
    return;
  }
  try {
    _install_document(is_plain_text_extension(path_extension(*filepath)) ? txt_to_lines(*filepath)
                                                                         : odt_to_rich(*filepath, &_kept_content));
    _show_message("Opened: " + path_base_name(*filepath));
  } catch (const std::exception& failure) {
    _install_document({});
    _show_message("Error opening file: " + reason_of(failure));
  }
}

void Editor::_install_document(DocumentTriple triple) {
  lines = std::move(triple.lines);
  fmt_lines = std::move(triple.fmt_lines);
  pagebreak_lines = std::move(triple.pagebreak_lines);
  _guard_pagebreak_line_zero();
  _word_count.reset();
  _compute_syn_lines();
  _invalidate_map();
}

void Editor::_read_settings() {
  SettingsMap settings = load_config(_machine.files);
  if (complete_config(settings)) {
    try {
      save_config(_machine.files, settings);
    } catch (const std::exception&) {
      // The session works without the file; it is completed at a later start.
    }
  }
  _margin_left_pct = setting_margin(settings, "margin_left");
  _margin_right_pct = setting_margin(settings, "margin_right");
  _margin_top_pct = setting_margin(settings, "margin_top");
  _margin_bottom_pct = setting_margin(settings, "margin_bottom");
  _cursor_decscusr = setting_cursor_shape(settings);
  _typewriter = setting_is_yes(settings, "typewriter", false);
  _fold_hierarchical = setting_is_yes(settings, "fold_hierarchical", false);
  _smart_quotes = setting_is_yes(settings, "smart_quotes", true);
  _hide_dotfiles = setting_truth(settings, "hide_dotfiles", true);
  _newdoc_timestamp = setting_is_not_no(settings, "newdoc_timestamp", true);
  _default_extension = setting_extension(settings);
  _kgrep_highlight_inverse = setting_text(settings, "kgrep_highlight", "color") == "inverse";
  _kgrep_case_insensitive = setting_text(settings, "kgrep_case", "insensitive") == "insensitive";
  _find_highlight_inverse = setting_text(settings, "find_highlight", "color") == "inverse";
  _find_case_insensitive = setting_text(settings, "find_case", "insensitive") == "insensitive";
}

}  // namespace brenlow
