#include "structure/matching.h"

#include <gtest/gtest.h>

#include <clocale>
#include <random>
#include <string>

#include "core/unicode.h"

namespace brenlow {

namespace {

// Letters that lower case brings together, an astral one and a few that repeat often.
constexpr std::u32string_view ALPHABET = U"aaabbAB \u212Akéé\u0130iI\u212BåЖжω\u2126\U0001F600";

std::u32string random_text(std::mt19937& random, std::size_t longest) {
  std::u32string text(random() % (longest + 1), U'a');
  for (char32_t& c : text) c = ALPHABET[random() % ALPHABET.size()];
  return text;
}

int found_at(std::size_t position) { return position == std::u32string::npos ? -1 : static_cast<int>(position); }

}  // namespace

TEST(Matching, FindsWhatASearchThroughLoweredCopiesFinds) {
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

}  // namespace brenlow
