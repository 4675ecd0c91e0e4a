#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brenlow {

// No configuration file is read beyond this many bytes.
inline constexpr std::size_t CONF_FILE_LIMIT = 4 << 20;

// A "key: value" line. The views point into the text that was split.
struct ConfEntry {
  int line;  // counted from 1
  std::string_view key;
  std::string_view value;
};

// The lines of a configuration file, blanks at both ends removed. A byte order mark is dropped; a line ends
// with LF, CR LF or CR.
std::vector<std::string_view> conf_lines(std::string_view text);

// Splits a stripped line at its first ":", else at its first "=", and strips both sides; nothing without either.
// `number` becomes the entry's line.
std::optional<ConfEntry> split_conf_line(std::string_view line, int number);

// The entries of a file in which comments begin with "#" or ";" and section headers in "[" are decoration.
std::vector<ConfEntry> conf_entries(std::string_view text);

// The text without any " and ' at its ends.
std::string_view strip_quote_marks(std::string_view text);

// The text in single quotes as complaints show it; what would act on a terminal is written as an escape.
std::string single_quoted(std::string_view text);

// The text of a configuration file. Throws Failure, also for a file with NUL bytes, which is no text.
std::string read_conf_file(const std::string& path);

// Creates the folder if needed and writes the file. Throws Failure.
void write_conf_file(const std::string& folder, const std::string& path, std::string_view text);

// False also where the answer cannot be had.
bool path_exists(const std::string& path);

}  // namespace brenlow
