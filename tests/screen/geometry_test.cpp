#include <gtest/gtest.h>

#include <random>

#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;

TEST(Geometry, MarginsAreSharesOfTheWindowRoundedToTheEvenCell) {
  EditorSession session({.rows = 25, .cols = 50});
  struct Case {
    int percent, left, top;
  };
  for (const Case& c : {Case{0, 1, 0}, Case{5, 1 + 2, 1}, Case{7, 1 + 4, 2}, Case{9, 1 + 4, 2}, Case{10, 1 + 5, 2},
                        Case{30, 1 + 15, 8}, Case{50, 1 + 25, 12}}) {
    session->_margin_left_pct = session->_margin_right_pct = c.percent;
    session->_margin_top_pct = session->_margin_bottom_pct = c.percent;
    EXPECT_EQ(session->_lmargin(), c.left) << c.percent;
    EXPECT_EQ(session->_rmargin(), c.left) << c.percent;
    EXPECT_EQ(session->_tmargin(), c.top) << c.percent;
    EXPECT_EQ(session->_bmargin(), c.top) << c.percent;
  }
  session->_margin_left_pct = session->_margin_right_pct = 10;
  session.resize(25, 100);
  EXPECT_EQ(session->_wrap_width(), 100 - 2 * 11) << "shares follow the window";
}

// In a window of any size, with any margins: there is room for at least one cell of text, and drawing, moving and
// typing go on.
TEST(Geometry, NoWindowIsTooSmall) {
  EditorSession session;
  std::mt19937 random(5);
  auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  for (int round = 0; round < 150; ++round) {
    session.resize(1 + pick(8), 1 + pick(round % 2 ? 8 : 45));
    session.document("# folded\nin it\n⏎words <b>that are</b> ^long and\n⏎- a list| item\n\tend");
    if (pick(3) == 0) session->_folded_chapters = {0};
    session->_bar_state = pick(4);
    session->_typewriter = pick(2);
    session->_find_active = true;
    session->search_term = U"a";
    session->_margin_left_pct = pick(100);
    session->_margin_right_pct = pick(100);
    session->_margin_top_pct = pick(100);
    session->_margin_bottom_pct = pick(100);
    session->_invalidate_map();
    EXPECT_GE(session->_wrap_width(), 1);
    EXPECT_GE(session->edit_rows(), 1);
    const std::vector<int> keys = {'x', 13, KEY_UP, KEY_DOWN, KEY_LEFT, KEY_RIGHT, KEY_PPAGE, KEY_NPAGE, KEY_END};
    for (int i = 0; i < 6; ++i) {
      session.press(keys[static_cast<std::size_t>(pick(static_cast<int>(keys.size())))]);
      session.draw();
    }
  }
}

}  // namespace
}  // namespace brenlow
