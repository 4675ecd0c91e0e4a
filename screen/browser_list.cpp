#include "screen/browser_list.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <tuple>

#include "core/local_time.h"
#include "core/unicode.h"
#include "documents/file_access.h"
#include "documents/plain_text.h"
#include "documents/zip_package.h"
#include "structure/matching.h"

namespace brenlow {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t LARGEST_SEARCHED_FILE = 256U << 20;
constexpr int SIZE_COLUMN = 7;
constexpr int DATE_COLUMN = 16;

struct Named {
  std::u32string key;  // lower-cased, for sorting
  std::string name;
  bool is_directory;
};

// The names of a directory that the browser shows, sorted. Unreadable directories have none.
std::vector<Named> shown_names(const std::string& directory, bool hide_dotfiles) {
  std::vector<Named> names;
  std::error_code error;
  for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
    std::string name = it->path().filename().string();
    if (hide_dotfiles && name.starts_with('.')) continue;
    std::error_code ignored;
    bool is_directory = it->is_directory(ignored);
    if (!is_directory && !is_document_name(name)) continue;
    std::u32string key = lowered(decode_utf8(name));
    names.push_back({std::move(key), std::move(name), is_directory});
  }
  std::sort(names.begin(), names.end(), [](const Named& a, const Named& b) {
    return std::tie(b.is_directory, a.key, a.name) < std::tie(a.is_directory, b.key, b.name);
  });
  return names;
}

// The text of an XML member: every tag is one blank.
std::u32string text_without_tags(std::u32string_view xml) {
  std::u32string text;
  std::size_t last_end = xml.rfind(U'>');
  for (std::size_t at = 0; at < xml.size();) {
    bool in_tag = xml[at] == U'<' && last_end != std::u32string_view::npos && at + 1 < last_end && xml[at + 1] != U'>';
    text.push_back(in_tag ? U' ' : xml[at]);
    at = (in_tag ? xml.find(U'>', at) : at) + 1;
  }
  return text;
}

std::u32string searchable_text(const std::string& path) {
  if (path_extension(path) == ".odt") return text_without_tags(decode_utf8(read_package_member(path, "content.xml")));
  return decode_utf8(read_file(path, LARGEST_SEARCHED_FILE));
}

std::u32string right_aligned(const std::string& text, int width) {
  std::u32string decoded = decode_utf8(text);
  auto total = static_cast<std::size_t>(width);
  return decoded.size() < total ? std::u32string(total - decoded.size(), U' ') + decoded : decoded;
}

}  // namespace

bool is_document_name(std::string_view name) {
  std::string low = lowered_ascii(name);
  return low.ends_with(".odt") || low.ends_with(".txt") || low.ends_with(".md") || low.ends_with(".fountain");
}

std::string size_text(std::uintmax_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + "B";
  double size = static_cast<double>(bytes);
  char unit = 'B';
  for (char next : {'K', 'M', 'G', 'T'}) {
    size /= 1024;
    unit = next;
    if (size < 1024) break;
  }
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%.1f%c", size, unit);
  return text.data();
}

std::vector<BrowserEntry> list_directory(const std::string& directory, bool hide_dotfiles) {
  std::vector<BrowserEntry> entries;
  if (parent_directory(directory) != directory) entries.push_back({"..", true, {}, {}});
  for (Named& named : shown_names(directory, hide_dotfiles)) {
    BrowserEntry entry{named.name, named.is_directory, {}, {}};
    struct stat status {};
    if (::stat(joined_path(directory, named.name).c_str(), &status) == 0) {
      if (!named.is_directory) entry.size = size_text(static_cast<std::uintmax_t>(status.st_size));
      entry.detail = local_time("%Y-%m-%d %H:%M", status.st_mtime);
    }
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::vector<BrowserEntry> search_contents(const std::string& directory, std::u32string_view term, bool hide_dotfiles) {
  Needle needle(term, true);
  std::vector<std::pair<int, BrowserEntry>> hits;
  for (const Named& named : shown_names(directory, hide_dotfiles)) {
    if (named.is_directory) continue;
    try {
      int count = needle.count(searchable_text(joined_path(directory, named.name)));
      std::string detail = "(" + std::to_string(count) + " hit" + (count == 1 ? "" : "s") + ")";
      if (count > 0) hits.push_back({count, {named.name, false, {}, std::move(detail)}});
    } catch (const std::exception&) {
      // A file that cannot be read has no hits.
    }
  }
  std::stable_sort(hits.begin(), hits.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  std::vector<BrowserEntry> entries;
  for (auto& [count, entry] : hits) entries.push_back(std::move(entry));
  return entries;
}

std::vector<BrowserEntry> recent_entries(const std::vector<std::string>& paths) {
  std::vector<BrowserEntry> entries;
  for (const std::string& path : paths) entries.push_back({path_base_name(path), false, {}, parent_directory(path)});
  return entries;
}

std::string parent_directory(const std::string& directory) { return fs::path(directory).parent_path().string(); }

std::string joined_path(const std::string& directory, const std::string& name) {
  return (fs::path(directory) / name).string();
}

std::u32string browser_row(const BrowserEntry& entry, int width) {
  auto column = static_cast<std::size_t>(std::max(width - SIZE_COLUMN - DATE_COLUMN - 7, 10));
  std::u32string row = decode_utf8(entry.name) + (entry.is_directory ? U"/" : U"");
  if (row.size() > column) row.replace(column - 1, std::u32string::npos, U"…");
  row.resize(column, U' ');
  return row + U"  " + right_aligned(entry.size, SIZE_COLUMN) + U"  " + decode_utf8(entry.detail);
}

}  // namespace brenlow
