#include "screen/help_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/keys.h"
#include "core/unicode.h"

namespace brenlow {
namespace {

KeyMap default_keys() {
  KeyMap keys;
  for (const DefaultKey& row : _DEFAULT_KEYMAP) keys.emplace_back(row.action, row.token);
  keys.emplace_back("_help_key", _KEY_CTRL_SPACE);
  keys.emplace_back("_action_key", KEY_ESC);
  return keys;
}

int& key_of(KeyMap& keys, std::string_view action) {
  return std::ranges::find(keys, action, &KeyMap::value_type::first)->second;
}

// The key column of the row of an action in the last section, where descriptions may stand a second time.
std::string shortcut_of(const std::vector<std::string>& lines, const std::string& description) {
  std::string cell = " " + description;
  cell.resize(41, ' ');
  auto row = std::ranges::find_if(lines.rbegin(), lines.rend(),
                                  [&](const std::string& line) { return line.starts_with(cell); });
  return row == lines.rend() ? "no row" : row->substr(41);
}

TEST(HelpText, ShortcutsAreThoseOfTheUsersConfiguration) {
  KeyMap keys = default_keys();
  EXPECT_EQ(shortcut_of(help_lines(keys, _KEY_CTRL_SPACE, KEY_ESC), "Save As"), "Ctrl Alt S");
  key_of(keys, "save") = 11;
  key_of(keys, "bold") = 6;  // the key of find, which stands further down and keeps it
  key_of(keys, "mark") = _KEY_CTRL_G;
  key_of(keys, "italic") = 8;
  const auto lines = help_lines(keys, _KEY_F[0], _KEY_F[1]);
  EXPECT_EQ(shortcut_of(lines, "Save"), "Ctrl K");
  EXPECT_EQ(shortcut_of(lines, "Find"), "Ctrl F");
  EXPECT_EQ(shortcut_of(lines, "Bold on/off"), "(no key)");
  EXPECT_EQ(shortcut_of(lines, "Italic on/off"), "Ctrl H") << "Backspace's byte, once bound";
  EXPECT_EQ(shortcut_of(lines, "Mark/unmark selection anchor"), "(no key)") << "Ctrl G always filters";
  EXPECT_EQ(shortcut_of(lines, "Redo (back-compat)"), "no row");
  EXPECT_EQ(shortcut_of(lines, "Open/close help screen"), "F1");
  EXPECT_EQ(shortcut_of(lines, "Enter command mode"), "F2");
  EXPECT_TRUE(std::ranges::any_of(lines, [](const std::string& line) { return line.ends_with("F2 again"); }));
  EXPECT_TRUE(help_title(_KEY_F[0], _KEY_F[1]).starts_with("F1"));
  EXPECT_TRUE(help_title(_KEY_F[0], _KEY_F[1]).ends_with("F2 = command mode   ↑↓ PgUp PgDn to scroll"));
}

TEST(HelpText, EveryLineFitsEightyColumnsWithItsColumnsAligned) {
  for (const std::string& line : help_lines(default_keys(), _KEY_CTRL_SPACE, KEY_ESC)) {
    const std::u32string text = decode_utf8(line);
    EXPECT_EQ(wrap_paragraph(text, 77), std::vector{text});
    const auto sign = text.find(U'►');
    EXPECT_TRUE(sign == text.npos || sign == 41) << line;
    EXPECT_TRUE(line.find(" ─") == line.npos || text.size() == 60) << line;
  }
}

// An overlay that loses a blank or a word shows broken tables and samples.
TEST(WrapParagraph, KeepsEveryCharacterAndTheWidth) {
  std::mt19937 random(20);
  for (int round = 0; round < 2000; ++round) {
    std::u32string text;
    for (auto left = random() % 60; left > 0; --left) text += random() % 3 ? U'x' : U' ';
    const int width = static_cast<int>(random() % 20) + 1;
    std::u32string together;
    for (const std::u32string& row : wrap_paragraph(text, width)) {
      const bool one_word = row.find(U' ', 1) == row.npos;
      EXPECT_TRUE(one_word || row.size() <= static_cast<std::size_t>(width));
      together += row;
    }
    EXPECT_EQ(together, text);
  }
  EXPECT_EQ(wrap_paragraph(U"", 10), std::vector<std::u32string>{U""});
  EXPECT_EQ(wrap_paragraph(U"  one two three", 9), (std::vector<std::u32string>{U"  one two", U" three"}));
}

}  // namespace
}  // namespace brenlow
