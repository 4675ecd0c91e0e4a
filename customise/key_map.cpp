#include "customise/key_map.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>

#include "core/keys.h"
#include "core/unicode.h"
#include "customise/conf_file.h"

namespace brenlow {

namespace {

constexpr DefaultKey ROWS[] = {
    {"open", 15, "Ctrl O", "Open existing document"},
    {"create_newdoc", _KEY_CTRL_N, "Ctrl N", "Create new document"},
    {"insert_document", _KEY_CTRL_ALT_O, "Ctrl Alt O", "Document insert at cursor"},
    {"save", 19, "Ctrl S", "Save"},
    {"save_as", _KEY_CTRL_ALT_S, "Ctrl Alt S", "Save As"},
    {"exit", 17, "Ctrl Q", "Quit (prompts if unsaved)"},
    {"bold", 2, "Ctrl B", "Bold on/off"},
    {"italic", 9, "Ctrl I", "Italic on/off"},
    {"page_break", 16, "Ctrl P", "Page break (ODT only)"},
    {"find", 6, "Ctrl F", "Find"},
    {"replace", _KEY_CTRL_ALT_F, "Ctrl Alt F", "Find & Replace"},
    {"undo", 26, "Ctrl Z", "Undo"},
    {"redo", _KEY_CTRL_ALT_Z, "Ctrl Alt Z", "Redo (undo undo)"},
    {"redo_compat", 23, "Ctrl W", "Redo (back-compat)"},
    {"delete_line", 25, "Ctrl Y", "Delete line"},
    {"doc_begin", _KEY_CTRL_ALT_B, "Ctrl Alt B", "Beginning of document"},
    {"doc_end", _KEY_CTRL_ALT_E, "Ctrl Alt E", "End of document"},
    {"toggle_bars", _KEY_CTRL_ALT_H, "Ctrl Alt H", "Hide/show title & status bars"},
    {"zoom_in", 28, "Ctrl \\", "Zoom in"},
    {"zoom_out", 29, "Ctrl ]", "Zoom out"},
    {"zoom_reset", _KEY_CTRL_ALT_RBRACKET, "Ctrl Alt ]", "Reset zoom level"},
    {"zoom_reset2", _KEY_CTRL_ALT_BACKSLASH, "Ctrl Alt \\", "Reset zoom level"},
    {"select_all", 1, "Ctrl A", "Select everything"},
    {"copy", 3, "Ctrl C", "Copy selection to clipboard"},
    {"cut", 24, "Ctrl X", "Cut selection to clipboard"},
    {"paste", 22, "Ctrl V", "Paste from clipboard"},
    {"mark", 12, "Ctrl L", "Mark/unmark selection anchor"},
};

constexpr std::string_view KEYS_CONF_HEAD =
    R"conf(# Brenlow keyboard shortcuts — ~/.config/brenlow/keys.conf
# Edit this file and restart Brenlow to remap the Ctrl+key shortcuts.
#
# Format:  action: Key+Name
#
# Valid key names:
#   Ctrl+A  through  Ctrl+Z          (26 combinations)
#   Ctrl+Alt+A  through  Ctrl+Alt+Z  (26 combinations)
#   Ctrl+]
#   Ctrl+\
#
# Notes:
#   - Key names are case-sensitive: use Ctrl+B, not ctrl+b or CTRL+B.
#   - Assigning the same key to two actions logs a warning on startup
#     and the last assignment wins.
#   - Unknown action names or key names are ignored (warning on stderr).

)conf";

using LabelMap = std::map<std::string, int, std::less<>>;

// The labels that keys.conf offers, with "+" between their words.
const LabelMap& typed_labels() {
  static const LabelMap labels = [] {
    LabelMap made;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      made[std::string("Ctrl+") + letter] = letter - 64;
      made[std::string("Ctrl+Alt+") + letter] = ctrl_alt_letter_token(letter);
    }
    made["Ctrl+]"] = 29;
    made["Ctrl+\\"] = 28;
    made["Ctrl+Alt+]"] = _KEY_CTRL_ALT_RBRACKET;
    made["Ctrl+Alt+\\"] = _KEY_CTRL_ALT_BACKSLASH;
    return made;
  }();
  return labels;
}

const LabelMap& _LABEL_TO_TOKEN() {
  static const LabelMap labels = [] {
    LabelMap made = typed_labels();
    for (const DefaultKey& row : ROWS) made[std::string(row.label)] = row.token;
    return made;
  }();
  return labels;
}

std::string_view default_label(int token) {
  auto row = std::ranges::find(ROWS, token, &DefaultKey::token);
  return row == std::end(ROWS) ? std::string_view() : row->label;
}

std::string_view typed_label(int token) {
  auto label = std::ranges::find(typed_labels(), token, &LabelMap::value_type::second);
  return label == typed_labels().end() ? std::string_view() : label->first;
}

// "F1" to "F19"; empty for other keys.
std::string function_key_label(int token) {
  auto key = std::ranges::find(_KEY_F, token);
  return key == _KEY_F.end() ? std::string() : "F" + std::to_string(key - _KEY_F.begin() + 1);
}

// How keys.conf spells a special key; empty for keys that can be none.
std::string special_key_name(int token) {
  if (token == KEY_ESC) return "ESC";
  return token == _KEY_CTRL_SPACE ? "CTRL_SPACE" : function_key_label(token);
}

int* find_action(KeyMap& map, std::string_view action) {
  auto entry = std::ranges::find(map, action, &KeyMap::value_type::first);
  return entry == map.end() ? nullptr : &entry->second;
}

void complain_about_conflicts(const KeyMap& map, std::ostream& complaints) {
  std::map<int, std::string> taken;
  for (const auto& [action, token] : map) {
    if (action.starts_with('_')) continue;
    auto [first, is_new] = taken.try_emplace(token, action);
    if (is_new) continue;
    complaints << "brenlow: keys.conf conflict: " << single_quoted(first->second) << " and " << single_quoted(action)
               << " both mapped to the same key, " << single_quoted(action) << " wins\n";
    first->second = action;
  }
}

// Says on standard error what went wrong; false then.
bool write_keys_conf(const ConfigFiles& files, const std::vector<std::pair<std::string, int>>& overrides) {
  try {
    write_conf_file(files.CONFIG_DIR, files.KEYS_FILE, keys_file_text(overrides));
    return true;
  } catch (const std::exception& failure) {
    std::cerr << "brenlow: could not write keys.conf: " << plain_print(failure.what()) << '\n';
    return false;
  }
}

void migrate_old_keys(const ConfigFiles& files) {
  if (path_exists(files.KEYS_FILE) || !path_exists(files.KEYS_FILE_OLD)) return;
  try {
    std::vector<std::pair<std::string, int>> overrides;
    const std::string text = read_conf_file(files.KEYS_FILE_OLD);
    for (std::string_view line : conf_lines(text)) {
      const std::size_t equals = line.find('=');
      if (line.starts_with('#') || equals == std::string_view::npos) continue;
      const std::string_view action = trimmed(line.substr(0, equals));
      const auto token = token_of_label(strip_quote_marks(trimmed(line.substr(equals + 1))));
      if (token && std::ranges::find(ROWS, action, &DefaultKey::action) != std::end(ROWS))
        overrides.emplace_back(action, *token);
    }
    if (write_keys_conf(files, overrides)) std::filesystem::remove(files.KEYS_FILE_OLD);
  } catch (const std::exception&) {
    // The old file stays, and the defaults are written.
  }
}

}  // namespace

const std::span<const DefaultKey> _DEFAULT_KEYMAP = ROWS;

std::optional<int> _parse_help_action_key(std::string_view value, bool allow_esc) {
  const std::string name = lowered_ascii(trimmed(value));
  if (name == "esc") return allow_esc ? std::optional<int>(KEY_ESC) : std::nullopt;
  if (name == "ctrl_space") return _KEY_CTRL_SPACE;
  if (!name.starts_with('f')) return std::nullopt;
  unsigned number = 0;
  const char* const end = name.data() + name.size();
  const auto read = std::from_chars(name.data() + 1, end, number);
  if (read.ec != std::errc{} || read.ptr != end || number < 1 || number > _KEY_F.size()) return std::nullopt;
  return _KEY_F[number - 1];
}

int ctrl_alt_letter_token(char letter) {
  switch (letter) {
    case 'S':
      return _KEY_CTRL_ALT_S;
    case 'F':
      return _KEY_CTRL_ALT_F;
    case 'Z':
      return _KEY_CTRL_ALT_Z;
    case 'U':
      return _KEY_CTRL_ALT_U;
    case 'B':
      return _KEY_CTRL_ALT_B;
    case 'E':
      return _KEY_CTRL_ALT_E;
    case 'H':
      return _KEY_CTRL_ALT_H;
    case 'O':
      return _KEY_CTRL_ALT_O;
    default:
      return _KEY_CTRL_ALT_LETTER_BASE + letter;
  }
}

std::optional<int> token_of_label(std::string_view label) {
  const auto found = _LABEL_TO_TOKEN().find(label);
  return found == _LABEL_TO_TOKEN().end() ? std::nullopt : std::optional<int>(found->second);
}

std::string label_of_token(int token) {
  if (auto label = default_label(token); !label.empty()) return std::string(label);
  if (token == KEY_ESC) return "ESC";
  if (token == _KEY_CTRL_SPACE) return "Ctrl+Space";
  std::string label(typed_label(token));
  std::ranges::replace(label, '+', ' ');
  return label.empty() ? function_key_label(token) : label;
}

KeyMap parse_keys(std::string_view text, std::ostream& complaints) {
  KeyMap map;
  for (const DefaultKey& row : ROWS) map.emplace_back(row.action, row.token);
  std::string_view help_key = "CTRL_SPACE";
  std::string_view action_key = "ESC";
  for (const ConfEntry& entry : conf_entries(text)) {
    const std::string_view value = strip_quote_marks(entry.value);
    if (entry.key == "help_key") {
      help_key = value;
    } else if (entry.key == "action_key") {
      action_key = value;
    } else if (int* bound = find_action(map, entry.key); !bound) {
      complaints << "brenlow: keys.conf line " << entry.line << ": unknown action " << single_quoted(entry.key)
                 << ", ignored\n";
    } else if (auto token = token_of_label(value)) {
      *bound = *token;
    } else {
      complaints << "brenlow: keys.conf line " << entry.line << ": unknown key " << single_quoted(value)
                 << " for action " << single_quoted(entry.key) << ", keeping default\n";
    }
  }
  map.emplace_back("_help_key", _parse_help_action_key(help_key).value_or(_KEY_CTRL_SPACE));
  map.emplace_back("_action_key", _parse_help_action_key(action_key).value_or(KEY_ESC));
  complain_about_conflicts(map, complaints);
  return map;
}

std::string keys_file_text(const std::vector<std::pair<std::string, int>>& overrides) {
  const KeyMap latest_first(overrides.rbegin(), overrides.rend());
  auto token_of = [&](std::string_view name, int fallback) { return key_of_action(latest_first, name, fallback); };
  auto special = [&](std::string_view name, int fallback) {
    const std::string spelt = special_key_name(token_of(name, fallback));
    return spelt.empty() ? special_key_name(fallback) : spelt;
  };
  std::string text(KEYS_CONF_HEAD);
  text +=
      "[special keys]\n"
      "# Key that opens the help / shortcut reference screen.\n"
      "# Valid: ESC  F1-F19  CTRL_SPACE  (default: CTRL_SPACE)\n";
  text += "help_key: " + special("help_key", _KEY_CTRL_SPACE) + "\n\n";
  text +=
      "# Key that activates single-letter command mode.\n"
      "# Valid: ESC  F1-F19  CTRL_SPACE  (default: ESC)\n";
  text += "action_key: " + special("action_key", KEY_ESC) + "\n\n\n[shortcuts]\n\n";
  for (const DefaultKey& row : ROWS) {
    const int token = token_of(row.action, row.token);
    std::string_view label = default_label(token);
    if (label.empty()) label = typed_label(token);
    if (label.empty()) label = row.label;
    text.append("# ").append(row.description).append("\n");
    text.append(row.action).append(": ").append(label).append("\n");
  }
  return text;
}

KeyMap _load_keymap(const ConfigFiles& files) {
  migrate_old_keys(files);
  if (!path_exists(files.KEYS_FILE)) _write_default_keys_conf(files);
  std::string text;
  try {
    text = read_conf_file(files.KEYS_FILE);
  } catch (const std::exception& failure) {
    std::cerr << "brenlow: could not read keys.conf: " << plain_print(failure.what()) << '\n';
  }
  return parse_keys(text, std::cerr);
}

void _write_default_keys_conf(const ConfigFiles& files, const std::vector<std::pair<std::string, int>>& overrides) {
  write_keys_conf(files, overrides);
}

int key_of_action(const KeyMap& map, std::string_view action, int fallback) {
  const auto entry = std::ranges::find(map, action, &KeyMap::value_type::first);
  return entry == map.end() ? fallback : entry->second;
}

}  // namespace brenlow
