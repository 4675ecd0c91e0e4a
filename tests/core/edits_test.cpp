#include <gtest/gtest.h>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;
using test::KeyCase;

constexpr int ENTER = 13, BACKSPACE = 127, DELETE = KEY_DC, PAGE_BREAK = 16, DELETE_LINE = 25;
constexpr int BOLD = 2, ITALIC = 9;

TEST(Edits, TypedCharactersStandAtTheCursorInTheFormatThatIsOn) {
  EditorSession session;
  // The first line is plain, so that every case starts with no format on.
  expect_key_cases(session, {
                                {"|", {'a', 'b'}, "ab|"},
                                {"a|c", {'b', ' '}, "ab |c"},
                                {"\n|<b>bold</b>", {'x'}, "\nx|<b>bold</b>"},
                                {"\n<b>bold|</b>", {'x'}, "\n<b>bold</b>x|"},
                                {"\n<b>bo|ld</b>", {'x'}, "\n<b>box|ld</b>"},
                                {"\n<b>bo|ld</b> <i>it</i>", {ITALIC, 'x'}, "\n<b>bo<i>x</i>|ld</b> <i>it</i>"},
                                {"\n<b>bold|</b>", {BOLD, 'x', BOLD, 'y'}, "\n<b>boldx</b>y|"},
                                {"\n|<b>bold</b>", {BOLD, 'x'}, "\n<b>x|bold</b>"},
                                {"\nplain| <i>it</i>", {BOLD, ITALIC, 'x'}, "\nplain<b><i>x</i></b>| <i>it</i>"},
                            });
  session.document("\n|");
  session.press({BOLD, 'a', 'b', 'c'});
  EXPECT_EQ(session->_fmt(1), span_list({{0, 3, FMT_BOLD}})) << "typing on makes one span, not three";
}

TEST(Edits, QuotesAreCurledUnlessTheUserWantsThemStraight) {
  EditorSession session;
  session.type(U"`it's \"so\"' — é漢😀");
  EXPECT_EQ(session.notation(), "‘it’s \"so\"’ — é漢😀|");
  session.press({BACKSPACE, BACKSPACE, BACKSPACE});
  EXPECT_EQ(session.notation(), "‘it’s \"so\"’ — |") << "one press, one character, however many bytes it took";
  session->_smart_quotes = false;
  session.document("|");
  session.type(U"`it's`");
  EXPECT_EQ(session.notation(), "`it's`|");
}

TEST(Edits, EnterDividesTextFormatsAndPages) {
  EditorSession session;
  expect_key_cases(session, {
                                {"ab|cd", {ENTER}, "ab\n|cd"},
                                {"ab|", {ENTER, ENTER}, "ab\n\n|"},
                                {"|ab", {ENTER}, "\n|ab"},
                                {"x\n<b>bo|ld</b>", {ENTER}, "x\n<b>bo</b>\n|<b>ld</b>"},
                                {"x <i>a<b>b|c</b>d</i>", {ENTER}, "x <i>a<b>b</b></i>\n|<b><i>c</i></b><i>d</i>"},
                                {"x\n⏎|text\n⏎end", {ENTER}, "x\n⏎\n|text\n⏎end"},
                                {"x\n⏎te|xt\n\n⏎end", {ENTER}, "x\n⏎te\n|xt\n\n⏎end"},
                            });
}

TEST(Edits, ListItemsGoOnAndEndWithOneBackspace) {
  EditorSession session;
  expect_key_cases(session, {
                                {"- item|", {ENTER}, "- item\n- |"},
                                {"- it|em", {ENTER, 'x'}, "- it\n- x|em"},
                                {"-|", {ENTER}, "-\n- |"},
                                {"-| item", {ENTER}, "-\n- | item"},
                                {"|- item", {ENTER}, "\n|- item"},
                                {"-item|", {ENTER}, "-item\n|"},
                                {" - item|", {ENTER}, " - item\n|"},
                                {"x\n- a<b>b|c</b>", {ENTER}, "x\n- a<b>b</b>\n- |<b>c</b>"},
                                {"- item|", {ENTER, BACKSPACE}, "- item\n|"},
                                {"x\n<b>- |</b>", {BACKSPACE, 'y'}, "x\ny|"},
                                {"- |more", {BACKSPACE}, "-|more"},
                                {"-| ", {BACKSPACE}, "| "},
                            });
}

TEST(Edits, BackspaceAndDeleteTakeOneCharacterOrJoinTwoLines) {
  EditorSession session;
  expect_key_cases(session, {
                                {"ab|c", {BACKSPACE}, "a|c"},
                                {"ab|c", {8}, "a|c"},
                                {"ab|c", {DELETE}, "ab|"},
                                {"x <b>a</b>|c", {BACKSPACE}, "x |c"},
                                {"x <b>a|bc</b>", {DELETE, DELETE, DELETE}, "x <b>a</b>|"},
                                {"<i>one</i>\n|<b>two</b>", {BACKSPACE}, "<i>one</i>|<b>two</b>"},
                                {"<i>one|</i>\n<b>two</b>", {DELETE}, "<i>one</i>|<b>two</b>"},
                                {"<b>one|</b>\n<b>two</b>", {DELETE}, "<b>one|two</b>"},
                                {"a\n⏎|b\n\n⏎c", {BACKSPACE}, "a|b\n\n⏎c"},
                                {"a|\n⏎b\n\n⏎c", {DELETE}, "a|b\n\n⏎c"},
                                {"a\n⏎b\n|c", {BACKSPACE}, "a\n⏎b|c"},
                                {"a\n\n|\nb", {BACKSPACE, BACKSPACE, DELETE}, "a|b"},
                            });
}

TEST(Edits, NothingHappensAtTheEdgesOfTheDocument) {
  EditorSession session;
  for (const KeyCase& c : {KeyCase{"|", {BACKSPACE, DELETE}, "|"}, KeyCase{"|ab\n", {BACKSPACE}, "|ab\n"},
                           KeyCase{"ab\n|", {DELETE}, "ab\n|"}}) {
    expect_key_cases(session, {c});
    EXPECT_FALSE(session->modified) << c.before;
    EXPECT_TRUE(session->_undo_stack.empty()) << c.before;
  }
}

TEST(Edits, PageBreaksAreSetInFrontOfTheCursorAndTakenAwayByJoining) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a\n|b\nc", {PAGE_BREAK}, "a\n⏎b\n|c"},
                                {"a\n|b", {PAGE_BREAK}, "a\n⏎b\n|"},
                                {"a\n⏎|b\n⏎c", {PAGE_BREAK}, "a\n⏎b\n⏎|c"},
                                {"|a", {PAGE_BREAK}, "\n⏎|a"},
                                {"|", {PAGE_BREAK}, "\n⏎|"},
                                {"x\n<b>on|e</b>\n⏎two", {PAGE_BREAK}, "x\n<b>on</b>\n⏎|<b>e</b>\n⏎two"},
                                {"x\n- it|em", {PAGE_BREAK}, "x\n- it\n⏎|em"},
                                {"ab|c", {PAGE_BREAK, BACKSPACE}, "ab|c"},
                                {"^ab|c", {PAGE_BREAK}, "ab\n⏎|c"},
                            });
  EXPECT_EQ(session->message, "Page break added (ODT only)");
}

TEST(Edits, DeleteLineTakesTheLineWithItsFormatsAndBreak) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a\n<b>b|c</b>\n<i>d</i>", {DELETE_LINE}, "a\n|<i>d</i>"},
                                {"a\nb|c", {DELETE_LINE}, "|a"},
                                {"a\n\nb|c", {DELETE_LINE, DELETE_LINE}, "|a"},
                                {"<b>one|</b>", {DELETE_LINE}, "|"},
                                {"|", {DELETE_LINE, 'x'}, "x|"},
                                {"a\n⏎|b\nc\n⏎d", {DELETE_LINE}, "a\n|c\n⏎d"},
                                {"a\n|b\n⏎c\n⏎d", {DELETE_LINE}, "a\n⏎|c\n⏎d"},
                                {"a\n⏎b\nc|", {DELETE_LINE}, "a\n⏎|b"},
                            });
  EXPECT_EQ(session->message, "");
}

TEST(Edits, ABreakThatWouldLandOnTheFirstLineMovesDownOrGoesAndTheUserIsTold) {
  EditorSession session;
  const std::string moved =
      "Line deleted. The page break moved down one line so it wouldn't land on the very first line.";
  expect_key_cases(session, {{"|a\n⏎b\nc\n\nd", {DELETE_LINE}, "|b\n⏎c\n\nd"}});
  EXPECT_EQ(session->message, moved);
  expect_key_cases(session, {{"|a\n⏎b\n⏎c", {DELETE_LINE}, "|b\n⏎c"}});
  EXPECT_EQ(session->message, moved);
  expect_key_cases(session, {{"|a\n⏎b", {DELETE_LINE}, "|b"}});
  EXPECT_EQ(session->message,
            "Line deleted. The page break was removed — it would otherwise land on the first line, which can't be "
            "undone.");
}

std::vector<int> folded(EditorSession& session) {
  return {session->_folded_chapters.begin(), session->_folded_chapters.end()};
}

TEST(Edits, FoldedChaptersAreNeitherChangedNorJoinedByAccident) {
  EditorSession session;
  const std::string refusal = "Chapter is folded — press ESC # to unfold before editing.";
  const std::string before = "x|\n# One\nbody\n# Two\n\n## Three";
  auto refused = [&](int cy, int cx, int key) {
    session.document(before);
    session->_folded_chapters = {1, 3};
    session->cy = cy;
    session->cx = cx;
    session.press(key);
    return session->message == refusal && !session->modified && session->_undo_stack.empty();
  };
  EXPECT_TRUE(refused(0, 1, DELETE));
  EXPECT_TRUE(refused(1, 2, DELETE_LINE));
  EXPECT_TRUE(refused(3, 2, DELETE_LINE));
  EXPECT_TRUE(refused(5, 0, BACKSPACE)) << "the line would vanish into the chapter";
  EXPECT_FALSE(refused(0, 0, DELETE)) << "a character in the line above is no part of the chapter";
}

TEST(Edits, FoldsMoveWithTheirHeaders) {
  EditorSession session;
  auto folds_after = [&](int cy, int cx, int key) {
    session.document("one\ntwo\n# A\nbody\n# B\nend");
    session->_folded_chapters = {4};
    session->cy = cy;
    session->cx = cx;
    session.press(key);
    return folded(session);
  };
  EXPECT_EQ(folds_after(0, 1, ENTER), std::vector{5});
  EXPECT_EQ(folds_after(0, 1, PAGE_BREAK), std::vector{5});
  EXPECT_EQ(folds_after(1, 0, BACKSPACE), std::vector{3});
  EXPECT_EQ(folds_after(0, 3, DELETE), std::vector{3});
  EXPECT_EQ(folds_after(3, 0, DELETE_LINE), std::vector{3}) << "the header right behind a deleted line stays folded";
  EXPECT_EQ(folds_after(4, 0, BACKSPACE), std::vector{4}) << "a key refused on a fold";
}

TEST(Edits, AnEditAnswersTheMessageBeforeIt) {
  EditorSession session;
  for (int key : {int{'x'}, ENTER, BACKSPACE, DELETE, DELETE_LINE}) {
    session.document("ab|c\n\nd");
    session->_show_message("told before");
    session.press(key);
    EXPECT_EQ(session->message, "") << key;
    EXPECT_TRUE(session->modified) << key;
    EXPECT_EQ(session->_undo_stack.size(), 1U) << key;
  }
}

}  // namespace
}  // namespace brenlow
