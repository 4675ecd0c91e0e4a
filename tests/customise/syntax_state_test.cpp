#include <gtest/gtest.h>

#include <algorithm>

#include "core/editor.h"
#include "tests/support/editor_session.h"

namespace brenlow::test {
namespace {

long computed_lines(EditorSession& session) {
  return std::ranges::count_if(session->_syn_lines, &Editor::SyntaxLine::computed);
}

TEST(SyntaxState, OnlyLinesThatAreShownAreMatchedAndALetterMatchesItsLine) {
  std::string text;
  for (int i = 0; i < 3'000; ++i) text += "*line*\n";
  EditorSession session({.path = "long.md", .rows = 24, .home_files = {{"long.md", text}}});
  EXPECT_EQ(computed_lines(session), 0);
  session.draw();
  EXPECT_EQ(computed_lines(session), 22);
  for (int ly = 0; ly < session->_line_count(); ++ly) session->_syn_spans(ly);
  session.press('x');
  EXPECT_EQ(computed_lines(session), session->_line_count() - 1);
  session.press(13);
  EXPECT_EQ(computed_lines(session), session->_line_count() - 2);
}

}  // namespace
}  // namespace brenlow::test
