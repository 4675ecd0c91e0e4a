// A whole session: the input chooses the document, the settings and the size of the terminal, and then is what a user
// types, with pauses and changes of the size in between. The session checks its invariants after each key (a debug
// build); at its end the history must lead back and forth to the same text, and the terminal must have been sent plain
// print alone.

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

#include "core/editor.h"
#include "core/signals.h"
#include "core/unicode.h"
#include "documents/file_access.h"
#include "documents/odt_writer.h"
#include "fuzz/confined_folder.h"
#include "screen/curses.h"
#include "tests/support/notation.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/terminal_bytes.h"
#include "tests/support/terminal_screen.h"

#ifdef NDEBUG
#error "the session checks its invariants in debug builds only"
#endif

namespace brenlow::fuzz {

namespace {

constexpr std::size_t HEADER = 4;                    // document, settings, rows, columns
constexpr std::uint8_t PAUSE = 0xFE, RESIZE = 0xFF;  // neither is ever part of UTF-8
constexpr std::size_t BURST = 32;                    // keys that arrive at once, at most
constexpr int MOST_ROWS = 60, MOST_COLS = 140;
constexpr int ARRIVAL_LIMIT_MS = 10'000;
constexpr int NOT_RUN = 3;  // exit status; the build tells it to the test runner

[[noreturn]] void fail(const std::string& what) {
  leave_confinement();
  std::fprintf(stderr, "%s\n", what.c_str());
  std::abort();
}

// Plays the input as a terminal does: whenever the session waits, the next burst of keys arrives, or the window
// changes its size. Behind the last one the terminal is gone.
class Typist {
 public:
  // `output`: the file that holds what the session has written to its terminal.
  Typist(std::string_view input, int output)
      : _input(input), _output(output), _terminal(std::make_unique<test::PseudoTerminal>(24, 80)) {
    ::termios raw{};
    ::tcgetattr(descriptor(), &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(descriptor(), TCSANOW, &raw);
    playing = this;
  }
  ~Typist() { playing = nullptr; }
  Typist(const Typist&) = delete;
  Typist& operator=(const Typist&) = delete;

  int descriptor() const { return _terminal->slave(); }
  void resize(int rows, int cols) {
    struct stat info {};
    ::fstat(_output, &info);
    _sizes.push_back({static_cast<std::size_t>(info.st_size), 1 + rows % MOST_ROWS, 1 + cols % MOST_COLS});
    _terminal->resize(_sizes.back().rows, _sizes.back().cols);
  }
  struct Size {
    std::size_t since;  // bytes of output
    int rows, cols;
  };
  const std::vector<Size>& sizes() const { return _sizes; }

  // As ppoll; `patient`: the session has nothing else to do for a while.
  int wait(pollfd* waiting, bool patient) {
    if (int ready = ::poll(waiting, 1, 0); ready != 0 || !patient) return ready;
    if (_input.empty()) {
      _terminal->hang_up();
    } else if (static_cast<std::uint8_t>(_input[0]) == RESIZE && _input.size() > 2) {
      resize(static_cast<std::uint8_t>(_input[1]), static_cast<std::uint8_t>(_input[2]));
      _input.remove_prefix(3);
      Editor::_sigwinch_pending = 1;
      errno = EINTR;
      return -1;
    } else {
      _type_burst();
    }
    return ::poll(waiting, 1, ARRIVAL_LIMIT_MS);
  }

  static Typist* playing;

 private:
  void _type_burst() {
    constexpr char STOPS[] = {static_cast<char>(PAUSE), static_cast<char>(RESIZE)};
    if (static_cast<std::uint8_t>(_input[0]) == PAUSE && _input.size() > 1) _input.remove_prefix(1);
    std::size_t stop = _input.find_first_of({STOPS, std::size(STOPS)}, 1);
    std::string_view keys = _input.substr(0, std::min(stop, BURST));
    if (::write(_terminal->master(), keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
      fail("the terminal takes no input");
    _input.remove_prefix(keys.size());
  }

  std::string_view _input;
  int _output;
  std::vector<Size> _sizes;
  std::unique_ptr<test::PseudoTerminal> _terminal;
};

Typist* Typist::playing = nullptr;

// What stays from one input to the next: a folder to work in and the screen library, whose output goes to a file there.
class Stage {
 public:
  static Stage& only() {
    static Stage stage;
    return stage;
  }
  Stage() {
    _odt = odt_document();
    _output = ::open((_folder.path() + "/terminal").c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ::clearenv();
    ::setenv("TERM", "xterm-256color", 1);
    ::setenv("HOME", "/home", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    if (_output < 0 || !::newterm("xterm-256color", ::fdopen(_output, "w"), std::fopen("/dev/null", "r")))
      fail("no screen");
  }

  void play(std::string_view input);

 private:
  std::string odt_document() {
    auto [document, cy, cx, anchor] = test::parse_notation(
        "# One\nplain <b>bold <i>both</i></b> and <i>italic</i> words that are long enough to be wrapped at the edge "
        "of "
        "a terminal, and then once more\n⏎# Two\n- a list item, long enough to be wrapped as well, which indents its "
        "second row by two columns\n\n## Two and a half\n<b>whole</b>\n⏎\nlast");
    std::string path = _folder.path() + "/made.odt";
    lines_to_odt(document.lines, path, std::nullopt, document.fmt_lines, document.pagebreak_lines);
    std::string bytes = read_file(path, 1 << 20);
    std::filesystem::remove(path);
    return bytes;
  }
  void prepare_files(std::uint8_t settings);
  void make_files(std::uint8_t settings);
  std::string output();
  std::vector<test::Cell> shown_frame(Editor& editor, const Typist& typist);
  void check_frame(Editor& editor, const Typist& typist);

  ConfinedFolder _folder;
  std::string _odt;
  int _output = -1;
  std::string _stamp;            // of the files when they were made,
  std::optional<int> _settings;  // and for which settings
};

constexpr std::array DOCUMENTS = {
    "", "story.odt", "notes.md", "scene.fountain", "new.txt", "hostile\x1b]2;x\x07\xff.txt"};

// Path, size and time of change of every file that a session can reach.
std::string stamp_of_files() {
  std::string stamp;
  for (const char* folder : {"/home", "/work"}) {
    std::error_code error;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, error)) {
      struct stat info {};
      ::lstat(entry.path().c_str(), &info);
      stamp += entry.path().string() + ' ' + std::to_string(info.st_size) + ' ' + std::to_string(info.st_mtim.tv_sec) +
               '.' + std::to_string(info.st_mtim.tv_nsec) + '\n';
    }
  }
  return stamp;
}

// The files are made anew only when a session has left others: that takes longer than most sessions.
void Stage::prepare_files(std::uint8_t settings) {
  std::filesystem::current_path("/");
  if (_settings != settings || _stamp != stamp_of_files()) {
    std::filesystem::remove_all("/home");
    std::filesystem::remove_all("/work");
    make_files(settings);
    _settings = settings;
    _stamp = stamp_of_files();
  }
  std::filesystem::current_path("/work");
}

void Stage::make_files(std::uint8_t settings) {
  std::filesystem::create_directories("/home");
  std::filesystem::create_directories("/work/folder");
  auto yes = [settings](int bit) { return (settings >> bit & 1) != 0; };
  SettingsMap chosen;
  chosen.set("typewriter", yes(0));
  chosen.set("fold_hierarchical", yes(1));
  chosen.set("smart_quotes", yes(2));
  chosen.set("margin_left", (settings >> 3 & 3) * 20LL);
  chosen.set("margin_top", (settings >> 5 & 3) * 30LL);
  chosen.set("default_extension", std::string(yes(7) ? "md" : "odt"));
  complete_config(chosen);
  const ConfigFiles files = config_files("/home");
  save_config(files, chosen);
  write_file(files.EXPANSIONS_FILE, "expansion_key: F5\nA: \"Alexandra\"\nZ: \"# \xc3\xa4 'x'\"\n");
  _load_keymap(files);
  for (const char* extension : {"odt", "md", "fountain", "txt"}) load_syntax_config(files, extension);

  write_file("/work/story.odt", _odt);
  write_file("/work/notes.md", "# A\n*text* `code` a a a\n## A1\n\n# B\nword word\n- item\n# C\n");
  write_file("/work/scene.fountain", "INT. HOUSE - DAY\r\n\r\nANNA\r\n(whispers)\r\nHello.\r\n# Act\r\nFADE OUT\r\n");
  write_file(std::string("/work/") + DOCUMENTS.back(),
             "a\tb\x1b[31mred\xc2\x9b\xe2\x80\xae"
             "txt\x01\xf0\x9f\x98\x80\xe4\xb8\xad");
  write_file("/work/folder/inner.txt", "inner\nword\n");
}

std::string Stage::output() {
  std::string bytes;
  std::array<char, 65536> buffer;
  while (ssize_t count = ::pread(_output, buffer.data(), buffer.size(), static_cast<off_t>(bytes.size()))) {
    if (count < 0) fail("the output cannot be read");
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return bytes;
}

DocumentTriple document_of(const Editor& editor) {
  return {{editor.lines.begin(), editor.lines.end()},
          {editor.fmt_lines.begin(), editor.fmt_lines.end()},
          editor.pagebreak_lines};
}

DocumentTriple walk_history(Editor& editor, std::deque<UndoRecord>& from, void (Editor::*step)()) {
  while (!from.empty()) {
    (editor.*step)();
    editor._check_session();
  }
  return document_of(editor);
}

void check_history(Editor& editor) {
  const DocumentTriple last = walk_history(editor, editor._redo_stack, &Editor::do_redo);
  const DocumentTriple first = walk_history(editor, editor._undo_stack, &Editor::do_undo);
  if (last != walk_history(editor, editor._redo_stack, &Editor::do_redo)) fail("redo does not lead to the last text");
  if (first != walk_history(editor, editor._undo_stack, &Editor::do_undo)) fail("undo does not lead to the first text");
}

// Whether every terminal takes the same number of cells for it.
bool width_is_sure(char32_t c) {
  return c < 0x300 || (c >= 0x2010 && c < 0x2027) || (c >= 0x2190 && c < 0x2194) || (c >= 0x2500 && c < 0x2580) ||
         c == 0x25BA || (c >= 0x4E00 && c < 0x9FF0) || c == 0xFFFD || (c >= 0x1F600 && c < 0x1F640);
}

// What the terminal shows, one cell behind the other, once the session has drawn a frame.
std::vector<test::Cell> Stage::shown_frame(Editor& editor, const Typist& typist) {
  editor._ensure_cursor_visible();
  editor.draw();
  const std::string written = output();
  test::TerminalScreen screen(typist.sizes().front().rows, typist.sizes().front().cols);
  std::size_t at = 0;
  for (const Typist::Size& size : typist.sizes()) {
    screen.feed(std::string_view(written).substr(at, size.since - at));
    screen.resize(size.rows, size.cols);
    at = size.since;
  }
  screen.feed(std::string_view(written).substr(at));
  std::vector<test::Cell> cells;
  for (int row = 0; row < screen.rows(); ++row)
    for (int column = 0; column < screen.cols(); ++column) {
      test::Cell cell = screen.cell(row, column);
      // The second half of a wide character has no look of its own.
      cells.push_back(cell.text.empty() ? test::Cell{} : cell);
    }
  if (std::pair(screen.cursor_row(), screen.cursor_col()) != editor._canvas.cursor()) fail("the cursor is elsewhere");
  return cells;
}

// A frame drawn over the last one shows what it shows on an empty screen.
void Stage::check_frame(Editor& editor, const Typist& typist) {
  // A size that came behind the last key is never taken over: the terminal that could tell it is gone.
  if (Editor::_sigwinch_pending || !std::ranges::all_of(decode_utf8(output()), width_is_sure)) return;
  const std::vector<test::Cell> patched = shown_frame(editor, typist);
  editor._serve_resize();
  const std::vector<test::Cell> fresh = shown_frame(editor, typist);
  for (std::size_t i = 0; i < fresh.size(); ++i)
    if (!(patched[i] == fresh[i]))
      fail("cell " + std::to_string(i) + " of " + std::to_string(fresh.size()) + " shows '" + patched[i].text +
           "', and '" + fresh[i].text + "' on an empty screen");
}

void Stage::play(std::string_view input) {
  if (input.size() < HEADER) return;
  auto header = [input](std::size_t i) { return static_cast<std::uint8_t>(input[i]); };
  if (::ftruncate(_output, 0) != 0) fail("the output cannot be emptied");
  Typist typist(input.substr(HEADER), _output);
  typist.resize(header(2), header(3));
  _folder.enter();
  prepare_files(header(1));
  Editor::_internal_clipboard.clear();
  Editor::_internal_clipboard_fmt.clear();
  Editor::_internal_clipboard_pbl.clear();

  Machine machine;
  machine.tty = "/terminal";
  machine.power_supplies = machine.search_path = "/none";
  machine.font_dirs = {"/none"};
  machine.input = typist.descriptor();
  machine.output = _output;
  std::string document = DOCUMENTS[header(0) % DOCUMENTS.size()];
  try {
    Editor editor(::stdscr, document.empty() ? std::nullopt : std::optional(document), machine);
    try {
      editor.run();
    } catch (const StopRequest&) {
    } catch (const EndRequest&) {
    }
    check_frame(editor, typist);
    check_history(editor);
    check_frame(editor, typist);
  } catch (const std::exception& failure) {
    fail(failure.what());
  }
  std::string foreign = test::foreign_output(output());
  if (!foreign.empty()) fail("the terminal was sent something else than print: " + foreign);
  _folder.leave();
}

}  // namespace

}  // namespace brenlow::fuzz

// Stands in the way of the session's only wait for input (see the link options).
extern "C" int __wrap_ppoll(pollfd* waiting, nfds_t, const timespec* limit, const sigset_t*) {  // NOLINT
  bool patient = !limit || limit->tv_sec > 0 || limit->tv_nsec > 0;
  return brenlow::fuzz::Typist::playing->wait(waiting, patient);
}

// Called before the fuzzer starts a thread of its own: only a process of one thread can be confined.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  try {
    brenlow::fuzz::Stage::only();
  } catch (const std::system_error& refused) {
    std::fprintf(stderr, "Not run, since this system does not let a process be confined: %s\n", refused.what());
    std::_Exit(brenlow::fuzz::NOT_RUN);
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  brenlow::fuzz::Stage::only().play({reinterpret_cast<const char*>(data), size});
  return 0;
}
