#include "terminal/detection.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <optional>

#include "core/unicode.h"
#include "terminal/console_requests.h"
#include "terminal/environment.h"

namespace brenlow {

namespace {

#ifdef __APPLE__
constexpr bool ON_MACOS = true;
#else
constexpr bool ON_MACOS = false;
#endif

// VTE 0.60, the first that understands a change of the font by OSC 710.
constexpr long VTE_WITH_FONT_CHANGE = 6000;

bool any_set(std::initializer_list<const char*> names) {
  return std::ranges::any_of(names, [](const char* name) { return environment(name).has_value(); });
}

// Nothing for a text that is no decimal number.
std::optional<long> whole_number(std::string_view text) {
  text = trimmed(text);
  long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// By the variables that terminals leave for the programs inside them. Some are handed on by multiplexers and
// remote shells, so they say more than TERM.
std::optional<DetectedTerminal> detect_by_markers() {
  if (any_set({"KITTY_WINDOW_ID", "KITTY_PID"})) return {{"kitty", "KITTY_WINDOW_ID/KITTY_PID env var"}};
  if (any_set({"ALACRITTY_WINDOW_ID", "ALACRITTY_SOCKET"}))
    return {{"alacritty", "ALACRITTY_WINDOW_ID/ALACRITTY_SOCKET env var"}};
  if (any_set({"FOOT_VERSION", "FOOT_SERVER_SOCKET"})) return {{"foot", "FOOT_VERSION env var"}};
  if (const auto text = environment("VTE_VERSION")) {
    if (const auto version = whole_number(*text)) {
      if (*version >= VTE_WITH_FONT_CHANGE) return {{"foot", "VTE_VERSION=" + *text + " (≥0.60, OSC 710)"}};
      return {{"none", "VTE_VERSION=" + *text + " (too old for OSC 710)"}};
    }
  }
  if (any_set({"WEZTERM_UNIX_SOCKET", "WEZTERM_PANE"}))
    return {{"foot", "WEZTERM_UNIX_SOCKET/WEZTERM_PANE env var (OSC 710)"}};
  return std::nullopt;
}

DetectedTerminal detect_by_term() {
  const auto given = environment("TERM");
  const std::string term = lowered_ascii(given.value_or(""));
  const std::string reason = "TERM=" + term;
  if (term.find("kitty") != std::string::npos) return {"kitty", reason};
  if (term.find("alacritty") != std::string::npos) return {"alacritty", reason};
  if (term == "foot" || term.starts_with("foot-")) return {"foot", reason};
  if (term.starts_with("xterm")) return {"xterm", reason};
  return {"none", "TERM=" + given.value_or("(unset)") + " — no supported terminal detected"};
}

}  // namespace

DetectedTerminal _detect_terminal(bool macos) {
  if (auto marked = detect_by_markers()) return *std::move(marked);
  const auto given = environment("TERM_PROGRAM");
  const std::string program = lowered_ascii(given.value_or(""));
  if (program.find("wezterm") != std::string::npos) return {"foot", "TERM_PROGRAM=" + program + " (OSC 710)"};
  if (!macos) return detect_by_term();
  if (program == "apple_terminal") return {"macos_terminal", "TERM_PROGRAM=Apple_Terminal (AppleScript)"};
  return {"macos_generic", "macOS, TERM_PROGRAM=" + given.value_or("(unset)") + " (System Events keystroke)"};
}

DetectedTerminal _detect_terminal() { return _detect_terminal(ON_MACOS); }

bool _is_linux_console(const std::string& tty) {
  // Inside a graphical session TERM may still say "linux".
  if (any_set({"KITTY_WINDOW_ID", "KITTY_PID", "ALACRITTY_WINDOW_ID", "FOOT_VERSION", "FOOT_SERVER_SOCKET",
               "VTE_VERSION", "WEZTERM_UNIX_SOCKET", "WEZTERM_PANE", "DISPLAY", "WAYLAND_DISPLAY"}))
    return false;
  if (environment("TERM") == "linux") return true;
  int mode = 0;
  return console_ioctl(tty, KDGETMODE_REQUEST, &mode);
}

}  // namespace brenlow
