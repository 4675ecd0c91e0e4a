#include "core/spans.h"

#include <gtest/gtest.h>

#include <random>

#include "core/document.h"

namespace brenlow {
namespace {

// The plain meaning of a span list: one mask per character.
std::vector<int> masks(const SpanList& spans, int length) {
  std::vector<int> out(static_cast<std::size_t>(length), 0);
  for (const Span& span : spans)
    for (int i = span.start; i < span.end; ++i) out.at(static_cast<std::size_t>(i)) |= span.bits;
  return out;
}

SpanList random_spans(std::mt19937& random, int length) {
  std::vector<Span> spans;
  auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int count = below(5); count > 0; --count) {
    int start = below(length);
    spans.push_back({start, start + 1 + below(length - start), 1 + below(3)});
  }
  return span_list(spans);
}

bool is_flat(const SpanList& spans) {
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (spans[i].start >= spans[i].end || spans[i].bits == 0) return false;
    if (i > 0 && spans[i].start < spans[i - 1].end) return false;
    if (i > 0 && spans[i].start == spans[i - 1].end && spans[i].bits == spans[i - 1].bits) return false;
  }
  return true;
}

// Every operation against its plain meaning on one mask per character, on overlapping lists too.
TEST(Spans, FormatsStayOnTheirCharactersThroughEveryEdit) {
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    constexpr int length = 12;
    SpanList spans = random_spans(random, length);
    std::vector<int> before = masks(spans, length);
    int at = static_cast<int>(random() % (length + 1));
    int to = at + static_cast<int>(random() % static_cast<unsigned>(length - at + 1));

    std::vector<int> removed = before;
    removed.erase(removed.begin() + at, removed.begin() + to);
    EXPECT_EQ(masks(spans_with_removed(spans, at, to), length - (to - at)), removed);

    SplitSpans split = split_spans(spans, at);
    EXPECT_EQ(masks(split.left, at), std::vector<int>(before.begin(), before.begin() + at));
    EXPECT_EQ(masks(split.right, length - at), std::vector<int>(before.begin() + at, before.end()));
    EXPECT_EQ(masks(spans_appended(split.left, split.right, at), length), before);
    EXPECT_EQ(masks(spans_within(spans, at, to), to - at), std::vector<int>(before.begin() + at, before.begin() + to));

    SpanList flat = _merge_spans(spans.view());
    EXPECT_TRUE(is_flat(flat));
    EXPECT_EQ(masks(flat, length), before);

    bool covered = true;
    for (int i = at; i < to; ++i) covered = covered && (before[static_cast<std::size_t>(i)] & FMT_BOLD);
    EXPECT_EQ(format_covers(spans, at, to, FMT_BOLD), covered);
    for (bool on : {true, false}) {
      std::vector<int> wanted = before;
      for (int i = at; i < to; ++i) {
        int& mask = wanted[static_cast<std::size_t>(i)];
        mask = on ? mask | FMT_BOLD : mask & ~FMT_BOLD;
      }
      SpanList changed = spans_with_bit(spans, length, at, to, FMT_BOLD, on);
      EXPECT_EQ(masks(changed, length), wanted);
      EXPECT_TRUE(is_flat(changed));
    }
  }
}

TEST(Spans, TypedCharactersTakeTheirPlaceAtTheEdgesOfAFormat) {
  const SpanList bold = span_list({{2, 5, FMT_BOLD}});
  EXPECT_EQ(spans_with_inserted(bold, 2, 1, 0), span_list({{3, 6, FMT_BOLD}}));
  EXPECT_EQ(spans_with_inserted(bold, 5, 1, 0), bold);
  EXPECT_EQ(spans_with_inserted(bold, 4, 1, 0), span_list({{2, 6, FMT_BOLD}})) << "inside it all becomes bold";
  EXPECT_EQ(spans_with_inserted(bold, 5, 1, FMT_BOLD), span_list({{2, 6, FMT_BOLD}})) << "one span";
  EXPECT_EQ(masks(spans_with_inserted(bold, 3, 1, FMT_ITALIC), 7), (std::vector<int>{0, 0, 1, 3, 1, 1, 0}));
}

TEST(IndexSet, FollowsInsertedAndRemovedLinesAndItsCopiesDoNot) {
  IndexSet set{9, 3, 5, 3};
  const IndexSet copy = set;
  set.insert(4);
  set.shift(5, 2);
  EXPECT_EQ(set, (IndexSet{3, 4, 7, 11}));
  set.erase_range(4, 8);
  set.merge(IndexSet{1, 11, 12});
  set.renumber([](int i) { return i == 12 ? 0 : i; });
  EXPECT_EQ(std::vector<int>(set.begin(), set.end()), (std::vector<int>{0, 1, 3, 11}));
  EXPECT_TRUE(set.contains(11) && !set.contains(12));
  EXPECT_EQ(copy, (IndexSet{3, 5, 9}));
}

}  // namespace
}  // namespace brenlow
