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
constexpr StyleSpec rgb(unsigned char r, unsigned char g, unsigned char b) {
  return {StyleSpec::Kind::rgb, 0, r, g, b};
}
constexpr StyleSpec GREY = rgb(0x88, 0x88, 0x88);

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

// The foreground that a style's pair has on the terminal's own background; -3 for no pair.
int foreground(EditorSession& session, const StyleSpec& style) {
  int pair = session->_syn_pair_for(style), front = -2, back = -2;
  if (pair == 0) return -3;
  EXPECT_NE(::extended_pair_content(pair, &front, &back), ERR);
  EXPECT_EQ(back, -1);
  return front;
}

TEST(SyntaxColours, AnExactColourComesAsCloseAsTheTerminalCan) {
  const SessionOptions with_88 = terminal_of("test-88color", "ccc@, initc@, colors#88, pairs#7744");
  const SessionOptions direct = terminal_of("test-direct", "ccc@, initc@, RGB, colors#0x1000000, pairs#0x7FFF");
  struct Case {
    SessionOptions options;
    int cyan, grey, red, nearly_black;
    std::string told = "";  // to the terminal past the screen library
    bool has_tty = true;
  };
  // The pairs are given out from 10 upward, CYAN's first.
  const std::string grey_slot = "\x1b]4;11;rgb:88/88/88\x1b\\";
  for (const Case& c : {Case{{.terminal_type = "xterm"}, COLOR_CYAN, COLOR_WHITE, COLOR_RED, COLOR_BLACK},
                        Case{{.terminal_type = "linux"}, COLOR_CYAN, COLOR_WHITE, COLOR_RED, COLOR_BLACK},
                        Case{{.terminal_type = "vt100"}, -3, -3, -3, -3},
                        Case{{.terminal_type = "xterm-256color"}, COLOR_CYAN, 11, 12, 13},
                        Case{with_88, COLOR_CYAN, 11, 12, 13, grey_slot},
                        Case{with_88, COLOR_CYAN, COLOR_WHITE, COLOR_RED, COLOR_BLACK, "", false},
                        Case{direct, COLOR_CYAN, 0x888888, 0xFF0A0A, COLOR_BLACK}})
    on_terminal(c.options, [&](EditorSession& session) {
      const std::string tty = session.home().write("tty", "");
      session->_machine.tty = c.has_tty ? tty : "/nonexistent";
      EXPECT_EQ(foreground(session, CYAN), c.cyan);
      for (int times = 0; times < 2; ++times) EXPECT_EQ(foreground(session, GREY), c.grey);
      EXPECT_EQ(read_bytes(tty), c.told);
      EXPECT_EQ(foreground(session, rgb(255, 10, 10)), c.red);
      EXPECT_EQ(foreground(session, rgb(0, 0, 5)), c.nearly_black);
      int r = 0, g = 0, b = 0;
      if (c.options.terminal_type != "xterm-256color") return;
      EXPECT_NE(::extended_color_content(11, &r, &g, &b), ERR);
      EXPECT_EQ(std::tuple(r, g, b), std::tuple(533, 533, 533));
    });
}

TEST(SyntaxColours, EqualColoursShareAPairAndMoreColoursThanPairsDoNoHarm) {
  on_terminal({.terminal_type = "xterm"}, [](EditorSession& session) {
    EXPECT_EQ(session->_syn_pair_for({}), 0) << "inverse needs none";
    std::set<int> pairs;
    for (int repeat = 0; repeat < 3; ++repeat)
      for (int shade = 0; shade < 200; ++shade) {
        auto level = static_cast<unsigned char>(shade);
        pairs.insert(session->_syn_pair_for(rgb(level, level, level)));
      }
    EXPECT_EQ(*std::next(pairs.begin()), 10) << "the pairs below are the fixed ones";
    EXPECT_EQ(*pairs.rbegin(), COLOR_PAIRS - 1);
    EXPECT_EQ(static_cast<int>(pairs.size()), COLOR_PAIRS - 10 + 1) << "all of them, and 0 for those that got none";
  });
}

TEST(SyntaxColours, AWriterSeesTheColoursOfTheRules) {
  const std::string rules = "[w]\npattern: TODO\nstyle: red\n[i]\npattern: mine\nstyle: inverse\n";
  on_terminal({.path = "a.txt",
               .rows = 8,
               .cols = 40,
               .home_files = {{"a.txt", "a TODO of mine\n"}, {".config/brenlow/txt.conf", rules}}},
              [](EditorSession& session) {
                const TerminalScreen& screen = session.draw();
                for (int x : {2, 3, 6, 7})
                  EXPECT_EQ(screen.cell(1, x).fg, x == 2 || x == 7 ? DEFAULT_COLOUR : COLOR_RED);
                EXPECT_EQ(screen.attributes(1), "...........rrrr");
                session->_reset_for_document(session.triple(), "b.xyz");
                EXPECT_TRUE(session->_syn_rules.empty()) << "the rules are those of the document's extension";
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

}  // namespace
}  // namespace brenlow::test
