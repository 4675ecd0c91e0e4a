#include <termios.h>

#include <csignal>
#include <filesystem>
#include <new>

#include "core/signals.h"
#include "tests/support/dialogs.h"
#include "tests/support/scarce_memory.h"

namespace brenlow::test {
namespace {

using namespace keys;

TEST(Leaving, AsksOnlyForUnsavedTextAndStaysWhenItIsNotSafe) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "old"}}});
  session.type(U"new ");
  for (const std::string& answer : {std::string("C"), ESC, ENTER, UP + "xc"}) {
    EXPECT_EQ(command(session, 'q', answer), "Exit cancelled.");
    EXPECT_TRUE(session.screen().shows(" Unsaved changes. Save before exit? [y/n/c]"));
  }
  session->filepath = session.home().file("none/a.txt");
  EXPECT_EQ(command(session, 'q', "y"), "Save error: No such file or directory");
  session->filepath.reset();
  EXPECT_EQ(command(session, 'q', "y" + ESC), "Save cancelled.");
  EXPECT_EQ(session.notation(), "new |old");
  session->filepath = session.home().file("a.txt");
  EXPECT_THROW(command(session, 'q', "n"), StopRequest);
  EXPECT_EQ(read_bytes(session.home().file("a.txt")), "old");
  EXPECT_THROW(command(session, 'q', "Y"), StopRequest);
  EXPECT_EQ(read_bytes(session.home().file("a.txt")), "new old");
  EXPECT_THROW(command(session, 'q'), StopRequest) << "saved, so nothing is asked";
}

TEST(Leaving, GivesTheTerminalBackAndWritesNoSettings) {
  EditorSession session;
  auto signals_on = [&] {
    ::termios attributes{};
    ::tcgetattr(session->_machine.input, &attributes);
    return (attributes.c_lflag & ISIG) != 0;
  };
  EXPECT_FALSE(signals_on());
  const Editor::SignalHandler found_at_start = [](int) {};
  session->_old_sigtstp = found_at_start;
  const std::string settings = read_bytes(session->_machine.files.CONFIG_FILE);
  session->_typewriter = true;
  EXPECT_THROW(command(session, 'q'), StopRequest);
  EXPECT_TRUE(signals_on());
  EXPECT_EQ(::signal(SIGTSTP, SIG_DFL), found_at_start);
  EXPECT_EQ(read_bytes(session->_machine.files.CONFIG_FILE), settings);
}

// Presses the last of the keys while memory runs out at its first, second, ... piece: what is left is the text before
// or after it.
void expect_no_loss(EditorSession& session, const std::string& document, std::vector<int> keys) {
  SCOPED_TRACE(testing::PrintToString(keys) + " on " + document);
  const int last = keys.back();
  keys.pop_back();
  bool cut_short = true;
  for (long pieces = 1; cut_short; ++pieces) {
    session.document(document);
    for (int key : keys) session.press(key);
    const LineList before = session->lines;
    cut_short = false;
    pieces_left = pieces;
    try {
      session->_handle_key(last);
    } catch (const std::bad_alloc&) {
      cut_short = true;
    }
    pieces_left = -1;
    session->_abandon_open_edit();
    const LineList left = session->lines;
    const bool changed = !(left == before);
    ASSERT_TRUE(session->modified || !changed) << "after " << pieces << " pieces";
    session.document(document);
    for (int key : keys) session.press(key);
    session.press(last);
    ASSERT_TRUE(left == session->lines || !changed) << "after " << pieces << " pieces";
  }
}

TEST(Leaving, WhatWantOfMemoryCutsShortCostsNoText) {
  EditorSession session;
  const int cut = 24, paste = 22, undo = 26, redo = 23, delete_line = 25, page_break = 16, enter = 10, backspace = 127;
  session.document("x|first\n<b>second</b>\n⏎third^");
  session.press(cut);
  for (const std::string document : {"one|\ntwo", "# one\n<b>t|w</b>o\n⏎three\n# four", "|"})
    for (int key : {int{'x'}, enter, backspace, KEY_DC, paste, delete_line, page_break}) {
      expect_no_loss(session, document, {key});
      expect_no_loss(session, document, {key, undo});
      expect_no_loss(session, document, {key, undo, redo});
    }
  for (int key : {int{KEY_DC}, cut}) expect_no_loss(session, "# one\n<b>t|w</b>o\n⏎t^hree\n# four", {key});
}

// What a session on its way out makes of the signals ends with the test.
struct SignalsOfATest {
  ~SignalsOfATest() {
    for (int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGTTOU, SIGPIPE, SIGXFSZ})
      std::signal(signal, SIG_DFL);
  }
};

TEST(Leaving, UnaskedItRescuesWhatIsNotSavedAndGivesTheTerminalBack) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "old"}}});
  const SignalsOfATest signals;
  EXPECT_EQ(session->_leave_unasked(), "");
  session.type(U"new ");
  const std::string told = session->_leave_unasked(), opening = "brenlow: the changes that were not saved are in ";
  ASSERT_TRUE(told.starts_with(opening) && told.ends_with(".txt\n")) << told;
  EXPECT_EQ(read_bytes(told.substr(opening.size(), told.size() - opening.size() - 1)), "new old");
  EXPECT_EQ(read_bytes(session.home().file("a.txt")), "old");
}

TEST(Leaving, ASignalEndsEveryDialogOnceWhatWasTypedIsDone) {
  EditorSession session;
  const SignalsOfATest signals;
  note_end_signals();
  for (const int letter : std::string("\0frosak?1", 9)) {
    session.document("|");
    session.type_ahead(letter == 0 ? "ab" : "a");
    session.press(static_cast<int>(session->_getch()));
    ::raise(SIGTERM);
    if (letter == 0) {
      session.press(static_cast<int>(session->_getch()));
      EXPECT_THROW(session->_getch(), EndRequest);
      EXPECT_EQ(session.notation(), "ab|");
    } else {
      EXPECT_THROW(session.command(letter), EndRequest) << letter;
      EXPECT_EQ(session.notation(), "a|");
    }
    note_end_signals();  // forgets the signal
  }
  ignore_end_signals();
  ::raise(SIGHUP);
  EXPECT_EQ(noted_end_signal(), 0) << "nothing cuts the way out short";
}

}  // namespace
}  // namespace brenlow::test
