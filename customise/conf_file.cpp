#include "customise/conf_file.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "core/failure.h"
#include "core/unicode.h"
#include "documents/file_access.h"

namespace brenlow {

std::vector<std::string_view> conf_lines(std::string_view text) {
  constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
  if (text.starts_with(BYTE_ORDER_MARK)) text.remove_prefix(BYTE_ORDER_MARK.size());
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    std::size_t end = text.find_first_of("\r\n");
    lines.push_back(trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) break;
    text.remove_prefix(text.substr(end).starts_with("\r\n") ? end + 2 : end + 1);
  }
  return lines;
}

std::optional<ConfEntry> split_conf_line(std::string_view line, int number) {
  std::size_t separator = line.find(':');
  if (separator == std::string_view::npos) separator = line.find('=');
  if (separator == std::string_view::npos) return std::nullopt;
  return ConfEntry{number, trimmed(line.substr(0, separator)), trimmed(line.substr(separator + 1))};
}

std::vector<ConfEntry> conf_entries(std::string_view text) {
  constexpr std::string_view SKIPPED = "#;[";
  std::vector<ConfEntry> entries;
  int number = 0;
  for (std::string_view line : conf_lines(text)) {
    ++number;
    if (line.empty() || SKIPPED.find(line.front()) != std::string_view::npos) continue;
    if (auto entry = split_conf_line(line, number)) entries.push_back(*entry);
  }
  return entries;
}

std::string_view strip_quote_marks(std::string_view text) {
  constexpr std::string_view MARKS = "\"'";
  std::size_t first = text.find_first_not_of(MARKS);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(MARKS) - first + 1);
}

std::string single_quoted(std::string_view text) {
  std::string out = "'";
  for (char32_t c : decode_utf8(text)) {
    if (c < 0x20 || (c >= 0x7F && c < 0xA0) || is_format_character(c)) {
      std::array<char, 12> escape{};
      const char* form = c < 0x100 ? "\\x%02x" : c < 0x10000 ? "\\u%04x" : "\\U%08x";
      std::snprintf(escape.data(), escape.size(), form, static_cast<unsigned>(c));
      out += escape.data();
      continue;
    }
    if (c == U'\\' || c == U'\'') out += '\\';
    append_utf8(out, c);
  }
  return out + "'";
}

std::string read_conf_file(const std::string& path) {
  std::string text = read_file(path, CONF_FILE_LIMIT);
  if (text.find('\0') != std::string::npos) throw Failure(path + ": not a text file");
  return text;
}

void write_conf_file(const std::string& folder, const std::string& path, std::string_view text) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw system_failure(folder, error.value());
  write_file(path, text, Durability::LATER);
}

bool path_exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace brenlow
