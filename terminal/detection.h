#pragma once

#include <string>

namespace brenlow {

struct DetectedTerminal {
  std::string kind;    // "kitty", "alacritty", "foot", "xterm", "macos_terminal", "macos_generic", "none"
  std::string reason;  // what told it, for the diagnostic output
};
// Which terminal the environment speaks of; `macos` stands for the platform. "foot" stands for all whose size
// only the user can change, by the terminal's own keys: recent VTE terminals and WezTerm too.
DetectedTerminal _detect_terminal(bool macos);
DetectedTerminal _detect_terminal();

// Whether the program runs on a Linux virtual console.
bool _is_linux_console(const std::string& tty = "/dev/tty");

}  // namespace brenlow
