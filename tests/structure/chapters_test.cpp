#include "structure/chapters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace brenlow {

TEST(Chapters, FoldsHideWhatTheRangeOfEachFoldedLineHolds) {
  std::mt19937 random(3);
  for (int round = 0; round < 3'000; ++round) {
    constexpr const char32_t* KINDS[] = {U"# a", U"## b", U"### c", U"##", U"text", U"", U" # no header"};
    std::vector<Text> lines(1 + random() % 25);
    for (Text& line : lines) line = Text(KINDS[random() % std::size(KINDS)]);
    const bool hierarchical = round % 2 == 0;
    std::vector<int> members;
    for (auto i = random() % 6; i > 0; --i) members.push_back(static_cast<int>(random() % 30));
    const IndexSet folded = IndexSet::from_unsorted(members);
    std::vector<bool> expected(lines.size(), false);
    for (int h : folded) {
      if (h >= static_cast<int>(lines.size())) continue;
      auto range = hierarchical ? chapter_subtree_range(lines, h) : chapter_body_range(lines, h);
      if (range) std::fill(expected.begin() + range->first, expected.begin() + range->last + 1, true);
    }
    ASSERT_EQ(hidden_by_folds(lines, folded, hierarchical), expected) << "round " << round;
  }
}

}  // namespace brenlow
