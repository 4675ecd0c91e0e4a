#include "customise/settings.h"
#include "tests/support/dialogs.h"
#include "tests/terminal/fake_machine.h"
#include "tests/terminal/font_files.h"

namespace brenlow::test {
namespace {

using namespace keys;

void use_terminal(EditorSession& session, const FakeTools& tools, const std::string& kind) {
  session->font_ctrl =
      std::make_unique<FontController>(session->_machine.tty, tools.search_path(), DetectedTerminal{kind, ""});
}

long long stored_size(EditorSession& session) {
  return setting_integer(load_config(session->_machine.files), "font_size", -1);
}

TEST(Zoom, ChangesTheTerminalsFontWithinItsBoundsAndRemembersIt) {
  FakeTools tools;
  tools.add("alacritty", "exit 0");
  EditorSession session;
  session.document("te|xt");
  use_terminal(session, tools, "alacritty");
  session->font_size = 14;
  EXPECT_EQ(command(session, '+'), "Zoom: 16pt");
  EXPECT_EQ(stored_size(session), 16);
  EXPECT_EQ(command(session, '-'), "Zoom: 14pt");
  EXPECT_EQ(tools.take_log(), "alacritty|msg|config|font.size=16\nalacritty|msg|config|font.size=14\n");
  session->font_size = 71;
  EXPECT_EQ(command(session, '+'), "Zoom: 72pt");
  tools.take_log();
  EXPECT_EQ(command(session, '+'), "Already at maximum zoom (72pt)");
  session->font_size = 9;
  EXPECT_EQ(tools.take_log(), "") << "the terminal is not asked for more than the bound";
  EXPECT_EQ(command(session, '-'), "Zoom: 8pt");
  EXPECT_EQ(command(session, '-'), "Already at minimum zoom (8pt)");
  tools.take_log();
  EXPECT_EQ(command(session, '0'), "Zoom reset to 14pt");
  EXPECT_EQ(tools.take_log(), "alacritty|msg|config|-r\n");
  EXPECT_EQ(stored_size(session), 14);
  EXPECT_EQ(session.notation(), "te|xt");
  EXPECT_FALSE(session->modified);
}

TEST(Zoom, ATerminalThatCannotDoItNamesItsOwnKeys) {
  FakeTools tools;
  tools.add("alacritty", "exit 1");
  EditorSession session;
  session->_persist_font();
  for (const std::string kind : {"alacritty", "foot", "none"}) {
    use_terminal(session, tools, kind);
    session->font_size = 20;
    for (const auto& [letter, sign, size] :
         {std::tuple('+', "=", 22), std::tuple('-', "-", 20), std::tuple('0', "0", 14)}) {
      EXPECT_EQ(command(session, letter, UP), "") << "the notice took the whole key";
      EXPECT_TRUE(session.screen().shows(std::string(" Zoom not available — use Ctrl+") + sign + " in foot")) << kind;
      EXPECT_EQ(session->font_size, size);
      EXPECT_EQ(stored_size(session), 14) << "not kept";
    }
  }
}

TEST(Zoom, LeavingPutsTheTerminalsFontBack) {
  FakeTools tools;
  for (const char* tool : {"alacritty", "kitten"}) tools.add(tool, "exit 0");
  EditorSession session;
  session->_startup_font_size = 30;
  session->font_size = 50;
  use_terminal(session, tools, "alacritty");
  session->_restore_startup_font();
  use_terminal(session, tools, "kitty");
  session->_restore_startup_font();
  EXPECT_EQ(tools.take_log(), "alacritty|msg|config|font.size=30\nkitten|@|set-font-size|--|0\n");
  EXPECT_EQ(session->font_size, 50);
}

TEST(Zoom, OnTheConsoleTheFontsOfTheSystemAreTheSteps) {
  FakeTools tools;
  tools.add("setfont", "exit 0");
  for (int height : {12, 16, 24}) tools.folder().write("fonts/f" + std::to_string(height) + ".psf", psf1(height));
  EditorSession session;
  session->_on_console = true;
  session->font_ctrl.reset();
  session->console_font_ctrl = std::make_unique<ConsoleFontController>(
      session->_machine.files, std::vector{tools.folder().file("fonts")}, session->_machine.tty, tools.search_path());
  session->_startup_console_font_idx = session->console_font_ctrl->_idx;
  EXPECT_EQ(command(session, '+'), "Zoom 3/3: f24 (8x24)");
  EXPECT_EQ(command(session, '+'), "Already at largest font (8x24)");
  EXPECT_EQ(command(session, '0'), "Zoom 2/3: f16 (8x16)");
  EXPECT_EQ(command(session, '-'), "Zoom 1/3: f12 (8x12)");
  EXPECT_EQ(command(session, '-'), "Already at smallest font (8x12)");
  tools.take_log();
  session->_restore_startup_font();
  EXPECT_EQ(tools.take_log(), "setfont|" + tools.folder().file("fonts/f16.psf") + "\n");
  EXPECT_EQ(setting_text(load_config(session->_machine.files), "console_font", ""), "f12") << "for the next start";
}

}  // namespace
}  // namespace brenlow::test
