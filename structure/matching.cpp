#include "structure/matching.h"

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdint>
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
std::uint32_t equal(char32_t a, char32_t b) { return a == b ? 1 : 0; }

}  // namespace

// False if there are more variants than fit.
bool Needle::_choose_variants(char32_t character, Variants& chosen) const {
  chosen.fill(character);
  if (!_case_insensitive) return true;
  std::size_t next = 1;
  const auto& partners = case_partners();
  for (auto it = std::lower_bound(partners.begin(), partners.end(), std::pair(character, U'\0'));
       it != partners.end() && it->first == character; ++it) {
    if (next == chosen.size()) return false;
    chosen[next++] = it->second;
  }
  return true;
}

Needle::Needle(std::u32string_view term, bool case_insensitive)
    : _term(case_insensitive ? lowered(term) : std::u32string(term)), _case_insensitive(case_insensitive) {
  if (!_term.empty()) _scannable = _choose_variants(_term.front(), _first) && _choose_variants(_term.back(), _last);
}

bool Needle::_block_has_candidate(const char32_t* block) const {
  if (!_scannable) return true;
  const Variants first = _first;
  const Variants last = _last;
  const char32_t* ends = block + _term.size() - 1;
  std::uint32_t any = 0;
  for (std::size_t i = 0; i < BLOCK; ++i) {
    std::uint32_t begins = equal(block[i], first[0]) | equal(block[i], first[1]) | equal(block[i], first[2]);
    std::uint32_t finishes = equal(ends[i], last[0]) | equal(ends[i], last[1]) | equal(ends[i], last[2]);
    any |= begins & finishes;
  }
  return any != 0;
}

bool Needle::_matches(const char32_t* at) const {
  if (!_case_insensitive) return std::equal(_term.begin(), _term.end(), at);
  return std::equal(_term.begin(), _term.end(), at, [](char32_t wanted, char32_t c) { return lower(c) == wanted; });
}

int Needle::find(std::u32string_view text, int from) const {
  std::size_t at = static_cast<std::size_t>(std::max(from, 0));
  if (_term.empty() || text.size() < _term.size()) return -1;
  std::size_t places = text.size() - _term.size() + 1;  // where the needle fits
  const char32_t* begin = text.data();
  while (at < places) {
    std::size_t end = std::min(at + BLOCK, places);
    if (end - at == BLOCK && !_block_has_candidate(begin + at)) {
      at = end;
      continue;
    }
    for (; at < end; ++at)
      if (_matches(begin + at)) return static_cast<int>(at);
  }
  return -1;
}

int Needle::rfind(std::u32string_view text, int before) const {
  std::size_t limit = std::min(text.size(), static_cast<std::size_t>(std::max(before, 0)));
  if (_term.empty() || limit < _term.size()) return -1;
  std::size_t end = limit - _term.size() + 1;
  const char32_t* begin = text.data();
  while (end > 0) {
    std::size_t at = end > BLOCK ? end - BLOCK : 0;
    if (end - at == BLOCK && !_block_has_candidate(begin + at)) {
      end = at;
      continue;
    }
    for (; end > at; --end)
      if (_matches(begin + end - 1)) return static_cast<int>(end - 1);
  }
  return -1;
}

int Needle::count(std::u32string_view text) const {
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
  std::u32string_view text = line;
  ReplacedLine replaced;
  replaced.count = needle.count(text);
  if (replaced.count == 0) return {line, spans, 0};

  auto count = static_cast<std::size_t>(replaced.count);
  auto needle_length = static_cast<std::size_t>(needle.length());
  std::size_t size = text.size() - count * needle_length + count * replacement.size();
  MovedRuns runs(spans);
  replaced.line = Text::build(size, [&](char32_t* const out) {
    char32_t* end = out;
    int from = 0;
    auto keep = [&](int to) {
      if (!spans.empty()) runs.keep(from, to, static_cast<int>(end - out));
      end = std::copy(text.begin() + from, text.begin() + to, end);
    };
    for (int at = needle.find(text, 0); at >= 0; at = needle.find(text, from)) {
      keep(at);
      end = std::copy(replacement.begin(), replacement.end(), end);
      from = at + needle.length();
    }
    keep(static_cast<int>(text.size()));
  });
  // A line that became empty keeps no character, and so no format.
  if (size != 0) replaced.spans = runs.spans();
  return replaced;
}

}  // namespace brenlow
