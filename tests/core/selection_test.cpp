#include <gtest/gtest.h>

#include <random>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;
using test::print_notation;

constexpr int BOLD = 2, ITALIC = 9, SELECT_ALL = 1, MARK = 12, UNDO = 26;

TEST(Selection, KeysGrowDropAndDeleteIt) {
  EditorSession session;
  expect_key_cases(session, {
                                {"ab|c\nd", {_KEY_SHIFT_RIGHT, _KEY_SHIFT_RIGHT}, "ab^c\n|d"},
                                {"a\nb|c", {_KEY_SHIFT_UP}, "a|\nb^c"},
                                {"one t|wo", {_KEY_CTRL_SHIFT_LEFT, _KEY_CTRL_SHIFT_LEFT}, "|one t^wo"},
                                // An anchor that is set is kept, by plain motion too.
                                {"a^b|cd", {KEY_RIGHT, KEY_END, _KEY_SHIFT_LEFT}, "a^bc|d"},
                                {"a|bc", {MARK, KEY_END}, "a^bc|"},
                                {"a^b|c", {MARK}, "ab|c"},
                                {"a^b|c", {'x'}, "abx|c"},
                                {"a^b|c", {127}, "a|c"},
                                {"a^b|c", {13}, "ab\n|c"},
                                {"a^b|c", {KEY_DC}, "a|c"},
                                {"a|b^c", {KEY_DC}, "a|c"},
                                {"a^|bc", {KEY_DC}, "a|c"},
                                {"o|ne\ntwo", {SELECT_ALL}, "^one\ntwo|"},
                                {"o|ne\ntwo", {SELECT_ALL, SELECT_ALL}, "one\ntwo|"},
                                {"o|ne\ntwo", {SELECT_ALL, KEY_LEFT, SELECT_ALL}, "^one\ntwo|"},
                                {"|", {SELECT_ALL, KEY_DC}, "|"},
                                {"o|ne\n⏎two", {SELECT_ALL, KEY_DC}, "|"},
                            });
}

TEST(Selection, DeletedLinesTakeTheirFormatsAndPageBreaksAlong) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a^b\n⏎cd\nef\n⏎g|h\ni\n⏎j", {KEY_DC}, "a|h\ni\n⏎j"},
                                {"a\n⏎b^c\n⏎d|e", {KEY_DC}, "a\n⏎b|e"},
                                {"a^b\n⏎|cd", {KEY_DC}, "a|cd"},
                                {"<b>a^b</b>\nx\n<i>c|d</i>e", {KEY_DC}, "<b>a</b>|<i>d</i>e"},
                                {"<b>a^bc|d</b>e", {KEY_DC}, "<b>a|d</b>e"},
                                {"a^<b>bc</b>|de", {KEY_DC}, "a|de"},
                                {"^\n\n|x", {KEY_DC}, "|x"},
                                {"a^b\nc|d", {KEY_DC, UNDO}, "ab\nc|d"},
                            });
  EXPECT_EQ(session->message, "Undo. (0 left)");
}

TEST(Selection, AFoldInItOpensAndFoldsBehindItMove) {
  EditorSession session;
  session.document("^x\n# a\nhid|den\n# b\nin b\n# c\nin c");
  session->_folded_chapters = {1, 3, 5};
  session->_delete_selection();
  EXPECT_EQ(session.notation(), "|den\n# b\nin b\n# c\nin c");
  EXPECT_EQ(session->_folded_chapters, (IndexSet{1, 3}));
  EXPECT_EQ(session.rows()[1], " den");
}

TEST(Selection, AllIsAllAlsoWhenTheLastChapterIsFolded) {
  EditorSession session;
  session.document("|# a\nin a\n# b\nin b");
  session->_folded_chapters = {0, 2};
  session->_invalidate_map();
  session.press(SELECT_ALL);
  EXPECT_EQ(session.notation(), "^# a\nin a\n# b\nin b|");
  EXPECT_EQ(session->_folded_chapters, (IndexSet{0})) << "only what hid the document's end is open";
  session.press(SELECT_ALL);
  EXPECT_EQ(session.notation(), "# a\nin a\n# b\nin b|");
}

TEST(Selection, FormatIsSetUnlessAllHasItAlready) {
  EditorSession session;
  struct Case {
    std::string before;
    int key;
    std::string after, message;
  };
  for (const Case& c : {
           Case{"a^bc|d", BOLD, "a<b>bc</b>|d", "Bold on on selection"},
           Case{"a|bc^d", BOLD, "a|<b>bc</b>d", "Bold on on selection"},
           Case{"a^b<b>c</b>|d", BOLD, "a<b>bc</b>|d", "Bold on on selection"},
           Case{"<b>a^bc|d</b>", BOLD, "<b>a</b>bc|<b>d</b>", "Bold off on selection"},
           Case{"<b>a^b<i>c|d</i></b>", BOLD, "<b>a</b>b<i>c|<b>d</b></i>", "Bold off on selection"},
           Case{"<b>^ab|</b>", ITALIC, "<b><i>ab</i></b>|", "Italic on on selection"},
           Case{"a^b\n\ncd\n|<b>ef</b>", BOLD, "a<b>b</b>\n\n<b>cd</b>\n|<b>ef</b>", "Bold on on selection"},
           Case{"a<b>^b</b>\n\n<b>cd|</b>e", BOLD, "ab\n\ncd|e", "Bold off on selection"},
           Case{"x^\n\n|", ITALIC, "x\n\n|", "Italic off on selection"},
       }) {
    session.document(c.before);
    int typing_format = session->_cur_fmt;
    session.press(c.key);
    EXPECT_EQ(session.notation(), c.after) << c.before;
    EXPECT_EQ(session->message, c.message) << c.before;
    EXPECT_TRUE(session->modified);
    EXPECT_EQ(session->_cur_fmt, typing_format);
    session.press(UNDO);
    EXPECT_EQ(print_notation(session.triple()), print_notation(test::parse_notation(c.before).document));
  }
}

TEST(Selection, ASelectionUpToALinesStartLeavesThatLinesSpansAsTheyAre) {
  EditorSession session;
  session.document("^a\n|bc");
  const SpanList touching = span_list({{0, 1, FMT_BOLD}, {1, 2, FMT_BOLD}});
  session->fmt_lines[1] = touching;
  session.press(BOLD);
  EXPECT_EQ(session.notation(), "<b>a</b>\n|<b>bc</b>");
  EXPECT_EQ(session->fmt_lines[1], touching);
}

TEST(Selection, FormattingALineShownInSpiteOfTheFilterKeepsItShown) {
  EditorSession session;
  session.document("yes\nn^o|\nno\nyes");
  session->_kgrep_term = U"yes";
  session->_kgrep_folds = {2};
  session.press(BOLD);
  EXPECT_EQ(session.notation(), "yes\nn<b>o</b>|\nno\nyes");
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{2}));
}

TEST(Selection, AnAnchorWhoseTextIsGoneSelectsUpToWhatIsThere) {
  EditorSession session;
  session.document("one\ntwo|");
  session->_sel_anchor = {7, 3};
  EXPECT_FALSE(session->_sel_range()) << "clipped it meets the cursor";
  session->_sel_anchor = {0, 9};
  session.press(KEY_DC);
  EXPECT_EQ(session.notation(), "one|");
}

// The document as one row of characters; a line feed carries the page break of the line it begins.
struct Plain {
  struct Character {
    char32_t character;
    int format;
    bool page_break;
    friend bool operator==(const Character&, const Character&) = default;
  };
  std::vector<Character> characters;

  explicit Plain(const DocumentTriple& document) {
    for (std::size_t ly = 0; ly < document.lines.size(); ++ly) {
      if (ly > 0) characters.push_back({U'\n', 0, document.pagebreak_lines.contains(static_cast<int>(ly))});
      for (int x = 0; x < document.lines[ly].length(); ++x)
        characters.push_back(
            {document.lines[ly][static_cast<std::size_t>(x)], format_at(document.fmt_lines[ly], x), false});
    }
  }
};

int offset_of(const DocumentTriple& document, std::pair<int, int> place) {
  int offset = place.second;
  for (int ly = 0; ly < place.first; ++ly) offset += document.lines[static_cast<std::size_t>(ly)].length() + 1;
  return offset;
}

std::string random_document(std::mt19937& random) {
  std::string text;
  for (auto pieces = 1 + random() % 14; pieces > 0; --pieces) {
    const char* piece[] = {"ab", "<b>cd", "</b>", "<i>e", "</i>", "\n", "\n⏎", " - "};
    text += piece[random() % 8];
  }
  return text;
}

TEST(Selection, DeletingAndFormattingMatchTheTextAsOneRowOfCharacters) {
  EditorSession session;
  std::mt19937 random(3);
  for (int round = 0; round < 400; ++round) {
    session.document(random_document(random));
    const DocumentTriple before = session.triple();
    auto place = [&] {
      int ly = static_cast<int>(random() % before.lines.size());
      return std::pair(ly, static_cast<int>(random() % (before.lines[static_cast<std::size_t>(ly)].size() + 1)));
    };
    std::pair<int, int> anchor = place(), cursor = place();
    session->_sel_anchor = anchor;
    std::tie(session->cy, session->cx) = cursor;
    auto [from, to] = std::minmax({offset_of(before, anchor), offset_of(before, cursor)});
    Plain wanted(before);
    auto first = wanted.characters.begin() + from, last = wanted.characters.begin() + to;
    if (round % 2 == 0) {
      wanted.characters.erase(first, last);
      session->_delete_selection();
      EXPECT_EQ(std::pair(session->cy, session->cx), std::min(anchor, cursor));
    } else {
      auto lacks = [](const Plain::Character& c) { return c.character != U'\n' && !(c.format & FMT_ITALIC); };
      bool on = std::any_of(first, last, lacks);
      for (auto it = first; it != last; ++it)
        if (it->character != U'\n') it->format = on ? it->format | FMT_ITALIC : it->format & ~FMT_ITALIC;
      session->_apply_fmt_to_selection(FMT_ITALIC);
    }
    EXPECT_TRUE(Plain(session.triple()).characters == wanted.characters) << print_notation(before) << "\nbecame\n"
                                                                         << session.notation();
    session->_check_session();
    if (from == to) continue;
    session->do_undo();
    EXPECT_EQ(print_notation(session.triple()), print_notation(before));
  }
}

}  // namespace
}  // namespace brenlow
