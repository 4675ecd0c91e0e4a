#include "core/unicode.h"
#include "screen/help_text.h"
#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;

constexpr int SHUT = 'q';

std::vector<std::string> paragraphs(int count) {
  std::vector<std::string> all;
  for (int i = 0; i < count; ++i) all.push_back("line " + std::to_string(i));
  return all;
}

// The frame that the last of the keys found.
std::vector<std::string> shown(EditorSession& session, const std::vector<std::string>& text, const std::string& typed) {
  session.type_ahead(typed + static_cast<char>(SHUT));
  EXPECT_EQ(session->_overlay_scroll("Title", text), SHUT);
  EXPECT_FALSE(session->_input_waiting());
  return session.screen().all_rows();
}

using Rows = std::vector<std::string>;

TEST(Overlay, ScrollsToBothEndsAndTellsWhereMoreIs) {
  EditorSession session({.rows = 5, .cols = 40});
  const Rows top{" Title", " line 0", " line 1", " line 2", " ↓ PgDn scroll down   Press any key to r"};
  const Rows text = paragraphs(10);
  Rows end = shown(session, text, END);
  EXPECT_EQ(end, (Rows{" Title", " line 7", " line 8", " line 9", " ↑ PgUp scroll up   Press any key to ret"}))
      << session.screen().picture();
  for (const std::string& way : {times(3, PAGE_DOWN), times(20, DOWN), times(7, "j"), END + DOWN})
    EXPECT_EQ(shown(session, text, way), end);
  EXPECT_EQ(shown(session, text, ""), top) << "a closed overlay opens again at its top";
  for (const std::string& way : {END + HOME, END + times(9, PAGE_UP), DOWN + "k" + UP, UP})
    EXPECT_EQ(shown(session, text, way), top);
  EXPECT_EQ(shown(session, text, PAGE_DOWN + DOWN)[1], " line 4");
  EXPECT_EQ(shown(session, text, DOWN)[4], " ↑↓ PgUp PgDn scroll   Press any key to");
  EXPECT_EQ(shown(session, {"a", "", "b"}, DOWN), (Rows{" Title", " a", "", " b", " Press any key to return"}));
}

TEST(Overlay, WrapsAnewAtTheWidthOfAResizedTerminal) {
  EditorSession session;
  const Rows text{"one two three four", "abcdefghijklmnop", ""};
  session.draw();
  resize_once_open(session, 6, 12);
  EXPECT_EQ(shown(session, text, ""), (Rows{" Title", " one two", "  three", "  four", " abcdefghi", " ↓ PgDn scro"}))
      << session.screen().picture();
  resize_once_open(session, 2, 12);
  EXPECT_EQ(shown(session, text, END + PAGE_UP + PAGE_DOWN).size(), 2U) << "no room for text, and still a way out";
}

TEST(Overlay, AnyOtherKeyClosesItAndIsHandedBack) {
  EditorSession session;
  session->_ESC_MAP["[0~"] = KEY_ESC;
  const std::vector<std::pair<std::string, int>> closing = {{ENTER, 13}, {ESC, KEY_ESC}, {LEFT, KEY_LEFT},
                                                            {"?", '?'},  {"\xC3", 0xC3}, {F5, _KEY_F[4]}};
  for (const auto& [bytes, key] : closing) {
    session.type_ahead(END + bytes);
    EXPECT_EQ(session->_overlay_scroll("Title", paragraphs(100)), key);
    EXPECT_EQ(session->_overlay_top, 0);
  }
}

// Help, About and Tutorial, each opened as a user does, on a text that must come through unharmed.
TEST(Overlay, EveryPageCanBeReadToItsEndOnEveryScreen) {
  const std::vector<std::pair<std::string, Rows>> pages = {
      {"", help_lines(KeyMap{}, _KEY_CTRL_SPACE, KEY_ESC)}, {"?", about_lines()}, {"?t", tutorial_lines()}};
  EditorSession session;
  session.document("un|touched");
  for (auto [rows, cols] : {std::pair(24, 80), std::pair(5, 20), std::pair(60, 200)})
    for (const auto& [way, text] : pages) {
      auto closed_after = [&, way = way](const std::string& typed) {
        session.type_ahead(way + typed + " ");
        session.press(_KEY_CTRL_SPACE);
        EXPECT_FALSE(session->_input_waiting());
        return session.screen().all_rows();
      };
      session.resize(rows, cols);
      Rows top = closed_after(HOME), end = closed_after(END);
      EXPECT_EQ(closed_after(END + HOME), top);
      auto shown = [cols = cols](const std::u32string& row) {
        return encode_utf8(trimmed_right(U" " + row.substr(0, static_cast<std::size_t>(cols - 3))));
      };
      EXPECT_EQ(top[1], shown(wrap_paragraph(decode_utf8(text.front()), cols - 3).front()));
      bool fits = top == end;
      if (!fits) EXPECT_EQ(end[end.size() - 2], shown(wrap_paragraph(decode_utf8(text.back()), cols - 3).back()));
      EXPECT_TRUE(top.back().starts_with(fits ? " Press any" : " ↓ PgDn scroll down")) << top.back();
    }
  EXPECT_EQ(session.notation(), "un|touched");
}

}  // namespace
}  // namespace brenlow::test
