#include "customise/recent_files.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "core/unicode.h"
#include "customise/conf_file.h"

namespace brenlow {

namespace {

constexpr char32_t BYTE_BASE = 0x10FF00;
constexpr char32_t FIRST_BYTE_CHARACTER = BYTE_BASE + 0x80;

// The bytes of the character at the start of `bytes`; 0 where there is none, and for the characters that
// stand for single bytes, so that every path has one spelling and comes back from it.
std::size_t plain_character_size(std::string_view bytes) {
  for (std::size_t size = 1; size <= std::min<std::size_t>(4, bytes.size()); ++size) {
    auto decoded = decode_utf8_strict(bytes.substr(0, size));
    if (decoded) return decoded->front() < FIRST_BYTE_CHARACTER ? size : 0;
  }
  return 0;
}

std::string text_of_path(std::string_view path) {
  std::string text;
  while (!path.empty()) {
    std::size_t size = plain_character_size(path);
    if (size == 0) {
      append_utf8(text, BYTE_BASE + static_cast<unsigned char>(path.front()));
      size = 1;
    } else {
      text += path.substr(0, size);
    }
    path.remove_prefix(size);
  }
  return text;
}

std::string path_of_text(std::string_view text) {
  std::string path;
  for (char32_t c : decode_utf8(text)) {
    if (c >= FIRST_BYTE_CHARACTER) {
      path += static_cast<char>(c - BYTE_BASE);
    } else {
      append_utf8(path, c);
    }
  }
  return path;
}

// Links are not followed: what counts is the path as it is written.
std::string absolute_form(const std::string& path) {
  std::error_code error;
  std::filesystem::path folder = std::filesystem::current_path(error);
  std::string absolute = (folder / path).lexically_normal().string();
  if (absolute.size() > 1 && absolute.ends_with('/')) absolute.pop_back();
  return absolute;
}

}  // namespace

std::string recent_files_json(const std::vector<std::string>& paths) {
  nlohmann::json list = nlohmann::json::array();
  for (const std::string& path : paths) list.push_back(text_of_path(path));
  constexpr int ONE_LINE = -1;
  constexpr bool ESCAPE_NON_ASCII = true;
  return list.dump(ONE_LINE, ' ', ESCAPE_NON_ASCII);
}

std::vector<std::string> parse_recent_files(const std::string& json_text) {
  constexpr bool THROW_ON_ERROR = false;
  const nlohmann::json list = nlohmann::json::parse(json_text, nullptr, THROW_ON_ERROR);
  std::vector<std::string> paths;
  if (!list.is_array()) return paths;
  for (const nlohmann::json& entry : list) {
    if (!entry.is_string()) continue;
    std::string path = path_of_text(entry.get_ref<const std::string&>());
    if (!path.empty() && path.find('\0') == std::string::npos) paths.push_back(std::move(path));
  }
  return paths;
}

std::vector<std::string> load_recent_files(const ConfigFiles& files) {
  try {
    std::vector<std::string> paths = parse_recent_files(read_conf_file(files.RECENT_FILES_FILE));
    std::erase_if(paths, [](const std::string& path) { return !path_exists(path); });
    return paths;
  } catch (const std::exception&) {
    return {};
  }
}

void save_recent_files(const ConfigFiles& files, const std::vector<std::string>& paths) {
  try {
    write_conf_file(files.CONFIG_DIR, files.RECENT_FILES_FILE, recent_files_json(paths));
  } catch (const std::exception&) {
    // The list is a comfort: nothing is lost with it.
  }
}

void add_recent_file(const ConfigFiles& files, const std::string& path) {
  const std::string absolute = absolute_form(path);
  std::vector<std::string> paths = load_recent_files(files);
  std::erase_if(paths, [&](const std::string& listed) { return absolute_form(listed) == absolute; });
  paths.insert(paths.begin(), absolute);
  paths.resize(std::min(paths.size(), RECENT_FILES_MAX));
  save_recent_files(files, paths);
}

}  // namespace brenlow
