#include <gtest/gtest.h>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;

TEST(Dispatch, ACommandDoesTheSameByItsLetterInBothCasesAndByItsShortcut) {
  EditorSession session;
  auto left_by = [&](std::initializer_list<int> keys) {
    Editor::_internal_clipboard = {U"copied"};
    Editor::_internal_clipboard_fmt = {span_list({{0, 3, FMT_ITALIC}})};
    Editor::_internal_clipboard_pbl = {};
    session.document("first\nwo|rds\n⏎<b>last</b> line");
    session.press({'1', '2', 26, _KEY_SHIFT_RIGHT});
    session->_bar_state = 0;
    session.press(keys);
    return session.notation() + "\n" + session->message + "\n" + std::to_string(session->_bar_state);
  };
  const std::string untouched = left_by({});
  const std::string letters = "UWWLBIPEMCXV[]H";  // the commands that need no dialog
  const int shortcuts[] = {
      26, _KEY_CTRL_ALT_Z, 23, 25, 2, 9, 16, 1, 12, 3, 24, 22, _KEY_CTRL_ALT_B, _KEY_CTRL_ALT_E, _KEY_CTRL_ALT_H};
  for (std::size_t i = 0; i < letters.size(); ++i) {
    const int letter = letters[i];
    std::string by_letter = left_by({KEY_ESC, letter});
    EXPECT_NE(by_letter, untouched) << letter;
    EXPECT_EQ(left_by({shortcuts[i]}), by_letter) << letter;
    if (letter <= 'Z') EXPECT_EQ(left_by({KEY_ESC, letter + 32}), by_letter) << letter;
  }
}

TEST(Dispatch, FormatsAndPageBreaksAreRefusedWhereTheFileCannotHoldThem) {
  for (const char* path : {"notes.txt", "notes.MD", "film.Fountain"}) {
    EditorSession session({.path = path, .cols = 100});
    for (auto [letter, shortcut, what] :
         {std::tuple('B', 2, "Bold is"), std::tuple('I', 9, "Italic is"), std::tuple('P', 16, "Page breaks are")})
      for (bool by_letter : {true, false}) {
        session.document("^so|me");
        session.type_ahead("q");
        by_letter ? session.command(letter) : session.press(shortcut);
        EXPECT_TRUE(session.screen().shows(
            what + std::string(" not supported in plain-text formats (.txt / .md / .fountain)")));
        EXPECT_EQ(session.notation(), "^so|me");
        EXPECT_FALSE(session->_cur_fmt || session->modified || session->_input_waiting());
      }
  }
}

}  // namespace
}  // namespace brenlow
