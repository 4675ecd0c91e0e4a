#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace brenlow {

// Where the configuration lives. Computed once at start from the home folder.
struct ConfigFiles {
  std::string CONFIG_DIR;         // HOME/.config/brenlow
  std::string CONFIG_FILE;        // brenlow.conf
  std::string CONFIG_FILE_OLD;    // config: JSON of earlier versions
  std::string KEYS_FILE;          // keys.conf
  std::string KEYS_FILE_OLD;      // keys.toml of earlier versions
  std::string EXPANSIONS_FILE;    // expansions.conf
  std::string RECENT_FILES_FILE;  // recent_files.json
};
ConfigFiles config_files(const std::string& home);

using Setting = std::variant<bool, long long, std::string>;

// The settings as a flat map that keeps the order of insertion.
class SettingsMap {
 public:
  const Setting* find(std::string_view key) const;        // null when missing
  void set(std::string_view key, Setting value);          // in place when known, else at the end
  bool add_missing(std::string_view key, Setting value);  // true when it was missing
  const std::vector<std::pair<std::string, Setting>>& entries() const { return _entries; }

 private:
  std::vector<std::pair<std::string, Setting>> _entries;
  std::map<std::string, std::size_t, std::less<>> _places;  // key to index in _entries
};

// "true" and "yes", "false" and "no" in any letter case; a decimal integer; else the text as given.
Setting _parse_conf_value(std::string_view text);

// The settings in the text of a settings file; lines that make no sense are skipped.
SettingsMap parse_settings(std::string_view text);
// The whole text of a settings file with all its comments. Keys that the program does not know are kept in a
// section of their own.
std::string settings_file_text(const SettingsMap& cfg);

// The settings of CONFIG_FILE; a JSON file of an earlier version is converted first. Never fails.
SettingsMap load_config(const ConfigFiles& files);

// Rewrites CONFIG_FILE with all its comments. Throws Failure.
void save_config(const ConfigFiles& files, const SettingsMap& cfg);

// Load, change one key, save; a failure is swallowed.
void persist_setting(const ConfigFiles& files, std::string_view key, const Setting& value);

// Adds each setting that a fresh file has and `cfg` lacks; true when one was missing.
bool complete_config(SettingsMap& cfg);

// How the program reads single values; a missing key takes the default. An integer may also be written as a
// text or a boolean (1 and 0); what is none gives the fallback.
std::string setting_text(const SettingsMap& cfg, std::string_view key,
                         std::string_view fallback);  // trimmed, lower case
long long setting_integer(const SettingsMap& cfg, std::string_view key, long long fallback);
bool setting_truth(const SettingsMap& cfg, std::string_view key, bool fallback);
bool setting_is_yes(const SettingsMap& cfg, std::string_view key, bool fallback);     // a text counts only as "yes"
bool setting_is_not_no(const SettingsMap& cfg, std::string_view key, bool fallback);  // all texts but "no", "false"
int setting_margin(const SettingsMap& cfg, std::string_view key);                     // 0 to 100
std::string setting_extension(const SettingsMap& cfg);                                // one of the four, no dot
// The DECSCUSR parameter of the shape and blinking, 1 to 6.
int setting_cursor_shape(const SettingsMap& cfg);

}  // namespace brenlow
