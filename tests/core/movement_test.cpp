#include <gtest/gtest.h>

#include <random>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;

constexpr int LEFT = KEY_LEFT, RIGHT = KEY_RIGHT, UP = KEY_UP, DOWN = KEY_DOWN;
constexpr int HOME = KEY_HOME, END = KEY_END, PAGE_UP = KEY_PPAGE, PAGE_DOWN = KEY_NPAGE;
constexpr int WORD_LEFT = _KEY_CTRL_LEFT, WORD_RIGHT = _KEY_CTRL_RIGHT;

TEST(Movement, CharactersWordsAndLineEndsAreReachedAndTheDocumentsEdgesHold) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a|b\ncd", {RIGHT, RIGHT}, "ab\n|cd"},
                                {"ab\n|cd", {LEFT, LEFT}, "a|b\ncd"},
                                {"|ab", {LEFT}, "|ab"},
                                {"|", {LEFT, RIGHT, UP, DOWN, HOME, END, PAGE_UP, PAGE_DOWN}, "|"},
                                // Words end at blanks alone: not at tabs, punctuation or other white space.
                                {"|don't,stop\tnow here", {WORD_RIGHT}, "don't,stop\tnow |here"},
                                {"on|e  two  ", {WORD_RIGHT, WORD_RIGHT}, "one  two  |"},
                                {"one|\n  two", {WORD_RIGHT}, "one\n|  two"},
                                {"one\n|  two", {WORD_RIGHT}, "one\n  |two"},
                                {"one, tw|o", {WORD_LEFT, WORD_LEFT}, "|one, two"},
                                {"one \n  |two", {WORD_LEFT}, "one \n|  two"},
                                {"one \n|  two", {WORD_LEFT}, "one |\n  two"},
                            });
}

// The rows are ten characters wide: "one two th" would not fit, so the first line shows as three rows.
TEST(Movement, UpAndDownGoByRowsAndComeBackToTheirColumn) {
  EditorSession session({.rows = 12, .cols = 12});
  const std::string wrapped = "twelve two three four\n";  // "twelve two", "three four"
  expect_key_cases(session,
                   {
                       {"twelve |two three four", {DOWN}, "twelve two three f|our"},
                       {"twelve two three fou|r", {UP}, "twelve tw|o three four"},
                       {"12345678|9\nab\n123456789", {DOWN, DOWN}, "123456789\nab\n12345678|9"},
                       {"12345678|9\nab\n123456789", {DOWN, HOME, DOWN}, "123456789\nab\n|123456789"},
                       // At the last row the column is still remembered.
                       {"12345678|9\nab", {DOWN, DOWN, UP}, "12345678|9\nab"},
                       // The blank a row was broken at belongs to the upper row.
                       {"twelve two| three four\n123456789012", {DOWN, DOWN}, "twelve two three four\n1234567890|12"},
                       // Home and End take the whole line.
                       {wrapped + "|x", {UP, END}, "twelve two three four|\nx"},
                       {wrapped + "|x", {UP, HOME}, "|twelve two three four\nx"},
                       // A row shorter than the column keeps the cursor, though its line goes on.
                       {"1234567|8\none threefour", {DOWN}, "12345678\none| threefour"},
                       // A list item's rows count from their own first character.
                       {"- one two t|hree four", {DOWN}, "- one two three f|our"},
                   });
}

TEST(Movement, PagesAreAsLongAsTheTextArea) {
  EditorSession session({.rows = 7, .cols = 12});  // five rows of text
  const std::string ten = "0\n1\n2\n3\n4\n5\n6\n7\n8\n9";
  expect_key_cases(session,
                   {
                       {"a|b\n" + ten, {PAGE_DOWN}, "ab\n0\n1\n2\n3\n4|\n5\n6\n7\n8\n9"},
                       {"a|b\n" + ten, {PAGE_DOWN, PAGE_DOWN, PAGE_DOWN, PAGE_UP, PAGE_UP}, "a|b\n" + ten},
                       {"ab\n" + ten + "|", {PAGE_UP, PAGE_UP, PAGE_UP}, "a|b\n" + ten},
                       // The column may reach past the row it lands on, into the same line's next row.
                       {"12345678|9\na\na\na\na\none twothree", {PAGE_DOWN}, "123456789\na\na\na\na\none twot|hree"},
                   });
}

TEST(Movement, TypedTextTakesTheFormatLeftOfTheCursor) {
  EditorSession session;
  expect_key_cases(session, {{"a|a<b>bb</b>", {RIGHT, 'x'}, "aax|<b>bb</b>"},
                             {"aa<b>|bb</b>", {RIGHT, 'x'}, "aa<b>bx|b</b>"},
                             {"<i>aa|</i>", {HOME, 'x'}, "<i>x|aa</i>"},
                             {"|a\n<b>b</b>", {DOWN, 'x'}, "a\n<b>x|b</b>"},
                             {"|aa <b>b</b>", {WORD_RIGHT, 'x'}, "aa x|<b>b</b>"}});
}

// With any folds and any filter: no key leaves the cursor on a hidden line, and from the first line shown to the
// last one and back Right and Left visit every line shown.
TEST(Movement, EveryShownLineIsReachedAndNoHiddenOne) {
  EditorSession session({.rows = 8, .cols = 14});
  std::mt19937 random(11);
  auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  for (int round = 0; round < 40; ++round) {
    std::string text = "|x";
    for (int i = 0; i < 14; ++i)
      text += std::vector<std::string>{"\n# a", "\n## x", "\n", "\nwords x and words"}[pick(4)];
    session.document(text);
    session->_fold_hierarchical = round % 2 == 0;
    for (int ly = 0; ly < session->_line_count(); ++ly)
      if (session->_line(ly).starts_with(U"#") && pick(2)) session->_folded_chapters.insert(ly);
    if (round % 3 == 0) session->_kgrep_term = U"x";
    session->_invalidate_map();
    session->_kgrep_refresh();

    std::vector<int> shown;
    for (const MapEntry& entry : session->_build_screen_map())
      if (shown.empty() || shown.back() != entry.ly) shown.push_back(entry.ly);
    auto walk = [&](int key) {
      std::vector<int> visited{session->cy};
      for (int i = 0; i < 300; ++i) {
        session.press(key);
        if (visited.back() == session->cy) continue;
        visited.push_back(session->cy);
        bool forward = key == RIGHT || key == WORD_RIGHT;
        EXPECT_EQ(session->cx, forward ? 0 : session->_line(session->cy).length()) << text;
      }
      return visited;
    };
    for (int key : {RIGHT, WORD_RIGHT}) {
      EXPECT_EQ(walk(key), shown) << text;
      std::vector<int> back = walk(key == RIGHT ? LEFT : WORD_LEFT);
      EXPECT_EQ(std::vector<int>(back.rbegin(), back.rend()), shown) << text;
    }
    for (int i = 0; i < 60; ++i) {
      session.press(std::array{LEFT, RIGHT, UP, DOWN, HOME, END, PAGE_UP, PAGE_DOWN, WORD_LEFT,
                               WORD_RIGHT}[static_cast<std::size_t>(pick(10))]);
      EXPECT_TRUE(std::binary_search(shown.begin(), shown.end(), session->cy)) << text;
    }
  }
}

}  // namespace
}  // namespace brenlow
