#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;

void set_kind(EditorSession& session, const std::string& kind) {
  session->font_ctrl = std::make_unique<FontController>(session->_machine.tty, session->_machine.search_path,
                                                        DetectedTerminal{kind, ""});
}

std::string help_page(EditorSession& session, const std::string& typed) {
  session->_ESC_MAP["[0~"] = KEY_ESC;
  session.type_ahead(typed);
  session.press(session->_key_help);
  EXPECT_FALSE(session->_input_waiting());
  std::string all;
  for (const std::string& row : session.screen().all_rows()) all += row + "\n";
  return all;
}

TEST(Help, LeadsToAboutTheTutorialAndTheCharacters) {
  EditorSession session;
  EXPECT_TRUE(help_page(session, "? ").starts_with(" About Brenlow (↑↓ PgUp PgDn to scroll   T = Tutorial)"));
  for (const char* letter : {"t", "T"})
    EXPECT_TRUE(help_page(session, std::string("?") + letter + " ").starts_with(" Brenlow Tutorial (↑↓ PgUp PgDn"));
  EXPECT_TRUE(command(session, '?', END + " ").empty());
  EXPECT_TRUE(session.screen().row(0).starts_with(" About Brenlow"));
  for (const std::string kind : {"foot", "xterm", "none"}) {
    set_kind(session, kind);
    for (const std::string letter : {"u", "U"})
      EXPECT_TRUE(help_page(session, letter + ESC).starts_with(" Unicode character table")) << kind;
  }
  for (const std::string kind : {"kitty", "alacritty", "macos_terminal", "macos_generic"}) {
    set_kind(session, kind);
    EXPECT_NE(help_page(session, "u").find("THIS HELP SCREEN"), std::string::npos) << kind;
  }
}

}  // namespace
}  // namespace brenlow::test
