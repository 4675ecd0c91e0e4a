#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brenlow {

// One row of the file browser. Names are the bytes of the file system, whatever they are.
struct BrowserEntry {
  std::string name;
  bool is_directory = false;
  std::string size;    // empty for a folder
  std::string detail;  // modification time, hit count, or the folder of a recent file
};

// Whether the program edits files of this name.
bool is_document_name(std::string_view name);

// "512B", "1.5K", "2.0M" ...
std::string size_text(std::uintmax_t bytes);

// The folders and documents of a directory, folders first, by lower-cased name, behind a ".." unless it is
// the root. A folder that cannot be read lists as empty.
std::vector<BrowserEntry> list_directory(const std::string& directory, bool hide_dotfiles);

// The documents directly in the directory that hold the term in any letter case, those with most hits first.
std::vector<BrowserEntry> search_contents(const std::string& directory, std::u32string_view term, bool hide_dotfiles);

// Recent files: base name and folder of each path.
std::vector<BrowserEntry> recent_entries(const std::vector<std::string>& paths);

std::string parent_directory(const std::string& directory);  // of the root: the root
std::string joined_path(const std::string& directory, const std::string& name);

// The row text without its marker: name column, size, detail. `width` is that of the screen.
std::u32string browser_row(const BrowserEntry& entry, int width);

}  // namespace brenlow
