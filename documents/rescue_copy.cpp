#include "documents/rescue_copy.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "core/failure.h"
#include "core/local_time.h"
#include "core/unicode.h"
#include "documents/file_access.h"
#include "documents/odt_writer.h"
#include "documents/plain_text.h"

namespace brenlow {

namespace {

namespace fs = std::filesystem;

// Bytes of a name that common file systems take: 255, less the 40 that are added.
constexpr std::size_t LONGEST_STEM = 215;
constexpr int MOST_COPIES_A_SECOND = 1000;

struct Composed {
  std::string bytes;
  std::string extension;
};

Composed composed(const RescueDocument& document, const std::optional<std::string>& path,
                  const std::string& default_extension) {
  bool formatted =
      !document.pagebreak_lines.empty() || std::any_of(document.fmt_lines.begin(), document.fmt_lines.end(),
                                                       [](const auto& spans) { return !spans.empty(); });
  std::string extension = saved_extension(path.value_or(""), default_extension);
  if (extension != ".odt" && !formatted) return {txt_bytes(document.lines), extension};
  for (const auto& source : {path, std::optional<std::string>()}) {
    try {
      return {odt_bytes(document.lines, source, document.fmt_lines, document.pagebreak_lines), ".odt"};
    } catch (const std::exception&) {
      // What takes less is tried next.
    }
  }
  return {txt_bytes(document.lines), ".txt"};
}

// The name of a copy, but for a number and the extension.
std::string copy_stem(const std::optional<std::string>& path, const std::string& extension) {
  std::string name = path ? path_base_name(*path) : "unnamed";
  if (path_extension(name) == extension) name.resize(name.size() - extension.size());
  if (name.size() > LONGEST_STEM) {
    std::size_t end = LONGEST_STEM;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;  // within a character
    name.resize(end);
  }
  return name + local_time(" rescued %Y-%m-%d %H%M%S");
}

// As readable for others as the document's own file.
unsigned mode_of_copy(const std::optional<std::string>& path) {
  struct stat status;
  bool found = path && ::stat(path->c_str(), &status) == 0 && S_ISREG(status.st_mode);
  return found ? (status.st_mode & 0777U) | 0600U : 0666U;
}

std::vector<std::string> folders_to_try(const std::optional<std::string>& path, const std::string& home) {
  std::error_code ignored;
  fs::path working = fs::current_path(ignored);
  std::vector<std::string> folders;
  if (path) folders.push_back((working / *path).parent_path().string());
  folders.push_back(working.string());
  folders.push_back(home);
  std::erase(folders, "");
  return folders;
}

std::string written_into(const std::string& folder, const std::string& stem, const Composed& copy, unsigned mode) {
  for (int number = 1; number <= MOST_COPIES_A_SECOND; ++number) {
    std::string name = number == 1 ? stem : stem + " " + std::to_string(number);
    std::string target = (fs::path(folder) / (name + copy.extension)).string();
    if (write_new_file(target, copy.bytes, mode)) return target;
  }
  throw Failure("too many rescue copies");
}

}  // namespace

std::string write_rescue_copy(const RescueDocument& document, const std::optional<std::string>& path,
                              const std::string& default_extension, const std::string& home) {
  const Composed copy = composed(document, path, default_extension);
  const std::string stem = copy_stem(path, copy.extension);
  std::string reasons;
  for (const std::string& folder : folders_to_try(path, home)) {
    try {
      return written_into(folder, stem, copy, mode_of_copy(path));
    } catch (const Failure& failure) {
      reasons += (reasons.empty() ? "" : "; ") + folder + ": " + failure.what();
    }
  }
  throw Failure(reasons);
}

}  // namespace brenlow
