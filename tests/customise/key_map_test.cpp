#include "customise/key_map.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>

#include "core/keys.h"
#include "customise/conf_file.h"
#include "customise/escape_map.h"
#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::read_bytes;
using brenlow::test::TemporaryFolder;

namespace {

struct KeyMapTest : testing::Test {
  TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());

  KeyMap load(const std::string& complaints = "") {
    testing::internal::CaptureStderr();
    KeyMap map = _load_keymap(files);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), complaints);
    return map;
  }
  KeyMap load_text(std::string_view text, const std::string& complaints = "") {
    home.write(".config/brenlow/keys.conf", text);
    return load(complaints);
  }
  int key(const KeyMap& map, std::string_view action) { return key_of_action(map, action, NO_KEY); }
};

}  // namespace

TEST_F(KeyMapTest, AFirstStartWritesAFileThatBindsTheDefaultsWithoutComplaints) {
  const KeyMap map = load();
  ASSERT_EQ(map.size(), _DEFAULT_KEYMAP.size() + 2);
  for (std::size_t i = 0; i < _DEFAULT_KEYMAP.size(); ++i) {
    EXPECT_EQ(map[i].first, _DEFAULT_KEYMAP[i].action);
    EXPECT_EQ(map[i].second, _DEFAULT_KEYMAP[i].token);
  }
  EXPECT_EQ(key(map, "_help_key"), _KEY_CTRL_SPACE);
  EXPECT_EQ(key(map, "_action_key"), KEY_ESC);
  const std::string text = read_bytes(files.KEYS_FILE);
  EXPECT_TRUE(text.ends_with("# Mark/unmark selection anchor\nmark: Ctrl L\n"));
  EXPECT_EQ(load(), map);
  EXPECT_EQ(read_bytes(files.KEYS_FILE), text);
}

TEST_F(KeyMapTest, EveryKeyNameOfTheFileIsReachedByThePressedKey) {
  const EscapeMap built_in = default_escape_map();
  std::set<int> seen;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    EXPECT_EQ(token_of_label(std::string("Ctrl+") + letter), letter - 'A' + 1);
    const auto token = token_of_label(std::string("Ctrl+Alt+") + letter);
    ASSERT_TRUE(token);
    EXPECT_TRUE(seen.insert(*token).second) << letter;
    const std::string code = std::to_string(letter), small = std::to_string(letter + 32);
    for (const std::string& bytes : {std::string(1, static_cast<char>(letter - 64)), "[" + code + ";7u",
                                     "[" + small + ";7u", "[27;7;" + code + "~", "[27;7;" + small + "~"}) {
      EXPECT_EQ(ctrl_alt_letter(bytes), token) << single_quoted(bytes);
      const auto row = built_in.find(bytes);
      EXPECT_TRUE(row == built_in.end() || row->second == *token) << single_quoted(bytes);
    }
    EXPECT_EQ(label_of_token(*token), std::string("Ctrl Alt ") + letter);
    EXPECT_EQ(label_of_token(letter - 64), std::string("Ctrl ") + letter);
  }
  EXPECT_EQ(token_of_label("Ctrl+Alt+]"), token_of_label("Ctrl Alt ]"));
  EXPECT_EQ(token_of_label("Ctrl+\\"), token_of_label("Ctrl \\"));
  for (const char* none : {"Ctrl K", "ctrl+b", "Ctrl+b", "Ctrl+", "", "F5", "Ctrl+Alt+1"})
    EXPECT_FALSE(token_of_label(none)) << none;
  EXPECT_EQ(label_of_token(29), "Ctrl ]");
  EXPECT_EQ(label_of_token(_KEY_F[18]), "F19");
  EXPECT_EQ(label_of_token(_KEY_CTRL_SPACE), "Ctrl+Space");
  EXPECT_EQ(label_of_token(70000), "");
}

TEST_F(KeyMapTest, WrongLinesAreNamedAndTheirDefaultsStay) {
  const KeyMap map = load_text(
      "\xEF\xBB\xBF[shortcuts]\r\n"
      "save: ctrl+s\r\n"
      "fly = Ctrl+F\n"
      "find = \"Ctrl+K\"\n"
      "exit: 'Ctrl+Alt+X'\n"
      "bold: Ctrl+I\n"
      "undo: \x1b[2J'\n",
      "brenlow: keys.conf line 2: unknown key 'ctrl+s' for action 'save', keeping default\n"
      "brenlow: keys.conf line 3: unknown action 'fly', ignored\n"
      "brenlow: keys.conf line 7: unknown key '\\x1b[2J' for action 'undo', keeping default\n"
      "brenlow: keys.conf conflict: 'bold' and 'italic' both mapped to the same key, 'italic' wins\n");
  EXPECT_EQ(key(map, "save"), 19);
  EXPECT_EQ(key(map, "find"), 11);
  EXPECT_EQ(key(map, "exit"), _KEY_CTRL_ALT_LETTER_BASE + 'X');
  EXPECT_EQ(key(map, "bold"), 9);
  EXPECT_EQ(key(map, "italic"), 9);
}

TEST_F(KeyMapTest, ThreeActionsOnOneKeyAreToldAsAChain) {
  std::ostringstream complaints;
  parse_keys("save: Ctrl+Q\nbold: Ctrl+Q\n", complaints);
  EXPECT_EQ(complaints.str(),
            "brenlow: keys.conf conflict: 'save' and 'exit' both mapped to the same key, 'exit' wins\n"
            "brenlow: keys.conf conflict: 'exit' and 'bold' both mapped to the same key, 'bold' wins\n");
}

TEST_F(KeyMapTest, HelpAndActionKeysTakeFunctionKeysAndFallBackSilently) {
  struct Case {
    const char* value;
    int help, action;
  };
  for (const Case& c : {Case{"f3", _KEY_F[2], _KEY_F[2]}, Case{"\"F19\"", _KEY_F[18], _KEY_F[18]},
                        Case{"esc", KEY_ESC, KEY_ESC}, Case{"Ctrl_Space", _KEY_CTRL_SPACE, _KEY_CTRL_SPACE},
                        Case{"F20", _KEY_CTRL_SPACE, KEY_ESC}, Case{"F0", _KEY_CTRL_SPACE, KEY_ESC},
                        Case{"F", _KEY_CTRL_SPACE, KEY_ESC}, Case{"F-1", _KEY_CTRL_SPACE, KEY_ESC},
                        Case{"F99999999999", _KEY_CTRL_SPACE, KEY_ESC}, Case{"", _KEY_CTRL_SPACE, KEY_ESC}}) {
    const KeyMap map = load_text(std::string("help_key: ") + c.value + "\naction_key = " + c.value + "\n");
    EXPECT_EQ(key(map, "_help_key"), c.help) << c.value;
    EXPECT_EQ(key(map, "_action_key"), c.action) << c.value;
  }
  EXPECT_FALSE(_parse_help_action_key("ESC", false));
}

TEST_F(KeyMapTest, BindingsOfAnEarlierVersionMoveToTheNewFile) {
  home.write(".config/brenlow/keys.toml",
             "# old\n[shortcuts]\nsave = \"Ctrl+K\"\nfind='Ctrl+Alt+G'\nexit = \"Ctrl+Alt+S\"\nsave_as = \"Ctrl+Q\"\n"
             "bold = \"Ctrl+?\"\nfly = \"Ctrl+J\"\nundo: Ctrl+J\nmark = \"Ctrl+T\"\nmark = \"Ctrl+U\"\n");
  const KeyMap map = load();
  EXPECT_EQ(key(map, "save"), 11);
  EXPECT_EQ(key(map, "find"), _KEY_CTRL_ALT_LETTER_BASE + 'G');
  EXPECT_EQ(key(map, "exit"), _KEY_CTRL_ALT_S);
  EXPECT_EQ(key(map, "save_as"), 17);
  EXPECT_EQ(key(map, "bold"), 2);
  EXPECT_EQ(key(map, "undo"), 26);
  EXPECT_EQ(key(map, "mark"), 21);
  EXPECT_FALSE(std::filesystem::exists(files.KEYS_FILE_OLD));
  EXPECT_EQ(load(), map);
}

TEST_F(KeyMapTest, AKeysFileThatCannotBeReadOrWrittenLeavesTheDefaults) {
  std::filesystem::create_directories(files.KEYS_FILE);
  testing::internal::CaptureStderr();
  KeyMap map = _load_keymap(files);
  EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("brenlow: could not read keys.conf: "));
  EXPECT_EQ(key(map, "save"), 19);

  std::filesystem::remove_all(files.KEYS_FILE);
  std::filesystem::create_symlink(home.file("no/such/folder"), files.KEYS_FILE);
  home.write(".config/brenlow/keys.toml", "save = \"Ctrl+K\"\n");
  testing::internal::CaptureStderr();
  map = _load_keymap(files);
  EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("brenlow: could not write keys.conf: "));
  EXPECT_EQ(map.size(), _DEFAULT_KEYMAP.size() + 2);
  EXPECT_TRUE(std::filesystem::exists(files.KEYS_FILE_OLD)) << "the only copy of the bindings is gone";
}
