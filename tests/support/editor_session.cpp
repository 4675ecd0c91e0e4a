#include "tests/support/editor_session.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "core/unicode.h"
#include "screen/curses.h"
#include "tests/support/pseudo_terminal.h"

namespace brenlow::test {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds STALL_LIMIT{30};
constexpr int WATCH_INTERVAL_MS = 50;
// A terminal in raw mode keeps at most 4095 bytes that nobody has read.
constexpr std::size_t MOST_TYPED_AHEAD = 4000;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

struct DeleteScreen {
  void operator()(SCREEN* screen) const {
    ::endwin();
    ::delscreen(screen);
  }
};

File open_stream(int descriptor, const char* mode) {
  return File(::fdopen(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0), mode));
}

// What the tester's own terminal and desktop say must not reach the session.
void set_environment(const std::string& home, const std::string& terminal_type) {
  for (const char* name :
       {"TERM_PROGRAM", "TMUX", "STY", "KITTY_WINDOW_ID", "KITTY_PID", "ALACRITTY_WINDOW_ID", "ALACRITTY_SOCKET",
        "FOOT_VERSION", "FOOT_SERVER_SOCKET", "VTE_VERSION", "WEZTERM_UNIX_SOCKET", "WEZTERM_PANE", "DISPLAY",
        "WAYLAND_DISPLAY", "Brenlow_FONT", "LINES", "COLUMNS", "ESCDELAY"})
    ::unsetenv(name);
  ::setenv("HOME", home.c_str(), 1);
  ::setenv("TERM", terminal_type.c_str(), 1);
  std::setlocale(LC_ALL, "C.UTF-8");
}

}  // namespace

// The pseudo terminal, the screen library on its one end, and on its other end a thread that takes the output
// as it comes, since a terminal that nobody reads stops the writer after some kilobytes.
class EditorSession::Terminal {
 public:
  Terminal(int rows, int cols, const std::string& type)
      : _pty(rows, cols),
        _picture(rows, cols),
        _reader([this] { _read(); }),
        _in(open_stream(_pty.slave(), "r")),
        _out(open_stream(_pty.slave(), "w")),
        _library(::newterm(type.c_str(), _out.get(), _in.get())) {
    if (!_library) throw std::runtime_error("newterm failed");
    ::noecho();
    ::cbreak();
  }
  ~Terminal() {
    _library.reset();
    _stop = true;
    _reader.join();
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int input() const { return _pty.slave(); }
  const std::string& path() const { return _pty.path(); }

  void resize(int rows, int cols) {
    screen();
    std::lock_guard lock(_mutex);
    _picture.resize(rows, cols);
    _pty.resize(rows, cols);
  }

  // Bytes are there for the session once this returns.
  void type(std::string_view bytes) {
    int before = _unread();
    if (bytes.size() + static_cast<std::size_t>(before) > MOST_TYPED_AHEAD)
      throw std::logic_error("more typed ahead than a terminal keeps");
    if (::write(_pty.master(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
      throw std::runtime_error("the terminal takes no input");
    auto until = steady_clock::now() + STALL_LIMIT;
    while (_unread() < before + static_cast<int>(bytes.size())) {
      if (steady_clock::now() > until) throw std::runtime_error("typed bytes do not arrive");
      pollfd waiting{input(), POLLIN, 0};
      ::poll(&waiting, 1, 1);
    }
  }

  // The screen after all that was written until now: a mark is sent along the same way, and waited for.
  const TerminalScreen& screen() {
    std::string mark = "\x1b]mark" + std::to_string(++_marks) + "\x1b\\";
    if (::write(_pty.slave(), mark.data(), mark.size()) != static_cast<ssize_t>(mark.size()))
      throw std::runtime_error("the terminal takes no output");
    std::unique_lock lock(_mutex);
    std::size_t end = std::string::npos;
    bool arrived =
        _output_came.wait_for(lock, STALL_LIMIT, [&] { return (end = _output.find(mark)) != std::string::npos; });
    if (!arrived) throw std::runtime_error("the terminal's output does not arrive");
    _picture.feed(std::string_view(_output).substr(0, end));
    _shown.append(_output, 0, end);
    _output.erase(0, end + mark.size());
    return _picture;
  }

  const std::string& output() {
    screen();
    return _shown;
  }

  // While one lives, the session must not wait longer than STALL_LIMIT.
  class Guard {
   public:
    explicit Guard(Terminal& terminal) : _terminal(terminal) { _set(steady_clock::now() + STALL_LIMIT); }
    ~Guard() { _set({}); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    void _set(std::optional<steady_clock::time_point> until) {
      std::lock_guard lock(_terminal._mutex);
      _terminal._stalled_at = until;
    }
    Terminal& _terminal;
  };

 private:
  int _unread() const {
    int count = 0;
    ::ioctl(_pty.slave(), FIONREAD, &count);
    return count;
  }

  void _read() {
    std::array<char, 65536> bytes;
    while (!_stop) {
      pollfd waiting{_pty.master(), POLLIN, 0};
      if (::poll(&waiting, 1, WATCH_INTERVAL_MS) > 0) {
        ssize_t count = ::read(_pty.master(), bytes.data(), bytes.size());
        std::lock_guard lock(_mutex);
        if (count > 0) _output.append(bytes.data(), static_cast<std::size_t>(count));
        _output_came.notify_all();
      }
      std::lock_guard lock(_mutex);
      if (_stalled_at && steady_clock::now() > *_stalled_at) _report_stall();
    }
  }

  [[noreturn]] void _report_stall() {
    _picture.feed(_output);
    std::fprintf(stderr, "The session waits for keys that never come, or hangs:\n%s", _picture.picture().c_str());
    std::fflush(nullptr);
    std::_Exit(1);
  }

  PseudoTerminal _pty;
  TerminalScreen _picture;
  std::mutex _mutex;  // guards _picture, _output and _stalled_at
  std::condition_variable _output_came;
  std::string _output;  // not yet fed to _picture
  std::string _shown;   // fed to it
  std::optional<steady_clock::time_point> _stalled_at;
  std::atomic<bool> _stop = false;
  int _marks = 0;
  std::thread _reader;
  File _in, _out;
  std::unique_ptr<SCREEN, DeleteScreen> _library;
};

EditorSession::EditorSession(const SessionOptions& options) {
  for (const auto& [name, content] : options.home_files) _home.write(name, content);
  set_environment(_home.path().string(), options.terminal_type);
  _terminal = std::make_unique<Terminal>(options.rows, options.cols, options.terminal_type);
  Machine machine;
  machine.files = config_files(_home.path().string());
  machine.tty = _terminal->path();
  machine.power_supplies = _home.folder("power");
  machine.font_dirs = {_home.folder("fonts")};
  machine.search_path = _home.folder("bin");
  machine.input = _terminal->input();
  machine.output = _terminal->input();
  std::optional<std::string> path = options.path;
  if (path) path = (_home.path() / *path).string();
  Terminal::Guard guard(*_terminal);
  _editor = std::make_unique<Editor>(::stdscr, path, std::move(machine));
  _editor->_prepare_terminal();
}

EditorSession::~EditorSession() = default;

void EditorSession::document(std::string_view notation) {
  MarkedDocument marked = parse_notation(notation);
  _editor->_reset_for_document(std::move(marked.document), _editor->filepath);
  _editor->cy = marked.cy;
  _editor->cx = marked.cx;
  _editor->_sel_anchor = marked.anchor;
}

std::string EditorSession::notation() const {
  return print_notation(
      MarkedDocument{.document = triple(), .cy = _editor->cy, .cx = _editor->cx, .anchor = _editor->_sel_anchor});
}

DocumentTriple EditorSession::triple() const {
  const LineList& lines = _editor->lines;
  const FormatList& formats = _editor->fmt_lines;
  return {.lines = {lines.begin(), lines.end()},
          .fmt_lines = {formats.begin(), formats.end()},
          .pagebreak_lines = _editor->pagebreak_lines};
}

void EditorSession::press(std::initializer_list<int> keys) {
  for (int key : keys) {
    Terminal::Guard guard(*_terminal);
    _editor->_handle_key(key);
    _editor->_check_session();
  }
}

void EditorSession::type(std::u32string_view text) {
  for (char byte : encode_utf8(text)) press(static_cast<unsigned char>(byte));
}

void EditorSession::type_ahead(std::string_view bytes) { _terminal->type(bytes); }

void EditorSession::feed(std::string_view bytes) {
  while (!bytes.empty()) {
    std::size_t count = std::min(bytes.size(), MOST_TYPED_AHEAD);
    // No escape sequence is cut in two: the session would take a pause within it for its end.
    if (std::size_t escape = bytes.rfind('\x1b', count - 1);
        count < bytes.size() && escape != std::string_view::npos && escape > 0)
      count = escape;
    type_ahead(bytes.substr(0, count));
    bytes.remove_prefix(count);
    while (_editor->_input_waiting()) _decide_next_key();
  }
}

// A pass of the loop without its drawing.
void EditorSession::_decide_next_key() {
  Terminal::Guard guard(*_terminal);
  int key = std::exchange(_editor->_pending_main_ch, NO_KEY);
  if (key == NO_KEY) key = _editor->_getch();
  if (key == KEY_ESC) {
    _editor->message.clear();
    key = _editor->_read_escape_seq();
  }
  _editor->_handle_key(key);
  _editor->_check_session();
}

void EditorSession::resize(int rows, int cols) {
  _terminal->resize(rows, cols);
  _editor->_serve_resize();
}

const TerminalScreen& EditorSession::draw() {
  Terminal::Guard guard(*_terminal);
  _editor->_ensure_cursor_visible();
  _editor->draw();
  return screen();
}

const std::string& EditorSession::output() { return _terminal->output(); }

const TerminalScreen& EditorSession::screen() { return _terminal->screen(); }

}  // namespace brenlow::test
