#include "structure/chapters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace brenlow {

namespace {

std::vector<Text> random_document(std::mt19937& random) {
  constexpr const char32_t* KINDS[] = {U"# a", U"## b", U"### c", U"##", U"text", U"", U" # no header"};
  std::vector<Text> lines(1 + random() % 25);
  for (Text& line : lines) line = Text(KINDS[random() % std::size(KINDS)]);
  return lines;
}

}  // namespace

TEST(Chapters, any_line_with_a_hash_in_its_first_column_is_a_header) {
  EXPECT_TRUE(is_header(U"#word"));
  EXPECT_FALSE(is_header(U" # blank before"));
  EXPECT_FALSE(is_header(U""));
  EXPECT_EQ(header_level(U"####"), 4);
  EXPECT_EQ(header_level(U"text #"), 0);
  EXPECT_EQ(chapter_title(U"## \u00A0Sub # chapter\t"), U"Sub # chapter");
  EXPECT_EQ(chapter_title(U"##"), U"");
}

TEST(Chapters, ranges_end_before_the_header_that_ends_them) {
  const std::vector<Text> lines{U"preface", U"# One", U"text", U"## Sub", U"deep", U"## Sub 2", U"# Two"};
  EXPECT_EQ(find_chapter_header(lines, 0), std::nullopt);
  EXPECT_EQ(find_chapter_header(lines, 4), 3);
  EXPECT_EQ(find_chapter_header(lines, 5), 5);
  EXPECT_EQ(chapter_body_range(lines, 1), (LineRange{2, 2}));
  EXPECT_EQ(chapter_subtree_range(lines, 1), (LineRange{2, 5}));
  EXPECT_EQ(chapter_subtree_range(lines, 3), (LineRange{4, 4}));
  EXPECT_EQ(chapter_body_range(lines, 5), std::nullopt);
  EXPECT_EQ(chapter_body_range(lines, 6), std::nullopt);
  EXPECT_EQ(chapter_headers(lines), (std::vector<int>{1, 3, 5, 6}));
  EXPECT_EQ(find_sibling_chapter(lines, 1, 1), 6);
  EXPECT_EQ(find_sibling_chapter(lines, 5, -1), 3);
  EXPECT_EQ(find_sibling_chapter(lines, 5, 1), std::nullopt);
  const std::vector<Text> outline{U"# A", U"## x", U"# B", U"## y"};
  EXPECT_EQ(find_sibling_chapter(outline, 1, 1), 3);
}

TEST(Chapters, folds_hide_what_the_range_of_each_folded_line_holds) {
  std::mt19937 random(3);
  for (int round = 0; round < 3'000; ++round) {
    const std::vector<Text> lines = random_document(random);
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

TEST(Chapters, a_swap_exchanges_two_chapters_and_leaves_the_blank_lines_between_them) {
  const std::vector<Text> lines{U"# One", U"text", U"", U" ", U"# Two", U"## Sub", U"", U""};
  EXPECT_EQ(chapter_swap_end(lines, 0), 1);
  EXPECT_EQ(chapter_swap_end(lines, 4), 5);
  EXPECT_EQ(chapter_swap_end(std::vector<Text>{U"#", U"", U""}, 0), 0);

  std::mt19937 random(5);
  for (int round = 0; round < 500; ++round) {
    std::vector<int> cuts(4);
    for (int& cut : cuts) cut = static_cast<int>(random() % 20);
    std::sort(cuts.begin(), cuts.end());
    const ChapterSwap swap{cuts[0], cuts[1], cuts[2] + 1, cuts[3] + 1};
    std::vector<int> before(24);
    std::iota(before.begin(), before.end(), 0);
    std::vector<int> after;
    auto append = [&](int first, int end) { after.insert(after.end(), before.begin() + first, before.begin() + end); };
    append(0, swap.a);
    append(swap.b, swap.b_end + 1);
    append(swap.a_end + 1, swap.b);
    append(swap.a, swap.a_end + 1);
    append(swap.b_end + 1, 24);
    for (int i : before) ASSERT_EQ(after[static_cast<std::size_t>(swapped_line(swap, i))], i) << "round " << round;
  }
}

}  // namespace brenlow
