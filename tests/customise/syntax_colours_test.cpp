#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <set>

#include "core/editor.h"
#include "screen/curses.h"
#include "tests/support/editor_session.h"

namespace brenlow::test {

namespace {

constexpr StyleSpec CYAN{StyleSpec::Kind::color, COLOR_CYAN, 0, 0, 0};
constexpr StyleSpec GREY{StyleSpec::Kind::rgb, 0, 0x88, 0x88, 0x88};

// The pairs are the process's own, so every terminal type has a process of its own.
void on_terminal(const SessionOptions& options, const std::function<void(EditorSession&)>& look) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        EditorSession session(options);
        look(session);
        std::fflush(nullptr);
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "")
      << options.terminal_type;
}

// A terminal type made for the test: xterm-256color with other capabilities.
SessionOptions terminal_of(const std::string& name, const std::string& capabilities) {
  TemporaryFolder folder;
  folder.write("source", name + "|made for a test,\n\t" + capabilities + ", use=xterm-256color,\n");
  const std::string command = "tic -x -o " + folder.path().string() + " " + folder.file("source");
  EXPECT_EQ(std::system(command.c_str()), 0);
  std::string place = name.substr(0, 1) + "/" + name;
  return {.terminal_type = name, .home_files = {{".terminfo/" + place, read_bytes(folder.path() / place)}}};
}

// The foreground of a pair on the terminal's own background.
int foreground(int pair) {
  int front = -2;
  int back = -2;
  EXPECT_NE(::extended_pair_content(pair, &front, &back), ERR);
  EXPECT_EQ(back, -1);
  return front;
}

std::string told_to_terminal(EditorSession& session, const StyleSpec& style) {
  std::string file = session.home().write("tty", "");
  session->_machine.tty = file;
  session->_syn_pair_for(style);
  return read_bytes(file);
}

}  // namespace

TEST(SyntaxColours, a_named_colour_is_the_terminals_and_an_exact_one_comes_as_close_as_the_terminal_can) {
  on_terminal({.terminal_type = "xterm"}, [](EditorSession& session) {
    EXPECT_EQ(foreground(session->_syn_pair_for(CYAN)), COLOR_CYAN);
    EXPECT_EQ(told_to_terminal(session, GREY), "") << "no slot to redefine among eight";
    EXPECT_EQ(foreground(session->_syn_pair_for(GREY)), COLOR_WHITE);
    EXPECT_EQ(foreground(session->_syn_pair_for({StyleSpec::Kind::rgb, 0, 255, 10, 10})), COLOR_RED);
  });
  on_terminal({.terminal_type = "linux"},
              [](EditorSession& session) { EXPECT_EQ(foreground(session->_syn_pair_for(GREY)), COLOR_WHITE); });
  on_terminal({.terminal_type = "xterm-256color"}, [](EditorSession& session) {
    EXPECT_EQ(told_to_terminal(session, GREY), "");
    int pair = session->_syn_pair_for(GREY);
    EXPECT_EQ(foreground(pair), pair);
    int r = 0, g = 0, b = 0;
    EXPECT_NE(::extended_color_content(pair, &r, &g, &b), ERR);
    EXPECT_EQ(std::tuple(r, g, b), std::tuple(533, 533, 533));
  });
  on_terminal(terminal_of("test-88color", "ccc@, initc@, colors#88, pairs#7744"), [](EditorSession& session) {
    EXPECT_EQ(foreground(session->_syn_pair_for(CYAN)), COLOR_CYAN);
    std::string told = told_to_terminal(session, GREY);
    int pair = session->_syn_pair_for(GREY);
    EXPECT_EQ(told, "\x1b]4;" + std::to_string(pair) + ";rgb:88/88/88\x1b\\");
    EXPECT_EQ(foreground(pair), pair);
  });
  on_terminal(terminal_of("test-88color", "ccc@, initc@, colors#88, pairs#7744"), [](EditorSession& session) {
    session->_machine.tty = "/nonexistent";
    EXPECT_EQ(foreground(session->_syn_pair_for(GREY)), COLOR_WHITE);
  });
  on_terminal(terminal_of("test-direct", "ccc@, initc@, RGB, colors#0x1000000, pairs#0x7FFF"),
              [](EditorSession& session) {
                EXPECT_EQ(foreground(session->_syn_pair_for(CYAN)), COLOR_CYAN);
                EXPECT_EQ(told_to_terminal(session, GREY), "");
                EXPECT_EQ(foreground(session->_syn_pair_for(GREY)), 0x888888);
                EXPECT_EQ(foreground(session->_syn_pair_for({StyleSpec::Kind::rgb, 0, 0, 0, 5})), COLOR_BLACK);
              });
  on_terminal({.terminal_type = "vt100"}, [](EditorSession& session) {
    EXPECT_EQ(session->_syn_pair_for(CYAN), 0);
    EXPECT_EQ(session->_syn_pair_for(GREY), 0);
  });
}

TEST(SyntaxColours, equal_colours_share_a_pair_and_more_colours_than_pairs_do_no_harm) {
  on_terminal({.terminal_type = "xterm"}, [](EditorSession& session) {
    EXPECT_EQ(session->_syn_pair_for({}), 0) << "inverse needs none";
    std::set<int> pairs;
    for (int repeat = 0; repeat < 3; ++repeat)
      for (int shade = 0; shade < 200; ++shade) {
        auto level = static_cast<unsigned char>(shade);
        pairs.insert(session->_syn_pair_for({StyleSpec::Kind::rgb, 0, level, level, level}));
      }
    EXPECT_EQ(*pairs.begin(), 0);
    EXPECT_EQ(*std::next(pairs.begin()), 10) << "the pairs below are the fixed ones";
    EXPECT_EQ(*pairs.rbegin(), COLOR_PAIRS - 1);
    EXPECT_EQ(static_cast<int>(pairs.size()), COLOR_PAIRS - 10 + 1);
    for (int pair : pairs)
      if (pair != 0) {
        EXPECT_LT(foreground(pair), 8);
      }
    EXPECT_EQ(session->_syn_pair_for(GREY), session->_syn_pair_for({StyleSpec::Kind::rgb, 0, 0x88, 0x88, 0x88}));
  });
}

TEST(SyntaxColours, a_writer_sees_the_colours_of_the_rules) {
  on_terminal({.path = "a.txt",
               .rows = 8,
               .cols = 40,
               .home_files = {{"a.txt", "a TODO of mine\n"},
                              {".config/brenlow/txt.conf",
                               "[w]\npattern: TODO\nstyle: red\n[i]\npattern: mine\nstyle: inverse\n"}}},
              [](EditorSession& session) {
                const TerminalScreen& screen = session.draw();
                for (int x : {3, 6}) EXPECT_EQ(screen.cell(1, x).fg, COLOR_RED) << x;
                EXPECT_EQ(screen.cell(1, 2).fg, DEFAULT_COLOUR);
                EXPECT_EQ(screen.cell(1, 7).fg, DEFAULT_COLOUR);
                EXPECT_EQ(screen.attributes(1), "...........rrrr");
              });
  on_terminal({.rows = 8, .cols = 40}, [](EditorSession& session) {
    session.document("<b>bold</b> plain <i>it</i>^|");
    session->_load_syntax("odt");
    auto colours = [&] {
      const TerminalScreen& screen = session.draw();
      return std::tuple(screen.cell(1, 1).fg, screen.cell(1, 7).fg, screen.cell(1, 12).fg);
    };
    EXPECT_EQ(colours(), std::tuple(COLOR_YELLOW, COLOR_WHITE, COLOR_CYAN));
    session->_sel_anchor = {0, 0};
    session.command('b');
    session->_sel_clear();
    EXPECT_EQ(colours(), std::tuple(COLOR_YELLOW, COLOR_YELLOW, COLOR_MAGENTA));
  });
}

}  // namespace brenlow::test
