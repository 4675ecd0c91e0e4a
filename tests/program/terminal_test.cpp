#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/pty_program.h"

namespace brenlow::test {
namespace {

constexpr std::string_view QUIT = "\x11";  // Ctrl+Q

// A document of one paragraph longer than a small screen.
ProgramOptions with_document() {
  ProgramOptions options;
  options.home_files["walk.txt"] = "# Walk\n\nWe set out at dawn and kept to the river until the mill came in sight.";
  options.arguments = {"walk.txt"};
  return options;
}

TEST(Terminal, IsGivenBackAsItWas) {
  PtyProgram program(brenlow_program(), with_document());
  program.wait_for("Opened: walk.txt");
  EXPECT_TRUE(program.screen().alternate());
  EXPECT_NE(program.screen().cursor_shape(), 0);
  EXPECT_NE(program.modes(), program.modes_before());
  program.send(QUIT);
  EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 0, .signal = 0}));
  EXPECT_EQ(program.modes(), program.modes_before());
  EXPECT_EQ(program.screen().cursor_shape(), 0);
  EXPECT_TRUE(program.screen().cursor_visible());
  EXPECT_FALSE(program.screen().alternate());
  EXPECT_EQ(program.errors(), "");
}

TEST(Terminal, KeysAndSignalsThatStopOtherProgramsDoNotStopTheSession) {
  PtyProgram program(brenlow_program(), with_document());
  program.wait_for("Opened: walk.txt");
  program.kill(SIGTSTP);
  program.send("\x1a\x03\x1c");  // Ctrl+Z, Ctrl+C, Ctrl+\ are undo, copy and zoom
  program.send("unstopped ");
  program.wait_for("unstopped # Walk");
}

// Sizes change while letters come in: none is lost, and the last size shows the document in order.
TEST(Terminal, ResizingWhileTypingLosesNothing) {
  PtyProgram program(brenlow_program(), with_document());
  program.wait_for("Opened: walk.txt");
  const std::vector<std::pair<int, int>> sizes = {{1, 1}, {1, 80}, {24, 1}, {2, 2}, {3, 5}, {60, 200}, {24, 80}};
  std::mt19937 random(20240611);
  std::string typed;
  for (int step = 0; step < 120; ++step) {
    auto [rows, cols] = sizes[random() % sizes.size()];
    if (random() % 2 == 0) program.resize(rows, cols);
    std::string letter(1, static_cast<char>('a' + random() % 26));
    typed += letter;
    program.send(letter);
  }
  program.resize(40, 150);
  program.wait_for(typed + "# Walk");
  program.resize(10, 40);
  program.wait_for("river until the mill came in sight.");
}

// Every dialog is asked for on a screen of one cell, grown, and shrunk again.
TEST(Terminal, DialogsSurviveEverySizeAndComeBackWhole) {
  for (const auto& [keys, title, leave] :
       std::initializer_list<std::tuple<std::string_view, std::string_view, std::string_view>>{
           {"\x06", "Find: ", "\x1b"},
           {std::string_view("\0", 1), "Press any key to return", "q"},
           {"\x1b?", "About Brenlow", "q"},
           {"\x1bk", "Unicode character table", "\x1b"},
           {"x\x11", "Unsaved changes. Save before exit?", "c"},
       }) {
    SCOPED_TRACE(title);
    PtyProgram program(brenlow_program(), with_document());
    program.wait_for("Opened: walk.txt");
    program.send(keys);
    program.wait_for(title);
    for (auto [rows, cols] : {std::pair(1, 1), std::pair(2, 7), std::pair(30, 1), std::pair(1, 90)}) {
      program.resize(rows, cols);
      program.send("\x1b[B");
    }
    program.resize(24, 80);
    program.wait_for(title);
    program.send(leave);
    program.wait_until([text = title](const TerminalScreen& screen) { return !screen.shows(text); },
                       "the dialog's end");
    program.send("back again");
    program.wait_for("back again");
  }
}

}  // namespace
}  // namespace brenlow::test
