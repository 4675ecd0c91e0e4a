#pragma once

#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "customise/settings.h"

namespace brenlow {

struct DefaultKey {
  std::string_view action;
  int token;
  std::string_view label;
  std::string_view description;
};
// The configurable shortcuts in the order of keys.conf and of the help page.
extern const std::span<const DefaultKey> _DEFAULT_KEYMAP;

// Action name to key token, in the order of _DEFAULT_KEYMAP, then "_help_key" and "_action_key".
using KeyMap = std::vector<std::pair<std::string, int>>;

// "ESC", "CTRL_SPACE" or "F1" to "F19" in any letter case; nothing for other texts.
std::optional<int> _parse_help_action_key(std::string_view value, bool allow_esc = true);

// The token of Ctrl+Alt and a letter, given in upper case.
int ctrl_alt_letter_token(char letter);

// The token of a label such as "Ctrl+B", "Ctrl+Alt+K" or, for the labels of the default table only,
// "Ctrl Alt S". Letter case counts. Nothing if there is no such key.
std::optional<int> token_of_label(std::string_view label);
// How a token is shown to the user: the default table's label, else "Ctrl K", "Ctrl Alt K", "ESC", "F5",
// "Ctrl+Space"; empty if unknown.
std::string label_of_token(int token);

// The bindings in the text of a keys file; each line that makes no sense, and each key with two actions, gives
// a complaint.
KeyMap parse_keys(std::string_view text, std::ostream& complaints);
// The whole text of a keys file. `overrides`: action, "help_key" or "action_key" to the token that takes the
// place of the default; of two for one name the later counts.
std::string keys_file_text(const std::vector<std::pair<std::string, int>>& overrides);

// Reads keys.conf, writing or migrating it first where needed. Problems go to standard error. Never fails.
KeyMap _load_keymap(const ConfigFiles& files);
// Writes keys.conf. A failure goes to standard error.
void _write_default_keys_conf(const ConfigFiles& files, const std::vector<std::pair<std::string, int>>& overrides = {});

// The token of an action, or `fallback` when the map has none.
int key_of_action(const KeyMap& map, std::string_view action, int fallback);

}  // namespace brenlow
