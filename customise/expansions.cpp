#include "customise/expansions.h"

#include <exception>
#include <iostream>

#include "core/keys.h"
#include "core/unicode.h"
#include "customise/conf_file.h"
#include "customise/key_map.h"

namespace brenlow {

namespace {

constexpr std::string_view DEFAULT_EXPANSIONS_CONF =
    R"conf(# Brenlow text expansions - ~/.config/brenlow/expansions.conf
#
# Bind a keystroke SEQUENCE to a string of text that gets inserted at
# the cursor. Works exactly like the built-in ESC-letter commands
# (ESC G for kGrep, ESC S for Save As, ...): press expansion_key, release
# it, THEN press the letter/character - do not hold them down together.
#
# (A tap of either Alt key sends the same byte as Escape on virtually
# every terminal and on the Linux console, so if expansion_key is ESC,
# "press Alt, release, press the letter" works just as well as
# "press Escape, release, press the letter".)
#
[settings]
# Valid: ESC  F1-F19  CTRL_SPACE  (default: ESC)
expansion_key: ESC

# Priority: a expansion ALWAYS wins over a built-in ESC-command bound to
# the same letter (e.g. uncommenting the H expansion below means ESC H no
# longer toggles the bars - Ctrl+Alt+H still does).
#
# Lines below are examples - uncomment and edit, or add your own. But use upper case!
[expansions]
#A: "Alexandra"
#E: "Elizabeth"
#Q: "Quetzalcoatl"
#W: "Woolloomooloo"
#X: "Her Royal Highness Princess Arabella Seraphine of House Eryndor"
#,: "‘"
#.: "’"

)conf";

}  // namespace

std::optional<char32_t> _parse_expansion_char(std::string_view text) {
  auto characters = decode_utf8_strict(trimmed(text));
  if (!characters || characters->size() != 1) return std::nullopt;
  return characters->front();
}

std::string_view _strip_wrapping_quotes(std::string_view text) {
  const bool wrapped = text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
  return wrapped ? text.substr(1, text.size() - 2) : text;
}

Expansions parse_expansions(std::string_view text, std::ostream& complaints) {
  Expansions expansions;
  std::string_view key_text = "ESC";
  for (const ConfEntry& entry : conf_entries(text)) {
    if (entry.key == "expansion_key") {
      key_text = strip_quote_marks(entry.value);
      continue;
    }
    const std::string_view replacement = _strip_wrapping_quotes(entry.value);
    const auto character = _parse_expansion_char(entry.key);
    auto complain = [&](std::string_view what) {
      complaints << "brenlow: expansions.conf line " << entry.line << ": " << what << ' ' << single_quoted(entry.key)
                 << ", ignored\n";
    };
    if (!character) {
      complain("unrecognised shortcut");
    } else if (replacement.empty()) {
      complain("empty replacement text for");
    } else {
      expansions.texts[_KEY_EXPANSION_ALT_BASE + static_cast<int>(*character)] = decode_utf8(replacement);
    }
  }
  if (auto token = _parse_help_action_key(key_text)) {
    expansions.key = *token;
  } else {
    complaints << "brenlow: expansions.conf: unrecognised expansion_key " << single_quoted(key_text) << ", using ESC\n";
  }
  return expansions;
}

Expansions _load_expansions(const ConfigFiles& files) {
  if (!path_exists(files.EXPANSIONS_FILE)) {
    _write_default_expansions_conf(files);
    return {};
  }
  try {
    return parse_expansions(read_conf_file(files.EXPANSIONS_FILE), std::cerr);
  } catch (const std::exception& failure) {
    std::cerr << "brenlow: could not read expansions.conf: " << plain_print(failure.what()) << '\n';
  }
  return {};
}

void _write_default_expansions_conf(const ConfigFiles& files) {
  try {
    write_conf_file(files.CONFIG_DIR, files.EXPANSIONS_FILE, DEFAULT_EXPANSIONS_CONF);
  } catch (const std::exception& failure) {
    std::cerr << "brenlow: could not write expansions.conf: " << plain_print(failure.what()) << '\n';
  }
}

}  // namespace brenlow
