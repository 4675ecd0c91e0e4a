#include <termios.h>
#include <unistd.h>

#include "core/editor.h"
#include "terminal/child_process.h"
#include "terminal/console_requests.h"
#include "terminal/escapes.h"

namespace brenlow {

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
