#include <termios.h>

#include <csignal>
#include <filesystem>

#include "tests/support/dialogs.h"

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

}  // namespace
}  // namespace brenlow::test
