#include "core/editor.h"

#include <gtest/gtest.h>

#include "documents/odt_writer.h"
#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::SessionOptions;
using test::TemporaryFolder;

const std::string CONF = ".config/brenlow/brenlow.conf";

SessionOptions with_settings(const std::string& text) { return {.home_files = {{CONF, text}}}; }

TEST(EditorStart, TheExtensionTellsTheReaderAndAFailedReadKeepsThePath) {
  const std::string text = "# Head\n\n*text*";
  for (bool readable : {true, false})
    for (const char* path : readable ? std::array{"a.md", "a.TXT", "a.fountain"} : std::array{"a.odt", "a", "b/md"}) {
      EditorSession session({.path = path, .home_files = {{path, text}}});
      EXPECT_EQ(session.notation(), readable ? "|" + text : "|") << path;
      EXPECT_TRUE(session->message.starts_with(readable ? "Opened: " : "Error opening file: ")) << session->message;
      EXPECT_FALSE(session->modified);
      EXPECT_EQ(session->filepath, session.home().file(path));
      EXPECT_EQ(test::read_bytes(session.home().file(path)), text);
    }
  EditorSession made({.path = "drafts/one.odt"});
  EXPECT_EQ(made->message, "New file: one.odt");
  EXPECT_FALSE(made->modified || std::filesystem::exists(made.home().file("drafts")));
}

TEST(EditorStart, APageBreakOnTheFirstLineOfAFileMovesDownInSilence) {
  TemporaryFolder folder;
  lines_to_odt({U"one", U"two"}, folder.file("a.odt"), std::nullopt, {{}, {}}, {0});
  EditorSession session({.path = "a.odt", .home_files = {{"a.odt", test::read_bytes(folder.file("a.odt"))}}});
  EXPECT_EQ(session.notation(), "|one\n⏎two");
  EXPECT_EQ(session->message, "Opened: a.odt");
}

TEST(EditorSettings, EverySwitchIsReadAsItsOwnRuleSays) {
  for (auto [value, yes, truth, not_no] :  // three ways to read a value
       {std::tuple("TRUE", true, true, true), std::tuple("No ", false, false, false),
        std::tuple("never", false, true, true), std::tuple("0", false, false, true)}) {
    std::string text;
    for (const char* key : {"typewriter", "fold_hierarchical", "smart_quotes", "hide_dotfiles", "newdoc_timestamp"})
      text += std::string(key) + ": " + value + "\n";
    EditorSession session(with_settings(text));
    EXPECT_EQ(std::tuple(session->_typewriter, session->_fold_hierarchical, session->_smart_quotes),
              std::tuple(yes, yes, yes))
        << value;
    EXPECT_EQ(std::pair(session->_hide_dotfiles, session->_newdoc_timestamp), std::pair(truth, not_no)) << value;
  }
}

TEST(EditorSettings, OddValuesFallBackAndKnownOnesMayBeWrittenInAnyCase) {
  EditorSession session(
      with_settings("margin_left: 150\nmargin_right: -3\nmargin_top: wide\nmargin_bottom: 12\nkgrep_case: odd\n"
                    "default_extension: .TXT\ncursor_type: BAR\ncursor_blink: no\nfind_highlight: Inverse\n"));
  EXPECT_EQ(std::tuple(session->_margin_left_pct, session->_margin_right_pct, session->_margin_top_pct,
                       session->_margin_bottom_pct),
            std::tuple(100, 0, 0, 12));
  EXPECT_EQ(session->_default_extension, "txt");
  EXPECT_TRUE(session->_find_highlight_inverse && !session->_kgrep_case_insensitive);
  EXPECT_EQ(session.draw().cursor_shape(), 6) << "the terminal is told";
}

TEST(EditorSettings, MissingOnesAreWrittenBackAndTheUsersOwnStay) {
  EditorSession session(with_settings("margin_left: 7\nmy_own: 3\n"));
  SettingsMap stored = load_config(session->_machine.files);
  EXPECT_EQ(setting_text(stored, "my_own", ""), "3");
  EXPECT_EQ(setting_text(stored, "cursor_type", "missing"), "block");
  std::string first = test::read_bytes(session.home().file(CONF));
  EditorSession second(with_settings(first));
  EXPECT_EQ(test::read_bytes(second.home().file(CONF)), first) << "a complete file is left as it is";
}

}  // namespace
}  // namespace brenlow
