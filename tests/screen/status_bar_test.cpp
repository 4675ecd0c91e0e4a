#include <gtest/gtest.h>

#include <random>

#include "core/unicode.h"
#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;

TEST(StatusBar, ItTellsWhereTheCursorIsAndHowLongTheTextIs) {
  EditorSession session({.rows = 10, .cols = 80});
  auto bar = [&] {
    std::string row = session.draw().row(9);
    return row.substr(0, row.rfind("│"));
  };
  session.document("|");
  EXPECT_EQ(bar(), " Ln 1/1 (100%) │ Col 1 │ 0 words │ Ctrl+Space=help │ [" + session->_terminal_kind() + "] ");
  session.document("one two\n three\u3000four\u00A0\n\n|");
  EXPECT_TRUE(bar().starts_with(" Ln 4/4 (100%) │ Col 1 │ 4 words │"));
  session.document("a\nb|\nc\nd");
  EXPECT_TRUE(bar().starts_with(" Ln 2/4 (33%) │ Col 2 │ 4 words │"));
  session.press({'x', ' ', 'y', 13, 'z'});
  EXPECT_TRUE(bar().starts_with(" Ln 3/5 (50%) │ Col 2 │ 6 words │"));
  session.press(26);
  session.press(26);
  EXPECT_EQ(session->_word_count, 5);
  EXPECT_EQ(session.draw().row(9).substr(0, 15), " Undo. (3 left)");
  session->_key_help = _KEY_F[4];
  session->message.clear();
  EXPECT_TRUE(session.draw().shows("│ F5=help │"));

  session->_on_console = true;
  std::string device = session->_machine.tty.substr(session->_machine.tty.rfind('/') + 1);
  EXPECT_TRUE(session.draw().shows("[console " + device + "] │"));
  session->_machine.input = -1;
  EXPECT_TRUE(session.draw().shows("[console] │"));
}

TEST(StatusBar, AModeHidesTheMessageAndAMessageTheNumbers) {
  EditorSession session({.rows = 10, .cols = 80});
  session->_show_message("Grüße\x1b[2J");
  EXPECT_TRUE(session.draw().row(9).starts_with(" Grüße�[2J"));
  session->_action_mode = true;
  EXPECT_TRUE(session.draw().row(9).starts_with(" CMD — press a command key, or press action key again to cancel"));
  EXPECT_EQ(session.screen().attributes(9), std::string(80, '7'));
}

TEST(StatusBar, TheBatteryStandsAtTheRightEndAndCoversWhatIsThere) {
  EditorSession session(
      {.rows = 10,
       .cols = 80,
       .home_files = {
           {"power/BAT0/type", "Battery\n"}, {"power/BAT0/capacity", "42\n"}, {"power/BAT0/status", "Discharging\n"}}});
  session->_show_message(std::string(100, 'x'));
  EXPECT_EQ(session.draw().row(9), " " + std::string(74, 'x') + " 42%");
  session.resize(10, 6);
  EXPECT_EQ(session.draw().row(9), "  42%");
  session.resize(10, 5);
  EXPECT_EQ(session.draw().row(9), " xxxx") << "no room for it";
}

// Two documents' worth of shapes: list items, page breaks, a folded chapter, lines that wrap, empty ones.
std::string random_text(std::mt19937& random) {
  std::string text = "|begin";
  for (auto i = 3 + random() % 25; i > 0; --i)
    text += std::vector<std::string>{"\n- item of words that wrap",       "\n⏎page", "\n", "\n⏎- x", "\n# head",
                                     "\nabcdefghijklmnopqrstuvwxyz words"}[random() % 6];
  return text;
}

// The terminal's cursor stands on the character it is at, in view and off the bars, whatever was scrolled before;
// on the last row the end is in view as well.
TEST(StatusBar, TheCursorStaysInViewOnItsCharacter) {
  EditorSession session({.rows = 9, .cols = 20});
  std::mt19937 random(23);
  auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  for (int round = 0; round < 25; ++round) {
    session.document(random_text(random));
    session->_bar_state = pick(4);
    session->_typewriter = pick(3) == 0;
    for (int ly = 0; ly < session->_line_count(); ++ly)
      if (session->_line(ly).starts_with(U"#") && pick(2)) session->_folded_chapters.insert(ly);
    session->_invalidate_map();
    for (int step = 0; step < 25; ++step) {
      const ScreenMap map = session->_build_screen_map();
      const MapEntry entry = map[static_cast<std::size_t>(pick(static_cast<int>(map.size())))];
      session->cy = entry.ly;
      bool folded = session->_folded_chapters.contains(entry.ly);
      int length = folded ? std::min(session->_line_length(entry.ly), 3) : entry.length;
      session->cx = entry.start + pick(length + 1);
      if (pick(4) == 0) session->scroll_y = pick(40);
      const test::TerminalScreen& screen = session.draw();
      int row = screen.cursor_row();
      SCOPED_TRACE(screen.picture() + session.notation());
      ASSERT_GE(row, session->_text_top());
      ASSERT_LT(row, session->_text_top() + session->edit_rows());
      if (session->cx < entry.start + length && !folded) {
        char32_t at = session->_line(entry.ly)[static_cast<std::size_t>(session->cx)];
        ASSERT_EQ(screen.cell(row, screen.cursor_col()).text, encode_utf8(std::u32string(1, at)));
      }
      if (entry == map.back()) {
        ASSERT_TRUE(screen.shows("End ──"));
      }
      if (session->_typewriter) {
        ASSERT_EQ(row, session->_text_top() + session->edit_rows() - 2);
      }
    }
  }
}

TEST(StatusBar, TheViewScrollsNoFurtherThanItMust) {
  EditorSession session({.rows = 7, .cols = 20});  // five rows of text
  session.document("|1\n2\n3\n4\n⏎5\n6\n7\n8\n9");
  auto top_after = [&](std::initializer_list<int> keys) {
    session.press(keys);
    session.draw();
    return session->scroll_y;
  };
  EXPECT_EQ(top_after({KEY_DOWN, KEY_DOWN, KEY_DOWN}), 0);
  EXPECT_EQ(top_after({KEY_DOWN}), 1) << "line 5 and its page break";
  EXPECT_EQ(top_after({KEY_DOWN}), 2);
  EXPECT_EQ(top_after({KEY_UP, KEY_UP, KEY_UP}), 2);
  EXPECT_EQ(top_after({KEY_UP}), 1);
  EXPECT_EQ(top_after({KEY_NPAGE, KEY_NPAGE}), 5) << "four lines and the end";
  EXPECT_EQ(top_after({KEY_UP, KEY_UP, KEY_UP}), 5);
  EXPECT_EQ(top_after({KEY_UP}), 4);
  EXPECT_EQ(session.screen().row(1), " ──── Page Break ──");
}

TEST(StatusBar, ACursorOutOfViewIsNotPlacedOnTheBar) {
  EditorSession session({.rows = 3, .cols = 40});
  session.document("one\n⏎two| three");
  EXPECT_EQ(session.draw().row(1), " ──────────────────────── Page Break ──") << "it takes the one row of text";
  EXPECT_NE(session.screen().cursor_col(), 4);
}

}  // namespace
}  // namespace brenlow
