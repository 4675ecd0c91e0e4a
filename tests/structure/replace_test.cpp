#include "core/editor.h"

#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/structure/outlines.h"

namespace brenlow::test {

namespace {

void replace(EditorSession& session, const std::string& term, const std::string& by) {
  session->search_term.clear();
  session.type_ahead(term + "\r" + by + "\r");
  letter(session, 'r');
}

}  // namespace

TEST(Replace, ACancelledOrFruitlessReplaceLeavesNoTrace) {
  EditorSession session;
  session.document("cat CAT|");
  auto expect = [&](const std::string& typed, const char* message) {
    session.type_ahead(typed);
    letter(session, 'r');
    EXPECT_EQ(session->message, message);
    EXPECT_EQ(session.notation(), "cat CAT|");
    EXPECT_TRUE(session->_undo_stack.empty() && !session->modified);
  };
  expect("\x1b", "Replace cancelled.");
  expect("\r", "Empty search term.");
  expect("cat\r\x1b", "Replace cancelled.");
  expect("Cat\rdog\r", "'Cat' not found.");
  expect(std::string(300, 'x') + "\rdog\r", ("'" + std::string(300, 'x') + "' not found.").c_str());
}

TEST(Replace, GivesTheTextAndFormatThatAWalkOverCharactersGives) {
  std::mt19937 random(15);
  EditorSession session({.rows = 6, .cols = 30});
  for (int round = 0; round < 400; ++round) {
    DocumentTriple before, expected;
    before.lines.clear();
    expected.lines.clear();
    auto random_text = [&](int shortest, int longest) {
      std::u32string text;
      for (int i = pick(random, shortest, longest); i > 0; --i) text += U"aab É"[pick(random, 0, 4)];
      return text;
    };
    const std::u32string term = random_text(1, 2);
    const std::u32string by = random_text(0, 3);
    int count = 0;
    for (int line = pick(random, 1, 6); line > 0; --line) {
      const std::u32string text = random_text(0, 12);
      std::vector<unsigned char> masks(text.size());
      for (std::size_t i = 0; i < masks.size(); ++i)
        masks[i] = i > 0 && pick(random, 0, 2) > 0 ? masks[i - 1] : static_cast<unsigned char>(pick(random, 0, 3));
      std::u32string new_text;
      std::vector<unsigned char> new_masks;
      for (std::size_t j = 0; j < text.size();) {
        bool hit = text.compare(j, term.size(), term) == 0;
        count += hit;
        new_text += hit ? by : text.substr(j, 1);
        new_masks.insert(new_masks.end(), hit ? by.size() : 1, hit ? static_cast<unsigned char>(0) : masks[j]);
        j += hit ? term.size() : 1;
      }
      before.lines.emplace_back(text);
      before.fmt_lines.resize(before.lines.size() - 1);
      before.fmt_lines.push_back(spans_from_masks(masks));
      expected.lines.emplace_back(new_text);
      expected.fmt_lines.resize(expected.lines.size() - 1);
      expected.fmt_lines.push_back(spans_from_masks(new_masks));
    }
    session->_reset_for_document(before, std::nullopt);
    place_cursor(session, session->_line_count() - 1, pick(random, 0, 12));
    const int column = session->cx;
    replace(session, encode_utf8(term), encode_utf8(by));
    session->_check_session();
    ASSERT_EQ(session->message, count > 0 ? "Replaced " + std::to_string(count) + " occurrence(s)."
                                          : "'" + encode_utf8(term) + "' not found.");
    ASSERT_EQ(session.triple().lines, expected.lines) << "round " << round;
    ASSERT_EQ(session->cx, std::min(column, session->_line_length(session->cy)));
    ASSERT_EQ(session.triple().fmt_lines, expected.fmt_lines) << "round " << round;
    if (count == 0) continue;
    letter(session, 'u');
    ASSERT_EQ(session.triple().lines, before.lines);
    ASSERT_EQ(session.triple().fmt_lines, before.fmt_lines);
    letter(session, 'w');
    ASSERT_EQ(session.triple().lines, expected.lines);
    ASSERT_EQ(session.triple().fmt_lines, expected.fmt_lines);
  }
}

TEST(Replace, FilterAndFoldsFollowTheNewText) {
  EditorSession session;
  session.document("fox one\n|fox\n# fox\nhidden");
  session.type_ahead("fox\r");
  letter(session, 'g');
  replace(session, "fox one", "cat");
  EXPECT_EQ(session->message, "Replaced 1 occurrence(s).  [kGrep 'fox' (case-insensitive): 2 shown, 2 hidden]");
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{0, 3}));
  session.press(KEY_ESC);
  letter(session, '*');
  replace(session, "# ", "");
  EXPECT_TRUE(session->_folded_chapters.empty());
  EXPECT_TRUE(session.draw().shows("hidden"));
}

}  // namespace brenlow::test
