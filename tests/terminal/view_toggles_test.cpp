#include <filesystem>

#include "customise/settings.h"
#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;

std::vector<long long> stored_margins(EditorSession& session) {
  SettingsMap settings = load_config(session->_machine.files);
  std::vector<long long> margins;
  for (const char* key : {"margin_left", "margin_right", "margin_top", "margin_bottom"})
    margins.push_back(setting_integer(settings, key, -1));
  return margins;
}

using Margins = std::vector<long long>;

TEST(Margins, AreAskedForKeptAndNeverLeaveLessThanNothing) {
  EditorSession session;
  session.document("some wo|rds");
  EXPECT_EQ(command(session, '1', "60\r"), "Left margin set to 60%.");
  EXPECT_EQ(session.screen().row(23), " Left margin (% of width): 60");
  EXPECT_EQ(command(session, '2', "70\r"),
            "Right margin set to 40% (combined with the opposite margin, that's the max).");
  EXPECT_EQ(command(session, '3', " 25 % \r"), "Top margin set to 25%.");
  EXPECT_EQ(session.screen().row(23), " Top margin (% of height):  25 %");
  EXPECT_EQ(command(session, '4', BACKSPACE + "5%%\r"), "Bottom margin set to 5%.");
  EXPECT_EQ(stored_margins(session), (Margins{60, 40, 25, 5}));
  EXPECT_EQ(command(session, '2', LEFT + END + BACKSPACE + BACKSPACE + "0\r"), "Right margin set to 0%.");
  EXPECT_EQ(command(session, '1', "100\r"), "Left margin set to 100%.");
  EXPECT_EQ(command(session, '2', "5\r"),
            "Right margin set to 0% (combined with the opposite margin, that's the max).");
  for (const std::string wrong : {"abc", "101", "99999999999999999999", "-5", "2.5", "%", "5%5", "٣"})
    EXPECT_EQ(command(session, '1', BACKSPACE + wrong + ENTER),
              "Left margin: please enter a whole number between 0 and 100.");
  EXPECT_EQ(command(session, '4', "9" + ESC), "Bottom margin unchanged.");
  EXPECT_EQ(stored_margins(session), (Margins{100, 0, 25, 5}));
  session.draw();
  EXPECT_EQ(session.notation(), "some wo|rds");
  EXPECT_FALSE(session->modified);
}

TEST(Margins, NarrowTheTextAtOnceAndHoldWithoutASettingsFile) {
  EditorSession session({.rows = 10, .cols = 40});
  session.document("aaaa bbbb cccc dddd| eeee");
  std::filesystem::remove_all(session->_machine.files.CONFIG_DIR);
  session.home().write(".config/brenlow", "a file where the folder should be");
  EXPECT_EQ(command(session, '1', "50\r"), "Left margin set to 50%.");
  EXPECT_EQ(session.rows()[1], std::string(21, ' ') + "aaaa bbbb cccc");
  EXPECT_EQ(session.rows()[2], std::string(21, ' ') + "dddd eeee");
  EXPECT_EQ(command(session, '3', "20\r"), "Top margin set to 20%.");
  EXPECT_EQ(session.rows()[3], std::string(21, ' ') + "aaaa bbbb cccc");
}

TEST(Bars, GoAndComeBackInTurn) {
  EditorSession session({.rows = 6, .cols = 40});
  session.document("text|");
  auto bars = [&] {
    std::vector<std::string> rows = session.rows();
    return std::string(rows.front().starts_with(" Brenlow") ? "title " : "") +
           (rows.back().starts_with(" Ln") ? "status" : "");
  };
  EXPECT_EQ(bars(), "title status");
  for (const char* shown : {"status", "", "title ", "title status"}) {
    command(session, 'h');
    EXPECT_EQ(bars(), shown);
    EXPECT_EQ(session.screen().cursor_row(), session->_title_bar_shown() ? 1 : 0);
  }
}

TEST(Typewriter, KeepsTheCursorLowAndIsRemembered) {
  EditorSession session({.rows = 10, .cols = 40});
  session.document("one\ntwo\nthree|");
  EXPECT_EQ(command(session, 't'), "Typewriter mode on");
  session.draw();
  EXPECT_EQ(session.screen().cursor_row(), 7);
  EXPECT_TRUE(setting_is_yes(load_config(session->_machine.files), "typewriter", false));
  EXPECT_EQ(command(session, 'T'), "Typewriter mode off");
  session.draw();
  EXPECT_EQ(session.screen().cursor_row(), 3);
  EXPECT_FALSE(setting_is_yes(load_config(session->_machine.files), "typewriter", true));
}

}  // namespace
}  // namespace brenlow::test
