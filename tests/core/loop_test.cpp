#include <gtest/gtest.h>

#include <csignal>

#include "screen/curses.h"
#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;
using test::SessionOptions;

constexpr int ENTER = 13, BACKSPACE = 127, DELETE = KEY_DC, BOLD = 2, SELECT_ALL = 1, UNDO = 26;

SessionOptions with_files(const std::string& keys, const std::string& expansions = "") {
  return {.home_files = {{".config/brenlow/keys.conf", keys}, {".config/brenlow/expansions.conf", expansions}}};
}

TEST(Loop, EscapeLeavesAModeThenAFilterThenStartsACommand) {
  EditorSession session;
  session.document("|one\ntwo\none");
  session.press(KEY_ESC);
  EXPECT_TRUE(session->_action_mode);
  session.press(KEY_ESC);
  EXPECT_FALSE(session->_action_mode);

  session.type_ahead("two\r");
  session.press(_KEY_CTRL_G);
  ASSERT_EQ(session->_kgrep_folds, (IndexSet{0, 2}));
  session->_find_active = true;
  session->search_term = U"two";
  session.press(KEY_ESC);
  EXPECT_FALSE(session->_action_mode) << "the first ESC only clears the view";
  EXPECT_EQ(session->message, "Cleared — back to the normal view.");
  EXPECT_TRUE(session->_kgrep_folds.empty() && session->_kgrep_term.empty());
  EXPECT_TRUE(!session->_find_active && session->search_term.empty());
  session.press(KEY_ESC);
  EXPECT_TRUE(session->_action_mode);
}

TEST(Loop, ACommandLetterServesOnceAndIsNeverTyped) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a|", {KEY_ESC, 'l'}, "|"},
                                {"a|", {KEY_ESC, 'l', 'l'}, "l|"},
                                {"a|", {KEY_ESC, 'j'}, "a|"},
                                {"a|", {KEY_ESC, 'j', 'x'}, "ax|"},
                                {"a|", {KEY_ESC, 0xC3}, "a|"},
                                {"a|", {KEY_ESC, BACKSPACE, ENTER}, "a\n|"},
                                {"ab|", {KEY_ESC, KEY_LEFT, 'x'}, "abx|"},
                                {"a|", {KEY_ESC, NO_KEY, KEY_RESIZE, 'l'}, "|"},
                            });
  EXPECT_FALSE(session->_action_mode);
}

TEST(Loop, WithAnotherActionKeyEscapeDropsTheSelectionOrHelps) {
  EditorSession session(with_files("action_key: F2\nhelp_key: F1\n"));
  session.document("^ab|c");
  session.press(KEY_ESC);
  EXPECT_FALSE(session->_action_mode || session->_expansion_mode);
  EXPECT_EQ(session.notation(), "ab|c");
  session.press(KEY_ESC);
  session.press('l');
  EXPECT_EQ(session.notation(), "abl|c") << "a bare ESC starts nothing";
  session->message = "told";
  session.press(_KEY_F[1]);
  EXPECT_TRUE(session->_action_mode);
  EXPECT_EQ(session->message, "");
  session.press(_KEY_F[1]);
  EXPECT_FALSE(session->_action_mode);
  session.press({_KEY_F[1], 'L'});
  EXPECT_EQ(session.notation(), "|");
}

TEST(Loop, HelpOpensFromEveryModeAndEndsIt) {
  EditorSession session(with_files("help_key: CTRL_SPACE\n", "expansion_key: F5\na: text\n"));
  for (int mode : {NO_KEY, KEY_ESC, _KEY_F[4]}) {
    session.document("|");
    session.type_ahead("q");
    session.press({mode, 0});
    EXPECT_TRUE(session.screen().shows("Press any key to return")) << mode;
    session.press('a');
    EXPECT_EQ(session.notation(), "a|") << "the mode is over, after " << mode;
  }
}

TEST(Loop, ExpansionsBehindTheirOwnKey) {
  EditorSession session(with_files("", "expansion_key: F5\na: one two\nQ: \"x\"\n"));
  const int PREFIX = _KEY_F[4];
  expect_key_cases(session, {
                                {"<|>", {PREFIX, 'a', 'a'}, "\\<one twoa|>"},
                                {"x^y|z", {PREFIX, 'Q'}, "xyx|z"},
                                {"|", {PREFIX, PREFIX, 'a'}, "a|"},
                                {"|", {PREFIX, KEY_ESC, 'a'}, "a|"},
                                {"x|", {KEY_ESC, PREFIX, 'a'}, "xone two|"},
                                {"x|", {PREFIX, 'A'}, "x|"},
                            });
  EXPECT_EQ(session->message, "No expansion assigned to that key.");
  for (int key : {3, ENTER, BACKSPACE, int{KEY_UP}, 0xE9}) {
    session.document("x|");
    session.press({PREFIX, key});
    EXPECT_EQ(session->message, "No expansion assigned to that key.") << key;
    EXPECT_EQ(session.notation(), "x|") << key;
    EXPECT_FALSE(session->_expansion_mode) << key;
  }
}

TEST(Loop, ExpansionsBehindEscapeGoBeforeCommandLetters) {
  EditorSession session(with_files("", "l: expanded\nZ: last\n"));
  expect_key_cases(session, {
                                {"a|", {KEY_ESC, 'l'}, "aexpanded|"},
                                {"a|", {KEY_ESC, 'L'}, "|"},
                                {"a|", {KEY_ESC, 'Z', 'Z'}, "alastZ|"},
                            });
  // The action key elsewhere: a bare ESC is the prefix of expansions, but of no expansions none.
  EditorSession moved(with_files("action_key: F2\n", "l: expanded\n"));
  expect_key_cases(moved, {
                              {"a|", {KEY_ESC, 'l'}, "aexpanded|"},
                              {"a|", {KEY_ESC, 'L'}, "a|"},
                              {"a|", {KEY_ESC, KEY_ESC, 'l'}, "al|"},
                              {"a|", {_KEY_F[1], 'l'}, "aexpanded|"},
                          });
}

TEST(Loop, AFoldedLineRefusesEveryKeyThatWouldChangeIt) {
  EditorSession session;
  auto on_fold = [&](int key) {
    session.document("# |A\nbody\n# B");
    session->_folded_chapters = {0};
    session->_invalidate_map();
    session.press(key);
  };
  for (int key : {10, ENTER, BACKSPACE, 8, DELETE, int{KEY_BACKSPACE}, int{'x'}, int{' '}, 0xC3, 255}) {
    on_fold(key);
    EXPECT_EQ(session.notation(), "# |A\nbody\n# B") << key;
    EXPECT_EQ(session->message, "Chapter is folded — press ESC # to unfold before editing.") << key;
    EXPECT_TRUE(session->_utf8_buf.empty()) << key;
  }
  on_fold(KEY_DOWN);
  EXPECT_EQ(session->cy, 2);
  on_fold(SELECT_ALL);
  EXPECT_EQ(session->message, "All selected.");
  on_fold(BOLD);
  EXPECT_EQ(session->message, "Bold on");

  session.document("a|\nb");
  session->_kgrep_term = U"b";
  session->_kgrep_folds = {0};
  session.press('x');
  EXPECT_EQ(session->message, "Line is kGrep-folded — press ESC G to unfold, or ESC * to unfold all.");
  EXPECT_EQ(session.notation(), "a|\nb");
}

TEST(Loop, ASelectionIsDroppedByTypingAndTakenByDelete) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a^bc|d", {'x'}, "abcx|d"},
                                {"a^bc|d", {ENTER}, "abc\n|d"},
                                {"a^bc|d", {10}, "abc\n|d"},
                                {"a^bc|d", {BACKSPACE}, "ab|d"},
                                {"a^bc|d", {DELETE}, "a|d"},
                                {"a^|bcd", {DELETE}, "a|cd"},
                                {"a^bc|d", {0xC3, 0xA9}, "a^bcé|d"},
                            });
}

TEST(Loop, BytesBecomeCharactersAndWrongOnesAreDropped) {
  EditorSession session;
  expect_key_cases(session, {
                                {"|", {0xE6, 0xBC, 0xA2, 0xF0, 0x9F, 0x98, 0x80}, "漢😀|"},
                                {"|", {0xC3, 'x', 0xA9}, "xé|"},
                                {"|", {0xE6, KEY_HOME, 0xBC, UNDO, 0xA2}, "漢|"},
                            });
  EXPECT_EQ(session->_undo_stack.size(), 1U);
  session.document("|");
  session.press({0x80, 0x80, 0x80, 0x80});
  EXPECT_EQ(session->_utf8_buf.size(), 4U);
  session.press({0x80, 0xC3, 0xA9});
  EXPECT_EQ(session.notation(), "é|");
  EXPECT_EQ(session->message, "");
}

TEST(Loop, ControlLettersThatEnterAndBackspaceUseCanBeBound) {
  EditorSession session(with_files("select_all: Ctrl+H\ncopy: Ctrl+J\nmark: Ctrl+M\n"));
  session.document("a|b");
  session.press(8);
  EXPECT_EQ(session.notation(), "^ab|");
  session.press(10);
  EXPECT_EQ(session->message.substr(0, 8), "Copied 2");
  session.press(13);
  EXPECT_EQ(session.notation(), "ab^|");
  session.press(BACKSPACE);
  EXPECT_EQ(session.notation(), "a|") << "the other Backspace byte is left";
  for (int key : {8, 10, 13}) {
    session.document("^# |A\nbody");
    session->_folded_chapters = {0};
    session.press(key);
    EXPECT_NE(session.notation(), "^# |A\nbody") << "works on a folded line like every shortcut: " << key;
  }
}

// Down remembers the column it came from; a typed character forgets it.
TEST(Loop, TheColumnOfVerticalMotionIsForgottenByTyping) {
  EditorSession session;
  expect_key_cases(session, {
                                {"abcd|\nx\nabcd", {KEY_DOWN, KEY_DOWN}, "abcd\nx\nabcd|"},
                                {"abcd|\nx\nabcd", {KEY_DOWN, 'y', KEY_DOWN}, "abcd\nxy\nab|cd"},
                                {"abcd|\nx\nabcd", {KEY_DOWN, 0xC3, 0xA9, KEY_DOWN}, "abcd\nxé\nab|cd"},
                                {"abcd|\nx\nabcd", {KEY_DOWN, KEY_LEFT, KEY_DOWN}, "abcd\nx\n|abcd"},
                            });
}

void run_to_the_end(EditorSession& session, std::string_view bytes) {
  session.type_ahead(bytes);
  EXPECT_THROW(session->run(), StopRequest);
}

TEST(Loop, KeysTypedAheadAreAllServedInTheirOrder) {
  EditorSession session;
  // Text, an arrow, Enter, a command in one burst, Ctrl+G's prompt given up with Enter, then the end: no, do not save.
  run_to_the_end(session,
                 "ab\x1b[Dc\r\x1b"
                 "b"
                 "d\x07\r\x11n");
  EXPECT_EQ(session.notation(), "ac\n<b>d</b>|b");
  EXPECT_FALSE(session->_old_termios == std::nullopt);
}

TEST(Loop, AWindowThatChangedWhileTheDocumentLoadedIsFilled) {
  EditorSession session({.rows = 24, .cols = 80});
  session.resize(10, 30);
  ::resizeterm(24, 80);
  run_to_the_end(session, "\x11");
  EXPECT_EQ(session->rows(), 10);
  EXPECT_EQ(session->cols(), 30);
}

}  // namespace
}  // namespace brenlow
