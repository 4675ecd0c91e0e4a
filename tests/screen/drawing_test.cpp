#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>

#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;

// The screen as the files in tests/data/screens hold it: each row between bars, and below a row with attributes
// their letters (see TerminalScreen::attributes).
std::string as_text(const test::TerminalScreen& screen) {
  std::string text;
  for (int y = 0; y < screen.rows(); ++y) {
    text += "|" + screen.row(y) + "\n";
    if (std::string letters = screen.attributes(y); !letters.empty()) text += "~" + letters + "\n";
  }
  return text + "cursor " + std::to_string(screen.cursor_row()) + " " + std::to_string(screen.cursor_col()) + "\n";
}

// With BRENLOW_REWRITE_SCREENS set the file becomes what is shown; read the difference before it is kept.
void expect_screen(EditorSession& session, const std::string& name) {
  std::string file = std::string(BRENLOW_TEST_DATA) + "/screens/" + name + ".txt";
  std::string shown = as_text(session.draw());
  if (std::getenv("BRENLOW_REWRITE_SCREENS"))
    test::write_bytes(file, shown);
  else
    EXPECT_EQ(shown, test::read_bytes(file)) << name;
}

class Drawing : public testing::Test {
 protected:
  EditorSession session{{.rows = 12, .cols = 40}};
};

TEST_F(Drawing, LinesWrapAtWordsAndListItemsKeepTheirIndent) {
  session.document("|");
  expect_screen(session, "empty");
  session.document(
      "A line that is longer than the window is broken at a blank.\n"
      "Averyveryveryveryveryveryverylongwordthatfitsnowhere.\n"
      "- An item of a list whose <b>text goes on in a second</b> row|\n"
      "- ");
  expect_screen(session, "wrapped");
}

TEST_F(Drawing, PageBreaksAndTheEndHaveRowsOfTheirOwn) {
  session.document("one\n⏎two\n⏎\n⏎|four\nfive");
  expect_screen(session, "page_breaks");
  session->_bar_state = 2;
  session.resize(4, 40);
  session.document("1\n2\n3\n⏎4\n5\n|6");
  expect_screen(session, "end_in_view");
  session->cy = 3;
  session->scroll_y = 3;
  expect_screen(session, "page_break_on_top");
  // The line of a break on the last row does not show, neither in the margin below.
  session->_margin_bottom_pct = 25;
  session.document("|1\n2\n⏎3");
  EXPECT_EQ(session.rows(), (std::vector<std::string>{" 1", " 2", " ──────────────────────── Page Break ──", ""}));
  // On the terminal's own background.
  EXPECT_EQ(session.screen().cell(2, 10).fg, 7);
  EXPECT_EQ(session.screen().cell(2, 10).bg, test::DEFAULT_COLOUR);
}

TEST_F(Drawing, AFoldedChapterIsOneRowWithItsMarker) {
  session.document("|intro\n⏎# A chapter of a long name, <b>much</b> longer\nhidden\n## Sub \n⏎hidden\n⏎# Open\ntext");
  session->_folded_chapters = {1, 3};
  session->_invalidate_map();
  expect_screen(session, "folded");
  session->cy = 1;
  session.resize(12, 20);
  expect_screen(session, "folded_narrow");
}

TEST_F(Drawing, TheBarsLeaveTheirRowsToTheText) {
  session.document("first\n2\n3\n4\n5\n6\n7\n8\n9\n10\n|11\n12\n13");
  for (int state : {1, 2, 3}) {
    session->_bar_state = state;
    session->scroll_y = 0;
    expect_screen(session, "bars_" + std::to_string(state));
  }
}

TEST_F(Drawing, TypewriterModeKeepsTheLineInPlace) {
  session.document("|one\ntwo");
  session->_typewriter = true;
  expect_screen(session, "typewriter_at_the_start");
  session.document("one\ntwo\nthree\n⏎four\nfive\nsix\nseven\n⏎eight\nni|ne\nten");
  expect_screen(session, "typewriter_behind_page_breaks");
  session->_margin_bottom_pct = 20;  // into it reaches one row of text
  session.document("1\n2\n|3\n4\n5\n6");
  EXPECT_EQ(session.draw().cursor_row(), 7);
  EXPECT_EQ(session.screen().row(9), " 5");
  EXPECT_EQ(session.screen().row(10), "");
}

TEST_F(Drawing, MatchesAreMarkedAcrossRowsAndUnderASelection) {
  session.document(
      "It stands across the end of this long row and once more: long ROW.\n"
      "A bold l<b>on</b>g row; s^elected: long r|ow\nno match");
  session->search_term = U"long row";
  session->_find_active = true;
  expect_screen(session, "found");
  EXPECT_EQ(session.screen().cell(1, 34).bg, 6);
  EXPECT_EQ(session.screen().cell(3, 34).bg, 6);
  EXPECT_EQ(session.screen().cell(3, 33).bg, test::DEFAULT_COLOUR) << "selected it is only reversed";
  session->_find_highlight_inverse = true;
  session->_find_case_insensitive = false;
  expect_screen(session, "found_inverse");
  EXPECT_EQ(session.screen().cell(1, 34).bg, test::DEFAULT_COLOUR);
}

TEST_F(Drawing, TheFilterShowsAndMarksItsLinesAlone) {
  session.document("|one fish\nnothing\n⏎two Fish, blue fish\nnothing");
  session->_kgrep_term = U"fish";
  session->_kgrep_refresh();
  session->search_term = U"blue fish";
  session->_find_active = true;
  expect_screen(session, "filtered");
}

TEST_F(Drawing, ASelectionOverThreeLinesReversesTheirText) {
  session.document("first ^line\nmiddle line <i>whole</i>\n\n- a list item, which wraps into two ro|ws");
  expect_screen(session, "selection");
}

TEST_F(Drawing, FormatsAndSyntaxColoursTogether) {
  session.document("|");
  session->_syn_rules = parse_syntax_rules("[x]\npattern: #.*\nstyle: inverse\n[y]\npattern: b\\w+\nstyle: green\n");
  // The allotment of pairs outlives a screen: a test before may have defined this one on its own.
  session->_new_syn_pair(session->_syn_rules[1].style);
  session->lines = {Text(U"bold word, both, italic #inverse #bold")};
  session->fmt_lines = {span_list({{0, 4, FMT_BOLD}, {11, 15, 3}, {17, 23, FMT_ITALIC}, {24, 28, FMT_BOLD}})};
  session->_invalidate_map();
  expect_screen(session, "formats");
  EXPECT_EQ(session.screen().cell(1, 1).fg, 2);
  EXPECT_TRUE(session.screen().cell(1, 1).bold);
  EXPECT_EQ(session.screen().cell(1, 6).fg, test::DEFAULT_COLOUR);
  EXPECT_TRUE(session.screen().cell(1, 25).bold && session.screen().cell(1, 25).reverse);
}

TEST_F(Drawing, ControlCombiningAndWideCharactersAreOneColumnEach) {
  session.document("a\tb\x1b[31mred\x07\x7f.\ne\xcc\x81x\xcc\x88. zero\xe2\x80\x8bwidth\n日本|語 wide");
  expect_screen(session, "characters");
}

TEST_F(Drawing, TheTitleTellsNameChangesAndTypingFormat) {
  session.document("|");
  session->filepath = "/some/where/novel\n.odt";
  session->font_size = 13;
  session.press('x');
  session->_cur_fmt = 3;
  expect_screen(session, "title");
  session->_typewriter = true;
  session->_cur_fmt = FMT_ITALIC;
  session->filepath = "a very long name of a document.odt";
  EXPECT_EQ(session.draw().row(0), " Brenlow 1.2 │ a very long name of a doc");
  session.resize(12, 70);
  EXPECT_EQ(session.draw().row(0), " Brenlow 1.2 │ a very long name of a document.odt *│ 13pt │ I │ TW │");
}

TEST_F(Drawing, MarginsSurroundTheText) {
  session->_margin_left_pct = session->_margin_right_pct = 20;
  session->_margin_top_pct = session->_margin_bottom_pct = 20;
  session.document("- an item in a narrow column\n⏎text| that wraps as well\nmore\nand more");
  expect_screen(session, "margins");
}

// Rows that only move are moved by the terminal itself, where it can.
TEST(DrawingAnew, ShowsNothingElseThanWhatEveryKeyHasPatched) {
  for (const std::string terminal : {"xterm-256color", "vt100"}) {
    EditorSession session({.rows = 14, .cols = 30, .terminal_type = terminal});
    std::mt19937 random(7);
    auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    std::string document = "|";
    for (int i = 1; i < 40; ++i)
      document += (i % 9 ? "\n" : "\n⏎") + (i % 7 ? "a <b>line</b> " + std::string(pick(50), 'x') : "");
    session.document(document);
    const std::array keys{10,
                          10,
                          127,
                          127,
                          25,
                          16,
                          22,
                          24,
                          26,
                          26,
                          23,
                          KEY_DOWN,
                          KEY_DOWN,
                          KEY_UP,
                          KEY_NPAGE,
                          KEY_PPAGE,
                          int{_KEY_SHIFT_DOWN},
                          int{'a'}};
    for (int step = 0; step < 400; ++step) {
      if (pick(40) == 0) session->_typewriter = !session->_typewriter;
      session.press(keys[static_cast<std::size_t>(pick(static_cast<int>(keys.size())))]);
      const std::string patched = as_text(session.draw());
      session->_canvas.reset(session->rows(), session->cols());
      ASSERT_EQ(patched, as_text(session.draw())) << terminal;
    }
    EXPECT_EQ(session.output().find("$<"), std::string::npos) << "delays are kept, not printed";
    session.document(document);
    session.press({KEY_DOWN, KEY_DOWN, KEY_DOWN});
    session.draw();
    const std::size_t before = session.output().size();
    session.press(10);
    session.draw();
    if (terminal != "vt100") {
      EXPECT_LT(session.output().size() - before, 200U) << "the rows below are moved, not sent";
    }
  }
}

}  // namespace
}  // namespace brenlow
