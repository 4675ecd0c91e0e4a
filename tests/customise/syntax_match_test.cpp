#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "customise/pattern.h"
#include "customise/syntax_rules.h"

namespace brenlow {
namespace {

const StyleSpec RED{StyleSpec::Kind::color, 1, 0, 0, 0};
const StyleSpec BLUE{StyleSpec::Kind::color, 4, 0, 0, 0};
using Spans = std::vector<SyntaxSpan>;

SyntaxRule regex(std::u32string_view pattern, const StyleSpec& style) {
  return {Pattern::compile(pattern), FormatKind::normal, style};
}

TEST(SyntaxMatch, AStretchIsClaimedWholeOrNotAtAll) {
  const std::u32string line = U"x " + std::u32string(5'000, U'a') + U" b";
  EXPECT_EQ(_compute_syn_spans(line, {regex(U"x|(a+)+b", RED), regex(U"x a", BLUE)}, {}), (Spans{{0, 3, BLUE}}))
      << "a pattern that gives up leaves its stretches to others";
  EXPECT_EQ(_compute_syn_spans(U"bb", {regex(U"^b", RED), regex(U"b$", BLUE)}, {}), (Spans{{0, 1, RED}, {1, 2, BLUE}}));
  const SyntaxRules gaps{{nullptr, FormatKind::normal, RED}};
  EXPECT_EQ(_compute_syn_spans(U"abcdef", gaps, {}), (Spans{{0, 6, RED}}));
  EXPECT_EQ(_compute_syn_spans(U"abcdef", gaps, span_list({{4, 90, FMT_ITALIC}, {1, 2, FMT_BOLD}})),
            (Spans{{0, 1, RED}, {2, 4, RED}}));
}

TEST(SyntaxMatch, RandomClaimsAgreeWithAListOfClaimedRanges) {
  std::mt19937 random(20250701);
  auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 300; ++round) {
    const int length = 1 + below(200);
    std::vector<Span> spans;
    for (int i = below(12); i > 0; --i) {
      const int start = below(length);
      spans.push_back({start, start + below(80), 1 + below(3)});
    }
    Spans expected;
    auto claim = [&](int start, int end, const StyleSpec& style) {
      auto overlaps = [&](const SyntaxSpan& claimed) { return start < claimed.end && end > claimed.start; };
      if (end > start && std::none_of(expected.begin(), expected.end(), overlaps))
        expected.push_back({start, end, style});
    };
    for (const Span& span : spans)
      if (span.bits == 3) claim(span.start, std::min(span.end, length), BLUE);
    for (const Span& span : spans)
      if (span.bits & FMT_BOLD) claim(span.start, std::min(span.end, length), RED);
    const SyntaxRules rules{{nullptr, FormatKind::bold_italic, BLUE}, {nullptr, FormatKind::bold, RED}};
    const std::u32string line(static_cast<std::size_t>(length), U'x');
    ASSERT_EQ(_compute_syn_spans(line, rules, span_list(spans)), expected) << "round " << round;
  }
}

}  // namespace
}  // namespace brenlow
