#include <algorithm>

#include "core/editor.h"

namespace brenlow {

std::string Editor::_terminal_kind() const { return font_ctrl ? font_ctrl->kind() : "none"; }

void Editor::font_increase() {
  if (_on_console)
    _show_message(console_font_ctrl->increase());
  else if (font_size < FONT_MAX)
    _change_font_size(std::min(font_size + FONT_STEP, FONT_MAX), '=');
  else
    _show_message("Already at maximum zoom (" + std::to_string(FONT_MAX) + "pt)");
}

void Editor::font_decrease() {
  if (_on_console)
    _show_message(console_font_ctrl->decrease());
  else if (font_size > FONT_MIN)
    _change_font_size(std::max(font_size - FONT_STEP, FONT_MIN), '-');
  else
    _show_message("Already at minimum zoom (" + std::to_string(FONT_MIN) + "pt)");
}

// `sign`: the key that does it in the terminal itself, for the notice.
void Editor::_change_font_size(int size, char sign) {
  font_size = size;
  if (font_ctrl->set_size(font_size)) {
    _persist_font();
    _show_message("Zoom: " + std::to_string(font_size) + "pt");
  } else {
    _mid_notice(std::string("Zoom not available — use Ctrl+") + sign + " in foot");
  }
}

void Editor::font_reset() {
  if (_on_console) {
    _show_message(console_font_ctrl->reset());
    return;
  }
  font_size = FONT_DEFAULT;
  if (font_ctrl->reset(font_size)) {
    _persist_font();
    _show_message("Zoom reset to " + std::to_string(FONT_DEFAULT) + "pt");
  } else {
    _mid_notice("Zoom not available — use Ctrl+0 in foot");
  }
}

void Editor::_persist_font() { persist_setting(_machine.files, "font_size", static_cast<long long>(font_size)); }

// The settings keep the size that was chosen last.
void Editor::_restore_startup_font() {
  if (_on_console) {
    if (!console_font_ctrl || !console_font_ctrl->available()) return;
    const auto& fonts = console_font_ctrl->_fonts;
    const std::string& path = fonts[static_cast<std::size_t>(_startup_console_font_idx)].path;
    if (!console_font_ctrl->_setfont(path)) console_font_ctrl->_ioctl(path);
  } else if (font_ctrl) {
    font_ctrl->kind() == "kitty" ? font_ctrl->reset() : font_ctrl->set_size(_startup_font_size);
  }
}

}  // namespace brenlow
