#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "customise/settings.h"

namespace brenlow {

inline constexpr std::size_t RECENT_FILES_MAX = 20;

// The list as a JSON array in one line of ASCII, and back. JSON holds Unicode text only, so bytes of a path
// that are not UTF-8 stand as the characters U+10FF80 to U+10FFFF, U+10FF00 plus the byte each.
std::string recent_files_json(const std::vector<std::string>& paths);
// Empty for a text that is no JSON array; entries that can be no path are left out.
std::vector<std::string> parse_recent_files(const std::string& json_text);

// The listed paths that still exist, most recent first; empty on any failure.
std::vector<std::string> load_recent_files(const ConfigFiles& files);
// Never fails.
void save_recent_files(const ConfigFiles& files, const std::vector<std::string>& paths);
// Moves the path, made absolute, to the front of the list. Never fails.
void add_recent_file(const ConfigFiles& files, const std::string& path);

}  // namespace brenlow
