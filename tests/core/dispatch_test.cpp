#include <gtest/gtest.h>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;

struct Doors {
  int letter;
  int shortcut;
  std::string_view name;
};

// The commands that need no dialog.
constexpr Doors COMMANDS[] = {
    {'u', 26, "undo"},
    {'w', _KEY_CTRL_ALT_Z, "redo"},
    {'w', 23, "redo_compat"},
    {'l', 25, "delete_line"},
    {'b', 2, "bold"},
    {'i', 9, "italic"},
    {'p', 16, "page_break"},
    {'e', 1, "select_all"},
    {'m', 12, "mark"},
    {'c', 3, "copy"},
    {'x', 24, "cut"},
    {'v', 22, "paste"},
    {'[', _KEY_CTRL_ALT_B, "doc_begin"},
    {']', _KEY_CTRL_ALT_E, "doc_end"},
    {'h', _KEY_CTRL_ALT_H, "toggle_bars"},
};

// What a command leaves behind on a document with a history, with or without a selection.
std::string left_by(EditorSession& session, const std::vector<int>& keys, bool selected) {
  Editor::_internal_clipboard = {U"copied"};
  Editor::_internal_clipboard_fmt = {span_list({{0, 3, FMT_ITALIC}})};
  Editor::_internal_clipboard_pbl = {};
  session.document("first\nwo|rds\n⏎<b>last</b> line");
  session.press({'1', '2', 26});
  if (selected) session.press({_KEY_SHIFT_RIGHT, _KEY_SHIFT_DOWN});
  session->message.clear();
  session->_bar_state = 0;
  for (int key : keys) session.press(key);
  return session.notation() + "\n" + session->message + "\n" + std::to_string(session->_undo_stack.size()) + " " +
         std::to_string(session->_redo_stack.size()) + " " + std::to_string(session->_bar_state);
}

TEST(Dispatch, ACommandDoesTheSameByItsLetterInBothCasesAndByItsShortcut) {
  EditorSession session;
  for (bool selected : {false, true}) {
    std::string untouched = left_by(session, {}, selected);
    for (const Doors& command : COMMANDS) {
      std::string by_letter = left_by(session, {KEY_ESC, command.letter}, selected);
      EXPECT_NE(by_letter, untouched) << command.name;
      EXPECT_EQ(left_by(session, {command.shortcut}, selected), by_letter) << command.name;
      if (command.letter >= 'a')
        EXPECT_EQ(left_by(session, {KEY_ESC, command.letter - 32}, selected), by_letter) << command.name;
    }
  }
}

TEST(Dispatch, FormatsAndPageBreaksAreRefusedWhereTheFileCannotHoldThem) {
  for (const char* path : {"notes.txt", "notes.MD", "film.Fountain"}) {
    EditorSession session({.path = path, .cols = 100});
    for (auto [letter, shortcut, notice] :
         {std::tuple(int{'B'}, 2, "Bold is not supported in plain-text formats (.txt / .md / .fountain)"),
          std::tuple(int{'I'}, 9, "Italic is not supported in plain-text formats (.txt / .md / .fountain)"),
          std::tuple(int{'P'}, 16, "Page breaks are not supported in plain-text formats (.txt / .md / .fountain)")})
      for (const std::vector<int>& keys : {std::vector<int>{KEY_ESC, letter}, std::vector<int>{shortcut}}) {
        session.document("^so|me");
        session.type_ahead("q");
        for (int key : keys) session.press(key);
        EXPECT_TRUE(session.screen().shows(notice)) << session.screen().picture();
        EXPECT_EQ(session.notation(), "^so|me");
        EXPECT_EQ(session->_cur_fmt, 0);
        EXPECT_FALSE(session->modified || session->_input_waiting());
      }
  }
  for (std::optional<std::string> path : {std::optional<std::string>(), std::optional<std::string>("a.odt")}) {
    EditorSession session({.path = path});
    session.press({KEY_ESC, 'B'});
    EXPECT_EQ(session->message, "Bold on");
    session.press({9});
    EXPECT_EQ(session->message, "Italic on");
    EXPECT_EQ(session->_cur_fmt, FMT_BOLD | FMT_ITALIC);
    session.press({KEY_ESC, 'b'});
    EXPECT_EQ(session->message, "Bold off");
    EXPECT_EQ(session->_cur_fmt, FMT_ITALIC);
  }
}

TEST(Dispatch, TheMarkIsSetAndTakenBackByTheSameKey) {
  EditorSession session;
  session.document("a|b");
  session.command('m');
  EXPECT_EQ(session->message, "Anchor set — navigate to extend, press mark key or ESC to cancel");
  EXPECT_EQ(session.notation(), "a^|b");
  session.press({KEY_END, 12});
  EXPECT_EQ(session->message, "Selection cleared");
  EXPECT_EQ(session.notation(), "ab|");
}

// Only the letters look at the format found there; the shortcuts keep the one that is on.
TEST(Dispatch, TheEndsOfTheDocumentAreReachedWithALetterInTheirFormat) {
  EditorSession session;
  test::expect_key_cases(session, {
                                      {"one\ntw|o <b>b</b>", {KEY_ESC, ']', 'x'}, "one\ntwo <b>bx</b>|"},
                                      {"one\ntw|o <b>b</b>", {_KEY_CTRL_ALT_E, 'x'}, "one\ntwo <b>b</b>x|"},
                                      {"<i>one</i>\ntw|o", {KEY_LEFT, KEY_ESC, '[', 'x'}, "<i>x|one</i>\ntwo"},
                                      {"<i>one</i>\ntw|o", {KEY_LEFT, _KEY_CTRL_ALT_B, 'x'}, "x|<i>one</i>\ntwo"},
                                  });
}

}  // namespace
}  // namespace brenlow
