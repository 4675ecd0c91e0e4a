#include <langinfo.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <span>
#include <sstream>

#include "core/editor.h"
#include "core/failure.h"
#include "core/signals.h"
#include "core/unicode.h"
#include "screen/curses.h"

namespace {

using namespace brenlow;

// The user's locale; where it is no UTF-8 one, the first of a few that the system has.
void choose_locale() {
  std::setlocale(LC_ALL, "");
  const char* encoding = ::nl_langinfo(CODESET);
  if (encoding && lowered_ascii(encoding).starts_with("utf")) return;
  for (const char* name : {"en_US.UTF-8", "C.UTF-8", "en_GB.UTF-8"})
    if (std::setlocale(LC_ALL, name)) return;
}

std::string font_debug_text() {
  Machine machine;
  if (_is_linux_console(machine.tty)) return ConsoleFontController(machine.files).debug_info();
  return FontController().debug_info();
}

// Starts the screen library, runs `body` and gives the terminal back on every way out. Returns the exit status that
// `body` gives, or 1, after a line on standard error, where there is no terminal that it could run on.
template <class Body>
int with_screen(Body&& body) {
  if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0) {
    std::cerr << "brenlow: standard input and output must be a terminal\n";
    return 1;
  }
  ::setenv("ESCDELAY", "25", 0);
  const char* term = std::getenv("TERM");
  SCREEN* terminal = ::newterm(nullptr, stdout, stdin);
  if (!terminal) {
    std::cerr << "brenlow: cannot use this terminal (TERM=" << plain_print(term ? term : "") << ")\n";
    return 1;
  }
  struct Restore {
    SCREEN* terminal;
    ~Restore() {
      ::endwin();
      ::delscreen(terminal);
    }
  } restore{terminal};
  ::noecho();
  ::cbreak();
  return body(::stdscr);
}

// The exit status. What is to be said when the screen has gone is put into `farewell`.
int edit(WINDOW* window, std::optional<std::string> path, std::string& farewell) {
  Editor editor(window, std::move(path));
  try {
    editor.run();
  } catch (const StopRequest&) {
    std::atexit(clear_terminal);
  } catch (const EndRequest& request) {
    farewell = editor._leave_unasked();
    return 128 + request.signal;  // as a shell tells of a process that the signal has ended
  } catch (...) {
    farewell = editor._leave_unasked();
    throw;
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  choose_locale();
  std::span<char*> words(arguments + 1, static_cast<std::size_t>(count > 0 ? count - 1 : 0));
  auto given = [&](const char* option) {
    for (const char* word : words)
      if (std::strcmp(word, option) == 0) return true;
    return false;
  };
  std::string farewell;
  int status = 1;
  try {
    if (given("--font-debug")) {
      std::istringstream text(font_debug_text());
      for (std::string line; std::getline(text, line);) std::cout << plain_print(line) << "\n";
      return 0;
    }
    if (given("--key-debug"))
      return with_screen([](WINDOW* window) {
        run_key_debug(window);
        return 0;
      });
    std::optional<std::string> path;
    if (!words.empty()) path = words[0];
    note_end_signals();
    status = with_screen([&](WINDOW* window) { return edit(window, path, farewell); });
  } catch (const std::exception& failure) {
    std::cerr << "brenlow: " << plain_print(reason_of(failure)) << "\n";
  }
  std::cerr << farewell;
  return status;
}
