#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brenlow {

struct UnicodeRow {
  char32_t character;
  std::string_view code;  // four upper-case hexadecimal digits
  std::string_view name;  // English, ASCII
};
// Grouped by kind; five code points stand in two groups.
extern const std::span<const UnicodeRow> _UNICODE_TABLE;

// The rows whose name or code holds the trimmed filter in any letter case; of rows with one code the first.
// An empty filter gives every code once. Never fails.
std::vector<const UnicodeRow*> filter_unicode_table(std::u32string_view filter);
// What the header says about typing characters on this kind of terminal (a kind of terminal/detection.h).
std::string_view unicode_input_hint(std::string_view terminal_kind);
// "N characters", or "N match(es)" with a filter.
std::string unicode_count_text(std::size_t count, bool filtered);

}  // namespace brenlow
