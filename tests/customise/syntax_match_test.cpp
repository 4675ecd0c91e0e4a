#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "customise/pattern.h"
#include "customise/syntax_rules.h"

namespace brenlow {

namespace {

const StyleSpec RED{StyleSpec::Kind::color, 1, 0, 0, 0};
const StyleSpec BLUE{StyleSpec::Kind::color, 4, 0, 0, 0};

SyntaxRule regex(std::u32string_view pattern, const StyleSpec& style) {
  return {Pattern::compile(pattern), FormatKind::normal, style};
}
SyntaxRule format(FormatKind kind, const StyleSpec& style) { return {nullptr, kind, style}; }

using Spans = std::vector<SyntaxSpan>;

}  // namespace

TEST(SyntaxMatch, an_overlapping_stretch_is_dropped_whole) {
  const SyntaxRules rules{regex(U"cd", RED), regex(U"[b-d]+|f", BLUE)};
  EXPECT_EQ(_compute_syn_spans(U"abcd ef", rules, {}), (Spans{{2, 4, RED}, {6, 7, BLUE}}));
  // Stretches that only touch are both kept.
  EXPECT_EQ(_compute_syn_spans(U"bb", {regex(U"^b", RED), regex(U"b$", BLUE)}, {}), (Spans{{0, 1, RED}, {1, 2, BLUE}}));
  EXPECT_TRUE(_compute_syn_spans(U"", {regex(U".*", RED), format(FormatKind::normal, RED)}, {}).empty());
}

TEST(SyntaxMatch, a_pattern_that_gives_up_claims_nothing_and_leaves_its_stretches_to_others) {
  const std::u32string line = U"x " + std::u32string(5'000, U'a') + U" b";
  const SyntaxRules rules{regex(U"x|(a+)+b", RED), regex(U"x a", BLUE)};
  EXPECT_EQ(_compute_syn_spans(line, rules, {}), (Spans{{0, 3, BLUE}}));
}

TEST(SyntaxMatch, gaps_between_formatted_runs_are_claimed_one_by_one) {
  const SyntaxRules rules{format(FormatKind::normal, RED)};
  EXPECT_EQ(_compute_syn_spans(U"abcdef", rules, {}), (Spans{{0, 6, RED}}));
  EXPECT_EQ(_compute_syn_spans(U"abcdef", rules, span_list({{4, 90, FMT_ITALIC}, {1, 2, FMT_BOLD}})),
            (Spans{{0, 1, RED}, {2, 4, RED}}));
  EXPECT_EQ(_compute_syn_spans(U"abcdef", rules, span_list({{0, 6, FMT_BOLD}})), Spans{});
}

TEST(SyntaxMatch, random_claims_agree_with_a_list_of_claimed_ranges) {
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
    const SyntaxRules rules{format(FormatKind::bold_italic, BLUE), format(FormatKind::bold, RED)};
    const std::u32string line(static_cast<std::size_t>(length), U'x');
    ASSERT_EQ(_compute_syn_spans(line, rules, span_list(spans)), expected) << "round " << round;
  }
}

TEST(SyntaxMatch, a_megabyte_with_many_matches_keeps_every_one) {
  std::u32string line;
  for (int i = 0; i < 100'000; ++i) line += U"*ab* `c` ";
  const SyntaxRules rules{regex(U"`[^`]+`", BLUE), regex(U"\\*[^*]+\\*", RED)};
  EXPECT_EQ(_compute_syn_spans(line, rules, {}).size(), 200'000U);
}

}  // namespace brenlow
