#include "structure/matching.h"

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/unicode.h"

namespace brenlow {

namespace {

// Places that are looked at in one go; the loops over them have fixed bounds so that the compiler can use
// wide registers.
constexpr std::size_t BLOCK = 32;

// No script beyond has letter case.
constexpr char32_t CASED_END = 0x1F000;

// The characters that `lower` changes, as (lower case, the character), sorted. Other alphabets than Latin
// follow the locale, so the table holds for the locale it was made in.
const std::vector<std::pair<char32_t, char32_t>>& case_partners() {
  static std::string locale;
  static std::vector<std::pair<char32_t, char32_t>> partners;
  const char* now = std::setlocale(LC_CTYPE, nullptr);
  if (partners.empty() || locale != now) {
    locale = now;
    partners.clear();
    for (char32_t c = 0; c < CASED_END; ++c)
      if (char32_t small = lower(c); small != c) partners.emplace_back(small, c);
    std::sort(partners.begin(), partners.end());
  }
  return partners;
}

// As a number: the block's comparisons are joined without a branch.
template <class Number, std::size_t SIZE>
Number is_one_of(Number number, const std::array<Number, SIZE>& variants) {
  Number any = 0;
  for (Number variant : variants) any = static_cast<Number>(any | (number == variant ? 1 : 0));
  return any;
}

// The characters that may stand for one of the term and that a text of this width can hold.
template <class Character>
auto variants_of(char32_t character, bool case_insensitive) {
  using Number = decltype(raw(Character{}));
  std::vector<Number> variants;
  if constexpr (std::is_same_v<Character, NarrowCharacter>) {
    for (unsigned byte = 0; byte <= 0xFF; ++byte) {
      char32_t variant = NarrowCharacter{static_cast<unsigned char>(byte)};
      if (variant == character || (case_insensitive && lower(variant) == character))
        variants.push_back(static_cast<Number>(byte));
    }
  } else {
    auto add = [&](char32_t variant) {
      if (static_cast<Number>(variant) == variant) variants.push_back(static_cast<Number>(variant));
    };
    add(character);
    if (!case_insensitive) return variants;
    const auto& partners = case_partners();
    for (auto it = std::lower_bound(partners.begin(), partners.end(), std::pair(character, U'\0'));
         it != partners.end() && it->first == character; ++it)
      add(it->second);
  }
  return variants;
}

}  // namespace

template <class Character>
Needle::Scan<Needle::Raw<Character>> Needle::_prepared() const {
  Scan<Raw<Character>> scan{.prepared = true};
  auto first = variants_of<Character>(_term.front(), _case_insensitive);
  auto last = variants_of<Character>(_term.back(), _case_insensitive);
  scan.possible = !first.empty() && !last.empty();
  if (!scan.possible) return scan;
  scan.scannable = first.size() <= scan.first.size() && last.size() <= scan.last.size();
  first.resize(scan.first.size(), first.front());
  last.resize(scan.last.size(), last.front());
  std::copy(first.begin(), first.end(), scan.first.begin());
  std::copy(last.begin(), last.end(), scan.last.begin());
  return scan;
}

Needle::Needle(std::u32string_view term, bool case_insensitive)
    : _term(case_insensitive ? lowered(term) : std::u32string(term)), _case_insensitive(case_insensitive) {}

template <class Character>
const Needle::Scan<Needle::Raw<Character>>& Needle::_scan() const {
  auto& scan = std::get<Scan<Raw<Character>>>(_scans);
  if (!scan.prepared) scan = _prepared<Character>();
  return scan;
}

template <class Character>
bool Needle::_block_has_candidate(const Character* block, const Scan<Raw<Character>>& scan) const {
  if (!scan.scannable) return true;
  using Number = Raw<Character>;
  const auto first = scan.first;
  const auto last = scan.last;
  const Character* ends = block + _term.size() - 1;
  Number any = 0;
  for (std::size_t i = 0; i < BLOCK; ++i) {
    Number begins = is_one_of(raw(block[i]), first);
    Number finishes = is_one_of(raw(ends[i]), last);
    any = static_cast<Number>(any | (begins & finishes));
  }
  return any != 0;
}

template <class Character>
bool Needle::_matches(const Character* at, const Scan<Raw<Character>>& scan) const {
  if (scan.scannable && !is_one_of(raw(*at), scan.first)) return false;
  if (!_case_insensitive)
    return std::equal(_term.begin(), _term.end(), at, [](char32_t a, char32_t b) { return a == b; });
  return std::equal(_term.begin(), _term.end(), at, [](char32_t wanted, char32_t c) { return lower(c) == wanted; });
}

template <class Character>
int Needle::_find(std::span<const Character> text, int from) const {
  std::size_t at = static_cast<std::size_t>(std::max(from, 0));
  if (_term.empty() || text.size() < _term.size()) return -1;
  const auto& scan = _scan<Character>();
  if (!scan.possible) return -1;
  std::size_t places = text.size() - _term.size() + 1;  // where the needle fits
  const Character* begin = text.data();
  while (at < places) {
    std::size_t end = std::min(at + BLOCK, places);
    // The last block reaches back over places that were looked at.
    if (end >= BLOCK && !_block_has_candidate(begin + end - BLOCK, scan)) {
      at = end;
      continue;
    }
    for (; at < end; ++at)
      if (_matches(begin + at, scan)) return static_cast<int>(at);
  }
  return -1;
}

template <class Character>
int Needle::_rfind(std::span<const Character> text, int before) const {
  std::size_t limit = std::min(text.size(), static_cast<std::size_t>(std::max(before, 0)));
  if (_term.empty() || limit < _term.size()) return -1;
  const auto& scan = _scan<Character>();
  if (!scan.possible) return -1;
  std::size_t end = limit - _term.size() + 1;
  const Character* begin = text.data();
  while (end > 0) {
    std::size_t at = end > BLOCK ? end - BLOCK : 0;
    if (end - at == BLOCK && !_block_has_candidate(begin + at, scan)) {
      end = at;
      continue;
    }
    for (; end > at; --end)
      if (_matches(begin + end - 1, scan)) return static_cast<int>(end - 1);
  }
  return -1;
}

int Needle::find(TextView text, int from) const {
  return text.visit([&](auto characters) { return _find(characters, from); });
}

int Needle::rfind(TextView text, int before) const {
  return text.visit([&](auto characters) { return _rfind(characters, before); });
}

int Needle::count(TextView text) const {
  int found = 0;
  for (int at = find(text, 0); at >= 0; at = find(text, at + length())) ++found;
  return found;
}

namespace {

// The format runs of a line with stretches of it taken over to new places, in order.
class MovedRuns {
 public:
  explicit MovedRuns(const SpanList& spans) : _runs(_merge_spans(spans.view())), _next(_runs.begin()) {}

  // The stretch from `first` up to `last` stands at `place` of the new line.
  void keep(int first, int last, int place) {
    while (_next != _runs.end() && _next->end <= first) ++_next;
    for (const Span* run = _next; run != _runs.end() && run->start < last; ++run)
      _append({std::max(run->start, first) - first + place, std::min(run->end, last) - first + place, run->bits});
  }
  SpanList spans() const { return span_list(_moved); }

 private:
  void _append(const Span& run) {
    if (run.start >= run.end) return;
    if (!_moved.empty() && _moved.back().end == run.start && _moved.back().bits == run.bits)
      _moved.back().end = run.end;
    else
      _moved.push_back(run);
  }

  SpanList _runs;
  const Span* _next;
  std::vector<Span> _moved;
};

}  // namespace

ReplacedLine replace_all(const Text& line, const SpanList& spans, const Needle& needle,
                         std::u32string_view replacement) {
  TextView text = line;
  int at = needle.find(text, 0);
  if (at < 0) return {line, spans, 0};

  ReplacedLine replaced;
  MovedRuns runs(spans);
  static std::vector<TextView> parts;  // kept, so that a line costs one allocation
  parts.clear();
  int from = 0;
  int size = 0;
  auto keep = [&](int to) {
    if (!spans.empty()) runs.keep(from, to, size);
    parts.push_back(text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
    size += to - from;
  };
  for (; at >= 0; at = needle.find(text, from)) {
    keep(at);
    parts.emplace_back(replacement);
    size += static_cast<int>(replacement.size());
    from = at + needle.length();
    ++replaced.count;
  }
  keep(text.length());
  replaced.line = Text::joined(parts);
  // A line that became empty keeps no character, and so no format.
  if (size != 0) replaced.spans = runs.spans();
  return replaced;
}

}  // namespace brenlow
