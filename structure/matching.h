#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/spans.h"
#include "core/text.h"

namespace brenlow {

// A text to search for, prepared once for many lines. Positions and lengths are in characters; the case of
// letters is compared as `lower` of core/unicode.h maps it. An empty needle is found nowhere.
class Needle {
 public:
  Needle(std::u32string_view term, bool case_insensitive);

  // The first occurrence that begins at or after `from` (below 0 counts as 0); -1 if there is none.
  int find(std::u32string_view text, int from) const;
  // The last occurrence that lies within the first `before` characters; -1 if there is none.
  int rfind(std::u32string_view text, int before) const;
  bool in(std::u32string_view text) const { return find(text, 0) >= 0; }
  // How many occurrences there are from left to right that do not overlap.
  int count(std::u32string_view text) const;
  int length() const { return static_cast<int>(_term.size()); }

 private:
  // The characters that may stand for one of the term; unused places repeat the first.
  using Variants = std::array<char32_t, 3>;
  bool _choose_variants(char32_t character, Variants& variants) const;
  bool _block_has_candidate(const char32_t* block) const;
  bool _matches(const char32_t* at) const;

  std::u32string _term;  // lower-cased if case does not count
  // A place is looked at more closely where both the first and the last character of the term fit.
  Variants _first{};
  Variants _last{};
  bool _scannable = false;  // `_first` and `_last` hold all variants
  bool _case_insensitive;
};

struct ReplacedLine {
  Text line;
  SpanList spans;
  int count = 0;  // of replacements
};

// Every occurrence of the needle, from left to right, gives way to `replacement`, which is plain. The text
// around it keeps its format.
ReplacedLine replace_all(const Text& line, const SpanList& spans, const Needle& needle,
                         std::u32string_view replacement);

}  // namespace brenlow
