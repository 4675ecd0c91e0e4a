#include "screen/help_text.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "core/keys.h"
#include "core/unicode.h"
#include "texts.h"

namespace brenlow {

namespace {

// Columns. The rows fit an 80-column screen, which leaves the overlay 77.
constexpr std::size_t ACTION_COLUMNS = 41;
constexpr std::size_t ROW_COLUMNS = 60;

struct CommandRow {
  std::string_view heading;  // of the section that begins here; empty within a section
  std::string_view action;
  std::string_view key;
};

constexpr CommandRow COMMAND_ROWS[] = {
    {" BRENLOW", "About Brenlow & Tutorial", "?"},
    {"", "[T]ypewriter mode on/off", "T"},
    {"", "[Q]uit (prompts if unsaved)", "Q"},
    {" DOCUMENT", "[O]pen existing document", "O"},
    {"", "Create [N]ew document", "N"},
    {"", "[D]ocument insert at cursor", "D"},
    {"", "[S]ave", "S"},
    {"", "Save [A]s", "A"},
    {" VIEW", "Zoom in", "+"},
    {"", "Zoom out", "-"},
    {"", "Reset zoom level", "0"},
    {"", "Left margin (%)", "1"},
    {"", "Right margin (%)", "2"},
    {"", "Top margin (%)", "3"},
    {"", "Bottom margin (%)", "4"},
    {"", "[H]ide/show title & status bars", "H"},
    {"", "Fold/unfold chapter at cursor", "#"},
    {"", "Fold/unfold all chapters", "*"},
    {"", "Swap chapter with next", "Down"},
    {"", "Swap chapter with previous", "Up"},
    {"", "k[G]rep: show only lines matching term", "G"},
    {"", "Restore all kGrep-folded lines", "*"},
    {" NAVIGATION", "Beginning of document", "["},
    {"", "End of document", "]"},
    {" EDIT", "[U]ndo", "U"},
    {"", "Redo (undo undo)", "W"},
    {"", "Delete [L]ine", "L"},
    {"", "[F]ind", "F"},
    {"", "Find & [R]eplace", "R"},
    {"", "Insert special character (if supported)", "K"},
    {" STYLE", "[B]old on/off", "B"},
    {"", "[I]talic on/off", "I"},
    {"", "[P]age break (ODT only)", "P"},
    {" CLIPBOARD & SELECTION", "Select [E]verything", "E"},
    {"", "[M]ark/unmark selection anchor", "M"},
    {"", "[C]opy selection to clipboard", "C"},
    {"", "Cut selection to clipboard", "X"},
    {"", "Paste from clipboard", "V"},
};

constexpr std::pair<std::string_view, std::string_view> ALWAYS_ROWS[] = {
    {"Move cursor", "Arrow keys"},
    {"Scroll page", "Page Up/Dn"},
    {"Line start", "Home"},
    {"Line end", "End"},
    {"New line", "Enter"},
    {"Delete character before cursor", "Backspace"},
    {"Delete character at cursor / selection", "Delete"},
    {"Extend selection", "Shift Arrow"},
    {"Extend selection by word", "Ctrl Shift ←/→"},
    {"Insert Unicode char. (terminal-native)", "Ctrl Shift U"},
};

// `text`, a blank and a rule up to the end of the row.
std::string heading(std::string_view text) {
  std::string row(text);
  row += ' ';
  for (std::size_t column = text.size() + 1; column < ROW_COLUMNS; ++column) row += "─";
  return row;
}

// All actions are ASCII, so bytes are columns here.
std::string key_row(std::string_view action, std::string_view key) {
  std::string row = " " + std::string(action);
  row.resize(std::max(row.size(), ACTION_COLUMNS), ' ');
  return row.append(key);
}

// The key that runs the action now. Of two actions on one key the later one has it; Ctrl G always filters.
std::string shortcut_label(const KeyMap& keys, std::string_view action) {
  const int token = key_of_action(keys, action, NO_KEY);
  std::string_view owner;
  for (const auto& [name, bound] : keys)
    if (bound == token && !name.starts_with('_')) owner = name;
  return owner == action && token != _KEY_CTRL_G ? label_of_token(token) : "(no key)";
}

std::vector<std::string> split_lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

}  // namespace

std::string _key_name(int key) {
  if (key == KEY_ESC) return "ESC";
  if (key == _KEY_CTRL_SPACE) return "Ctrl+Space";
  if (key >= _KEY_F.front() && key <= _KEY_F.back()) return "F" + std::to_string(key - _KEY_F.front() + 1);
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), static_cast<unsigned>(key), 16).ptr;
  return "key(0x" + std::string(digits.begin(), end) + ")";
}

std::vector<std::string> help_lines(const KeyMap& keys, int help_key, int action_key) {
  const std::string action_name = _key_name(action_key);
  std::vector<std::string> lines{
      heading(" THIS HELP SCREEN"),
      key_row("Open/close help screen", _key_name(help_key)),
      "",
      heading(" COMMAND MODE"),
      key_row("Enter command mode", action_name),
      key_row("Leave command mode without a command", action_name + " again"),
      "",
      heading(" ACTION   COMMAND KEY"),
  };
  for (const CommandRow& row : COMMAND_ROWS) {
    if (!row.heading.empty()) {
      if (&row != std::begin(COMMAND_ROWS)) lines.emplace_back();
      lines.push_back(heading(row.heading));
    }
    lines.push_back(key_row(row.action, "► " + std::string(row.key)));
  }
  lines.emplace_back();
  lines.push_back(heading(" ALWAYS ACTIVE (NO COMMAND MODE NEEDED)"));
  for (const auto& [action, key] : ALWAYS_ROWS) lines.push_back(key_row(action, key));
  lines.emplace_back();
  lines.push_back(heading(" ALTERNATIVE SHORTCUTS (CONFIGURABLE IN CONFIG)"));
  for (const DefaultKey& row : _DEFAULT_KEYMAP)
    if (row.action != "redo_compat") lines.push_back(key_row(row.description, shortcut_label(keys, row.action)));
  lines.emplace_back();
  return lines;
}

std::string help_title(int help_key, int action_key) {
  return _key_name(help_key) + " = help   " + _key_name(action_key) + " = command mode   ↑↓ PgUp PgDn to scroll";
}

std::vector<std::string> about_lines() { return split_lines(texts::about); }

std::vector<std::string> tutorial_lines() { return split_lines(texts::tutorial); }

std::vector<std::u32string> wrap_paragraph(std::u32string_view text, int width) {
  const auto limit = static_cast<std::size_t>(std::max(width, 1));
  std::vector<std::u32string> rows;
  std::size_t end = std::min(text.find(U' '), text.size());
  std::u32string row(text.substr(0, end));
  while (end < text.size()) {
    const std::size_t next = std::min(text.find(U' ', end + 1), text.size());
    const std::u32string_view word = text.substr(end, next - end);  // with the one space before it
    if (row.size() + word.size() > limit) {
      rows.push_back(std::move(row));
      row.clear();
    }
    row += word;
    end = next;
  }
  rows.push_back(std::move(row));
  return rows;
}

}  // namespace brenlow
