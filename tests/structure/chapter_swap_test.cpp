#include "core/editor.h"

#include <gtest/gtest.h>

#include "tests/structure/outlines.h"

namespace brenlow::test {

TEST(ChapterSwap, ChaptersChangePlacesWithAllTheyHoldAndTheBlankLinesStay) {
  struct Case {
    const char* before;
    int key;
    const char* after;  // null: nothing changes
    const char* message;
  };
  EditorSession session;
  for (const Case& c : {
           Case{"# A\nla|st\n# B\nb\n\n", KEY_DOWN, "# B\nb\n# |A\nlast\n\n", "Chapter 'A' moved down."},
           {"# A\n<b>a</b>\n\n# B\n<i>b|b</i>", KEY_UP, "#| B\n<i>bb</i>\n\n# A\n<b>a</b>", "Chapter 'B' moved up."},
           {"#|#\n## two", KEY_DOWN, "## two\n#|#", "Chapter '' moved down."},
           // Nested chapters go along; the middle stretch keeps its place.
           {"# A\n## a1\nx\n\n \n# B|\nb\n### b1\n\nend", KEY_UP, "# B|\nb\n### b1\n\nend\n\n \n# A\n## a1\nx",
            "Chapter 'B' moved up."},
           // Across a shallower header, which stays between.
           {"# A\n## |x\n1\n# B\nb\n## y", KEY_DOWN, "# A\n## y\n# B\nb\n## |x\n1", "Chapter 'x' moved down."},
           // A break at the start of a slot stays with the slot, one within a body goes along.
           {"|# A\na\n⏎# B\n⏎b", KEY_DOWN, "# B\n⏎b\n⏎|# A\na", "Chapter 'A' moved down."},
           {"p\n⏎# A\n⏎a\n⏎\n# B\nb|", KEY_UP, "p\n⏎#| B\nb\n⏎\n# A\n⏎a", "Chapter 'B' moved up."},
           {"t|ext^\n# A", KEY_DOWN, nullptr, "Not inside a chapter (chapters start with '#')."},
           {"# A\n## B\nx^|x\n# C", KEY_DOWN, nullptr, "No next chapter at this level to swap with."},
           {"# A\n^a|\n# C", KEY_UP, nullptr, "No previous chapter at this level to swap with."},
       }) {
    session.document(c.before);
    std::string before = print_notation(session.triple());
    letter(session, c.key);
    EXPECT_EQ(session.notation(), c.after ? c.after : c.before);
    EXPECT_EQ(session->message, c.message);
    EXPECT_EQ(session->modified, c.after != nullptr);
    letter(session, 'u');
    EXPECT_EQ(print_notation(session.triple()), before);
  }
}

TEST(ChapterSwap, DownAndUpAgainIsTheSameDocumentWithTheSameFolds) {
  std::mt19937 random(12);
  EditorSession session({.rows = 10, .cols = 40});
  int swapped = 0;
  for (int round = 0; round < 600; ++round) {
    session.document(random_outline(random, pick(random, 2, 25)));
    std::vector<int> folded;
    for (int ly = 0; ly < session->_line_count(); ++ly)
      if (session->_line(ly).starts_with(U"#") && pick(random, 0, 2) == 0) folded.push_back(ly);
    session->_folded_chapters = IndexSet::from_sorted(folded);
    session->_invalidate_map();
    place_cursor(session, pick(random, 0, session->_line_count() - 1), pick(random, 0, 5));
    session->_keep_cursor_seen();
    std::string before = print_notation(session.triple());
    std::vector<std::u32string> folded_before = folded_texts(session);
    session.draw();
    letter(session, KEY_DOWN);
    if (session->_undo_stack.empty()) continue;
    ++swapped;
    EXPECT_FALSE(session->pagebreak_lines.contains(0));
    std::vector<std::u32string> folded_between = folded_texts(session);
    EXPECT_TRUE(
        std::is_permutation(folded_between.begin(), folded_between.end(), folded_before.begin(), folded_before.end()));
    std::string between = print_notation(session.triple());
    letter(session, KEY_UP);
    ASSERT_EQ(print_notation(session.triple()), before) << "round " << round << ", between:\n" << between;
    ASSERT_EQ(folded_texts(session), folded_before);
    letter(session, 'u');
    ASSERT_EQ(print_notation(session.triple()), between);
    letter(session, 'u');
    ASSERT_EQ(print_notation(session.triple()), before);
  }
  EXPECT_GT(swapped, 150);
}

TEST(ChapterSwap, TheMessageNamesTheChapterThatMovedWhileAFilterIsOn) {
  EditorSession session;
  session.document("# A\nfox |1\n# B\nfox 2\ndog");
  session.type_ahead("fox\r");
  letter(session, 'g');
  letter(session, KEY_DOWN);
  EXPECT_EQ(session->message, "Chapter 'A' moved down.");
  EXPECT_EQ(session.notation(), "# B\nfox 2\ndog\n# A\nfox| 1");
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{0, 2, 3}));
}

}  // namespace brenlow::test
