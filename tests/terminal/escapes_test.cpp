#include "terminal/escapes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/colours.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::FakeEnvironment;
using test::TemporaryFolder;
using test::Variables;

TEST(Escapes, APaletteColourReachesTheTerminalAlsoThroughTmux) {
  const TemporaryFolder folder;
  auto sent = [&](const Variables& variables) {
    const FakeEnvironment environment(variables);
    const std::string tty = folder.write("tty", "");
    const bool written = _send_osc4_color(5, 1, 2, 255, tty);
    EXPECT_EQ(written, !test::read_bytes(tty).empty());
    return test::read_bytes(tty);
  };
  EXPECT_EQ(sent({{"TERM", "xterm"}}), "\x1b]4;5;rgb:01/02/ff\x1b\\");
  EXPECT_EQ(sent({{"TERM", "tmux"}, {"TMUX", ""}}), "\x1bPtmux;\x1b\x1b]4;5;rgb:01/02/ff\x1b\x1b\\\x1b\\");
  EXPECT_EQ(sent({{"TERM", "screen.xterm"}, {"TMUX", "t"}}), "");
  EXPECT_EQ(sent({{"TERM", "linux"}}), "");
}

TEST(Escapes, ATerminalThatCannotBeWrittenIsToldAndNeverWaitedFor) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
  for (const char* name : {"pipe", "absent", ""}) EXPECT_FALSE(write_to_terminal("x", folder.file(name))) << name;
}

TEST(Escapes, AColourFallsBackToTheOneThatLooksNearest) {
  EXPECT_EQ(_nearest_named_color(255, 200, 0), COLOR_YELLOW);
  EXPECT_EQ(_nearest_named_color(30, 144, 255), COLOR_CYAN);
  EXPECT_EQ(_nearest_named_color(0, 0, 119), COLOR_BLACK) << "as far from blue: the first counts";
}

}  // namespace
}  // namespace brenlow
