#include "customise/settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "core/failure.h"
#include "core/unicode.h"
#include "customise/conf_file.h"
#include "customise/settings_table.h"

namespace brenlow {

namespace {

struct Integer {
  long long value;  // the nearest limit when the number does not fit
  bool fits;
};

std::optional<Integer> read_integer(std::string_view text) {
  text = trimmed(text);
  std::string_view digits = text;
  if (digits.starts_with('+') || digits.starts_with('-')) digits.remove_prefix(1);
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  if (text.front() == '+') text = digits;
  long long value = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc{}) return Integer{value, true};
  using Limits = std::numeric_limits<long long>;
  return Integer{text.front() == '-' ? Limits::min() : Limits::max(), false};
}

std::string value_text(const Setting& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return *truth ? "yes" : "no";
  if (const long long* number = std::get_if<long long>(&value)) return std::to_string(*number);
  std::string text = std::get<std::string>(value);
  // A setting is one line of the file, whatever an earlier version or a font's name held.
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
  return text;
}

// Whether a "key: value" line with this key would be read back under the same key.
bool survives_a_line(std::string_view key) {
  constexpr std::string_view BREAKING{":\n\r\0", 4};
  return !key.empty() && key == trimmed(key) && key.find_first_of(BREAKING) == std::string_view::npos &&
         std::string_view("#;[").find(key.front()) == std::string_view::npos;
}

const SettingRow* row_of(std::string_view key) {
  auto row = std::ranges::find(SETTING_ROWS, key, &SettingRow::key);
  return row == SETTING_ROWS.end() ? nullptr : &*row;
}

const Setting& fresh_setting(std::string_view key) {
  return std::ranges::find(fresh_settings(), key, &std::pair<std::string_view, Setting>::first)->second;
}

std::string commented(std::string_view comment) {
  std::string out = "# ";
  for (char c : comment) {
    out += c;
    if (c == '\n') out += "# ";
  }
  return out + '\n';
}

// Objects, lists and nothing at all have no place in a flat settings file.
std::optional<Setting> setting_of_json(const nlohmann::json& value) {
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_number()) return std::nullopt;
  std::string digits = value.dump();
  return _parse_conf_value(digits);
}

// Throws for a text that is no JSON object.
SettingsMap settings_of_json(const std::string& text) {
  using nlohmann::json;
  SettingsMap settings;
  std::string key;
  // The entries are taken while they are parsed, since the parsed object does not keep their order.
  auto collect = [&](int depth, json::parse_event_t event, json& parsed) {
    if (depth != 1) return true;
    if (event == json::parse_event_t::key) key = parsed.get<std::string>();
    if (event != json::parse_event_t::value || !survives_a_line(key)) return true;
    if (auto setting = setting_of_json(parsed)) settings.set(key, *std::move(setting));
    return true;
  };
  if (!json::parse(text, collect).is_object()) throw Failure("the old settings are no JSON object");
  return settings;
}

void migrate_old_settings(const ConfigFiles& files) {
  if (path_exists(files.CONFIG_FILE) || !path_exists(files.CONFIG_FILE_OLD)) return;
  try {
    save_config(files, settings_of_json(read_conf_file(files.CONFIG_FILE_OLD)));
    std::filesystem::remove(files.CONFIG_FILE_OLD);
  } catch (const std::exception&) {
    // The old file stays for a later start.
  }
}

std::string lowered_text(const Setting& value) { return lowered_ascii(trimmed(value_text(value))); }

}  // namespace

ConfigFiles config_files(const std::string& home) {
  const std::filesystem::path folder = std::filesystem::path(home) / ".config" / "brenlow";
  auto file = [&](const char* name) { return (folder / name).string(); };
  return {.CONFIG_DIR = folder.string(),
          .CONFIG_FILE = file("brenlow.conf"),
          .CONFIG_FILE_OLD = file("config"),
          .KEYS_FILE = file("keys.conf"),
          .KEYS_FILE_OLD = file("keys.toml"),
          .EXPANSIONS_FILE = file("expansions.conf"),
          .RECENT_FILES_FILE = file("recent_files.json")};
}

const Setting* SettingsMap::find(std::string_view key) const {
  auto place = _places.find(key);
  return place == _places.end() ? nullptr : &_entries[place->second].second;
}

void SettingsMap::set(std::string_view key, Setting value) {
  auto [place, is_new] = _places.try_emplace(std::string(key), _entries.size());
  if (is_new) {
    _entries.emplace_back(key, std::move(value));
  } else {
    _entries[place->second].second = std::move(value);
  }
}

bool SettingsMap::add_missing(std::string_view key, Setting value) {
  if (find(key)) return false;
  set(key, std::move(value));
  return true;
}

Setting _parse_conf_value(std::string_view text) {
  const std::string lower_case = lowered_ascii(text);
  if (lower_case == "true" || lower_case == "yes") return true;
  if (lower_case == "false" || lower_case == "no") return false;
  if (auto integer = read_integer(text); integer && integer->fits) return integer->value;
  return std::string(text);
}

SettingsMap parse_settings(std::string_view text) {
  SettingsMap settings;
  for (const ConfEntry& entry : conf_entries(text)) settings.set(entry.key, _parse_conf_value(entry.value));
  return settings;
}

std::string settings_file_text(const SettingsMap& cfg) {
  std::string text =
      "# Brenlow configuration — ~/.config/brenlow/brenlow.conf\n"
      "# Edit freely and restart Brenlow to apply changes.\n"
      "# Format:  key: value   ('#' and ';' start comment lines)\n"
      "\n";
  auto write_value = [&](std::string_view key, const Setting& value) {
    text.append(key).append(": ").append(value_text(value)).append("\n");
  };
  std::string_view section;
  for (const SettingRow& row : SETTING_ROWS) {
    if (row.section != section) {
      if (!section.empty()) text += '\n';
      section = row.section;
      text.append("[").append(section).append("]\n");
    }
    text += commented(row.comment);
    const Setting* value = cfg.find(row.key);
    write_value(row.key, value ? *value : fresh_setting(row.key));
    text += '\n';
  }
  text += '\n';

  bool has_extras = false;
  for (const auto& [key, value] : cfg.entries()) {
    if (row_of(key)) continue;
    if (!has_extras) text += "[runtime]\n# Values written automatically by Brenlow — do not edit by hand.\n";
    has_extras = true;
    write_value(key, value);
  }
  if (has_extras) text += '\n';
  text.pop_back();  // the lines are joined by LF, none stands behind the last
  return text;
}

SettingsMap load_config(const ConfigFiles& files) {
  migrate_old_settings(files);
  try {
    if (path_exists(files.CONFIG_FILE)) return parse_settings(read_conf_file(files.CONFIG_FILE));
  } catch (const std::exception&) {
    // Unreadable settings are no settings.
  }
  return {};
}

void save_config(const ConfigFiles& files, const SettingsMap& cfg) {
  write_conf_file(files.CONFIG_DIR, files.CONFIG_FILE, settings_file_text(cfg));
}

void persist_setting(const ConfigFiles& files, std::string_view key, const Setting& value) {
  try {
    SettingsMap cfg = load_config(files);
    cfg.set(key, value);
    save_config(files, cfg);
  } catch (const std::exception&) {
    // The setting then lasts for this session only.
  }
}

bool complete_config(SettingsMap& cfg) {
  bool added = false;
  for (const auto& [key, value] : fresh_settings())
    if (cfg.add_missing(key, value)) added = true;
  return added;
}

std::string setting_text(const SettingsMap& cfg, std::string_view key, std::string_view fallback) {
  const Setting* value = cfg.find(key);
  return value ? lowered_text(*value) : std::string(fallback);
}

long long setting_integer(const SettingsMap& cfg, std::string_view key, long long fallback) {
  const Setting* value = cfg.find(key);
  if (!value) return fallback;
  if (const bool* truth = std::get_if<bool>(value)) return *truth ? 1 : 0;
  if (const long long* number = std::get_if<long long>(value)) return *number;
  auto integer = read_integer(std::get<std::string>(*value));
  return integer ? integer->value : fallback;
}

bool setting_truth(const SettingsMap& cfg, std::string_view key, bool fallback) {
  const Setting* value = cfg.find(key);
  if (!value) return fallback;
  if (const std::string* text = std::get_if<std::string>(value)) return !text->empty();
  return setting_integer(cfg, key, 0) != 0;
}

bool setting_is_yes(const SettingsMap& cfg, std::string_view key, bool fallback) {
  const Setting* value = cfg.find(key);
  return value ? lowered_text(*value) == "yes" : fallback;
}

bool setting_is_not_no(const SettingsMap& cfg, std::string_view key, bool fallback) {
  const Setting* value = cfg.find(key);
  if (!value) return fallback;
  const std::string text = lowered_text(*value);
  return text != "no" && text != "false";
}

int setting_margin(const SettingsMap& cfg, std::string_view key) {
  return static_cast<int>(std::clamp(setting_integer(cfg, key, 0), 0LL, 100LL));
}

std::string setting_extension(const SettingsMap& cfg) {
  constexpr std::array<std::string_view, 4> KNOWN = {"odt", "txt", "md", "fountain"};
  std::string extension = setting_text(cfg, "default_extension", KNOWN[0]);
  extension.erase(0, extension.find_first_not_of('.'));
  return std::ranges::find(KNOWN, extension) == KNOWN.end() ? std::string(KNOWN[0]) : extension;
}

int setting_cursor_shape(const SettingsMap& cfg) {
  const std::string shape = setting_text(cfg, "cursor_type", "block");
  const int blinking = shape == "underline" ? 3 : shape == "bar" ? 5 : 1;
  return setting_truth(cfg, "cursor_blink", true) ? blinking : blinking + 1;
}

}  // namespace brenlow
