#include <gtest/gtest.h>

#include <random>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;
using test::print_notation;

constexpr int BOLD = 2, ITALIC = 9, SELECT_ALL = 1, MARK = 12;

TEST(Selection, KeysGrowDropAndDeleteIt) {
  EditorSession session;
  expect_key_cases(session, {
                                {"ab|c\nd", {_KEY_SHIFT_RIGHT, _KEY_SHIFT_RIGHT}, "ab^c\n|d"},
                                {"one t|wo", {_KEY_CTRL_SHIFT_LEFT, _KEY_CTRL_SHIFT_LEFT}, "|one t^wo"},
                                // An anchor that is set is kept, by plain motion too.
                                {"a^b|cd", {KEY_RIGHT, KEY_END, _KEY_SHIFT_LEFT}, "a^bc|d"},
                                {"a|bc", {MARK, KEY_END}, "a^bc|"},
                                {"a^b|c", {MARK}, "ab|c"},
                                {"a^b|c", {'x'}, "abx|c"},
                                {"a^b|c", {127}, "a|c"},
                                {"a^b|c", {KEY_DC}, "a|c"},
                                {"a^|bc", {KEY_DC}, "a|c"},
                                {"o|ne\ntwo", {SELECT_ALL, SELECT_ALL}, "one\ntwo|"},
                                {"o|ne\ntwo", {SELECT_ALL, KEY_LEFT, SELECT_ALL}, "^one\ntwo|"},
                                {"o|ne\n⏎two", {SELECT_ALL, KEY_DC}, "|"},
                            });
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
  for (const auto& [before, key, after, message] :
       {std::tuple("a|bc^d", BOLD, "a|<b>bc</b>d", "Bold on on selection"),
        std::tuple("<b>a^b<i>c|d</i></b>", BOLD, "<b>a</b>b<i>c|<b>d</b></i>", "Bold off on selection"),
        std::tuple("a^b\n\ncd\n|<b>ef</b>", ITALIC, "a<i>b</i>\n\n<i>cd</i>\n|<b>ef</b>", "Italic on on selection"),
        std::tuple("x^\n\n|", ITALIC, "x\n\n|", "Italic off on selection")}) {
    session.document(before);
    int typing_format = session->_cur_fmt;
    session.press(key);
    EXPECT_EQ(session.notation(), after) << before;
    EXPECT_EQ(session->message, message) << before;
    EXPECT_EQ(session->_cur_fmt, typing_format);
  }
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

// The document as one row of characters with their formats; a line feed carries the page break of the line it begins.
struct Character {
  char32_t character;
  int format;
  bool page_break = false;
  friend bool operator==(const Character&, const Character&) = default;
};

std::vector<Character> plain(const DocumentTriple& document) {
  std::vector<Character> characters;
  for (std::size_t ly = 0; ly < document.lines.size(); ++ly) {
    if (ly > 0) characters.push_back({U'\n', 0, document.pagebreak_lines.contains(static_cast<int>(ly))});
    int x = 0;
    for (char32_t character : document.lines[ly].view().str())
      characters.push_back({character, format_at(document.fmt_lines[ly], x++)});
  }
  return characters;
}

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
    std::vector<Character> wanted = plain(before);
    auto first = wanted.begin() + from, last = wanted.begin() + to;
    if (round % 2 == 0) {
      wanted.erase(first, last);
      session->_delete_selection();
      EXPECT_EQ(std::pair(session->cy, session->cx), std::min(anchor, cursor));
    } else {
      auto lacks = [](const Character& c) { return c.character != U'\n' && !(c.format & FMT_ITALIC); };
      bool on = std::any_of(first, last, lacks);
      for (auto it = first; it != last; ++it)
        if (it->character != U'\n') it->format = on ? it->format | FMT_ITALIC : it->format & ~FMT_ITALIC;
      session->_apply_fmt_to_selection(FMT_ITALIC);
    }
    EXPECT_TRUE(plain(session.triple()) == wanted) << print_notation(before) << "\nbecame\n" << session.notation();
    session->_check_session();
    if (from == to) continue;
    session->do_undo();
    EXPECT_EQ(print_notation(session.triple()), print_notation(before));
  }
}

}  // namespace
}  // namespace brenlow
