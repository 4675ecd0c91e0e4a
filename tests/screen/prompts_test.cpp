#include <deque>

#include "core/unicode.h"
#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;

// What a prompt shows whenever it waits for the next of `steps`: its painter of the background is called on a
// resize, so one is announced each time the keys are used up.
class Frames {
 public:
  Frames(EditorSession& session, std::initializer_list<std::string> steps) : _session(session), _steps(steps) {
    session->_ESC_MAP["[0~"] = KEY_ESC;
    session->_backdrop = [this] { next(); };
    Editor::_sigwinch_pending = 1;
  }
  ~Frames() { _session->_backdrop = nullptr; }
  Frames(const Frames&) = delete;
  Frames& operator=(const Frames&) = delete;

  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> attributes;  // of the row with the terminal's cursor

 private:
  void next() {
    const TerminalScreen& screen = _session.screen();
    rows.push_back(screen.all_rows());
    attributes.push_back(screen.attributes(screen.cursor_row()));
    _session.type_ahead(_steps.front());
    _steps.pop_front();
    _session->_input_waiting();  // takes the bytes in, since a resize goes before unread ones
    Editor::_sigwinch_pending = _steps.empty() ? 0 : 1;
  }

  EditorSession& _session;
  std::deque<std::string> _steps;
};

std::string answer(EditorSession& session, std::u32string_view prefill, const std::string& typed) {
  session->_ESC_MAP["[0~"] = KEY_ESC;
  session.type_ahead(typed + ENTER);
  std::optional<std::u32string> text = session->_prompt("Name: ", prefill);
  while (session->_input_waiting()) session->_getch();
  return text ? encode_utf8(*text) : "(none)";
}

TEST(Prompt, APrefillIsReplacedByALetterAndKeptByAMotion) {
  EditorSession session;
  Editor::_internal_clipboard = {U"two", U"lines"};
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "name"},
      {"x", "x"},
      {LEFT + "x", "namxe"},
      {BACKSPACE, ""},
      {RIGHT + BACKSPACE, "nam"},
      {HOME + "x" + END + "y", "xnamey"},
      {HOME + LEFT + RIGHT + RIGHT + "-", "na-me"},
      {"é", "nameé"},
      {"\x16", "nametwo lines"},
      {UP + PAGE_DOWN + DELETE + F5 + TAB + std::string(1, '\0') + "€", "name€"},
      {ESC, "(none)"},
  };
  for (const auto& [typed, expected] : cases) EXPECT_EQ(answer(session, U"name", typed), expected) << typed;
  Editor::_internal_clipboard = {U""};
  session.type_ahead(ESC);
  EXPECT_EQ(session->_prompt("Name: ", U"name", true), std::u32string());
}

TEST(Prompt, ACharacterCutOffDoesNotSpoilTheNextOnes) {
  EditorSession session;
  EXPECT_EQ(answer(session, U"",
                   "\xC3"
                   "aé"),
            "aé");
  EXPECT_EQ(answer(session, U"", "\xE2\x82"), "");
  EXPECT_EQ(answer(session, U"", "\xAC"), "") << "the end of a character does not complete one of an earlier prompt";
  EXPECT_EQ(answer(session, U"", "\x80\x80\x80\x80日本"), "日本");
}

TEST(Prompt, ExpansionsAreInsertedAsOneLine) {
  EditorSession session;
  session->_expansions[_KEY_EXPANSION_ALT_BASE + 'm'] = U"Dear\r\nSir\nand\rMadam";
  session->_expansion_key = _KEY_F[4];
  EXPECT_EQ(answer(session, U"", "a" + F5 + "mz"), "aDear Sir and Madamz");
  EXPECT_EQ(answer(session, U"", F5 + F5 + "m"), "m");
  EXPECT_EQ(session->message, "");
  EXPECT_EQ(answer(session, U"", F5 + "q" + F5 + UP + "m"), "m");
  EXPECT_EQ(session->message, "No expansion assigned to that key.");
  Frames frames(session, {F5, F5, ENTER});
  session->_prompt("Name: ");
  EXPECT_EQ(frames.rows[1].back(), " Name: [expansion — press letter, or key again to cancel]");
  EXPECT_EQ(frames.rows[2].back(), " Name:");
}

TEST(Prompt, TakesTheBottomRowWithACursorThatNeverLeavesIt) {
  EditorSession session({.rows = 6, .cols = 20});
  session.document("text|");
  session->_bar_state = 2;
  session.draw();
  Frames frames(session, {"ab", LEFT, std::string(30, 'c'), ENTER});
  EXPECT_EQ(session->_prompt("Name: "), U"a" + std::u32string(30, 'c') + U"b");
  EXPECT_EQ(frames.rows[0][0], " text");
  EXPECT_EQ(frames.rows[1].back(), " Name: ab");
  EXPECT_EQ(frames.attributes[1], "333333333r3333333333");
  EXPECT_EQ(frames.attributes[2], "33333333r33333333333");
  EXPECT_EQ(frames.rows[3].back(), " Name: acccccccccccc");
  EXPECT_EQ(frames.attributes[3], "3333333333333333333r");
}

TEST(Question, TakesOnlyTheLettersItOffersInEitherCase) {
  EditorSession session;
  session->_ESC_MAP["[0~"] = KEY_ESC;
  auto asked = [&](const std::string& typed) {
    session.type_ahead(typed);
    char letter = session->_ask("Sure? [y/n]: ", "yn");
    EXPECT_FALSE(session->_input_waiting());
    return letter;
  };
  EXPECT_EQ(asked("y"), 'y');
  EXPECT_EQ(asked("xq 1" + UP + F5 + "é" + TAB + "N"), 'n');
  EXPECT_EQ(asked(ENTER), '\0');
  EXPECT_EQ(asked(BACKSPACE + ESC), '\0');
  session.type_ahead("YyN" + BACKSPACE + "n" + ENTER);
  EXPECT_EQ(session->_mid_prompt("Letters: ", 4, "yn"), U"Yyn");
}

TEST(Question, StandsInTheMiddleOfAnyScreen) {
  EditorSession session({.rows = 9, .cols = 40});
  Frames frames(session, {"", ENTER});
  session->_mid_prompt("Sure? [y/n]: ", 1, "yn");
  EXPECT_EQ(frames.rows[0][3], std::string(10, ' ') + "───────────────────");
  EXPECT_EQ(frames.rows[0][4], std::string(11, ' ') + "Sure? [y/n]:");
  EXPECT_EQ(frames.rows[0][5], frames.rows[0][3]);
  EXPECT_EQ(frames.attributes[0], "..........33333333333333r3333");
  for (auto [rows, cols] : {std::pair(3, 16), std::pair(2, 6), std::pair(1, 3)}) {
    session.resize(rows, cols);
    session.type_ahead("y");
    EXPECT_EQ(session->_ask("Sure? [y/n]: ", "yn"), 'y') << rows << "x" << cols;
    session.type_ahead("y");
    session->_mid_notice("A notice longer than this screen");
    if (rows == 3) {
      EXPECT_EQ(session.screen().row(1), "   A notice l") << session.screen().picture();
    }
  }
}

TEST(Question, AResizeMovesItAndRedrawsTheText) {
  EditorSession session;
  session.document("a word or two|");
  resize_once_open(session, 7, 30);
  session.type_ahead("n");
  EXPECT_EQ(session->_ask("Sure? [y/n]: ", "yn"), 'n');
  EXPECT_EQ(session.screen().row(1), " a word or two") << session.screen().picture();
  EXPECT_EQ(session.screen().row(3), "      Sure? [y/n]:") << session.screen().picture();
  resize_once_open(session, 11, 50);
  session.type_ahead(DOWN);
  session->_mid_notice("Something to know");
  EXPECT_FALSE(session->_input_waiting()) << "a notice takes one key, whatever its bytes";
  EXPECT_EQ(session.screen().row(5), std::string(15, ' ') + "Something to know") << session.screen().picture();
  EXPECT_EQ(session.screen().row(1), " a word or two");
}

}  // namespace
}  // namespace brenlow::test
