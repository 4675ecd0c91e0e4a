#include "terminal/font_control.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "terminal/child_process.h"
#include "terminal/descriptor.h"
#include "terminal/environment.h"
#include "terminal/escapes.h"

namespace brenlow {

namespace {

constexpr std::chrono::milliseconds RESIZE_LIMIT{300};

// The variables that the choice of a family rests on.
constexpr std::array<const char*, 10> REPORTED_VARIABLES = {"TERM",
                                                            "TERM_PROGRAM",
                                                            "COLORTERM",
                                                            "KITTY_WINDOW_ID",
                                                            "ALACRITTY_WINDOW_ID",
                                                            "ALACRITTY_SOCKET",
                                                            "FOOT_VERSION",
                                                            "VTE_VERSION",
                                                            "WEZTERM_UNIX_SOCKET",
                                                            "TMUX"};

// The terminal's modes as they are now, put back at the end: a tool that is killed cannot do it itself.
class KeptModes {
 public:
  explicit KeptModes(const std::string& tty)
      : _terminal(open_without_waiting(tty, O_RDONLY)), _known(::tcgetattr(_terminal.get(), &_modes) == 0) {}
  KeptModes(const KeptModes&) = delete;
  KeptModes& operator=(const KeptModes&) = delete;
  ~KeptModes() {
    if (_known) ::tcsetattr(_terminal.get(), TCSANOW, &_modes);
  }

 private:
  Descriptor _terminal;
  ::termios _modes{};
  bool _known;
};

std::string rule(int width) {
  std::string drawn;
  for (int i = 0; i < width; ++i) drawn += "─";
  return drawn;
}

}  // namespace

std::optional<std::pair<int, int>> terminal_size(int descriptor) {
  struct winsize size {};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) return std::nullopt;
  return std::pair<int, int>(size.ws_row, size.ws_col);
}

FontController::FontController(std::string tty, std::string search_path, DetectedTerminal terminal)
    : in_tmux(environment("TMUX").has_value()),
      in_screen(environment("TERM").value_or("").starts_with("screen")),
      _tty(std::move(tty)),
      _search_path(std::move(search_path)),
      _font_name(environment("Brenlow_FONT").value_or("monospace")),
      _kind(std::move(terminal.kind)),
      _reason(std::move(terminal.reason)) {}

std::string FontController::debug_info() const {
  auto truth = [](bool value) { return value ? "true" : "false"; };
  std::string report = "── brenlow font-debug ─────────────────────────────\n";
  report += "  Detected kind : " + _kind + "\n";
  report += "  Reason        : " + _reason + "\n";
  report += std::string("  In tmux       : ") + truth(in_tmux) + "\n";
  report += std::string("  In screen     : ") + truth(in_screen) + "\n";
  report += "  Font name     : " + _font_name + "  (override: Brenlow_FONT=…)\n\n";
  report += "  Relevant env vars:\n";
  for (std::string name : REPORTED_VARIABLES) {
    const std::string value = environment(name.c_str()).value_or("(unset)");
    name.resize(24, ' ');
    report.append("    ").append(name).append(" = ").append(value).append("\n");
  }
  return report + rule(48);
}

bool FontController::set_size(int size) {
  size = std::clamp(size, FONT_MIN, FONT_MAX);
  if (_kind == "kitty") {
    _kitty_set_font(size);
    return true;
  }
  if (_kind == "alacritty") return _alacritty_set_font(size);
  if (_kind == "macos_terminal") return _macos_terminal_set_font(size);
  if (_kind == "macos_generic") return _macos_generic_zoom(size);
  if (_kind != "xterm") return false;
  _emit(_osc(50, "font=*-" + std::to_string(size)));
  _signal_resize();
  return true;
}

bool FontController::reset(int size) {
  if (_kind == "kitty") {
    _kitty_set_font(0);
    return true;
  }
  if (_kind == "alacritty") return _alacritty_reset_font();
  return set_size(size);
}

void FontController::_emit(const std::string& sequence) const {
  if (_kind == "none" || in_screen) return;
  write_to_terminal(in_tmux ? _dcs_passthrough(sequence) : sequence, _tty);
}

bool FontController::_run_tool(const std::vector<std::string>& arguments, bool uses_terminal) const {
  ChildOptions options;
  options.time_limit = tool_limit;
  options.search_path = _search_path;
  options.uses_terminal = uses_terminal;
  const auto result = run_child(arguments, options);
  return result && result->status == 0;
}

bool FontController::_kitty_set_font(int size) const {
  // Without a socket of its own the tool sends its request through the terminal and reads the answer there.
  const KeptModes modes(_tty);
  const bool uses_terminal = true;
  for (const char* tool : {"kitten", "kitty"})
    if (_run_tool({tool, "@", "set-font-size", "--", std::to_string(size)}, uses_terminal)) return true;
  return false;
}

bool FontController::_alacritty_set_font(int size) const {
  return _run_tool({"alacritty", "msg", "config", "font.size=" + std::to_string(size)});
}

bool FontController::_alacritty_reset_font() const { return _run_tool({"alacritty", "msg", "config", "-r"}); }

bool FontController::_macos_terminal_set_font(int size) {
  const std::string script =
      "tell application \"Terminal\" to set font size of current settings of front window to " + std::to_string(size);
  if (!_run_tool({"osascript", "-e", script})) return false;
  _signal_resize();
  return true;
}

// There is no way to set a size, only to press the terminal's own keys: the first call sets the baseline.
bool FontController::_macos_generic_zoom(int size) {
  const int delta = size - _macos_last_size.value_or(size);
  _macos_last_size = size;
  const std::string script = std::string("tell application \"System Events\" to keystroke \"") +
                             (delta > 0 ? "=" : "-") + "\" using command down";
  for (int pressed = 0; pressed < std::abs(delta); ++pressed)
    if (!_run_tool({"osascript", "-e", script})) return false;
  return true;
}

void FontController::_signal_resize() {
  const Descriptor terminal = open_without_waiting(_tty, O_RDONLY);
  auto size = terminal_size(terminal.get());
  if (!size) size = terminal_size(STDOUT_FILENO);
  resize_watch = ResizeWatch{size.value_or(std::pair(-1, -1)), std::chrono::steady_clock::now() + RESIZE_LIMIT};
}

}  // namespace brenlow
