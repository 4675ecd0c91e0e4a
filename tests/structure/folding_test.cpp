#include "core/editor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "structure/chapters.h"
#include "tests/structure/outlines.h"

namespace brenlow::test {

using testing::Contains;
using testing::ElementsAre;

namespace {

constexpr const char* NOVEL = "preface\n# One\nbody\n## Sub\ndeep\n#\n# Two\nen|d";

std::vector<std::string> text_rows(EditorSession& session) {
  std::vector<std::string> rows = session.rows();
  rows.erase(rows.begin());
  rows.erase(std::find_if(rows.begin(), rows.end(), [](const std::string& row) { return row.ends_with("End ──"); }),
             rows.end());
  for (std::string& row : rows) row.erase(0, row.find_first_not_of(' '));
  return rows;
}

std::string folded_row(std::string title) {
  title.resize(42 - 28 - 2, ' ');
  return title + " ── Folded (ESC # to unfold)";
}

}  // namespace

TEST(Folding, OnePressFoldsAChapterWithItsNestedOnesAndOnePressOpensIt) {
  EditorSession session({.rows = 14, .cols = 42});
  session.document(NOVEL);
  place_cursor(session, 4, 4);
  session.command('#');
  EXPECT_EQ(session->message, "Chapter folded: Sub");
  EXPECT_EQ(std::pair(session->cy, session->cx), std::pair(3, 4));
  place_cursor(session, 2, 4);
  session.command('#');
  EXPECT_EQ(session->message, "Chapter folded: One");
  EXPECT_EQ(std::pair(session->cy, session->cx), std::pair(1, 4));
  EXPECT_THAT(text_rows(session),
              ElementsAre("preface", folded_row("# One"), folded_row("## Sub"), "#", "# Two", "end"));
  EXPECT_FALSE(session->modified);
  session.type(U"x");
  EXPECT_EQ(session->message, "Chapter is folded — press ESC # to unfold before editing.");
  session.command('#');
  EXPECT_EQ(session->message, "Chapter unfolded: One");
  EXPECT_THAT(text_rows(session), ElementsAre("preface", "# One", "body", "## Sub", "deep", "#", "# Two", "end"));

  session->_fold_hierarchical = true;
  session.command('#');
  EXPECT_THAT(text_rows(session), ElementsAre("preface", folded_row("# One"), "#", "# Two", "end"));
  session.command('#');
  EXPECT_THAT(text_rows(session), ElementsAre("preface", "# One", "body", folded_row("## Sub"), "#", "# Two", "end"));

  place_cursor(session, 5, 1);
  session.command('#');
  EXPECT_EQ(session->message, "Chapter folded: ");
  place_cursor(session, 0, 0);
  session.command('#');
  EXPECT_EQ(session->message, "Not inside a chapter (chapters start with '#').");
  session.document("no chapter\n # none either");
  session.command('*');
  EXPECT_EQ(session->message, "No chapters found (chapters start with '#').");
}

TEST(Folding, AllChaptersFoldUntilEveryOneIsFoldedAndThenOpen) {
  EditorSession session({.rows = 14, .cols = 42});
  session.document(NOVEL);
  place_cursor(session, 1, 0);
  session.command('#');
  place_cursor(session, 7, 2);
  session.command('*');
  EXPECT_EQ(session->message, "All 4 chapters folded.");
  EXPECT_EQ(std::pair(session->cy, session->cx), std::pair(6, 2));
  EXPECT_THAT(text_rows(session),
              ElementsAre("preface", folded_row("# One"), folded_row("## Sub"), folded_row("#"), folded_row("# Two")));
  session.command('*');
  EXPECT_EQ(session->message, "All 4 chapters unfolded.");
  EXPECT_TRUE(session->_folded_chapters.empty());
  place_cursor(session, 0, 3);
  session.command('*');
  EXPECT_EQ(std::pair(session->cy, session->cx), std::pair(0, 3));
  session.command('*');

  session->_fold_hierarchical = true;
  place_cursor(session, 4, 3);
  session.command('*');
  EXPECT_EQ(session->cy, 1) << "the cursor stayed in a chapter that nobody sees";
  EXPECT_THAT(text_rows(session), ElementsAre("preface", folded_row("# One"), folded_row("#"), folded_row("# Two")));
  session.press({KEY_DOWN, KEY_DOWN});
  EXPECT_EQ(session->cy, 6);
}

// An edit never opens a chapter whose header line is still there, nothing but the command ever folds one, and the
// cursor never enters hidden text.
TEST(Folding, FoldsStayOnTheirHeadersThroughAllEdits) {
  std::mt19937 random(11);
  EditorSession session({.rows = 12, .cols = 40});
  Editor::_internal_clipboard = {U"pasted", U"## new", U""};
  Editor::_internal_clipboard_fmt = {{}, {}, {}};
  Editor::_internal_clipboard_pbl = {1};
  for (int round = 0; round < 60; ++round) {
    session.document(random_outline(random, pick(random, 3, 25)));
    session->_fold_hierarchical = round % 2 == 0;
    for (int step = 0; step < 60; ++step) {
      SCOPED_TRACE("round " + std::to_string(round) + " step " + std::to_string(step));
      int target = pick(random, 0, session->_line_count() - 1);
      if (!session->_hidden_by_fold(target)) place_cursor(session, target, pick(random, 0, 14) % 13);
      if (session->_folded_chapters.contains(session->cy)) session->cx = 0;
      std::vector<std::u32string> before = folded_texts(session);
      constexpr int KEYS[] = {'x', '#', 13, 127, KEY_DC}, COMMANDS[] = {'l', 'v', 'p', KEY_DOWN, KEY_UP, 'u', 'w'};
      int kind = pick(random, 0, 13);
      kind < 5 ? session.press(KEYS[kind]) : session.command(kind < 12 ? COMMANDS[kind - 5] : '#');
      auto hidden = hidden_by_folds(session->lines, session->_folded_chapters, session->_fold_hierarchical);
      ASSERT_FALSE(hidden[static_cast<std::size_t>(session->cy)]);
      std::vector<std::u32string> after = folded_texts(session);
      for (const std::u32string& text : after) ASSERT_TRUE(is_header(text));
      if (kind >= 12) continue;
      for (const std::u32string& text : after) ASSERT_THAT(before, Contains(text));
      if (kind >= 10) continue;  // undo and redo open the folds within what they replace
      for (const std::u32string& text : before)
        if (std::ranges::find(session->lines, Text(text)) != session->lines.end()) ASSERT_THAT(after, Contains(text));
    }
  }
}

TEST(Folding, ALineThatStopsBeingAHeaderGivesItsTextBack) {
  EditorSession session;
  session.document("# A\nhidden\n# B\nmore");
  session->_fold_hierarchical = true;
  session.command('*');
  place_cursor(session, 0, 0);
  session->do_insert_expansion(U"no header: ");
  session.press(KEY_HOME);
  EXPECT_TRUE(session.draw().shows("hidden"));
  EXPECT_EQ(folded_texts(session), std::vector<std::u32string>{U"# B"});
  session->_reset_for_document(parse_notation("y\n# C\n# D\nseen").document, std::nullopt);
  EXPECT_TRUE(session.draw().shows("seen")) << "a fold of one document hides lines of the next";
}

}  // namespace brenlow::test
