#include <algorithm>
#include <cstdint>

#include "customise/pattern.h"
#include "customise/syntax_rules.h"

namespace brenlow {

namespace {

// The characters of one line that are claimed, one bit each: a test costs the stretch it asks about,
// however many stretches there are. The bits are set up by the first claim.
class Claims {
 public:
  Claims(std::size_t length, std::vector<SyntaxSpan>& spans) : _length(static_cast<int>(length)), _spans(spans) {}

  int length() const { return _length; }

  // A stretch with a claimed character in it is dropped whole.
  void claim(int start, int end, const StyleSpec& style) {
    start = std::max(start, 0);
    end = std::min(end, _length);
    if (end <= start) return;
    if (_spans.empty()) _words().assign(static_cast<std::size_t>(_length) / 64 + 1, 0);
    if (_any(start, end)) return;
    _mark(start, end, true);
    _spans.push_back({start, end, style});
  }

  std::size_t count() const { return _spans.size(); }
  // Gives up the claims behind the first `count`.
  void take_back(std::size_t count) {
    for (std::size_t i = count; i < _spans.size(); ++i) _mark(_spans[i].start, _spans[i].end, false);
    _spans.erase(_spans.begin() + static_cast<std::ptrdiff_t>(count), _spans.end());
  }

 private:
  static std::vector<std::uint64_t>& _words() {
    static std::vector<std::uint64_t> words;  // kept, so that a line costs no allocation
    return words;
  }

  // Calls `visit(word, bits)` for the words that hold the stretch until it returns true.
  template <class Visit>
  static bool _visit(int start, int end, Visit&& visit) {
    auto first = static_cast<std::size_t>(start) / 64;
    auto last = static_cast<std::size_t>(end - 1) / 64;
    for (std::size_t i = first; i <= last; ++i) {
      std::uint64_t bits = ~std::uint64_t{0};
      if (i == first) bits &= ~std::uint64_t{0} << (start % 64);
      if (i == last) bits &= ~std::uint64_t{0} >> (63 - (end - 1) % 64);
      if (visit(_words()[i], bits)) return true;
    }
    return false;
  }
  static bool _any(int start, int end) {
    return _visit(start, end, [](std::uint64_t word, std::uint64_t bits) { return (word & bits) != 0; });
  }
  static void _mark(int start, int end, bool claimed) {
    _visit(start, end, [&](std::uint64_t& word, std::uint64_t bits) {
      word = claimed ? word | bits : word & ~bits;
      return false;
    });
  }

  int _length;
  std::vector<SyntaxSpan>& _spans;
};

void claim_matches(Claims& claims, std::u32string_view line, const SyntaxRule& rule) {
  std::size_t before = claims.count();
  PatternScan scan(*rule.pattern, line);
  while (scan.next()) claims.claim(scan.start(), scan.end(), rule.style);
  if (scan.gave_up()) claims.take_back(before);
}

void claim_spans(Claims& claims, const SpanList& fmt_spans, int bits, const StyleSpec& style) {
  for (const Span& span : fmt_spans)
    if ((span.bits & bits) == bits) claims.claim(span.start, span.end, style);
}

// The gaps between the spans with any formatting.
void claim_gaps(Claims& claims, const SpanList& fmt_spans, const StyleSpec& style) {
  static std::vector<Span> ranges;
  ranges.clear();
  for (const Span& span : fmt_spans)
    if (span.bits & (FMT_BOLD | FMT_ITALIC)) ranges.push_back({std::max(span.start, 0), span.end, 0});
  std::sort(ranges.begin(), ranges.end());
  int position = 0;
  for (const Span& range : ranges) {
    claims.claim(position, range.start, style);
    position = std::max(position, range.end);
  }
  claims.claim(position, claims.length(), style);
}

}  // namespace

std::vector<SyntaxSpan> _compute_syn_spans(std::u32string_view line, const SyntaxRules& rules,
                                           const SpanList& fmt_spans) {
  std::vector<SyntaxSpan> spans;
  if (line.empty()) return spans;
  Claims claims(line.size(), spans);
  for (const SyntaxRule& rule : rules) {
    if (rule.pattern) {
      claim_matches(claims, line, rule);
      continue;
    }
    switch (rule.format) {
      case FormatKind::bold:
        claim_spans(claims, fmt_spans, FMT_BOLD, rule.style);
        break;
      case FormatKind::italic:
        claim_spans(claims, fmt_spans, FMT_ITALIC, rule.style);
        break;
      case FormatKind::bold_italic:
        claim_spans(claims, fmt_spans, FMT_BOLD | FMT_ITALIC, rule.style);
        break;
      case FormatKind::normal:
        claim_gaps(claims, fmt_spans, rule.style);
        break;
    }
  }
  return spans;
}

}  // namespace brenlow
