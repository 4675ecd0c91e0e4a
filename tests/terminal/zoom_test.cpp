#include "customise/settings.h"
#include "tests/support/dialogs.h"
#include "tests/terminal/fake_machine.h"
#include "tests/terminal/font_files.h"

namespace brenlow::test {
namespace {

void use_terminal(EditorSession& session, const FakeTools& tools, const std::string& kind) {
  session->font_ctrl =
      std::make_unique<FontController>(session->_machine.tty, tools.search_path(), DetectedTerminal{kind, ""});
}

long long stored_size(EditorSession& session) {
  return setting_integer(load_config(session->_machine.files), "font_size", -1);
}

TEST(Zoom, ChangesTheTerminalsFontWithinItsBoundsRemembersItAndPutsItBack) {
  FakeTools tools;
  for (const char* tool : {"alacritty", "kitten"}) tools.add(tool, "exit 0");
  EditorSession session;
  use_terminal(session, tools, "alacritty");
  const std::string set = "alacritty|msg|config|font.size=";
  struct Case {
    int before;
    char key;
    std::string told, asked;
    int after;
  };
  for (const Case& c : {Case{14, '+', "Zoom: 16pt", set + "16\n", 16}, Case{71, '+', "Zoom: 72pt", set + "72\n", 72},
                        Case{72, '+', "Already at maximum zoom (72pt)", "", 72},
                        Case{9, '-', "Zoom: 8pt", set + "8\n", 8}, Case{8, '-', "Already at minimum zoom (8pt)", "", 8},
                        Case{50, '0', "Zoom reset to 14pt", "alacritty|msg|config|-r\n", 14}}) {
    session->font_size = c.before;
    EXPECT_EQ(command(session, c.key), c.told);
    EXPECT_EQ(tools.take_log(), c.asked) << c.told;
    EXPECT_EQ(stored_size(session), c.after) << c.told;
  }
  session->_startup_font_size = 30;
  session->_restore_startup_font();
  use_terminal(session, tools, "kitty");
  session->_restore_startup_font();
  EXPECT_EQ(tools.take_log(), set + "30\nkitten|@|set-font-size|--|0\n");
}

TEST(Zoom, ATerminalThatCannotDoItNamesItsOwnKeys) {
  FakeTools tools;
  tools.add("alacritty", "exit 1");
  EditorSession session;
  session->_persist_font();
  for (const std::string kind : {"alacritty", "none"}) {
    use_terminal(session, tools, kind);
    for (const auto& [letter, sign] : {std::pair('+', "="), std::pair('-', "-"), std::pair('0', "0")}) {
      EXPECT_EQ(command(session, letter, keys::UP), "") << "the notice took the whole key";
      EXPECT_TRUE(session.screen().shows(std::string(" Zoom not available — use Ctrl+") + sign + " in foot")) << kind;
      EXPECT_EQ(stored_size(session), 14) << "not kept";
    }
  }
}

TEST(Zoom, OnTheConsoleTheFontsOfTheSystemAreTheSteps) {
  FakeTools tools;
  tools.add("setfont", "exit 0");
  for (int height : {12, 16, 24}) tools.folder().write("fonts/f" + std::to_string(height) + ".psf", psf1(height));
  EditorSession session;
  session->_on_console = true;
  session->console_font_ctrl = std::make_unique<ConsoleFontController>(
      session->_machine.files, std::vector{tools.folder().file("fonts")}, session->_machine.tty, tools.search_path());
  session->_startup_console_font_idx = session->console_font_ctrl->_idx;
  EXPECT_EQ(command(session, '-'), "Zoom 1/3: f12 (8x12)");
  EXPECT_EQ(command(session, '-'), "Already at smallest font (8x12)");
  EXPECT_EQ(command(session, '0'), "Zoom 2/3: f16 (8x16)");
  EXPECT_EQ(command(session, '+'), "Zoom 3/3: f24 (8x24)");
  EXPECT_EQ(command(session, '+'), "Already at largest font (8x24)");
  tools.take_log();
  session->_restore_startup_font();
  EXPECT_EQ(tools.take_log(), "setfont|" + tools.folder().file("fonts/f16.psf") + "\n");
  EXPECT_EQ(setting_text(load_config(session->_machine.files), "console_font", ""), "f24") << "for the next start";
}

}  // namespace
}  // namespace brenlow::test
