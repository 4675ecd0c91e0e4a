#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/editor.h"
#include "tests/support/editor_session.h"

namespace brenlow::test {

namespace {

long computed_lines(EditorSession& session) {
  return std::count_if(session->_syn_lines.begin(), session->_syn_lines.end(),
                       [](const Editor::SyntaxLine& line) { return line.computed; });
}

void compute_all(EditorSession& session) {
  if (session->_syn_dirty) session.draw();
  for (int ly = 0; ly < session->_line_count(); ++ly) session->_syn_spans(ly);
}

std::vector<std::vector<SyntaxSpan>> kept(EditorSession& session) {
  std::vector<std::vector<SyntaxSpan>> spans;
  for (int ly = 0; ly < session->_line_count(); ++ly) {
    const SharedArray<SyntaxSpan>& line = session->_syn_spans(ly);
    spans.emplace_back(line.begin(), line.end());
  }
  return spans;
}

std::vector<std::vector<SyntaxSpan>> computed_afresh(EditorSession& session) {
  std::vector<std::vector<SyntaxSpan>> spans;
  for (int ly = 0; ly < session->_line_count(); ++ly)
    spans.push_back(_compute_syn_spans(session->_line(ly).view().str(), session->_syn_rules, session->_fmt(ly)));
  return spans;
}

}  // namespace

TEST(SyntaxState, colours_follow_every_edit) {
  std::mt19937 random(16);
  auto pick = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  EditorSession session({.rows = 10, .cols = 40});
  int patched = 0;
  for (int round = 0; round < 30; ++round) {
    session.document("# head *it*\n<b>bold TODO</b> and <i>ital</i>\n⏎> quote\n- item **b**\n`code`\n\n# two\ntext");
    session->_load_syntax(round % 2 == 0 ? "md" : "odt");
    ASSERT_FALSE(session->_syn_rules.empty());
    for (int step = 0; step < 60; ++step) {
      session->cy = pick(0, session->_line_count() - 1);
      session->cx = pick(0, session->_line_length(session->cy));
      compute_all(session);
      int kind = pick(0, 9);
      if (kind < 3) {
        session.press("*_`#> -TODO"[pick(0, 10)]);
      } else if (kind == 3) {
        session.press(13);
      } else if (kind == 4) {
        session.press(pick(0, 1) == 0 ? 127 : KEY_DC);
      } else if (kind == 5) {
        session->do_insert_expansion(pick(0, 1) == 0 ? U"**x**" : U"> a\n*b*\n");
      } else if (kind == 6) {
        session->_sel_anchor = {pick(0, session->_line_count() - 1), 0};
        session.command("bix"[pick(0, 2)]);
        session->_sel_clear();
      } else {
        constexpr int LETTERS[] = {'u', 'u', 'w', 'l', 'p', KEY_DOWN};
        session.command(LETTERS[pick(0, 5)]);
      }
      if (session->_syn_dirty)
        session.draw();
      else
        ++patched;
      ASSERT_EQ(kept(session), computed_afresh(session)) << "round " << round << " step " << step << " kind " << kind;
    }
  }
  EXPECT_GT(patched, 500);
}

TEST(SyntaxState, only_lines_that_are_shown_are_matched_and_a_letter_matches_its_line) {
  std::string text;
  for (int i = 0; i < 3'000; ++i) text += "*line*\n";
  EditorSession session({.path = "long.md", .rows = 24, .home_files = {{"long.md", text}}});
  EXPECT_EQ(computed_lines(session), 0);
  session.draw();
  EXPECT_GT(computed_lines(session), 15);
  EXPECT_LE(computed_lines(session), 24);
  compute_all(session);
  session.press('x');
  EXPECT_EQ(computed_lines(session), session->_line_count() - 1);
  session.press(13);
  EXPECT_EQ(computed_lines(session), session->_line_count() - 2);
  session.command('u');
  session.command('u');
  EXPECT_FALSE(session->_syn_dirty);
  EXPECT_EQ(kept(session), computed_afresh(session));
}

TEST(SyntaxState, the_rules_are_those_of_the_documents_extension) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "TODO\n"}, {"b.xyz", "TODO\n"}}});
  EXPECT_EQ(session->_syn_spans(0).size(), 1U);
  session->_reset_for_document(session.triple(), "b.xyz");
  EXPECT_TRUE(session->_syn_rules.empty());
  session.press({'x', 13, 127, KEY_DC});
  session->_reset_for_document(session.triple(), "c.TXT");
  EXPECT_EQ(session->_syn_spans(0).size(), 0U) << "xTODO is no word of its own";
  session.press({KEY_HOME, ' ', 'T', 'O', 'D', 'O', ' '});
  EXPECT_EQ(session->_syn_spans(0).size(), 1U);
}

}  // namespace brenlow::test
