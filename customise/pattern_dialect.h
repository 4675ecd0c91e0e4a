#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brenlow {

// A regular expression in Python's dialect as PCRE2 (UTF and UCP modes) has to be given it; nothing for one
// that Python would not compile. What only PCRE2 can judge (lookbehinds, limits) is left to it.
//
// The result has a callout 0 behind quantifiers and the branches of groups and a callout 1 before each reference
// to a group. They match the empty text and let the caller count the steps of a search.
std::optional<std::u32string> pcre2_source(std::u32string_view python);

}  // namespace brenlow
