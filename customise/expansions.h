#pragma once

#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "customise/settings.h"

namespace brenlow {

struct Expansions {
  std::map<int, std::u32string> texts;  // _KEY_EXPANSION_ALT_BASE + character code to replacement
  int key = 27;                         // token of expansion_key
};

// The one character that is left when blanks at the ends are taken off.
std::optional<char32_t> _parse_expansion_char(std::string_view text);
// Takes off one pair of equal quotation marks.
std::string_view _strip_wrapping_quotes(std::string_view text);
// The expansions in the text of an expansions file; each line that makes no sense gives a complaint.
Expansions parse_expansions(std::string_view text, std::ostream& complaints);
// Reads expansions.conf, writing it first where missing. Problems go to standard error. Never fails.
Expansions _load_expansions(const ConfigFiles& files);
// A failure goes to standard error.
void _write_default_expansions_conf(const ConfigFiles& files);

}  // namespace brenlow
