#include "customise/key_map.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "core/keys.h"
#include "customise/escape_map.h"
#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::read_bytes;

namespace {

struct KeyMapTest : testing::Test {
  test::TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());

  KeyMap load(const std::string& complaints = "") {
    testing::internal::CaptureStderr();
    KeyMap map = _load_keymap(files);
    EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, complaints.size()), complaints);
    return map;
  }
  KeyMap load_text(std::string_view text, const std::string& complaints = "") {
    home.write(".config/brenlow/keys.conf", text);
    return load(complaints);
  }
};

// The keys that differ from the default table.
std::map<std::string, int> changed(const KeyMap& map) {
  std::map<std::string, int> keys;
  for (const auto& [action, token] : map) {
    auto row = std::ranges::find(_DEFAULT_KEYMAP, action, &DefaultKey::action);
    if (row == _DEFAULT_KEYMAP.end() || row->token != token) keys[action] = token;
  }
  return keys;
}
using Changes = std::map<std::string, int>;
const Changes DEFAULTS = {{"_help_key", _KEY_CTRL_SPACE}, {"_action_key", KEY_ESC}};
Changes with_defaults(Changes changes) {
  changes.insert(DEFAULTS.begin(), DEFAULTS.end());
  return changes;
}

}  // namespace

TEST_F(KeyMapTest, EveryKeyNameOfTheFileIsReachedByThePressedKey) {
  const EscapeMap built_in = default_escape_map();
  std::set<int> seen;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    EXPECT_EQ(token_of_label(std::string("Ctrl+") + letter), letter - 'A' + 1);
    const auto token = token_of_label(std::string("Ctrl+Alt+") + letter);
    ASSERT_TRUE(token && seen.insert(*token).second) << letter;
    const std::string code = std::to_string(letter), small = std::to_string(letter + 32);
    for (const std::string& bytes : {std::string(1, static_cast<char>(letter - 64)), "[" + code + ";7u",
                                     "[" + small + ";7u", "[27;7;" + code + "~", "[27;7;" + small + "~"}) {
      EXPECT_EQ(ctrl_alt_letter(bytes), token) << bytes;
      const auto row = built_in.find(bytes);
      EXPECT_TRUE(row == built_in.end() || row->second == *token) << bytes;
    }
    EXPECT_EQ(label_of_token(*token), std::string("Ctrl Alt ") + letter);
    EXPECT_EQ(label_of_token(letter - 64), std::string("Ctrl ") + letter);
  }
  EXPECT_EQ(token_of_label("Ctrl+Alt+]"), token_of_label("Ctrl Alt ]"));
  EXPECT_EQ(token_of_label("Ctrl+\\"), token_of_label("Ctrl \\"));
  for (const char* none : {"Ctrl K", "ctrl+b", "Ctrl+b", "Ctrl+", "", "F5"}) EXPECT_FALSE(token_of_label(none)) << none;
  EXPECT_EQ(label_of_token(_KEY_F[18]) + label_of_token(_KEY_CTRL_SPACE) + label_of_token(70000), "F19Ctrl+Space");
}

TEST_F(KeyMapTest, WrongLinesAndKeysWithTwoActionsAreNamed) {
  EXPECT_EQ(changed(load()), DEFAULTS) << "a first start";
  const std::string text = read_bytes(files.KEYS_FILE);
  EXPECT_TRUE(text.ends_with("# Mark/unmark selection anchor\nmark: Ctrl L\n"));
  EXPECT_EQ(changed(load()), DEFAULTS) << "the file that the first start wrote";
  EXPECT_EQ(read_bytes(files.KEYS_FILE), text);

  const KeyMap map = load_text(
      "\xEF\xBB\xBF[shortcuts]\r\nsave: ctrl+s\r\nfly = Ctrl+F\nfind = \"Ctrl+K\"\nexit: 'Ctrl+Alt+X'\n"
      "copy: Ctrl+I\nbold: Ctrl+I\nundo: \x1b[2J'\n",
      "brenlow: keys.conf line 2: unknown key 'ctrl+s' for action 'save', keeping default\n"
      "brenlow: keys.conf line 3: unknown action 'fly', ignored\n"
      "brenlow: keys.conf line 8: unknown key '\\x1b[2J' for action 'undo', keeping default\n"
      "brenlow: keys.conf conflict: 'bold' and 'italic' both mapped to the same key, 'italic' wins\n"
      "brenlow: keys.conf conflict: 'italic' and 'copy' both mapped to the same key, 'copy' wins\n");
  EXPECT_EQ(changed(map),
            with_defaults({{"find", 11}, {"exit", ctrl_alt_letter_token('X')}, {"bold", 9}, {"copy", 9}}));
}

TEST_F(KeyMapTest, HelpAndActionKeysTakeFunctionKeysAndFallBackSilently) {
  for (const auto& [value, token] :
       {std::pair("f3", _KEY_F[2]), {"\"F19\"", _KEY_F[18]}, {"esc", KEY_ESC}, {"Ctrl_Space", _KEY_CTRL_SPACE}})
    EXPECT_EQ(changed(load_text("help_key: " + std::string(value) + "\naction_key = " + value + "\n")),
              (Changes{{"_help_key", token}, {"_action_key", token}}));
  for (const char* none : {"F20", "F0", "F", "F-1", "F99999999999", ""})
    EXPECT_EQ(changed(load_text(std::string("help_key: ") + none + "\naction_key: " + none)), DEFAULTS) << none;
  EXPECT_FALSE(_parse_help_action_key("ESC", false));
}

TEST_F(KeyMapTest, BindingsOfAnEarlierVersionMoveToTheNewFileAndAreNotLostWhenItCannotBeWritten) {
  const std::string old =
      "# old\n[shortcuts]\nsave = \"Ctrl+K\"\nfind='Ctrl+Alt+G'\nexit = \"Ctrl+Alt+S\"\nsave_as = \"Ctrl+Q\"\n"
      "bold = \"Ctrl+?\"\nfly = \"Ctrl+J\"\nundo: Ctrl+J\nmark = \"Ctrl+T\"\nmark = \"Ctrl+U\"\n";
  home.write(".config/brenlow/keys.toml", old);
  std::filesystem::create_directories(files.KEYS_FILE);
  EXPECT_EQ(changed(load("brenlow: could not read keys.conf: ")), DEFAULTS);
  std::filesystem::remove(files.KEYS_FILE);
  std::filesystem::create_symlink(home.file("no/such/folder"), files.KEYS_FILE);
  EXPECT_EQ(changed(load("brenlow: could not write keys.conf: ")), DEFAULTS);
  std::filesystem::remove(files.KEYS_FILE);
  for (int start = 0; start < 2; ++start)
    EXPECT_EQ(changed(load()), with_defaults({{"save", 11},
                                              {"find", ctrl_alt_letter_token('G')},
                                              {"exit", _KEY_CTRL_ALT_S},
                                              {"save_as", 17},
                                              {"mark", 21}}));
  EXPECT_FALSE(std::filesystem::exists(files.KEYS_FILE_OLD));
}
