#pragma once

#include <array>

namespace brenlow {

// One integer space for keys: bytes 0 to 255 as the terminal sends them, the screen library's key
// codes, and the program's own tokens from 65537 upward.

// The screen library's codes (octal in its documentation); screen/curses.h checks them against it.
inline constexpr int KEY_DOWN = 0402;
inline constexpr int KEY_UP = 0403;
inline constexpr int KEY_LEFT = 0404;
inline constexpr int KEY_RIGHT = 0405;
inline constexpr int KEY_HOME = 0406;
inline constexpr int KEY_BACKSPACE = 0407;
inline constexpr int KEY_DC = 0512;
inline constexpr int KEY_NPAGE = 0522;
inline constexpr int KEY_PPAGE = 0523;
inline constexpr int KEY_ENTER = 0527;
inline constexpr int KEY_END = 0550;
inline constexpr int KEY_RESIZE = 0632;

inline constexpr int NO_KEY = -1;  // what a read without input gives

inline constexpr int _KEY_CTRL_G = 7;
inline constexpr int _KEY_CTRL_N = 14;
inline constexpr int KEY_ESC = 27;

inline constexpr int _KEY_CTRL_HOME = 65537;
inline constexpr int _KEY_CTRL_END = 65538;
inline constexpr int _KEY_CTRL_ALT_S = 65539;
inline constexpr int _KEY_CTRL_ALT_F = 65540;
inline constexpr int _KEY_CTRL_ALT_Z = 65541;
inline constexpr int _KEY_CTRL_ALT_U = 65542;
inline constexpr int _KEY_CTRL_ALT_B = 65543;
inline constexpr int _KEY_CTRL_ALT_E = 65544;
inline constexpr int _KEY_CTRL_ALT_H = 65545;
inline constexpr int _KEY_CTRL_ALT_O = 65546;
inline constexpr int _KEY_CTRL_LEFT = 65547;
inline constexpr int _KEY_CTRL_RIGHT = 65548;
inline constexpr int _KEY_SHIFT_LEFT = 65549;
inline constexpr int _KEY_SHIFT_RIGHT = 65550;
inline constexpr int _KEY_CTRL_SHIFT_LEFT = 65551;
inline constexpr int _KEY_CTRL_SHIFT_RIGHT = 65552;
inline constexpr int _KEY_SHIFT_UP = 65555;
inline constexpr int _KEY_SHIFT_DOWN = 65556;
inline constexpr int _KEY_CTRL_ALT_RBRACKET = 65558;
inline constexpr int _KEY_CTRL_ALT_BACKSLASH = 65559;
inline constexpr int _KEY_CTRL_SPACE = 65587;

// An expansion bound to a printable key is this plus the key's code.
inline constexpr int _KEY_EXPANSION_ALT_BASE = 131072;
// A "Ctrl+Alt+" letter of keys.conf is this plus the upper-case letter's code.
inline constexpr int _KEY_CTRL_ALT_LETTER_BASE = 0x100C0;

inline constexpr int _KEY_F_FIRST = 65568;
// F1 to F19.
inline constexpr std::array<int, 19> _KEY_F = [] {
  std::array<int, 19> keys{};
  for (int i = 0; i < 19; ++i) keys[static_cast<std::size_t>(i)] = _KEY_F_FIRST + i;
  return keys;
}();

inline constexpr bool is_backspace(int key) { return key == KEY_BACKSPACE || key == 127 || key == 8; }

}  // namespace brenlow
