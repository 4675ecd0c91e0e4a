#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;

using Rows = std::vector<std::string>;

// The last frame of the table after the keys.
Rows table(EditorSession& session, const std::string& typed) {
  command(session, 'k', typed + ESC);
  return session.screen().all_rows();
}

TEST(CharacterTable, FindsACharacterByNameAndByCode) {
  EditorSession session({.rows = 12, .cols = 60});
  session.document("te|xt");
  Rows by_code = table(session, "2014");
  EXPECT_EQ(by_code[1], " Filter: 2014_");
  EXPECT_EQ(by_code[2], "  —  2014  em dash");
  EXPECT_EQ(by_code[3], "");
  EXPECT_EQ(by_code[11], " Type to filter  ESC/Enter close   1 match");
  EXPECT_EQ(session.screen().cursor_row(), 1);
  EXPECT_EQ(session.screen().cursor_col(), 13);
  for (const char* same : {"EM DASH", " 2014 "}) EXPECT_EQ(table(session, same)[2], by_code[2]);
  EXPECT_EQ(table(session, "no-break" + times(8, BACKSPACE) + "00a0")[2], "  ·  00A0  non-breaking space");
  EXPECT_EQ(table(session, "superscript")[11], " Type to filter  ESC/Enter close   10 matches  ↓ PgDn");
  EXPECT_EQ(session.notation(), "te|xt") << "nothing is inserted";
}

TEST(CharacterTable, NothingFoundSaysSoAndBackspaceBringsTheRowsBack) {
  EditorSession session({.rows = 12, .cols = 60});
  Rows all = table(session, "");
  EXPECT_EQ(all[11], " Type to filter  ESC/Enter close   287 characters  ↓ PgDn");
  Rows none = table(session, "zzz");
  EXPECT_EQ(none[2], "  (no matches)");
  EXPECT_EQ(none[11], " Type to filter  ESC/Enter close   0 matches");
  EXPECT_EQ(table(session, "zzz" + times(5, BACKSPACE)), all);
  Rows blanks = table(session, "  ");
  EXPECT_EQ(Rows(blanks.begin() + 2, blanks.end()), Rows(all.begin() + 2, all.end()));
}

TEST(CharacterTable, ScrollsWithinItsEndsAndFollowsAResize) {
  EditorSession session({.rows = 12, .cols = 70});
  Rows top = table(session, ""), end = table(session, END);
  EXPECT_TRUE(end[11].ends_with("287 characters  ↑ PgUp")) << end[11];
  EXPECT_EQ(table(session, times(50, PAGE_DOWN)), end);
  EXPECT_EQ(table(session, times(40, PAGE_DOWN) + times(2, DOWN) + times(99, PAGE_UP)), top);
  EXPECT_EQ(table(session, UP + END + HOME), top);
  Rows one_down = table(session, DOWN);
  EXPECT_EQ(one_down[2], top[3]);
  EXPECT_TRUE(one_down[11].ends_with("  ↑↓ PgUp PgDn")) << one_down[11];
  EXPECT_EQ(table(session, END + "a"), table(session, "a")) << "typing goes back to the top";
  for (auto [rows, cols] : {std::pair(24, 80), std::pair(5, 20), std::pair(3, 10)}) {
    session.resize(12, 70);
    resize_once_open(session, rows, cols);
    Rows resized = table(session, "");
    ASSERT_EQ(resized.size(), static_cast<std::size_t>(rows));
    EXPECT_TRUE(resized.back().starts_with(" Type to")) << session.screen().picture();
    if (rows > 3) {
      EXPECT_EQ(resized[2], top[2].substr(0, static_cast<std::size_t>(cols))) << session.screen().picture();
    }
  }
}

TEST(CharacterTable, TheHeaderTellsHowThisTerminalTakesACode) {
  EditorSession session;
  const std::vector<std::pair<std::string, std::string>> hints = {
      {"kitty", "Kitty opens its own picker with Ctrl+Shift+U"},
      {"foot", "foot: press Ctrl+Shift+U, type the hex code, then Enter"},
      {"alacritty", "Alacritty has no native Unicode input — use ESC K to browse instead"},
      {"none", "press Ctrl+Shift+U, type the hex code, then Enter"}};
  session.resize(24, 120);
  for (const auto& [kind, hint] : hints) {
    session->font_ctrl = std::make_unique<FontController>(session->_machine.tty, "", DetectedTerminal{kind, ""});
    EXPECT_EQ(table(session, "")[0], " Unicode character table  —  " + hint);
  }
}

}  // namespace
}  // namespace brenlow::test
