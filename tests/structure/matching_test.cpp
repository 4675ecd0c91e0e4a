#include "structure/matching.h"

#include <gtest/gtest.h>

#include <clocale>
#include <random>
#include <string>

#include "core/unicode.h"

namespace brenlow {

namespace {

// Letters that lower case brings together, an astral one and a few that repeat often.
constexpr std::u32string_view ALPHABET = U"aaabbAB \u212Akéé\u0130iI\u212Bå\U0001F600";

std::u32string random_text(std::mt19937& random, std::size_t longest) {
  std::u32string text(random() % (longest + 1), U'a');
  for (char32_t& c : text) c = ALPHABET[random() % ALPHABET.size()];
  return text;
}

int found_at(std::size_t position) { return position == std::u32string::npos ? -1 : static_cast<int>(position); }

}  // namespace

TEST(Matching, finds_what_a_search_through_lowered_copies_finds) {
  std::setlocale(LC_ALL, "C.UTF-8");
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    const bool insensitive = round % 2 == 0;
    const std::u32string text = random_text(random, 150);
    std::u32string term = random_text(random, 3);
    if (term.empty()) term = U"b";
    const Needle needle(term, insensitive);
    const std::u32string hay = insensitive ? lowered(text) : text;
    const std::u32string wanted = insensitive ? lowered(term) : term;
    const int at = static_cast<int>(random() % 160);
    ASSERT_EQ(needle.find(text, at), found_at(hay.find(wanted, static_cast<std::size_t>(at)))) << "round " << round;
    ASSERT_EQ(needle.rfind(text, at), found_at(hay.substr(0, static_cast<std::size_t>(at)).rfind(wanted)))
        << "round " << round;
    int count = 0;
    for (std::size_t i = hay.find(wanted); i != hay.npos; i = hay.find(wanted, i + wanted.size())) ++count;
    ASSERT_EQ(needle.count(text), count) << "round " << round;
    ASSERT_EQ(needle.in(text), count > 0) << "round " << round;
  }
}

TEST(Matching, other_alphabets_are_compared_without_regard_to_case) {
  std::setlocale(LC_ALL, "C.UTF-8");
  EXPECT_EQ(Needle(U"КАФЕ", true).find(U"в кафе", 0), 2);
  EXPECT_EQ(Needle(U"ω", true).find(U"1 \u2126", 0), 2);
  EXPECT_EQ(Needle(U"кафе", false).find(U"в КАФЕ", 0), -1);
}

TEST(Matching, positions_outside_the_line_find_nothing_and_do_no_harm) {
  const Needle needle(U"ab", false);
  EXPECT_EQ(needle.find(U"ab", 3), -1);
  EXPECT_EQ(needle.find(U"ab", -5), 0);
  EXPECT_EQ(needle.rfind(U"abab", -1), -1);
  EXPECT_EQ(needle.rfind(U"abab", 3), 0);
  EXPECT_EQ(needle.rfind(U"abab", 99), 2);
  const Needle empty(U"", true);
  EXPECT_EQ(empty.find(U"ab", 0), -1);
  EXPECT_EQ(empty.rfind(U"ab", 2), -1);
  EXPECT_EQ(empty.count(U"ab"), 0);
}

TEST(Matching, a_replacement_is_plain_and_the_text_around_it_keeps_its_format) {
  auto replaced = [](std::u32string_view line, const std::vector<Span>& spans, std::u32string_view what,
                     std::u32string_view by) { return replace_all(line, span_list(spans), Needle(what, false), by); };
  ReplacedLine one = replaced(U"aaa", {}, U"aa", U"b");
  EXPECT_EQ(one.line, Text(U"ba"));
  EXPECT_EQ(one.count, 1);
  one = replaced(U"a bold run", {{2, 10, FMT_BOLD}}, U"ld", U"at");
  EXPECT_EQ(one.line, Text(U"a boat run"));
  EXPECT_EQ(one.spans, span_list({{2, 4, FMT_BOLD}, {6, 10, FMT_BOLD}}));
  one = replaced(U"xx", {{0, 2, FMT_BOLD}}, U"x", U"");
  EXPECT_TRUE(one.line.empty());
  EXPECT_TRUE(one.spans.empty());
}

TEST(Matching, replacing_agrees_with_a_walk_over_one_format_mask_per_character) {
  std::mt19937 random(11);
  for (int round = 0; round < 5'000; ++round) {
    const std::u32string text = random_text(random, 60);
    std::u32string term = random_text(random, 2);
    if (term.empty()) term = U"a";
    const std::u32string by = random_text(random, 3);
    std::vector<Span> spans;
    for (auto i = random() % 5; i > 0; --i) {
      const int start = static_cast<int>(random() % 60);
      spans.push_back({start, start + static_cast<int>(random() % 20), 1 + static_cast<int>(random() % 3)});
    }
    std::u32string line;
    std::vector<unsigned char> masks;
    int count = 0;
    for (std::size_t j = 0; j < text.size();) {
      if (std::u32string_view(text).substr(j).starts_with(term)) {
        line += by;
        masks.insert(masks.end(), by.size(), 0);
        j += term.size();
        ++count;
      } else {
        line += text[j];
        masks.push_back(static_cast<unsigned char>(format_at(spans, static_cast<int>(j++))));
      }
    }
    const ReplacedLine replaced = replace_all(Text(text), span_list(spans), Needle(term, false), by);
    ASSERT_EQ(replaced.count, count) << "round " << round;
    ASSERT_EQ(replaced.line, Text(line)) << "round " << round;
    ASSERT_EQ(replaced.spans, count == 0 ? span_list(spans) : spans_from_masks(masks)) << "round " << round;
  }
}

}  // namespace brenlow
