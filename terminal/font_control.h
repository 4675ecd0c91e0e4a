#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "terminal/detection.h"

namespace brenlow {

inline constexpr int FONT_MIN = 8;
inline constexpr int FONT_MAX = 72;
inline constexpr int FONT_STEP = 2;
inline constexpr int FONT_DEFAULT = 14;

// The font size of a terminal emulator, by whatever means its family offers. Sizes are points. What cannot be
// done is a plain false: there is a terminal for which each of these fails.
class FontController {
 public:
  explicit FontController(std::string tty = "/dev/tty", std::string search_path = {},
                          DetectedTerminal terminal = _detect_terminal());

  const std::string& kind() const { return _kind; }
  const std::string& reason() const { return _reason; }
  std::string debug_info() const;
  // Clamped to FONT_MIN and FONT_MAX. True says that the terminal was asked, where it gives no answer.
  bool set_size(int size);
  // To the size of the terminal's own configuration where it can be asked for that, else to `size`.
  bool reset(int size = 0);

  // A size change that the terminal has yet to carry out: until the window differs from `before`, or the
  // moment `until`, the input loop looks at the window and then serves it as a resize. Waiting here
  // instead would hold up every key. `before` is (-1, -1), unlike any window, where the size is unknown.
  struct ResizeWatch {
    std::pair<int, int> before;
    std::chrono::steady_clock::time_point until;
  };
  std::optional<ResizeWatch> resize_watch;

  bool in_tmux;
  bool in_screen;
  std::chrono::milliseconds tool_limit{2000};  // for each run of an external tool

 private:
  void _emit(const std::string& sequence) const;
  bool _kitty_set_font(int size) const;
  bool _alacritty_set_font(int size) const;
  bool _alacritty_reset_font() const;
  bool _macos_terminal_set_font(int size);
  bool _macos_generic_zoom(int size);
  bool _run_tool(const std::vector<std::string>& arguments, bool uses_terminal = false) const;
  void _signal_resize();

  std::string _tty;
  std::string _search_path;
  std::string _font_name;
  std::string _kind;
  std::string _reason;
  std::optional<int> _macos_last_size;
};

// Rows and columns of the terminal behind `descriptor`, or nothing.
std::optional<std::pair<int, int>> terminal_size(int descriptor);

}  // namespace brenlow
