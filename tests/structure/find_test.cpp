#include "core/editor.h"

#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/structure/outlines.h"

namespace brenlow::test {

namespace {

constexpr const char* RIGHT = "\x1b[C";
constexpr const char* LEFT = "\x1b[D";

// Types the term at the prompt and then the steps; "!" leaves the loop and is not served.
void find(EditorSession& session, const std::string& term, const std::string& steps = {}) {
  session.type_ahead(term + "\r" + steps + "!");
  letter(session, 'f');
  EXPECT_EQ(std::exchange(session->_pending_main_ch, NO_KEY), '!');
}

using Place = std::optional<std::pair<int, int>>;

Place first_from(const std::vector<std::u32string>& lines, const std::u32string& term, int line, int col) {
  int n = static_cast<int>(lines.size());
  for (int i = 0; i < n; ++i) {
    int ly = (line + i) % n;
    auto at = lines[static_cast<std::size_t>(ly)].find(term, static_cast<std::size_t>(i == 0 ? col : 0));
    if (at != std::u32string::npos) return std::pair(ly, static_cast<int>(at));
  }
  return std::nullopt;
}

Place last_before(const std::vector<std::u32string>& lines, const std::u32string& term, int line, int col) {
  int n = static_cast<int>(lines.size());
  for (int i = 0; i < n; ++i) {
    int ly = ((line - i) % n + n) % n;
    const std::u32string& text = lines[static_cast<std::size_t>(ly)];
    auto at = i > 0 ? text.rfind(term) : std::u32string::npos;
    if (i == 0 && col >= 0) {
      at = text.substr(0, static_cast<std::size_t>(col)).rfind(term);
      auto whole = text.rfind(term);
      if (at == std::u32string::npos && whole != at && static_cast<int>(whole) <= col) at = whole;
    }
    if (at != std::u32string::npos) return std::pair(ly, static_cast<int>(at));
  }
  return std::nullopt;
}

}  // namespace

TEST(Find, JumpsToTheNextPlaceStepsBothWaysAndHandsTheEndingKeyOn) {
  EditorSession session({.rows = 8, .cols = 60});
  session.document("|cat and Cat\ndog\nthe cat");
  find(session, "cat");
  EXPECT_EQ(session.notation(), "cat and |Cat\ndog\nthe cat") << "the one at the cursor is passed over";
  EXPECT_EQ(session->message, "Found 'cat' at line 1  (← prev  → next)");
  find(session, "", std::string(RIGHT) + RIGHT + LEFT + LEFT + LEFT);
  EXPECT_EQ(session.notation(), "cat and |Cat\ndog\nthe cat");
  EXPECT_EQ(session.draw().attributes(1), ".bbb.....bbb");
  session.press({KEY_ESC, KEY_HOME});
  EXPECT_EQ(session.draw().attributes(1), "");
  EXPECT_TRUE(session->search_term.empty());

  session.document("|one\ntwo");
  find(session, "two", RIGHT);
  EXPECT_EQ(session->message, "'two' not found.");
  EXPECT_EQ(session.notation(), "one\n|two");
  find(session, "Three");
  EXPECT_EQ(session->message, "'Three' not found.");
  EXPECT_TRUE(session->_find_active);
  session.type_ahead("\x1b");
  letter(session, 'f');
  EXPECT_EQ(session->message, "Find cleared — highlighting removed.");
  EXPECT_FALSE(session->_find_active);
  session.type_ahead("\x1b");
  letter(session, 'f');
  EXPECT_EQ(session->message, "Find cancelled.");
  session.type_ahead("\r");
  letter(session, 'f');
  EXPECT_EQ(session->message, "Empty search term.");

  // Whatever ends the loop is an ordinary key again.
  session.feed("\x06one\ry");
  session.press(std::exchange(session->_pending_main_ch, NO_KEY));
  EXPECT_EQ(session.notation(), "y|one\ntwo");
}

TEST(Find, GoesWhereAPlainSearchOfTheLinesGoes) {
  std::mt19937 random(14);
  EditorSession session({.rows = 6, .cols = 30});
  for (int round = 0; round < 400; ++round) {
    std::vector<std::u32string> lines(static_cast<std::size_t>(pick(random, 1, 5)));
    DocumentTriple document;
    document.lines.clear();
    for (std::u32string& line : lines) {
      for (int i = pick(random, 0, 12); i > 0; --i) line += U"aAbÉé"[pick(random, 0, 4)];
      document.lines.emplace_back(line);
      if (round % 2 == 0) line = lowered(line);
    }
    document.fmt_lines.resize(document.lines.size());
    session->_reset_for_document(document, std::nullopt);
    session->_find_case_insensitive = round % 2 == 0;
    std::u32string term;
    for (int i = pick(random, 1, 3); i > 0; --i) term += U"aAbÉé"[pick(random, 0, 4)];
    std::u32string wanted = round % 2 == 0 ? lowered(term) : term;
    place_cursor(session, pick(random, 0, session->_line_count() - 1), pick(random, 0, 12));

    std::pair<int, int> at{session->cy, session->cx};
    Place hit = first_from(lines, wanted, at.first, at.second + 1);
    at = hit.value_or(at);
    std::string steps;
    for (int i = pick(random, 0, 6); i > 0; --i) {
      bool forward = pick(random, 0, 1) == 0;
      steps += forward ? RIGHT : LEFT;
      hit = forward ? first_from(lines, wanted, at.first, at.second + 1)
                    : last_before(lines, wanted, at.first, at.second - 1);
      at = hit.value_or(at);
    }
    session->search_term.clear();
    find(session, encode_utf8(term), steps);
    ASSERT_EQ(std::pair(session->cy, session->cx), at) << "round " << round;
    ASSERT_EQ(session->message,
              hit ? "Found '" + encode_utf8(term) + "' at line " + std::to_string(at.first + 1) + "  (← prev  → next)"
                  : "'" + encode_utf8(term) + "' not found.");
  }
}

TEST(Find, AHitInAFoldedChapterOpensWhatHidesItAndNothingElse) {
  EditorSession session;
  for (bool hierarchical : {false, true}) {
    session->_fold_hierarchical = hierarchical;
    session.document("|\n# A\n## B\n### C\n## D\nneedle\n# E\nx");
    letter(session, '*');
    find(session, "needle");
    EXPECT_EQ(session->cy, 5);
    EXPECT_TRUE(session.draw().shows("needle"));
    EXPECT_EQ(session->_folded_chapters, hierarchical ? (IndexSet{2, 3, 6}) : (IndexSet{1, 2, 3, 6}));
    session.press({KEY_ESC, 'z'});
    EXPECT_EQ(session->_line(5), U"zneedle");
  }
}

TEST(Find, AHitOnAFilteredLineStaysHiddenAndCannotBeTypedInto) {
  EditorSession session;
  session.document("|fox\n# A\nneedle\nfox");
  session->_folded_chapters = {1};
  session.type_ahead("fox\r");
  letter(session, 'g');
  find(session, "needle");
  EXPECT_EQ(session->cy, 2);
  EXPECT_FALSE(session.draw().shows("  needle"));
  session.type(U"x");
  EXPECT_EQ(session->message, "Line is kGrep-folded — press ESC G to unfold, or ESC * to unfold all.");
  session.press(KEY_ESC);
  EXPECT_EQ(session->message, "Cleared — back to the normal view.");
  session.type(U"x");
  EXPECT_TRUE(session.draw().shows("xneedle")) << "what is typed after the filter is seen";
}

TEST(Find, OddTermsAndLettersNeitherCrashNorShiftTheMarks) {
  EditorSession session({.rows = 6, .cols = 40});
  session.document("|İİ straße éÉ");
  find(session, "É");
  EXPECT_TRUE(session.notation().starts_with("İİ straße |éÉ")) << session.notation();
  EXPECT_EQ(session.draw().attributes(1), "...........bb");
  session.press(KEY_ESC);
  find(session, std::string(3000, 'x'), std::string(RIGHT) + LEFT);
  EXPECT_EQ(session->message, "'" + std::string(3000, 'x') + "' not found.");
  session.draw();
}

}  // namespace brenlow::test
