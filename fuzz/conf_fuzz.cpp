// The first byte chooses the parser; the others are its file.

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "customise/escape_map.h"
#include "customise/expansions.h"
#include "customise/key_map.h"
#include "customise/recent_files.h"
#include "customise/settings.h"

namespace {

using namespace brenlow;

void require(bool holds) {
  if (!holds) std::abort();
}

void check_settings(std::string text) {
  std::erase(text, '\0');  // files with NUL bytes are not parsed
  const SettingsMap settings = parse_settings(text);
  const std::string written = settings_file_text(settings);
  const SettingsMap again = parse_settings(written);
  for (const auto& [key, value] : settings.entries()) {
    const Setting* kept = again.find(key);
    require(kept && *kept == value);
  }
  require(settings_file_text(again) == written);
}

void check_keys(const std::string& text) {
  std::ostringstream complaints;
  KeyMap map = parse_keys(text, complaints);
  for (auto& [action, token] : map)
    if (action.starts_with('_')) action.erase(0, 1);
  std::ostringstream written_complaints;
  KeyMap again = parse_keys(keys_file_text(map), written_complaints);
  require(written_complaints.str().find(" line ") == std::string::npos);
  for (const auto& [action, token] : map) {
    const bool special = action == "help_key" || action == "action_key";
    require(key_of_action(again, special ? "_" + action : action, -1) == token);
  }
}

void check_escapes(const std::string& text) {
  EscapeMap map = default_escape_map();
  _patch_esc_map_from_terminfo(map, _parse_terminfo_sequences(text));
  is_escape_prefix(map, text);
  if (const auto key = plain_kitty_key(text)) require(*key >= 32 && *key <= 126);
  if (const auto key = ctrl_alt_letter(text)) require(!label_of_token(*key).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(data + 1, data + size);
  switch (data[0] % 5) {
    case 0:
      check_settings(text);
      break;
    case 1:
      check_keys(text);
      break;
    case 2: {
      std::ostringstream complaints;
      parse_expansions(text, complaints);
      break;
    }
    case 3: {
      const auto paths = parse_recent_files(text);
      require(parse_recent_files(recent_files_json(paths)) == paths);
      require(parse_recent_files(recent_files_json({text})) ==
              (text.empty() || text.find('\0') != std::string::npos ? decltype(paths){} : decltype(paths){text}));
      break;
    }
    default:
      check_escapes(text);
  }
  return 0;
}
