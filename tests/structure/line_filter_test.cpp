#include "core/editor.h"

#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/structure/outlines.h"

namespace brenlow::test {

namespace {

void filter(EditorSession& session, const std::string& typed) {
  session.type_ahead(typed);
  session.press(_KEY_CTRL_G);
}

IndexSet lines_without(EditorSession& session, const std::u32string& term) {
  std::vector<int> without;
  for (int ly = 0; ly < session->_line_count(); ++ly)
    if (lowered(session->_line(ly)).find(lowered(term)) == std::u32string::npos) without.push_back(ly);
  return IndexSet::from_sorted(without);
}

}  // namespace

TEST(LineFilter, SaysWhatItShowsAndGivesAllLinesBack) {
  EditorSession session;
  session.document("a fox\nd|og\nFOX again\ncat");
  filter(session, "\x1b");
  EXPECT_EQ(session->message, "kGrep cancelled.");
  filter(session, "\r");
  EXPECT_EQ(session->message, "Empty search term.");
  filter(session, "fox\r");
  EXPECT_EQ(session->message, "kGrep 'fox' (case-insensitive): 2 line(s) shown, 2 hidden.  ESC to restore all.");
  EXPECT_EQ(session.notation(), "a| fox\ndog\nFOX again\ncat");
  EXPECT_TRUE(session.draw().shows("FOX again"));
  EXPECT_FALSE(session.screen().shows("dog"));
  filter(session, "cow\r");
  EXPECT_EQ(session->message, "'cow' not found in any line (case-insensitive) — kGrep not applied.");
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{1, 3}));
  EXPECT_EQ(session->_kgrep_term, U"cow");
  filter(session, "\x1b");
  EXPECT_EQ(session->message, "kGrep cleared — all lines restored.");
  EXPECT_TRUE(session.draw().shows("dog"));

  session->_kgrep_case_insensitive = false;
  filter(session, "FOX\r");
  EXPECT_EQ(session->message, "kGrep 'FOX': 1 line(s) shown, 3 hidden.  ESC to restore all.");
  session.press(KEY_HOME);
  session.type(U"!");
  EXPECT_EQ(session->message, "[kGrep 'FOX': 1 shown, 3 hidden]");
  filter(session, "nothing\r");
  EXPECT_EQ(session->message, "'nothing' not found in any line — kGrep not applied.");
  place_cursor(session, 1, 0);
  session.type(U"x");
  EXPECT_EQ(session->message, "Line is kGrep-folded — press ESC G to unfold, or ESC * to unfold all.");
  session.press(_KEY_CTRL_G);
  EXPECT_EQ(session->message, "Line 2 unfolded.  ESC to restore all.");
  EXPECT_TRUE(session.draw().shows("dog"));
  session.press(KEY_ESC);
  EXPECT_EQ(session->message, "Cleared — back to the normal view.");
  EXPECT_TRUE(session->_kgrep_term.empty());
}

TEST(LineFilter, AnEditThatTakesTheWordAwayTakesTheLineAway) {
  EditorSession session;
  session.document("fox 1\nx\nthe fox| 2\ny\nfox 3");
  filter(session, "fox\r");
  session.press(127);
  EXPECT_EQ(session.notation(), "fox 1\nx\nthe fo 2\ny\nfox 3|") << "the next line shown below";
  session.press(KEY_HOME);
  session.press(KEY_DC);
  EXPECT_EQ(session.notation(), "|fox 1\nx\nthe fo 2\ny\nox 3") << "the nearest line shown above";
  session.press(KEY_DC);
  EXPECT_EQ(session->message, "[kGrep cleared — no matches left]");
  EXPECT_TRUE(session.draw().shows("y"));
  filter(session, "x\r");
  letter(session, 'u');
  EXPECT_EQ(session->message, "Undo. (2 left)  [kGrep 'x' (case-insensitive): 3 shown, 2 hidden]");

  session.document("a fox|\nb");
  filter(session, "cow\r");
  session.type(U" cow");
  EXPECT_EQ(session->_kgrep_folds, IndexSet{}) << "a term that no line holds is forgotten with the first letter";
}

TEST(LineFilter, AClearingOfTheFilterLeavesTheFoldsAlone) {
  EditorSession session;
  session.document("# A\nfox|\n# B\ncat");
  letter(session, '#');
  filter(session, "A\r");
  letter(session, '*');
  EXPECT_EQ(session->message, "kGrep folds cleared — all lines restored.");
  EXPECT_EQ(session->_folded_chapters, IndexSet{0});
  letter(session, '*');
  EXPECT_EQ(session->message, "All 2 chapters folded.");
  // Of the matches one is within a fold: the cursor takes the one that shows.
  session.document("# A\nfox\n# B\nfox\n|end");
  session->_folded_chapters = {0};
  filter(session, "fox\r");
  EXPECT_EQ(session->cy, 3);
  // All are within folds: nothing is shown, and nothing can be typed.
  session->_folded_chapters = {0, 2};
  session->_invalidate_map();
  session.press(KEY_HOME);
  std::string before = print_notation(session.triple());
  session.type(U"x");
  EXPECT_EQ(print_notation(session.triple()), before);
  session.draw();
}

TEST(LineFilter, LettersOfOtherScriptsAreComparedLetterByLetter) {
  EditorSession session({.rows = 6, .cols = 30});
  session.document("caf\u00E9|\nİstanbul É\nstraße");
  filter(session, "É\r");
  EXPECT_EQ(session->_kgrep_folds, IndexSet{2});
  EXPECT_EQ(session.draw().attributes(2).substr(0, 11), "..........b") << "behind a letter whose lower case is longer";
}

TEST(LineFilter, IsRightAfterEveryEdit) {
  std::mt19937 random(13);
  EditorSession session({.rows = 10, .cols = 40});
  for (int round = 0; round < 40; ++round) {
    std::string text;
    for (int i = pick(random, 1, 12); i > 0; --i) {
      for (int letter = pick(random, 0, 6); letter > 0; --letter) text += "aAb "[pick(random, 0, 3)];
      if (i > 1) text += '\n';
    }
    session.document(text);
    const std::u32string term = round % 3 == 0 ? U"ab" : U"a";
    filter(session, encode_utf8(term) + "\r");
    for (int step = 0; step < 60 && !session->_kgrep_folds.empty(); ++step) {
      const std::vector<int> keys{'a', 'b', ' ', 13, 127, KEY_DC, KEY_DOWN, KEY_LEFT, KEY_RIGHT, KEY_UP};
      int key = keys[static_cast<std::size_t>(pick(random, 0, 9))];
      int command = pick(random, 0, 25);
      auto before = session.triple();
      if (command < 4)
        letter(session, "uwlv"[command]);
      else
        session.press(key);
      if (session->_kgrep_term.empty()) {
        ASSERT_EQ(lines_without(session, term).size(), session->_line_count());
        ASSERT_TRUE(session->message.ends_with("[kGrep cleared — no matches left]")) << session->message;
        break;
      }
      ASSERT_EQ(session->_kgrep_folds, lines_without(session, term)) << "round " << round << " step " << step;
      ASSERT_FALSE(session->_kgrep_folds.contains(session->cy)) << "round " << round << " step " << step;
      if (session.triple().lines != before.lines) {
        ASSERT_TRUE(session->message.ends_with(std::to_string(session->_line_count() - session->_kgrep_folds.size()) +
                                               " shown, " + std::to_string(session->_kgrep_folds.size()) + " hidden]"))
            << session->message;
      }
    }
  }
}

}  // namespace brenlow::test
