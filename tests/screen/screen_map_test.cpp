#include <gtest/gtest.h>

#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;

// Every row from the plain reading: walks the whole map for the last row of the line that begins at or before the
// column; for a hidden line the row above it.
int plain_row_of(const ScreenMap& map, int ly, int column) {
  int above = 0, found = -1;
  for (int row = 0; row < static_cast<int>(map.size()); ++row) {
    const MapEntry entry = map[static_cast<std::size_t>(row)];
    if (entry.ly < ly) above = row;
    if (entry.ly == ly && (found < 0 || entry.start <= column)) found = row;
  }
  return found >= 0 ? found : above;
}

TEST(ScreenMap, ACharactersRowIsFoundAsAPlainScanFindsIt) {
  EditorSession session({.rows = 12, .cols = 11});
  session.document(
      "|# one two three\nwords of a chapter that wrap\n\n- an item of a list\n# two\nhidden\n# three\nend");
  for (const IndexSet& folded : {IndexSet{}, IndexSet{0, 4}, IndexSet{0, 4, 6}}) {
    for (const IndexSet& filtered : {IndexSet{}, IndexSet{0, 2, 7}, IndexSet{0, 1, 2, 3, 4, 5, 6, 7}}) {
      session->_folded_chapters = folded;
      session->_kgrep_folds = filtered;
      session->_invalidate_map();
      const ScreenMap map = session->_build_screen_map();
      for (int ly = 0; ly < session->_line_count(); ++ly)
        for (int column = 0; column <= session->_line_length(ly); ++column)
          EXPECT_EQ(session->_logical_to_screen_row(ly, column, map), plain_row_of(map, ly, column))
              << "line " << ly << ", column " << column;
    }
  }
  EXPECT_TRUE(session->_build_screen_map().empty()) << "the last filter hides every line";
  EXPECT_EQ(session.draw().row(1), " ── End ──");
}

TEST(ScreenMap, ANewWidthIsNoticedAndANewHeightCostsNothing) {
  EditorSession session({.rows = 12, .cols = 42});
  session.document("|some words that wrap in a narrow window");
  EXPECT_EQ(session->_build_screen_map().size(), 1u);
  session.resize(12, 12);
  session->_map_dirty = false;  // nobody told the map
  EXPECT_EQ(session->_build_screen_map().size(), 5u);
  session.press('x');
  session.resize(30, 42);
  EXPECT_EQ(session->_build_screen_map().size(), 1u);
  session->_margin_left_pct = 50;
  session->_invalidate_map();
  EXPECT_EQ(session->_build_screen_map().size(), 3u);
}

// A letter in a long document leaves the map clean, its arrays in their place and the words counted.
TEST(ScreenMap, ALetterInALongDocumentTouchesItsLineAlone) {
  EditorSession session;
  session.document("|");
  session->lines.assign(100'000, Text(U"ten words that stand in each and every one line"));
  session->fmt_lines.assign(100'000, SpanList());
  session->pagebreak_lines = {500, 70'000};
  session->_word_count.reset();
  session->_invalidate_map();
  session.draw();
  EXPECT_EQ(session->_word_count, 1'000'000);
  EXPECT_TRUE(session.screen().shows(" 1,000,000 words "));
  for (int ly : {0, 50'000, 99'999}) {
    session->cy = ly;
    session->cx = 3;
    session.draw();
    session.press('x');
    EXPECT_FALSE(session->_map_dirty);
    EXPECT_EQ(session->_word_count, 1'000'000);
    session.press({' ', 'y'});
    EXPECT_EQ(session->_word_count, 1'000'001);
    session.press(26);
    session.press(26);
    EXPECT_EQ(session->_word_count, 1'000'000);
  }
}

}  // namespace
}  // namespace brenlow
