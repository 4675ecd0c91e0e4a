#include "screen/curses.h"

#include <gtest/gtest.h>

#include "core/unicode.h"
#include "customise/recent_files.h"
#include "tests/support/dialogs.h"
#include "tests/support/editor_session.h"
#include "tests/support/terminal_bytes.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::FakeTools;
using test::times;
namespace keys = test::keys;

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

// Orders to a terminal and characters that it hides, none of them a line feed, a slash or a NUL, so that a file can
// have the name.
const std::string HOSTILE[] = {
    "\x1b]0;title\x07\x1b[2J\x1b[31m\x1b[6n\x1bP+q\x1b\\",
    "\x01\x02\x03\x04\x05\x06\x07\x08\t\x0b\x0c\x0e\x0f\x10\x11\x12\x13\x18\x19\x1a\x1c\x7f",
    "\x9b"
    "31m\xc2\x9b"
    "2J\xc2\x80\xc2\x85\xc2\x90x\xc2\x9c\xff\xed\xa0\x80\xc0\xaf\xf4\x90\x80\x80",
    "\u202eabc\u202c\u2066d\u2069\u200e\u200f\u061c\u200b\u200c\u200d\ufeff\u00ad\u2028\u2029\u2060\ufff9",
    "a\ufe0fb\U000e0041\U000e007f\u115f\u1160\u3164\uffa0\u034f\u180e\U000e0100\U0001d173\u17b4e\u0301",
};

// Hostile text as a document, as its name, on the clipboard, in prompts, lists, messages and settings.
TEST(Curses, NothingThatAFileHoldsIsAnOrderToTheTerminalOrHidden) {
  for (const std::string& hostile : HOSTILE) {
    const std::string name = "docs/" + hostile;
    EditorSession session({.path = name + ".txt",
                           .cols = 250,
                           .home_files = {{name + ".txt", "# " + hostile + "\n" + hostile + "\n# B\nb"},
                                          {name + ".odt", hostile},
                                          {"docs/" + hostile + "/x.md", hostile},
                                          {".config/brenlow/expansions.conf", "expansion_key: F5\nA: " + hostile}}});
    const FakeTools tools;
    session->_machine.search_path = tools.search_path();
    tools.folder().write("held", hostile);
    tools.add("pbpaste", "cat '" + tools.folder().file("held") + "'");
    add_recent_file(session->_machine.files, session.home().file(name + ".odt"));
    const std::string paste = "\x16";

    session.draw();
    for (int ly = 0; ly < session->_line_count(); ++ly)
      for (int cx = 0; cx <= session->_line_length(ly); ++cx) {
        session->cy = ly, session->cx = cx;
        const test::TerminalScreen& shown = session.draw();
        ASSERT_EQ(shown.cursor_col(), session->_lmargin() + cx) << hostile;
        if (cx > 0 && session->_line(ly)[static_cast<std::size_t>(cx - 1)] != U' ')
          EXPECT_NE(shown.cell(shown.cursor_row(), shown.cursor_col() - 1).text, " ") << hostile << " at " << cx;
      }
    session->_ESC_MAP["[0~"] = KEY_ESC;
    // Gives a command letter and keys for its dialogs, and leaves what is still open.
    auto give = [&](const std::string& typed) {
      session->_action_mode = session->_find_active = false;
      session.feed("\x1b" + typed + times(4, keys::ESC));
      session.draw();
    };
    session->cy = 2, session->cx = 0;
    give(paste + keys::F5 + "A");
    session->cy = session->cx = 0;
    give("#");
    give(keys::DOWN);
    give("f" + paste + keys::ENTER);
    give("r" + paste + keys::ENTER + paste + keys::ENTER);
    give("g" + paste + keys::ENTER);
    session->_action_mode = false;
    session.feed("\x1bs");
    EXPECT_EQ(session->message, "Saved (TXT): " + hostile + ".txt");
    give("oR" + keys::DOWN + keys::ENTER);  // no document
    give("o/" + paste + keys::ENTER);
    give("o" + keys::DOWN + keys::ENTER);
    give("a" + keys::TAB + paste + keys::ENTER);
    give("a" + keys::TAB + keys::END + "x" + keys::ENTER);
    give("k" + paste);
    EXPECT_TRUE(test::foreign_output("\x1b[6n").size() > 0 && test::foreign_output("a\u202e").size() > 0);
    EXPECT_EQ(test::foreign_output(session.output()), "") << hostile;
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
