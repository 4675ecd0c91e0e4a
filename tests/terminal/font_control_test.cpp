#include "terminal/font_control.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/support/pseudo_terminal.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

class FontControl : public testing::Test {
 protected:
  FontController controller(const std::string& kind, const std::string& tty = "/nonexistent") const {
    FontController made(tty, tools.search_path(), {kind, "told by the test"});
    made.tool_limit = test::PATIENCE;
    return made;
  }
  test::FakeEnvironment environment;
  test::FakeTools tools;
};

TEST_F(FontControl, EachTerminalIsAskedInItsOwnWay) {
  for (const char* name : {"kitten", "alacritty", "osascript"}) tools.add(name, "");
  const std::string keystroke = "osascript|-e|tell application \"System Events\" to keystroke ";
  const std::string terminal_app = "osascript|-e|tell application \"Terminal\" to set font size of current settings of";
  struct Case {
    std::string kind;
    int size, startup;
    std::string sized, put_back;
  };
  for (const Case& c :
       {Case{"kitty", 100, 0, "kitten|@|set-font-size|--|72\n", "kitten|@|set-font-size|--|0\n"},
        Case{"alacritty", -3, 14, "alacritty|msg|config|font.size=8\n", "alacritty|msg|config|-r\n"},
        Case{"macos_terminal", 20, 9, terminal_app + " front window to 20\n", terminal_app + " front window to 9\n"},
        // The first size is the baseline for the keys.
        Case{"macos_generic", 20, 22, "",
             keystroke + "\"=\" using command down\n" + keystroke + "\"=\" using command down\n"}}) {
    FontController font = controller(c.kind);
    EXPECT_TRUE(font.set_size(c.size));
    EXPECT_EQ(tools.take_log(), c.sized);
    EXPECT_TRUE(c.startup ? font.reset(c.startup) : font.reset());
    EXPECT_EQ(tools.take_log(), c.put_back);
  }
  for (const char* kind : {"foot", "none"}) {
    const std::string tty = tools.folder().write("tty", "");
    EXPECT_FALSE(controller(kind, tty).set_size(20));
    EXPECT_EQ(test::read_bytes(tty) + tools.take_log(), "");
  }
}

TEST_F(FontControl, ToolsThatFailOrHangAreAPlainNo) {
  for (const char* kind : {"alacritty", "macos_terminal"}) EXPECT_FALSE(controller(kind).set_size(20)) << kind;
  tools.add("kitten", "exit 1");
  tools.add("kitty", "");
  tools.add("alacritty", test::HANG);
  tools.add("osascript", "exit 1");
  EXPECT_TRUE(controller("kitty").set_size(20));
  EXPECT_EQ(tools.take_log(), "kitten|@|set-font-size|--|20\nkitty|@|set-font-size|--|20\n");
  FontController alacritty = controller("alacritty"), keys = controller("macos_generic");
  alacritty.tool_limit = std::chrono::milliseconds(50);
  EXPECT_FALSE(alacritty.set_size(20));
  tools.take_log();
  EXPECT_TRUE(keys.set_size(10));
  EXPECT_FALSE(keys.set_size(20));
  EXPECT_EQ(tools.take_log().find("osascript", 1), std::string::npos) << "no further key after a failure";
}

TEST_F(FontControl, XtermGetsItsSequenceAndTheWindowIsWatched) {
  const std::string tty = tools.folder().write("tty", "");
  EXPECT_TRUE(controller("xterm", tty).set_size(16));
  EXPECT_EQ(test::read_bytes(tty), "\x1b]50;font=*-16\x1b\\");
  const test::FakeEnvironment tmux(test::Variables{{"TMUX", "t"}});
  EXPECT_TRUE(controller("xterm", tty).set_size(16));
  EXPECT_TRUE(test::read_bytes(tty).ends_with("\x1bPtmux;\x1b\x1b]50;font=*-16\x1b\x1b\\\x1b\\"));
  const test::PseudoTerminal window(31, 97);
  FontController xterm = controller("xterm", window.path());
  EXPECT_TRUE(xterm.set_size(16));
  ASSERT_TRUE(xterm.resize_watch);
  EXPECT_EQ(xterm.resize_watch->before, std::pair(31, 97));
}

// In a background process group the system would stop the tool at its first step.
TEST_F(FontControl, KittysToolMayTalkToTheTerminalAndLeavesItsModesAlone) {
  tools.add("kitten", "stty raw -echo < /dev/tty && echo talked > '" + tools.folder().file("outcome") + "'");
  const test::PseudoTerminal window(24, 80);
  const std::string modes = window.modes();
  const pid_t session = ::fork();
  if (session == 0) {
    ::setsid();
    ::ioctl(::open(window.path().c_str(), O_RDWR), TIOCSCTTY, 0);
    ::signal(SIGHUP, SIG_IGN);
    ::_exit(controller("kitty", "/dev/tty").set_size(20) ? 0 : 1);
  }
  int state = 0;
  ASSERT_EQ(::waitpid(session, &state, 0), session);
  EXPECT_EQ(state, 0);
  EXPECT_TRUE(std::filesystem::exists(tools.folder().file("outcome")));
  EXPECT_EQ(window.modes(), modes);
}

}  // namespace
}  // namespace brenlow
