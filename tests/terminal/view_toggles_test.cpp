#include <filesystem>

#include "customise/settings.h"
#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;
using Margins = std::vector<long long>;

Margins stored_margins(EditorSession& session) {
  SettingsMap settings = load_config(session->_machine.files);
  Margins margins;
  for (const char* key : {"margin_left", "margin_right", "margin_top", "margin_bottom"})
    margins.push_back(setting_integer(settings, key, -1));
  return margins;
}

TEST(Margins, AreAskedForKeptAndNeverLeaveLessThanNothing) {
  EditorSession session;
  EXPECT_EQ(command(session, '1', "60\r"), "Left margin set to 60%.");
  EXPECT_EQ(session.screen().row(23), " Left margin (% of width): 60");
  EXPECT_EQ(command(session, '2', "70\r"),
            "Right margin set to 40% (combined with the opposite margin, that's the max).");
  EXPECT_EQ(command(session, '3', " 25 % \r"), "Top margin set to 25%.");
  EXPECT_EQ(session.screen().row(23), " Top margin (% of height):  25 %");
  EXPECT_EQ(command(session, '4', BACKSPACE + "5%%\r"), "Bottom margin set to 5%.");
  for (const std::string wrong : {"abc", "101", "99999999999999999999", "-5", "2.5", "%", "5%5", "٣"})
    EXPECT_EQ(command(session, '1', BACKSPACE + BACKSPACE + wrong + ENTER),
              "Left margin: please enter a whole number between 0 and 100.");
  EXPECT_EQ(command(session, '4', "9" + ESC), "Bottom margin unchanged.");
  EXPECT_EQ(stored_margins(session), (Margins{60, 40, 25, 5}));
}

TEST(Margins, NarrowTheTextAtOnceAndHoldWithoutASettingsFile) {
  EditorSession session({.rows = 10, .cols = 40});
  session.document("aaaa bbbb cccc dddd| eeee");
  std::filesystem::remove_all(session->_machine.files.CONFIG_DIR);
  session.home().write(".config/brenlow", "a file where the folder should be");
  EXPECT_EQ(command(session, '1', "50\r"), "Left margin set to 50%.");
  EXPECT_EQ(session.rows()[1], std::string(21, ' ') + "aaaa bbbb cccc");
  EXPECT_EQ(command(session, '3', "20\r"), "Top margin set to 20%.");
  EXPECT_EQ(session.rows()[3], std::string(21, ' ') + "aaaa bbbb cccc");
}

TEST(Bars, GoAndComeBackInTurn) {
  EditorSession session({.rows = 6, .cols = 40});
  for (const auto& [title, status] : {std::pair(false, true), {false, false}, {true, false}, {true, true}}) {
    command(session, 'h');
    const std::vector<std::string> rows = session.rows();
    EXPECT_EQ(rows.front().starts_with(" Brenlow"), title);
    EXPECT_EQ(rows.back().starts_with(" Ln"), status);
    EXPECT_EQ(session.screen().cursor_row(), title ? 1 : 0);
  }
}

TEST(Typewriter, KeepsTheCursorLowAndIsRemembered) {
  EditorSession session({.rows = 10, .cols = 40});
  session.document("one\ntwo\nthree|");
  for (const auto& [on, row] : {std::pair(true, 7), std::pair(false, 3)}) {
    EXPECT_EQ(command(session, 't'), on ? "Typewriter mode on" : "Typewriter mode off");
    EXPECT_EQ(session.draw().cursor_row(), row);
    EXPECT_EQ(setting_is_yes(load_config(session->_machine.files), "typewriter", !on), on);
  }
}

}  // namespace
}  // namespace brenlow::test
