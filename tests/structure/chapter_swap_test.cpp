#include "core/editor.h"

#include <gtest/gtest.h>

#include "tests/structure/outlines.h"

namespace brenlow::test {

TEST(ChapterSwap, chapters_change_places_with_all_they_hold_and_the_blank_lines_stay) {
  struct Case {
    const char* before;
    int key;
    const char* after;
    const char* message;
  };
  const Case cases[] = {
      // Adjacent, with trailing blank lines at the end of the document.
      {"# A\nla|st\n# B\nb\n\n", KEY_DOWN, "# B\nb\n# |A\nlast\n\n", "Chapter 'A' moved down."},
      // One blank line between; formats travel.
      {"# A\n<b>a</b>\n\n# B\n<i>b|b</i>", KEY_UP, "#| B\n<i>bb</i>\n\n# A\n<b>a</b>", "Chapter 'B' moved up."},
      // Header lines alone.
      {"#|#\n## two", KEY_DOWN, "## two\n#|#", "Chapter '' moved down."},
      // Nested chapters go along; the middle stretch keeps its place.
      {"# A\n## a1\nx\n\n \n# B|\nb\n### b1\n\nend", KEY_UP, "# B|\nb\n### b1\n\nend\n\n \n# A\n## a1\nx",
       "Chapter 'B' moved up."},
      // Across a shallower header, which stays between.
      {"# A\n## |x\n1\n# B\nb\n## y", KEY_DOWN, "# A\n## y\n# B\nb\n## |x\n1", "Chapter 'x' moved down."},
      // A break at the start of a slot stays with the slot, one within a body goes along.
      {"|# A\na\n⏎# B\n⏎b", KEY_DOWN, "# B\n⏎b\n⏎|# A\na", "Chapter 'A' moved down."},
      {"p\n⏎# A\n⏎a\n⏎\n# B\nb|", KEY_UP, "p\n⏎#| B\nb\n⏎\n# A\n⏎a", "Chapter 'B' moved up."},
  };
  EditorSession session;
  for (const Case& c : cases) {
    session.document(c.before);
    std::string before = print_notation(session.triple());
    letter(session, c.key);
    EXPECT_EQ(session.notation(), c.after) << "from\n" << c.before;
    EXPECT_EQ(session->message, c.message);
    EXPECT_TRUE(session->modified);
    letter(session, 'u');
    EXPECT_EQ(print_notation(session.triple()), before);
  }
}

TEST(ChapterSwap, with_nothing_to_swap_with_nothing_changes) {
  struct Case {
    const char* document;
    int key;
    const char* message;
  };
  const Case cases[] = {
      {"t|ext^\n# A", KEY_DOWN, "Not inside a chapter (chapters start with '#')."},
      {"# A\n## B\nx|^x\n# C", KEY_DOWN, "No next chapter at this level to swap with."},
      {"# A\n^a|\n# C", KEY_UP, "No previous chapter at this level to swap with."},
  };
  EditorSession session;
  for (const Case& c : cases) {
    session.document(c.document);
    session->_preferred_col = 7;
    std::string before = session.notation();
    letter(session, c.key);
    EXPECT_EQ(session->message, c.message);
    EXPECT_EQ(session.notation(), before);
    EXPECT_EQ(session->_preferred_col, 7);
    EXPECT_TRUE(session->_undo_stack.empty());
    EXPECT_FALSE(session->modified);
  }
}

TEST(ChapterSwap, down_and_up_again_is_the_same_document_with_the_same_folds) {
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

TEST(ChapterSwap, the_message_names_the_chapter_that_moved_while_a_filter_is_on) {
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
