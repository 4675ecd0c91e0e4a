#include <sys/ioctl.h>
#include <unistd.h>

#include <new>

#include "core/editor.h"
#include "core/unicode.h"
#include "screen/curses.h"
#include "terminal/console_requests.h"
#include "terminal/escapes.h"

namespace brenlow {

volatile std::sig_atomic_t Editor::_sigwinch_pending = 0;

namespace {

// While keys wait, several are applied before the next frame; but a frame is drawn at least this often.
constexpr std::chrono::milliseconds LONGEST_FRAME_GAP{50};

// Room to compose a rescue copy of some million words. As nothing is written there, it takes up no memory until then.
constexpr std::size_t RESERVED_BYTES = std::size_t{32} << 20;

void note_resize(int) { Editor::_sigwinch_pending = 1; }
void ignore_stop(int) {}

// Without SA_RESTART, so that a blocked read comes back. Nothing if the system refuses.
std::optional<Editor::SignalHandler> install_handler(int signal, Editor::SignalHandler handler) {
  struct sigaction action {};
  struct sigaction old {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  if (::sigaction(signal, &action, &old) != 0) return std::nullopt;
  return old.sa_handler;
}

bool is_editing_key(int key) {
  return key == 10 || key == 13 || is_backspace(key) || key == KEY_DC || (key >= 32 && key <= 255);
}

}  // namespace

void Editor::run() {
  _prepare_terminal();
  _reserve.reset(new (std::nothrow) char[RESERVED_BYTES]);
  _serve_resize();  // a change of size before the handler was there
  auto last_frame = std::chrono::steady_clock::time_point{};
  for (;;) {
    if (_sigwinch_pending) _serve_resize();
    _ensure_cursor_visible();
    if (auto now = std::chrono::steady_clock::now(); now - last_frame >= LONGEST_FRAME_GAP || !_input_waiting()) {
      draw();
      last_frame = std::chrono::steady_clock::now();
    }
    int key = std::exchange(_pending_main_ch, NO_KEY);
    bool read_here = key == NO_KEY;
    if (read_here) key = _getch();
    if (key == KEY_ESC) {
      message.clear();
      if (read_here) key = _read_escape_seq();
    }
    _handle_key(key);
#ifndef NDEBUG
    _check_session();
#endif
  }
}

void Editor::_prepare_terminal() {
  ::termios attributes{};
  if (::tcgetattr(_machine.input, &attributes) == 0) {
    _old_termios = {_machine.input, attributes};
    attributes.c_lflag &= static_cast<tcflag_t>(~ISIG);
    ::tcsetattr(_machine.input, TCSANOW, &attributes);
  }
  _old_sigtstp = install_handler(SIGTSTP, ignore_stop);
  _sigwinch_pending = 0;
  _old_sigwinch = install_handler(SIGWINCH, note_resize);
  // Delivered only while the program waits for a key (see _wait_for_input), so none is missed between
  // looking at the flag and waiting.
  sigset_t winch;
  sigemptyset(&winch);
  sigaddset(&winch, SIGWINCH);
  ::sigprocmask(SIG_BLOCK, &winch, nullptr);
  screen::prepare_keyboard(stdscr);
  _send_cursor_shape();
}

void Editor::_send_cursor_shape() {
  if (!_on_console) {
    write_to_terminal("\x1b[" + std::to_string(_cursor_decscusr) + " q", _machine.tty);
    return;
  }
  SettingsMap settings = load_config(_machine.files);
  std::string shape = setting_text(settings, "cursor_type", "block");
  unsigned char code = shape == "underline" || shape == "bar" ? 2 : 6;
  if (!setting_truth(settings, "cursor_blink", true)) code |= 16;
  unsigned char request[2] = {10, code};
  console_ioctl(_machine.tty, TIOCLINUX_REQUEST, request);
}

void Editor::_serve_resize() {
  _sigwinch_pending = 0;
  screen::take_terminal_size(_machine.input, stdscr, _canvas);
  _invalidate_map();
}

void Editor::_handle_key(int key) {
  if (key == NO_KEY || key == KEY_RESIZE) return;
  if (key == 0) key = _KEY_CTRL_SPACE;
  if (key == KEY_ESC) {
    _bare_escape();
  } else if (_prefix_keys(key) || _expansion_pressed(key) || _command_letter(key) || _bound_control(key) ||
             _refused_on_fold(key)) {
    // decided
  } else if (key == 10) {
    _sel_clear();
    insert_newline();
  } else if (_deleting_key(key) || _motion_key(key) || _shortcut(key)) {
    // decided
  } else if (key == 13) {
    _sel_clear();
    insert_newline();
  } else if (key >= 32 && key <= 127) {
    _sel_clear();
    _preferred_col.reset();
    insert_char(static_cast<char32_t>(key));
  } else if (key >= 128 && key <= 255) {
    _typed_byte(key);
  }
  _keep_cursor_seen();
}

void Editor::_bare_escape() {
  if (_action_mode) {
    _action_mode = false;
  } else if (_expansion_mode) {
    _expansion_mode = false;
  } else if (!_kgrep_folds.empty() || _find_active) {
    _clear_view_filters();
  } else if (_key_action == KEY_ESC) {
    _action_mode = true;
  } else if (_expansion_key == KEY_ESC && !_expansions.empty()) {
    _expansion_mode = true;
  } else if (_sel_anchor) {
    _sel_clear();
  } else if (_key_help == KEY_ESC) {
    do_help();
  }
}

void Editor::_clear_view_filters() {
  if (!_kgrep_folds.empty()) {
    _kgrep_folds.clear();
    _kgrep_term.clear();
  }
  if (_find_active) {
    _find_active = false;
    search_term.clear();
  }
  _invalidate_map();
  _ensure_cursor_visible();
  _show_message("Cleared — back to the normal view.");
}

// The keys that work in every mode: the fixed filter key, help, and the two prefixes. A mode ends with each of
// them, a prefix of its own included.
bool Editor::_prefix_keys(int key) {
  if (key != _KEY_CTRL_G && key != _key_help && key != _key_action && key != _expansion_key) return false;
  bool action_mode = std::exchange(_action_mode, false);
  bool expansion_mode = std::exchange(_expansion_mode, false);
  if (key == _KEY_CTRL_G) {
    do_kgrep();
  } else if (key == _key_help) {
    do_help();
  } else if (key == _key_action) {
    _action_mode = !action_mode;
    if (_action_mode) message.clear();
  } else {
    _expansion_mode = !expansion_mode;
  }
  return true;
}

bool Editor::_expansion_pressed(int key) {
  const std::u32string* text = nullptr;
  if (_expansion_mode) {
    _expansion_mode = false;
    text = _expansion_for(key);
    if (!text) {
      _show_message("No expansion assigned to that key.");
      return true;
    }
  } else if (_action_mode && _expansion_key == KEY_ESC) {
    text = _expansion_for(key);
    if (!text) return false;
    _action_mode = false;
  } else {
    return false;
  }
  _sel_clear();
  _preferred_col.reset();
  do_insert_expansion(*text);
  return true;
}

bool Editor::_command_letter(int key) {
  if (!_action_mode) return false;
  _action_mode = false;
  if (auto found = _ACTION_MAP.find(key); found != _ACTION_MAP.end()) _dispatch_action(found->second);
  return true;
}

bool Editor::_refused_on_fold(int key) {
  if (!is_editing_key(key) || !_cursor_on_folded_chapter()) return false;
  _show_message(_kgrep_folds.contains(cy) ? "Line is kGrep-folded — press ESC G to unfold, or ESC * to unfold all."
                                          : "Chapter is folded — press ESC # to unfold before editing.");
  return true;
}

bool Editor::_deleting_key(int key) {
  if (is_backspace(key)) {
    _sel_clear();
    backspace();
  } else if (key == KEY_DC) {
    if (_sel_range()) {
      _delete_selection();
      _kgrep_refresh();
    } else {
      _sel_clear();
      delete_char();
    }
  } else {
    return false;
  }
  return true;
}

// Plain motion extends a selection that has an anchor; Shift motion sets one.
bool Editor::_motion_key(int key) {
  switch (key) {
    case _KEY_CTRL_LEFT:
    case _KEY_CTRL_RIGHT:
      _preferred_col.reset();
      key == _KEY_CTRL_LEFT ? _word_left() : _word_right();
      _sync_cur_fmt();
      return true;
    case _KEY_CTRL_SHIFT_LEFT:
    case _KEY_CTRL_SHIFT_RIGHT:
      _sel_start();
      _preferred_col.reset();
      key == _KEY_CTRL_SHIFT_LEFT ? _word_left() : _word_right();
      _ensure_cursor_visible();
      return true;
    case _KEY_SHIFT_LEFT:
    case _KEY_SHIFT_RIGHT:
      _sel_start();
      _preferred_col.reset();
      move(key == _KEY_SHIFT_LEFT ? KEY_LEFT : KEY_RIGHT);
      return true;
    case _KEY_SHIFT_UP:
    case _KEY_SHIFT_DOWN:
      _sel_start();
      move(key == _KEY_SHIFT_UP ? KEY_UP : KEY_DOWN);
      return true;
    case KEY_UP:
    case KEY_DOWN:
    case KEY_PPAGE:
    case KEY_NPAGE:
      move(key);
      return true;
    case KEY_LEFT:
    case KEY_RIGHT:
    case KEY_HOME:
    case KEY_END:
      _preferred_col.reset();
      move(key);
      return true;
    default:
      return false;
  }
}

// Ctrl+H, Ctrl+J and Ctrl+M are bytes of Backspace and Enter; one that the user has bound is the shortcut.
bool Editor::_bound_control(int key) { return (key == 8 || key == 10 || key == 13) && _shortcut(key); }

bool Editor::_shortcut(int key) {
  auto found = _km_rev.find(key);
  return found != _km_rev.end() && _run_shortcut(found->second);
}

// Gathers the bytes of one character; a run that never becomes one is dropped after five bytes.
void Editor::_typed_byte(int key) {
  _preferred_col.reset();
  _utf8_buf.push_back(static_cast<char>(key));
  if (auto text = decode_utf8_strict(_utf8_buf)) {
    _utf8_buf.clear();
    for (char32_t ch : *text) insert_char(ch);
  } else if (_utf8_buf.size() >= 5) {
    _utf8_buf.clear();
  }
}

}  // namespace brenlow
