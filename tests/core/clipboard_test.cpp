#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/core/key_cases.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::FakeTools;
using test::print_notation;

constexpr int COPY = 3, CUT = 24, PASTE = 22, UNDO = 26;
const std::string FOUND_NONE = " character(s) (internal clipboard — no system clipboard found).";

// A session whose rich clipboard is empty at the start, with tools in place of the desktop's.
class Clipboard : public testing::Test {
 protected:
  Clipboard() {
    session->_machine.search_path = tools.search_path();
    Editor::_internal_clipboard.clear();
    Editor::_internal_clipboard_fmt.clear();
    Editor::_internal_clipboard_pbl.clear();
  }

  // Another program puts `bytes` on the clipboard.
  void others_copy(const std::string& bytes) {
    tools.folder().write("held", bytes);
    tools.add("pbcopy", "cat > '" + tools.folder().file("held") + "'");
    tools.add("pbpaste", "cat '" + tools.folder().file("held") + "'");
  }
  void copy(const std::string& notation) {
    session.document(notation);
    session.press(COPY);
  }
  std::string pasted_over(const std::string& notation) {
    session.document(notation);
    session.press(PASTE);
    return session.notation();
  }
  struct Case {
    std::string text, before, after;
  };
  // Pastes over `before`, and takes it back.
  void expect_pasted(const Case& c) {
    EXPECT_EQ(pasted_over(c.before), c.after) << c.text << " into " << c.before;
    session->_check_session();
    session.press(UNDO);
    EXPECT_EQ(print_notation(session.triple()), print_notation(test::parse_notation(c.before).document));
  }

  EditorSession session;
  FakeTools tools;
};

TEST_F(Clipboard, WithoutToolsTheRichCopyServesAlone) {
  copy("a^b <b>c</b>\n⏎d|e");
  EXPECT_EQ(session->message, "Copied 5" + FOUND_NONE);
  EXPECT_EQ(session.notation(), "ab <b>c</b>\n⏎d|e") << "the selection is dropped, nothing else changes";
  copy("one");
  EXPECT_EQ(session->message, "Nothing selected.");
  for (int times = 0; times < 2; ++times) EXPECT_EQ(pasted_over("x|y"), "xb <b>c</b>\n⏎d|y");
  EXPECT_EQ(session->message, "Pasted 5 character(s).");
  session.document("a^b\nc|d");
  session.press(CUT);
  EXPECT_EQ(session.notation(), "a|d");
  EXPECT_EQ(session->message, "Cut 3 character(s) to clipboard.");
  session->_sel_anchor = {0, 0};
  session.press(PASTE);
  EXPECT_EQ(session.notation(), "b\nc|d");
  session.press(UNDO);
  EXPECT_EQ(print_notation(session.triple()), "d") << "the deletion is a step of its own";
}

TEST_F(Clipboard, WhatAnotherProgramCopiesComesInPlainInTheTypingFormat) {
  others_copy("");
  copy("a <b>^word|</b>");
  EXPECT_EQ(session->message, "Copied 4 character(s) to clipboard.");
  EXPECT_EQ(test::read_bytes(tools.folder().file("held")), "word");
  EXPECT_EQ(pasted_over("x |y"), "x <b>word</b>|y");
  others_copy("Grüße");
  EXPECT_EQ(pasted_over("<i>x |y</i>"), "<i>x Grüße|y</i>");
  others_copy("word");
  EXPECT_EQ(pasted_over("x |y"), "x <b>word</b>|y") << "the same text is the rich copy again";
  others_copy("");
  EXPECT_EQ(pasted_over("x |y"), "x |y");
  EXPECT_EQ(session->message, "Clipboard is empty.");
}

TEST_F(Clipboard, ToolsThatFailOrHangLeaveTheRichCopy) {
  tools.add("pbcopy", "exit 1");
  copy("<b>^word|</b>");
  EXPECT_EQ(session->message, "Copied 4" + FOUND_NONE);
  for (const std::string& script : {std::string("printf wrong; exit 1"), "printf half; " + test::HANG}) {
    tools.add("pbpaste", script);
    EXPECT_EQ(pasted_over("|"), "<b>word</b>|");
  }
}

TEST_F(Clipboard, PlainTextKeepsEveryFormatAroundItOnItsCharacters) {
  for (const Case& c : {
           // In one line: the format left of the cursor.
           Case{"XY", "a|<b>bc</b>", "aXY|<b>bc</b>"},
           Case{"XY", "<b>b|c</b>", "<b>bXY|c</b>"},
           Case{"XY", "|<b>bc</b>", "<b>XY|bc</b>"},
           // Several lines: none of its own.
           Case{"X\nY", "<b>b|c</b>d", "<b>b</b>X\nY|<b>c</b>d"},
           Case{"\nX", "a\n⏎b|c\nd\n⏎e", "a\n⏎b\nX|c\nd\n⏎e"},
           // A carriage return is a character like any other.
           Case{"1\r\n2", "a|b", "a1\r\n2|b"},
           Case{"a\xff\xfe"
                "b",
                "|",
                "a\xef\xbf\xbd\xef\xbf\xbd"
                "b|"},
       }) {
    others_copy(c.text);
    expect_pasted(c);
  }
}

TEST_F(Clipboard, TheRichCopyBringsItsFormatsAndPageBreaks) {
  for (const Case& c : {
           Case{"^<b>X</b>Y|", "a|b", "a<b>X</b>Y|b"},
           Case{"<b>a^XY|b</b>", "ab|", "ab<b>XY</b>|"},
           // A span that ends at the cursor or contains it grows over the pasted text.
           Case{"^<i>X</i>Y|", "<b>a|b</b>", "<b>a<i>X</i>Y|b</b>"},
           Case{"^<i>X</i>Y|", "<b>a|</b>b", "<b>a<i>X</i>Y</b>|b"},
           Case{"x\n⏎^X|Y", "a|b", "aX|b"},  // one line brings no page break
           Case{"^X\n⏎<b>Y</b>\n⏎<i>Z|z</i>", "<b>a|b</b>\nc\n⏎d", "<b>a</b>X\n⏎<b>Y</b>\n⏎<i>Z</i>|<b>b</b>\nc\n⏎d"},
           // A break on the first line copied lands on the line pasted at; on the first of all it moves down.
           Case{"x\n⏎^X\nY|", "a\n\nb|c", "a\n\n⏎bX\nY|c"},
           Case{"x\n⏎^X\nY\nZ|", "|", "X\n⏎Y\nZ|"},
       }) {
    copy(c.text);
    expect_pasted(c);
  }
}

TEST_F(Clipboard, FoldsAndTheFilterFollowWhatIsPasted) {
  others_copy("1\n2\n3");
  session.document("te|xt\n# a\nin a");
  session->_folded_chapters = {1};
  session.press(PASTE);
  EXPECT_EQ(session->_folded_chapters, (IndexSet{3}));
  others_copy("yes\nno\n");
  session.document("|yes\nno");
  session->_kgrep_term = U"yes";
  session->_kgrep_refresh();
  session.press(PASTE);
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{1, 3}));
}

}  // namespace
}  // namespace brenlow
