#include "screen/curses.h"

#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;

// The cells of a row after `text` was written to its start, one behind the other.
std::vector<std::string> cells_of(EditorSession& session, std::u32string_view text) {
  session->_canvas.erase();
  session->_canvas.put(0, 0, text);
  session->_painter.show(session->stdscr, session->_canvas);
  const test::TerminalScreen& shown = session.screen();
  std::vector<std::string> cells;
  for (int x = 0; x < static_cast<int>(text.size()); ++x) cells.push_back(shown.cell(0, x).text);
  EXPECT_EQ(shown.cell(0, static_cast<int>(text.size())).text, " ") << encode_utf8(text) << " reaches too far";
  return cells;
}

TEST(Curses, EveryCharacterTakesOneVisibleCell) {
  EditorSession session({.rows = 3, .cols = 60});
  using Cells = std::vector<std::string>;
  EXPECT_EQ(cells_of(session, U"a\tb"), (Cells{"a", "→", "b"}));
  EXPECT_EQ(cells_of(session, std::u32string(U"\0\x01\n\r\x1b[31m\x7f\x80\x9b", 12)),
            (Cells{"�", "�", "�", "�", "�", "[", "3", "1", "m", "�", "�", "�"}));
  EXPECT_EQ(cells_of(session, U"e\u0301x\u0302\u0303"), (Cells{"e", " \u0301", "x", " \u0302", " \u0303"}));
  EXPECT_EQ(cells_of(session, U"a\u200Bb\u200D\u202Ec\uFEFF\u2028"), (Cells{"a", "·", "b", "·", "·", "c", "·", "·"}));
  EXPECT_EQ(cells_of(session, U"\uFFFE\U0010FFFFü─"), (Cells{"�", "�", "ü", "─"}));
}

TEST(Curses, NoCharacterSpillsIntoTheCellsAroundIt) {
  EditorSession session({.rows = 3, .cols = 60});
  for (char32_t c = 0; c < 0x30000; c += 1 + c / 97) {
    // Terminals differ on the newer combining marks and double-width characters.
    int width = ::wcwidth(static_cast<wchar_t>(c));
    if ((c >= 0xD800 && c < 0xE000) || width == 0 || width == 2) continue;
    session->_canvas.erase();
    session->_canvas.put(1, 0, std::u32string(U"[") + c + U"]");
    session->_painter.show(session->stdscr, session->_canvas);
    const test::TerminalScreen& shown = session.screen();
    std::u32string row = decode_utf8(shown.row(1));
    ASSERT_TRUE(row.size() == 3 && row[0] == U'[' && row[2] == U']') << std::hex << +c << " " << shown.row(1);
    ASSERT_EQ(shown.row(0) + shown.row(2), "") << std::hex << +c;
  }
}

TEST(Curses, WhatFallsOffTheScreenIsDropped) {
  EditorSession session({.rows = 3, .cols = 6});
  screen::Canvas& canvas = session->_canvas;
  canvas.erase();
  canvas.put(1, 4, U"abc");
  canvas.put(2, 0, U"corner");  // to the very last cell
  canvas.put(0, 5, U"日本");    // half of it would stand outside
  for (auto [row, column] : {std::pair(-1, 0), std::pair(3, 0), std::pair(0, -1), std::pair(0, 6)})
    canvas.put(row, column, U"never");
  canvas.place_cursor(1, 2);
  for (auto [row, column] : {std::pair(-1, 0), std::pair(3, 0), std::pair(0, -1), std::pair(0, 6)})
    canvas.place_cursor(row, column);
  session->_painter.show(session->stdscr, canvas);
  EXPECT_EQ(session.screen().all_rows(), (std::vector<std::string>{"", "    ab", "corner"}));
  EXPECT_EQ(session.screen().cursor_row(), 1);
  EXPECT_EQ(session.screen().cursor_col(), 2);
  canvas.put_row(0, U"longer than the row", 6, {A_BOLD, screen::PAIR_BAR});
  canvas.put_row(1, U"a", 3, {A_NORMAL, screen::PAIR_PROMPT});
  canvas.put_row(2, U"x", -1, {});
  session->_painter.show(session->stdscr, canvas);
  EXPECT_EQ(session.screen().all_rows(), (std::vector<std::string>{"longer", "a   ab", "corner"}));
  EXPECT_EQ(session.screen().attributes(0), "bbbbbb");
  EXPECT_EQ(session.screen().cell(0, 5).bg, 7);
  EXPECT_EQ(session.screen().attributes(1), "333");
}

}  // namespace
}  // namespace brenlow
