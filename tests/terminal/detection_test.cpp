#include "terminal/detection.h"

#include <gtest/gtest.h>

#include "tests/support/pseudo_terminal.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::FakeEnvironment;
using test::Variables;

TEST(Detection, EachTerminalIsToldByItsStrongestSign) {
  struct Case {
    Variables environment;
    bool macos;
    std::string kind, reason;
  };
  const std::string none = " — no supported terminal detected", keystroke = " (System Events keystroke)";
  const Case cases[] = {
      {{{"KITTY_PID", ""}, {"ALACRITTY_SOCKET", "s"}}, false, "kitty", "KITTY_WINDOW_ID/KITTY_PID env var"},
      {{{"FOOT_SERVER_SOCKET", "s"}, {"VTE_VERSION", "1"}}, true, "foot", "FOOT_VERSION env var"},
      {{{"VTE_VERSION", "5999"}, {"TERM", "xterm"}}, false, "none", "VTE_VERSION=5999 (too old for OSC 710)"},
      {{{"VTE_VERSION", "6000"}, {"WEZTERM_PANE", "0"}}, false, "foot", "VTE_VERSION=6000 (≥0.60, OSC 710)"},
      {{{"VTE_VERSION", ""}, {"TERM", "XTerm-256"}}, false, "xterm", "TERM=xterm-256"},
      {{{"TERM_PROGRAM", "My-WezTerm"}}, true, "foot", "TERM_PROGRAM=my-wezterm (OSC 710)"},
      {{{"TERM_PROGRAM", "Apple_Terminal"}}, true, "macos_terminal", "TERM_PROGRAM=Apple_Terminal (AppleScript)"},
      {{{"TERM_PROGRAM", "A"}, {"TERM", "xterm"}}, true, "macos_generic", "macOS, TERM_PROGRAM=A" + keystroke},
      {{{"TERM", "xterm"}}, true, "macos_generic", "macOS, TERM_PROGRAM=(unset)" + keystroke},
      {{{"TERM_PROGRAM", "Apple_Terminal"}, {"TERM", "XTERM-KITTY"}}, false, "kitty", "TERM=xterm-kitty"},
      {{{"TERM", "foot-extra"}}, false, "foot", "TERM=foot-extra"},
      {{{"TERM", "Footless"}}, false, "none", "TERM=Footless" + none},
      {{}, false, "none", "TERM=(unset)" + none},
  };
  for (const Case& c : cases) {
    const FakeEnvironment environment(c.environment);
    const DetectedTerminal found = _detect_terminal(c.macos);
    EXPECT_EQ(found.kind, c.kind) << c.reason;
    EXPECT_EQ(found.reason, c.reason);
  }
}

TEST(Detection, TheConsoleIsNotTakenForATerminalEmulator) {
  const test::PseudoTerminal emulator(24, 80);
  auto on_console = [&](const Variables& variables) {
    const FakeEnvironment environment(variables);
    return _is_linux_console(emulator.path());
  };
  EXPECT_TRUE(on_console({{"TERM", "linux"}}));
  EXPECT_FALSE(on_console({{"TERM", "linux"}, {"DISPLAY", ""}}));
  EXPECT_FALSE(on_console({{"TERM", "linux"}, {"VTE_VERSION", "7000"}}));
  EXPECT_FALSE(on_console({{"TERM", "xterm"}})) << "a pseudo terminal has no console mode";
}

}  // namespace
}  // namespace brenlow
