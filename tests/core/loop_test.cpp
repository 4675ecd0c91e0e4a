#include <gtest/gtest.h>

#include <csignal>

#include "screen/curses.h"
#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;
using test::SessionOptions;

constexpr int ENTER = 13, BACKSPACE = 127, DELETE = KEY_DC, UNDO = 26;

SessionOptions with_files(const std::string& keys, const std::string& expansions = "") {
  return {.home_files = {{".config/brenlow/keys.conf", keys}, {".config/brenlow/expansions.conf", expansions}}};
}

TEST(Loop, EscapeClearsAFilterThenStartsACommand) {
  EditorSession session;
  session.document("|one\ntwo\none");
  session.type_ahead("two\r");
  session.press(_KEY_CTRL_G);
  ASSERT_EQ(session->_kgrep_folds, (IndexSet{0, 2}));
  session.press(KEY_ESC);
  EXPECT_EQ(session->message, "Cleared — back to the normal view.");
  EXPECT_FALSE(session->_action_mode || !session->_kgrep_folds.empty());
  session.press({KEY_ESC, 'l'});
  EXPECT_EQ(session.notation(), "one\n|one");
}

TEST(Loop, ACommandLetterServesOnceAndIsNeverTyped) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a|", {KEY_ESC, 'l', 'l'}, "l|"},
                                {"ab|", {KEY_ESC, KEY_LEFT, 'x'}, "abx|"},
                                {"a|", {KEY_ESC, NO_KEY, KEY_RESIZE, 'l'}, "|"},
                            });
  EXPECT_FALSE(session->_action_mode);
}

TEST(Loop, ExpansionsServeBehindTheirKeyOrBeforeCommandLetters) {
  {
    EditorSession session(with_files("", "expansion_key: F5\na: one two\nQ: \"x\"\n"));
    const int PREFIX = _KEY_F[4];
    expect_key_cases(session, {
                                  {"<|>", {PREFIX, 'a', 'a'}, "\\<one twoa|>"},
                                  {"x^y|z", {PREFIX, 'Q'}, "xyx|z"},
                                  {"x|", {KEY_ESC, PREFIX, 'a'}, "xone two|"},
                                  {"x|", {PREFIX, ENTER, PREFIX, 0xE9, PREFIX, KEY_UP, PREFIX, 'A'}, "x|"},
                              });
    EXPECT_EQ(session->message, "No expansion assigned to that key.");
  }
  // The action key elsewhere: a bare ESC is the prefix of expansions alone.
  EditorSession moved(with_files("action_key: F2\n", "l: expanded\n"));
  expect_key_cases(moved, {
                              {"a|", {KEY_ESC, 'l'}, "aexpanded|"},
                              {"a|", {KEY_ESC, 'L'}, "a|"},
                              {"a|", {_KEY_F[1], 'L'}, "|"},
                          });
}

TEST(Loop, AFoldedLineRefusesEveryKeyThatWouldChangeIt) {
  EditorSession session;
  for (int key : {10, ENTER, BACKSPACE, 8, DELETE, int{KEY_BACKSPACE}, int{'x'}, int{' '}, 0xC3, 255}) {
    session.document("# |A\nbody\n# B");
    session->_folded_chapters = {0};
    session->_invalidate_map();
    session.press(key);
    EXPECT_EQ(session.notation(), "# |A\nbody\n# B") << key;
    EXPECT_EQ(session->message, "Chapter is folded — press ESC # to unfold before editing.") << key;
  }
  session.document("a|\nb");
  session->_kgrep_term = U"b";
  session->_kgrep_folds = {0};
  session.press('x');
  EXPECT_EQ(session->message, "Line is kGrep-folded — press ESC G to unfold, or ESC * to unfold all.");
  EXPECT_EQ(session.notation(), "a|\nb");
}

TEST(Loop, BytesBecomeCharactersAndWrongOnesAreDropped) {
  EditorSession session;
  expect_key_cases(session, {
                                {"|", {0xE6, 0xBC, 0xA2, 0xF0, 0x9F, 0x98, 0x80}, "漢😀|"},
                                {"|", {0xC3, 'x', 0xA9}, "xé|"},
                                {"|", {0xE6, KEY_HOME, 0xBC, UNDO, 0xA2}, "漢|"},
                                {"|", {0x80, 0x80, 0x80, 0x80, 0x80, 0xC3, 0xA9}, "é|"},
                            });
}

TEST(Loop, ControlLettersThatEnterAndBackspaceUseCanBeBound) {
  EditorSession session(with_files("select_all: Ctrl+H\ndelete_line: Ctrl+J\nmark: Ctrl+M\n"));
  expect_key_cases(session, {{"a|b", {8}, "^ab|"}, {"a|b", {10}, "|"}, {"a|b", {13}, "a^|b"}});
}

TEST(Loop, KeysTypedAheadAreServedInTheirOrderInAWindowThatChangedMeanwhile) {
  EditorSession session({.rows = 24, .cols = 80});
  session.resize(10, 30);
  ::resizeterm(24, 80);
  // Text, an arrow, Enter, a command in one burst, Ctrl+G's prompt given up with Enter, then the end: no, do not save.
  session.type_ahead(
      "ab\x1b[Dc\r\x1b"
      "bd\x07\r\x11n");
  EXPECT_THROW(session->run(), StopRequest);
  EXPECT_EQ(session.notation(), "ac\n<b>d</b>|b");
  EXPECT_EQ(std::pair(session->rows(), session->cols()), std::pair(10, 30));
}

}  // namespace
}  // namespace brenlow
