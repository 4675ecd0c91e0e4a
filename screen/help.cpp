#include "screen/help_text.h"

#include "core/editor.h"

namespace brenlow {

void Editor::do_help() {
  int key = _overlay_scroll(help_title(_key_help, _key_action), help_lines(_km, _key_help, _key_action));
  std::string kind = _terminal_kind();
  if (key == '?')
    do_about();
  else if ((key == 'U' || key == 'u') && (kind == "foot" || kind == "xterm" || kind == "none"))
    do_unicode_picker();  // other terminals have a character input of their own
}

void Editor::do_about() {
  int key = _overlay_scroll("About Brenlow (↑↓ PgUp PgDn to scroll   T = Tutorial)", about_lines());
  if (key == 'T' || key == 't') do_tutorial();
}

void Editor::do_tutorial() { _overlay_scroll("Brenlow Tutorial (↑↓ PgUp PgDn to scroll)", tutorial_lines()); }

}  // namespace brenlow
