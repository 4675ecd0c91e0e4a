#include "terminal/font_control.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "tests/support/pseudo_terminal.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::FakeEnvironment;
using test::FakeTools;
using test::PATIENCE;
using test::Variables;

FontController controller(const std::string& kind, const FakeTools& tools, const std::string& tty = "/nonexistent") {
  FontController made(tty, tools.search_path(), {kind, "told by the test"});
  made.tool_limit = PATIENCE;
  return made;
}

TEST(FontControl, EachTerminalIsAskedInItsOwnWay) {
  const FakeEnvironment environment;
  const FakeTools tools;
  for (const char* name : {"kitten", "alacritty", "osascript"}) tools.add(name, "");

  FontController kitty = controller("kitty", tools);
  EXPECT_TRUE(kitty.set_size(100));
  EXPECT_TRUE(kitty.reset());
  EXPECT_EQ(tools.take_log(), "kitten|@|set-font-size|--|72\nkitten|@|set-font-size|--|0\n");

  FontController alacritty = controller("alacritty", tools);
  EXPECT_TRUE(alacritty.set_size(-3));
  EXPECT_TRUE(alacritty.reset(14));
  EXPECT_EQ(tools.take_log(), "alacritty|msg|config|font.size=8\nalacritty|msg|config|-r\n");

  FontController macos = controller("macos_terminal", tools);
  EXPECT_TRUE(macos.set_size(20));
  EXPECT_EQ(tools.take_log(),
            "osascript|-e|tell application \"Terminal\" to set font size of current settings of front window to 20\n");
  EXPECT_TRUE(macos.resize_watch);

  FontController keys = controller("macos_generic", tools);
  EXPECT_TRUE(keys.set_size(20));
  EXPECT_EQ(tools.take_log(), "") << "the first size is the baseline";
  EXPECT_TRUE(keys.set_size(22));
  const std::string larger = "osascript|-e|tell application \"System Events\" to keystroke \"=\" using command down\n";
  EXPECT_EQ(tools.take_log(), larger + larger);
  EXPECT_TRUE(keys.reset(21));
  EXPECT_EQ(tools.take_log(),
            "osascript|-e|tell application \"System Events\" to keystroke \"-\" using command down\n");

  for (const char* kind : {"foot", "none"}) {
    const std::string tty = tools.folder().write("tty", "");
    EXPECT_FALSE(controller(kind, tools, tty).set_size(20));
    EXPECT_EQ(test::read_bytes(tty) + tools.take_log(), "");
  }
}

TEST(FontControl, ToolsThatFailOrHangAreAPlainNo) {
  const FakeEnvironment environment;
  const FakeTools tools;
  for (const char* kind : {"alacritty", "macos_terminal"}) EXPECT_FALSE(controller(kind, tools).set_size(20)) << kind;
  EXPECT_TRUE(controller("kitty", tools).set_size(20));

  tools.add("kitten", "exit 1");
  tools.add("kitty", "");
  tools.add("alacritty", test::HANG);
  tools.add("osascript", "exit 1");
  EXPECT_TRUE(controller("kitty", tools).set_size(20));
  EXPECT_EQ(tools.take_log(), "kitten|@|set-font-size|--|20\nkitty|@|set-font-size|--|20\n");
  FontController alacritty = controller("alacritty", tools);
  alacritty.tool_limit = std::chrono::milliseconds(50);
  EXPECT_FALSE(alacritty.set_size(20));
  tools.take_log();
  FontController keys = controller("macos_generic", tools);
  EXPECT_TRUE(keys.set_size(10));
  EXPECT_FALSE(keys.set_size(20));
  const std::string log = tools.take_log();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << "no further key after a failure";
}

TEST(FontControl, XtermGetsItsSequenceAndTheWindowIsWatched) {
  const FakeTools tools;
  auto sent = [&](const Variables& variables) {
    const FakeEnvironment environment(variables);
    const std::string tty = tools.folder().write("tty", "");
    EXPECT_TRUE(controller("xterm", tools, tty).set_size(16));
    return test::read_bytes(tty);
  };
  EXPECT_EQ(sent({{"TERM", "xterm"}}), "\x1b]50;font=*-16\x1b\\");
  EXPECT_EQ(sent({{"TMUX", "t"}}), "\x1bPtmux;\x1b\x1b]50;font=*-16\x1b\x1b\\\x1b\\");
  EXPECT_EQ(sent({{"TERM", "screen"}}), "");

  const FakeEnvironment environment(Variables{{"TERM", "xterm"}});
  const test::PseudoTerminal window(31, 97);
  FontController xterm = controller("xterm", tools, window.path());
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_TRUE(xterm.set_size(16));
  ASSERT_TRUE(xterm.resize_watch);
  EXPECT_EQ(xterm.resize_watch->before, std::pair(31, 97));
  EXPECT_GE(xterm.resize_watch->until, begun + std::chrono::milliseconds(300));
  window.resize(20, 60);
  EXPECT_EQ(terminal_size(window.slave()), std::pair(20, 60));
}

// In a background process group the system would stop the tool at its first step.
TEST(FontControl, KittysToolMayTalkToTheTerminalAndLeavesItsModesAlone) {
  const FakeEnvironment environment;
  const FakeTools tools;
  tools.add("kitten", "stty raw -echo < /dev/tty && echo talked > '" + tools.folder().file("outcome") + "'");
  const test::PseudoTerminal window(24, 80);
  const std::string modes = window.modes();
  const pid_t session = ::fork();
  ASSERT_GE(session, 0);
  if (session == 0) {
    ::setsid();
    const int terminal = ::open(window.path().c_str(), O_RDWR);
    ::ioctl(terminal, TIOCSCTTY, 0);
    ::signal(SIGHUP, SIG_IGN);
    const bool asked = controller("kitty", tools, "/dev/tty").set_size(20);
    ::_exit(asked ? 0 : 1);
  }
  int state = 0;
  ASSERT_EQ(::waitpid(session, &state, 0), session);
  EXPECT_EQ(state, 0);
  ASSERT_TRUE(std::filesystem::exists(tools.folder().file("outcome")));
  EXPECT_EQ(window.modes(), modes);
}

}  // namespace
}  // namespace brenlow
