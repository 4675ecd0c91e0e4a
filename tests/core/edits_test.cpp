#include <gtest/gtest.h>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;

constexpr int ENTER = 13, BACKSPACE = 127, DELETE = KEY_DC, PAGE_BREAK = 16, DELETE_LINE = 25;
constexpr int BOLD = 2, ITALIC = 9;

TEST(Edits, TypedCharactersStandAtTheCursorInTheFormatThatIsOn) {
  EditorSession session;
  // The first line is plain, so that every case starts with no format on.
  expect_key_cases(session, {
                                {"\n|<b>bold</b>", {'x'}, "\nx|<b>bold</b>"},
                                {"\n<b>bold|</b>", {'x'}, "\n<b>bold</b>x|"},
                                {"\n<b>bo|ld</b> <i>it</i>", {ITALIC, 'x'}, "\n<b>bo<i>x</i>|ld</b> <i>it</i>"},
                                {"\n<b>bold|</b>", {BOLD, 'x', BOLD, 'y'}, "\n<b>boldx</b>y|"},
                                {"\n|", {BOLD, 'a', 'b', 'c'}, "\n<b>abc</b>|"},
                            });
  EXPECT_EQ(session->_fmt(1), span_list({{0, 3, FMT_BOLD}})) << "typing on makes one span, not three";
}

TEST(Edits, QuotesAreCurledUnlessTheUserWantsThemStraight) {
  EditorSession session;
  session.type(U"`it's \"so\"' — é漢😀");
  EXPECT_EQ(session.notation(), "‘it’s \"so\"’ — é漢😀|");
  session->_smart_quotes = false;
  session.document("|");
  session.type(U"`it's`");
  EXPECT_EQ(session.notation(), "`it's`|");
}

TEST(Edits, EnterDividesTextFormatsAndPagesAndContinuesLists) {
  EditorSession session;
  expect_key_cases(session, {
                                {"x <i>a<b>b|c</b>d</i>", {ENTER}, "x <i>a<b>b</b></i>\n|<b><i>c</i></b><i>d</i>"},
                                {"x\n⏎|text\n⏎end", {ENTER}, "x\n⏎\n|text\n⏎end"},
                                {"- it|em", {ENTER, 'x'}, "- it\n- x|em"},
                                {"x\n- a<b>b|c</b>", {ENTER}, "x\n- a<b>b</b>\n- |<b>c</b>"},
                                {"- item|", {ENTER, BACKSPACE}, "- item\n|"},
                                {"- |more", {BACKSPACE}, "-|more"},
                            });
}

TEST(Edits, DeletionTakesOneCharacterOrJoinsTwoLinesWithFormatsAndBreaks) {
  EditorSession session;
  expect_key_cases(session, {
                                {"|", {BACKSPACE, DELETE}, "|"},
                                {"漢😀|c", {BACKSPACE, 8}, "|c"},
                                {"x <b>a|bc</b>", {DELETE, DELETE, DELETE}, "x <b>a</b>|"},
                                {"<i>one</i>\n|<b>two</b>", {BACKSPACE}, "<i>one</i>|<b>two</b>"},
                                {"<b>one|</b>\n<b>two</b>", {DELETE}, "<b>one|two</b>"},
                                {"a\n⏎|b\n\n⏎c", {BACKSPACE}, "a|b\n\n⏎c"},
                                {"a|\n⏎b\n\n⏎c", {DELETE}, "a|b\n\n⏎c"},
                                {"a\n<b>b|c</b>\n<i>d</i>", {DELETE_LINE}, "a\n|<i>d</i>"},
                                {"a\nb|c", {DELETE_LINE, DELETE_LINE, 'x'}, "x|"},
                                {"a\n⏎|b\nc\n⏎d", {DELETE_LINE}, "a\n|c\n⏎d"},
                                {"a\n|b\n⏎c\n⏎d", {DELETE_LINE}, "a\n⏎|c\n⏎d"},
                            });
}

TEST(Edits, PageBreaksAreSetInFrontOfTheCursor) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a\n⏎|b\n⏎c", {PAGE_BREAK}, "a\n⏎b\n⏎|c"},
                                {"|a", {PAGE_BREAK}, "\n⏎|a"},
                                {"x\n- <b>on|e</b>\n⏎two", {PAGE_BREAK}, "x\n- <b>on</b>\n⏎|<b>e</b>\n⏎two"},
                                {"^ab|c", {PAGE_BREAK}, "ab\n⏎|c"},
                            });
  EXPECT_EQ(session->message, "Page break added (ODT only)");
}

TEST(Edits, ABreakThatWouldLandOnTheFirstLineMovesDownOrGoesAndTheUserIsTold) {
  EditorSession session;
  expect_key_cases(session, {{"|a\n⏎b\n⏎c", {DELETE_LINE}, "|b\n⏎c"}, {"|a\n⏎b\nc", {DELETE_LINE}, "|b\n⏎c"}});
  EXPECT_EQ(session->message,
            "Line deleted. The page break moved down one line so it wouldn't land on the very first line.");
  expect_key_cases(session, {{"|a\n⏎b", {DELETE_LINE}, "|b"}});
  EXPECT_EQ(session->message,
            "Line deleted. The page break was removed — it would otherwise land on the first line, which can't be "
            "undone.");
}

TEST(Edits, FoldsMoveWithTheirHeadersAndAreNeitherChangedNorJoinedByAccident) {
  EditorSession session;
  struct Case {
    int cy, cx, key, fold;  // where the fold then is
  };
  for (auto [cy, cx, key, fold] : {Case{0, 1, ENTER, 5}, Case{0, 1, PAGE_BREAK, 5}, Case{1, 0, BACKSPACE, 3},
                                   Case{0, 3, DELETE, 3}, Case{3, 0, DELETE_LINE, 3}, Case{4, 0, BACKSPACE, 4},
                                   Case{4, 0, DELETE_LINE, 4}, Case{3, 4, DELETE, 4}, Case{6, 0, BACKSPACE, 4}}) {
    session.document("one\ntwo\n# A\nbody\n# B\nhidden\n## C");
    session->_folded_chapters = {4};
    session->_show_message("told before");
    session->cy = cy;
    session->cx = cx;
    session.press(key);
    EXPECT_EQ(session->_folded_chapters, IndexSet{fold}) << key << " in line " << cy;
    EXPECT_EQ(session->modified, fold != 4) << key << " in line " << cy;
    if (fold != 4 && key != PAGE_BREAK) EXPECT_EQ(session->message, "") << key;
  }
  EXPECT_EQ(session->message, "Chapter is folded — press ESC # to unfold before editing.");
}

}  // namespace
}  // namespace brenlow
