#pragma once

#include <sys/types.h>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/pseudo_terminal.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal_screen.h"

namespace brenlow::test {

// Longer than any machine needs; a wait ends when what it waits for is there.
inline constexpr std::chrono::seconds WAIT_LIMIT{30};

struct ProgramOptions {
  std::vector<std::string> arguments = {};
  int rows = 24, cols = 80;
  // Added to an environment of HOME (a folder of the program's own), TERM, LC_ALL and PATH.
  std::map<std::string, std::string> environment = {};
  std::map<std::string, std::string> home_files = {};  // path within HOME to content, made before the start
  bool input_is_terminal = true;                       // else standard input is /dev/null
  bool output_is_terminal = true;                      // else standard output goes to a file, see output()
};

// A line of a test: std::source_location is not to be had with every pair of compiler and library.
struct Where {
  const char* file;
  int line;
  static constexpr Where current(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return {file, line};
  }
};

// How a process ended.
struct ProgramEnd {
  int status = -1;  // exit status; -1 when a signal ended it
  int signal = 0;
  friend bool operator==(const ProgramEnd&, const ProgramEnd&) = default;
};

// A program in a pseudo terminal, with a screen that shows what it writes. A wait that fails reports the
// calling line and the whole screen, and ends the test. The destructor kills a program that still runs.
class PtyProgram {
 public:
  PtyProgram(const std::string& program, const ProgramOptions& options);
  ~PtyProgram();
  PtyProgram(const PtyProgram&) = delete;
  PtyProgram& operator=(const PtyProgram&) = delete;

  void send(std::string_view bytes, Where where = Where::current());
  void resize(int rows, int cols);
  void kill(int signal) const;
  void hang_up() { _terminal.hang_up(); }
  pid_t process() const { return _pid; }
  void wait_for(std::string_view text, Where where = Where::current());
  void wait_until(const std::function<bool(const TerminalScreen&)>& holds, std::string_view what,
                  Where where = Where::current());
  ProgramEnd wait_for_end(Where where = Where::current());

  const TerminalScreen& screen() const { return _screen; }
  std::string modes() const { return _terminal.modes(); }
  const std::string& modes_before() const { return _modes_before; }
  const TemporaryFolder& home() const { return _home; }
  std::string output() const;  // what went to standard output when that is no terminal
  std::string errors() const;  // what went to standard error

 private:
  void _start(const std::string& program, const ProgramOptions& options);
  bool _pump(std::chrono::milliseconds limit);  // false when nothing came
  bool _running();
  [[noreturn]] void _fail(const std::string& what, const Where& where) const;

  TemporaryFolder _home, _captured;
  PseudoTerminal _terminal;
  std::string _modes_before = _terminal.modes();
  TerminalScreen _screen;
  pid_t _pid = -1;
  std::optional<ProgramEnd> _end;
};

// The program under test, as built beside the tests.
std::string brenlow_program();

}  // namespace brenlow::test
