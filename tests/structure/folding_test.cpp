#include "core/editor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/unicode.h"
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

TEST(Folding, one_press_folds_a_chapter_with_its_nested_ones_and_one_press_opens_it) {
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

TEST(Folding, all_chapters_fold_until_every_one_is_folded_and_then_open) {
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

TEST(Folding, no_fold_of_one_document_hides_lines_of_the_next) {
  EditorSession session({.home_files = {{"other.txt", "plain\n# Header\nbody\n"}}});
  session.document("x\n# A\nbody");
  session.command('*');
  session->_reset_for_document(parse_notation("y\n# B\nseen").document, std::nullopt);
  EXPECT_TRUE(session.draw().shows("seen"));
  EXPECT_TRUE(session->_folded_chapters.empty());
}

namespace {

// Deletes from the cursor to a random place; the folds of the lines in between open first.
void delete_stretch(EditorSession& session, std::mt19937& random, std::vector<std::u32string>& stay) {
  int line = pick(random, 0, session->_line_count() - 1);
  session->_sel_anchor = {line, pick(random, 0, session->_line_length(line))};
  if (auto range = session->_sel_range())
    for (int ly = range->sy; ly <= range->ey; ++ly) std::erase(stay, session->_line(ly).view().str());
  session.press(KEY_DC);
}

// A fold command, after which `seen` is what is folded; or an edit, in which `stay` is what must stay folded as
// far as its line survives.
void random_command(EditorSession& session, std::mt19937& random, std::vector<std::u32string>& seen,
                    std::vector<std::u32string>& stay) {
  bool either = pick(random, 0, 1) == 0;
  bool on_folded = session->_folded_chapters.contains(session->cy);
  switch (pick(random, 0, 10)) {
    case 0:
    case 1:
      session.command('#');
      seen = stay = folded_texts(session);
      return;
    case 2:
      return session.press(either ? 'x' : '#');
    case 3:
      return session.press(13);
    case 4:
      return session.press(either ? 127 : KEY_DC);
    case 5:
      return session.command('l');
    case 6:
      stay.clear();  // undo opens the folds within what it replaces
      return session.command(either ? 'u' : 'w');
    case 7:
      return session.command(either ? KEY_DOWN : KEY_UP);
    case 8:
      if (on_folded && session->cx > 0) return;
      Editor::_internal_clipboard = {U"pasted", Text(U"## new " + decode_utf8(std::to_string(random()))), Text()};
      Editor::_internal_clipboard_fmt = {{}, {}, {}};
      Editor::_internal_clipboard_pbl = {1};
      return session.command('v');
    case 9:
      if (on_folded && session->cx > 0) return;
      return session.command('p');
    default:
      return delete_stretch(session, random, stay);
  }
}

}  // namespace

// An edit never opens a chapter whose header line is still there, nothing ever folds a chapter that the user has
// not folded, and the cursor never enters hidden text.
TEST(Folding, folds_stay_on_their_headers_through_all_edits) {
  std::mt19937 random(11);
  EditorSession session({.rows = 12, .cols = 40});
  for (int round = 0; round < 60; ++round) {
    session.document(random_outline(random, pick(random, 3, 25)));
    session->_fold_hierarchical = round % 2 == 0;
    for (int step = 0; step < 60; ++step) {
      SCOPED_TRACE("round " + std::to_string(round) + " step " + std::to_string(step));
      int target = pick(random, 0, session->_line_count() - 1);
      if (!session->_hidden_by_fold(target)) place_cursor(session, target, pick(random, 0, 14) % 13);
      session->_sel_clear();
      std::vector<std::u32string> seen = folded_texts(session);
      std::vector<std::u32string> stay = seen;
      random_command(session, random, seen, stay);
      std::vector<std::u32string> after = folded_texts(session);
      for (const std::u32string& text : after) ASSERT_TRUE(is_header(text));
      for (const std::u32string& text : after) ASSERT_THAT(seen, Contains(text));
      for (const std::u32string& text : stay) {
        if (std::find(session->lines.begin(), session->lines.end(), Text(text)) == session->lines.end()) continue;
        ASSERT_THAT(after, Contains(text));
      }
      auto hidden = hidden_by_folds(session->lines, session->_folded_chapters, session->_fold_hierarchical);
      ASSERT_FALSE(hidden[static_cast<std::size_t>(session->cy)]);
    }
  }
}

TEST(Folding, a_line_that_stops_being_a_header_gives_its_text_back) {
  EditorSession session;
  session.document("# A\nhidden\n# B\nmore");
  session->_fold_hierarchical = true;
  session.command('*');
  place_cursor(session, 0, 0);
  session->do_insert_expansion(U"no header: ");
  session.press(KEY_HOME);
  EXPECT_TRUE(session.draw().shows("hidden"));
  EXPECT_EQ(folded_texts(session), std::vector<std::u32string>{U"# B"});
}

TEST(Folding, thousands_of_chapters_fold_and_open_as_one) {
  EditorSession session;
  std::string text = "# book";
  for (int i = 0; i < 20'000; ++i) text += "\n## c\nbody";
  session.document(text);
  session.command('#');
  EXPECT_EQ(session->_folded_chapters.size(), 20'001);
  session.command('#');
  EXPECT_TRUE(session->_folded_chapters.empty());
  session.command('*');
  EXPECT_EQ(session->_folded_chapters.size(), 20'001);
  session.command('*');
  EXPECT_TRUE(session->_folded_chapters.empty());
}

}  // namespace brenlow::test
