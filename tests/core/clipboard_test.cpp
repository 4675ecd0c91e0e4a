#include <gtest/gtest.h>

#include <chrono>

#include "core/unicode.h"
#include "tests/core/key_cases.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::FakeEnvironment;
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
  std::string held() const { return test::read_bytes(tools.folder().file("held")); }
  void copy(const std::string& notation) {
    session.document(notation);
    session.press(COPY);
  }
  std::string pasted_over(const std::string& notation) {
    session.document(notation);
    session.press(PASTE);
    return session.notation();
  }

  EditorSession session;
  FakeTools tools;
};

TEST_F(Clipboard, WithoutToolsTheRichCopyServesAlone) {
  session.document("on|e");
  session.press(PASTE);
  EXPECT_EQ(session->message, "Clipboard is empty.");
  EXPECT_FALSE(session->modified);

  copy("a^b <b>c</b>\n⏎d|e");
  EXPECT_EQ(session->message, "Copied 5" + FOUND_NONE);
  EXPECT_EQ(session.notation(), "ab <b>c</b>\n⏎d|e") << "the selection is dropped, nothing else changes";
  copy("one");
  EXPECT_EQ(session->message, "Nothing selected.");
  for (int times = 0; times < 2; ++times) EXPECT_EQ(pasted_over("x|y"), "xb <b>c</b>\n⏎d|y");
  EXPECT_EQ(session->message, "Pasted 5 character(s).");
  EXPECT_TRUE(session->modified);

  session.document("a^b\nc|d");
  session.press(CUT);
  EXPECT_EQ(session.notation(), "a|d");
  EXPECT_EQ(session->message, "Cut 3 character(s) to clipboard.");
  session.press(PASTE);
  EXPECT_EQ(session.notation(), "ab\nc|d");
}

TEST_F(Clipboard, WhatAnotherProgramCopiesComesInPlain) {
  others_copy("");
  copy("a <b>^word|</b>");
  EXPECT_EQ(session->message, "Copied 4 character(s) to clipboard.");
  EXPECT_EQ(held(), "word");
  EXPECT_EQ(pasted_over("x |y"), "x <b>word</b>|y");
  others_copy("Grüße");
  EXPECT_EQ(pasted_over("x |y"), "x Grüße|y");
  EXPECT_EQ(session->message, "Pasted 5 character(s).");
  EXPECT_EQ(pasted_over("<i>x |y</i>"), "<i>x Grüße|y</i>") << "in the typing format";
  others_copy("word");
  EXPECT_EQ(pasted_over("x |y"), "x <b>word</b>|y") << "the same text is the rich copy again";
  others_copy("");
  EXPECT_EQ(pasted_over("x |y"), "x |y");
  EXPECT_EQ(session->message, "Clipboard is empty.");
  EXPECT_FALSE(session->modified);
}

TEST_F(Clipboard, EveryToolServesWhereItsDesktopIs) {
  struct Case {
    const char *variable, *copy, *paste, *arguments;
  };
  for (const Case& c :
       {Case{"WAYLAND_DISPLAY", "wl-copy", "wl-paste", "wl-copy\nwl-paste|--no-newline\n"},
        Case{"DISPLAY", "xclip", "xclip", "xclip|-selection|clipboard\nxclip|-selection|clipboard|-out\n"},
        Case{"DISPLAY", "xsel", "xsel", "xsel|--clipboard|--input\nxsel|--clipboard|--output\n"},
        Case{nullptr, "pbcopy", "pbpaste", "pbcopy\npbpaste\n"}}) {
    FakeEnvironment environment(c.variable ? test::Variables{{c.variable, "0"}} : test::Variables{});
    FakeTools only;
    only.add(c.copy, "exit 0");
    copy("a^b|");  // into the rich clipboard alone
    session->_machine.search_path = only.search_path();
    session.press({_KEY_SHIFT_LEFT, COPY});
    EXPECT_EQ(session->message, "Copied 1 character(s) to clipboard.") << c.copy;
    only.add(c.paste, "printf foreign");
    EXPECT_EQ(pasted_over("x|"), "xforeign|") << c.paste;
    EXPECT_EQ(only.take_log(), c.arguments);
    session->_machine.search_path = tools.search_path();
  }
}

TEST_F(Clipboard, ToolsThatFailHangOrDoNotReadLeaveTheRichCopy) {
  tools.add("pbcopy", "exit 1");
  tools.add("pbpaste", "printf wrong; exit 1");
  copy("<b>^word|</b>");
  EXPECT_EQ(session->message, "Copied 4" + FOUND_NONE);
  EXPECT_EQ(pasted_over("|"), "<b>word</b>|");

  tools.add("pbpaste", "printf half; " + test::HANG);
  auto begun = std::chrono::steady_clock::now();
  EXPECT_EQ(pasted_over("|"), "<b>word</b>|");
  auto waited = std::chrono::steady_clock::now() - begun;
  EXPECT_GE(waited, std::chrono::seconds(2));
  EXPECT_LT(waited, std::chrono::seconds(20));

  // More than a pipe holds, to a tool that ends without having read it.
  tools.add("pbcopy", "exit 0");
  session.document("|");
  session->lines[0] = Text(std::u32string(1 << 20, U'x'));
  session->_sel_anchor = {0, 1 << 20};
  session->do_copy();
  EXPECT_EQ(session->message, "Copied 1048576 character(s) to clipboard.");
}

TEST_F(Clipboard, AMegabyteGoesOutAndComesBackWhole) {
  others_copy("");
  std::string text;
  while (text.size() < (1 << 20)) text += "Zeile mit ü\n";
  session.document(text);
  session->do_select_all();
  session.press(COPY);
  EXPECT_TRUE(held() == text);
  session.document("|");
  session.press(PASTE);
  EXPECT_TRUE(session.notation() == text + "|");
}

TEST_F(Clipboard, ControlCharactersOfTenMegabytesStayTextAndDrawOneCellEach) {
  std::string text;
  while (text.size() < 10'000'000) text += std::string("a\r\0\x1b[2J\x7f\xc2\x9b\tz ", 13);
  const std::u32string pasted = decode_utf8(text);
  others_copy(text);
  session.document("|");
  session.press(PASTE);
  EXPECT_TRUE(session->lines[0].view() == pasted);
  EXPECT_EQ(session->cx, static_cast<int>(pasted.size()));
  session->cx = 0;
  EXPECT_EQ(session.draw().row(1), " a���[2J��→z a���[2J��→z a���[2J��→z a���[2J��→z a���[2J��→z a���[2J��→z");
  session.press({KEY_RIGHT, KEY_RIGHT, KEY_RIGHT, KEY_RIGHT});
  EXPECT_EQ(session.draw().cursor_col(), 5);
}

TEST_F(Clipboard, PlainTextKeepsEveryFormatAroundItOnItsCharacters) {
  struct Case {
    std::string text, before, after;
  };
  for (const Case& c : {
           // In one line: the format left of the cursor.
           Case{"XY", "a|<b>bc</b>", "aXY|<b>bc</b>"},
           Case{"XY", "<b>b|c</b>", "<b>bXY|c</b>"},
           Case{"XY", "<b>bc|</b>d", "<b>bcXY</b>|d"},
           Case{"XY", "|<b>bc</b>", "<b>XY|bc</b>"},
           // Several lines: none of its own.
           Case{"X\nY", "<b>b|c</b>d", "<b>b</b>X\nY|<b>c</b>d"},
           Case{"1\n2\n3", "a<b>b</b>|<i>c</i>d\n⏎e", "a<b>b</b>1\n2\n3|<i>c</i>d\n⏎e"},
           Case{"X\n", "<b>b|c</b>", "<b>b</b>X\n|<b>c</b>"},
           Case{"\nX", "a\n⏎b|c\nd\n⏎e", "a\n⏎b\nX|c\nd\n⏎e"},
           Case{"\n", "|", "\n|"},
           // A carriage return is a character like any other.
           Case{"1\r\n2", "a|b", "a1\r\n2|b"},
           Case{"a\xff\xfe"
                "b",
                "|",
                "a\xef\xbf\xbd\xef\xbf\xbd"
                "b|"},
       }) {
    others_copy(c.text);
    EXPECT_EQ(pasted_over(c.before), c.after) << c.text << " into " << c.before;
    session->_check_session();
    session.press(UNDO);
    EXPECT_EQ(print_notation(session.triple()), print_notation(test::parse_notation(c.before).document));
  }
}

TEST_F(Clipboard, TheRichCopyBringsItsFormatsAndPageBreaks) {
  struct Case {
    std::string copied, before, after;
  };
  for (const Case& c : {
           Case{"^<b>X</b>Y|", "a|b", "a<b>X</b>Y|b"},
           Case{"<b>a^XY|b</b>", "ab|", "ab<b>XY</b>|"},
           // A span that ends at the cursor or contains it grows over the pasted text.
           Case{"^<i>X</i>Y|", "<b>a|b</b>", "<b>a<i>X</i>Y|b</b>"},
           Case{"^<i>X</i>Y|", "<b>a|</b>b", "<b>a<i>X</i>Y</b>|b"},
           Case{"^<i>X</i>Y|", "a|<b>b</b>", "a<i>X</i>Y|<b>b</b>"},
           Case{"x\n⏎^X|Y", "a|b", "aX|b"},  // one line brings no page break
           Case{"^X\n⏎<b>Y</b>\n⏎<i>Z|z</i>", "<b>a|b</b>\nc\n⏎d", "<b>a</b>X\n⏎<b>Y</b>\n⏎<i>Z</i>|<b>b</b>\nc\n⏎d"},
           Case{"<b>^X</b>\nY|", "a<b>b|</b>", "a<b>bX</b>\nY|"},
           // A break on the first line copied lands on the line pasted at; on the first of all it moves down.
           Case{"x\n⏎^X\nY|", "a\n\nb|c", "a\n\n⏎bX\nY|c"},
           Case{"x\n⏎^X\nY\nZ|", "|", "X\n⏎Y\nZ|"},
       }) {
    copy(c.copied);
    EXPECT_EQ(pasted_over(c.before), c.after) << c.copied << " into " << c.before;
    session->_check_session();
    session.press(UNDO);
    EXPECT_EQ(print_notation(session.triple()), print_notation(test::parse_notation(c.before).document));
  }
}

TEST_F(Clipboard, PastingOverASelectionIsTwoStepsOfTheHistory) {
  others_copy("new");
  EXPECT_EQ(pasted_over("a^b\nc|d"), "anew|d");
  session.press(UNDO);
  EXPECT_EQ(print_notation(session.triple()), "ad");
  session.press(UNDO);
  EXPECT_EQ(print_notation(session.triple()), "ab\ncd");
}

TEST_F(Clipboard, FoldsAndTheFilterFollowWhatIsPasted) {
  others_copy("1\n2\n3");
  session.document("te|xt\n# a\nin a");
  session->_folded_chapters = {1};
  session.press(PASTE);
  EXPECT_EQ(session->_folded_chapters, (IndexSet{3}));
  session.document("te|xt\n⏎# a\nin a");
  session->_folded_chapters = {1};
  session->do_insert_expansion(U"1\n2");
  EXPECT_EQ(session.notation(), "te1\n2|xt\n⏎# a\nin a");
  EXPECT_EQ(session->_folded_chapters, (IndexSet{2}));

  others_copy("yes\nno\n");
  session.document("|yes\nno");
  session->_kgrep_term = U"yes";
  session->_kgrep_refresh();
  session.press(PASTE);
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{1, 3}));
}

TEST_F(Clipboard, AnExpansionIsTypedTextWithoutAMessage) {
  session.document("<b>a|b</b>");
  session->message = "as it was";
  session->do_insert_expansion(U"XY");
  EXPECT_EQ(session.notation(), "<b>aXY|b</b>");
  session->_sel_anchor = {0, 0};
  session->do_insert_expansion(U"1\n2");
  EXPECT_EQ(session.notation(), "1\n2|<b>b</b>");
  EXPECT_EQ(session->message, "") << "deleting the selection clears it";
}

}  // namespace
}  // namespace brenlow
