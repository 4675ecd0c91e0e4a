#include "core/editor.h"

#include <gtest/gtest.h>

#include "documents/odt_writer.h"
#include "tests/support/editor_session.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::print_notation;
using test::SessionOptions;
using test::TemporaryFolder;

const std::string CONF = ".config/brenlow/brenlow.conf";

SessionOptions with_settings(const std::string& text) { return {.home_files = {{CONF, text}}}; }

TEST(EditorStart, ASessionBeginsWithOneEmptyLineAndNothingToSay) {
  EditorSession session;
  EXPECT_EQ(session.notation(), "|");
  EXPECT_EQ(session->message, "");
  EXPECT_FALSE(session->filepath || session->modified);
  EXPECT_EQ(session->font_size, 14);
  EXPECT_EQ(session->_key_action, KEY_ESC);
  EXPECT_EQ(session->_key_help, _KEY_CTRL_SPACE);
  EXPECT_EQ(session->_expansion_key, KEY_ESC);
}

TEST(EditorStart, TheExtensionTellsTheReaderAndAFailedReadKeepsThePath) {
  const std::string text = "# Head\n\n*text*";
  for (const char* path : {"a.md", "a.TXT", "a.fountain"}) {
    EditorSession session({.path = path, .home_files = {{path, text}}});
    EXPECT_EQ(session.notation(), "|" + text) << path;
    EXPECT_EQ(session->message, std::string("Opened: ") + path);
    EXPECT_FALSE(session->modified);
  }
  for (const char* path : {"a.odt", "a.page", "a", "folder/md"}) {
    EditorSession session({.path = path, .home_files = {{path, text}}});
    EXPECT_EQ(session.notation(), "|") << path;
    EXPECT_TRUE(session->message.starts_with("Error opening file: ")) << session->message;
    EXPECT_GT(session->message.size(), std::string("Error opening file: ").size());
    EXPECT_EQ(session->filepath, session.home().file(path));
    EXPECT_EQ(test::read_bytes(session.home().file(path)), text);
  }
  EditorSession folder({.path = "some.txt", .home_files = {{"some.txt/within", ""}}});
  EXPECT_TRUE(folder->message.starts_with("Error opening file: ")) << folder->message;
}

TEST(EditorStart, APathOfNoFileIsANewDocument) {
  EditorSession session({.path = "drafts/one.odt"});
  EXPECT_EQ(session->message, "New file: one.odt");
  EXPECT_EQ(session.notation(), "|");
  EXPECT_FALSE(session->modified);
  EXPECT_FALSE(std::filesystem::exists(session.home().file("drafts")));
}

TEST(EditorStart, APageBreakOnTheFirstLineOfAFileMovesDownInSilence) {
  TemporaryFolder folder;
  auto opened = [&](std::vector<Text> lines) {
    std::vector<SpanList> formats(lines.size());
    lines_to_odt(lines, folder.file("a.odt"), std::nullopt, formats, {0});
    EditorSession session({.path = "a.odt", .home_files = {{"a.odt", test::read_bytes(folder.file("a.odt"))}}});
    EXPECT_EQ(session->message, "Opened: a.odt");
    EXPECT_FALSE(session->modified);
    return print_notation(session.triple());
  };
  EXPECT_EQ(opened({U"one", U"two", U"three"}), "one\n⏎two\nthree");
  EXPECT_EQ(opened({U"one"}), "one");
}

TEST(EditorSettings, MarginsAreWholePercentagesFromZeroToAHundred) {
  EditorSession session(with_settings("margin_left: 150\nmargin_right: -3\nmargin_top: wide\nmargin_bottom: 12\n"));
  EXPECT_EQ(session->_margin_left_pct, 100);
  EXPECT_EQ(session->_margin_right_pct, 0);
  EXPECT_EQ(session->_margin_top_pct, 0);
  EXPECT_EQ(session->_margin_bottom_pct, 12);
  session.press('x');
  session.draw();
}

TEST(EditorSettings, EverySwitchIsReadAsItsOwnRuleSays) {
  struct Case {
    std::string value;
    bool yes, truth, not_no;  // three ways to read a value
  };
  for (const Case& c :
       {Case{"yes", true, true, true}, Case{"TRUE", true, true, true}, Case{"no", false, false, false},
        Case{"false", false, false, false}, Case{"No ", false, false, false}, Case{"never", false, true, true},
        Case{"0", false, false, true}, Case{"1", false, true, true}}) {
    std::string text;
    for (const char* key : {"typewriter", "fold_hierarchical", "smart_quotes", "hide_dotfiles", "newdoc_timestamp"})
      text += std::string(key) + ": " + c.value + "\n";
    EditorSession session(with_settings(text));
    EXPECT_EQ(session->_typewriter, c.yes) << c.value;
    EXPECT_EQ(session->_fold_hierarchical, c.yes) << c.value;
    EXPECT_EQ(session->_smart_quotes, c.yes) << c.value;
    EXPECT_EQ(session->_hide_dotfiles, c.truth) << c.value;
    EXPECT_EQ(session->_newdoc_timestamp, c.not_no) << c.value;
  }
}

TEST(EditorSettings, OddWordsFallBackAndKnownOnesMayBeWrittenInAnyCase) {
  EditorSession odd(
      with_settings("default_extension: docx\ncursor_type: star\ncursor_blink: no\nkgrep_case: odd\n"
                    "kgrep_highlight: odd\nfind_case: Sensitive\nfind_highlight: Inverse\n"));
  EXPECT_EQ(odd->_default_extension, "odt");
  EXPECT_EQ(odd->_cursor_decscusr, 2);
  EXPECT_FALSE(odd->_kgrep_case_insensitive || odd->_kgrep_highlight_inverse || odd->_find_case_insensitive);
  EXPECT_TRUE(odd->_find_highlight_inverse);
  EditorSession known(
      with_settings("default_extension: .TXT\ncursor_type: BAR\nkgrep_case: INSENSITIVE\n"
                    "kgrep_highlight: INVERSE\n"));
  EXPECT_EQ(known->_default_extension, "txt");
  EXPECT_EQ(known->_cursor_decscusr, 5);
  EXPECT_TRUE(known->_kgrep_case_insensitive && known->_kgrep_highlight_inverse && known->_find_case_insensitive);
  EXPECT_EQ(known.screen().cursor_shape(), 5) << "and the terminal is told";
}

TEST(EditorSettings, MissingOnesAreWrittenBackAndTheUsersOwnStay) {
  EditorSession session(with_settings("margin_left: 7\nmy_own: 3\n"));
  SettingsMap stored = load_config(session->_machine.files);
  EXPECT_EQ(setting_margin(stored, "margin_left"), 7);
  EXPECT_EQ(setting_text(stored, "my_own", ""), "3");
  EXPECT_EQ(setting_text(stored, "cursor_type", "missing"), "block");
  EXPECT_EQ(setting_text(stored, "find_case", "missing"), "insensitive");
  std::string first = test::read_bytes(session.home().file(CONF));
  EditorSession second(with_settings(first));
  EXPECT_EQ(test::read_bytes(second.home().file(CONF)), first) << "a complete file is left as it is";
}

TEST(EditorSettings, AStartWithoutAWritableConfigurationStillGivesASession) {
  EditorSession session({.home_files = {{".config", "a file where a folder should be"}}});
  session.type(U"text");
  EXPECT_EQ(session.notation(), "text|");
  EXPECT_EQ(session->_default_extension, "odt");
}

}  // namespace
}  // namespace brenlow
