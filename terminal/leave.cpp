#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "core/editor.h"
#include "core/failure.h"
#include "core/signals.h"
#include "core/unicode.h"
#include "documents/rescue_copy.h"
#include "terminal/child_process.h"
#include "terminal/console_requests.h"
#include "terminal/escapes.h"

namespace brenlow {

namespace {

constexpr int LONGEST_STALL_MS = 500;

}  // namespace

void clear_terminal() {
  std::optional<ChildResult> run = run_child({"clear"});
  if (!run || run->status != 0) return;
  // A terminal that does not take it cannot be cleared.
  [[maybe_unused]] ssize_t written = ::write(STDOUT_FILENO, run->output.data(), run->output.size());
}

void Editor::do_exit() {
  if (modified) {
    char answer = _ask("Unsaved changes. Save before exit? [y/n/c]", "ync");
    if (answer != 'y' && answer != 'n') {
      _show_message("Exit cancelled.");
      return;
    }
    if (answer == 'y') {
      do_save();
      if (modified) return;
    }
  }
  _give_terminal_back();
  throw StopRequest{};
}

std::string Editor::_leave_unasked() {
  ignore_end_signals();
  std::string farewell = _rescue();
  // A terminal that takes nothing more must not hold up the end.
  ::pollfd room{_machine.output, POLLOUT, 0};
  if (::poll(&room, 1, LONGEST_STALL_MS) == 0) ::tcflush(_machine.output, TCOFLUSH);
  _give_terminal_back();
  return farewell;
}

std::string Editor::_rescue() {
  _reserve.reset();
  _redo_stack.clear();
  _syn_lines.clear();
  std::string told;
  try {
    _abandon_open_edit();
    _undo_stack.clear();
    if (!modified) return "";
    std::string path =
        write_rescue_copy({lines, fmt_lines, pagebreak_lines}, filepath, _default_extension, home_folder());
    told = "the changes that were not saved are in " + path;
  } catch (const std::exception& failure) {
    told = "the changes that were not saved are lost: " + reason_of(failure);
  }
  return "brenlow: " + plain_print(told) + "\n";
}

void Editor::_give_terminal_back() {
  if (_old_termios) ::tcsetattr(_old_termios->first, TCSANOW, &_old_termios->second);
  if (_old_sigtstp) ::signal(SIGTSTP, *_old_sigtstp);
  _restore_startup_font();
  if (!_on_console) {
    write_to_terminal("\x1b[0 q", _machine.tty);
  } else {
    unsigned char request[2] = {10, 0};
    console_ioctl(_machine.tty, TIOCLINUX_REQUEST, request);
  }
}

}  // namespace brenlow
