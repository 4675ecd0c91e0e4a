#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

#include "core/spans.h"
#include "core/text.h"

namespace brenlow {

// A text to search for, prepared once for many lines. Positions and lengths are in characters; the case of
// letters is compared as `lower` of core/unicode.h maps it. An empty needle is found nowhere.
class Needle {
 public:
  Needle(std::u32string_view term, bool case_insensitive);

  // The first occurrence that begins at or after `from` (below 0 counts as 0); -1 if there is none.
  int find(TextView text, int from) const;
  // The last occurrence that lies within the first `before` characters; -1 if there is none.
  int rfind(TextView text, int before) const;
  // How many occurrences there are from left to right that do not overlap.
  int count(TextView text) const;
  bool in(TextView text) const { return find(text, 0) >= 0; }
  int length() const { return static_cast<int>(_term.size()); }

 private:
  // What is scanned for in a text of one width, as raw numbers: a place is looked at more closely where both
  // the first and the last character of the term fit. Unused places repeat one that is used.
  template <class Number>
  struct Scan {
    using Variants = std::array<Number, sizeof(Number) == 1 ? 2 : 3>;
    Variants first{};
    Variants last{};
    bool possible = false;   // a text of this width can hold the term
    bool scannable = false;  // `first` and `last` hold all variants
    bool prepared = false;
  };
  template <class Character>
  using Raw = decltype(raw(Character{}));
  template <class Character>
  Scan<Raw<Character>> _prepared() const;
  template <class Character>
  const Scan<Raw<Character>>& _scan() const;
  template <class Character>
  bool _block_has_candidate(const Character* block, const Scan<Raw<Character>>& scan) const;
  template <class Character>
  bool _matches(const Character* at, const Scan<Raw<Character>>& scan) const;
  template <class Character>
  int _find(std::span<const Character> text, int from) const;
  template <class Character>
  int _rfind(std::span<const Character> text, int before) const;

  std::u32string _term;  // lower-cased if case does not count
  bool _case_insensitive;
  mutable std::tuple<Scan<unsigned char>, Scan<char16_t>, Scan<char32_t>> _scans;  // each made when first needed
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
