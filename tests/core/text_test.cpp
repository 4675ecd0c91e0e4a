#include "core/text.h"

#include <gtest/gtest.h>

#include <random>

#include "core/unicode.h"

namespace brenlow {
namespace {

// One of every width, and the signs that take a byte although their code points are high.
constexpr std::u32string_view LETTERS =
    U"aZ ~\t\u007F\u0081\u0085\u00A0ß\u2026“”’€Ÿ\u0178\u0152\u2022Жλ日\uFFFD\U0001F600\U00010000";

std::u32string random_text(std::mt19937& random) {
  std::size_t reach = std::uniform_int_distribution<std::size_t>(4, LETTERS.size())(random);
  std::u32string text(std::uniform_int_distribution<std::size_t>(0, 90)(random), U'x');
  for (char32_t& c : text) c = LETTERS[std::uniform_int_distribution<std::size_t>(0, reach - 1)(random)];
  return text;
}

TEST(Text, HoldsTheSameCharactersAtEveryWidth) {
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    std::u32string plain = random_text(random);
    std::u32string other = random_text(random);
    Text text(plain);
    ASSERT_EQ(text.view().str(), plain);
    ASSERT_EQ(text == Text(other), plain == other);
    ASSERT_EQ(encode_utf8(text), encode_utf8(TextView(plain)));
    ASSERT_EQ(decode_utf8(encode_utf8(text)), plain);
    ASSERT_EQ(count_words(text), count_words(TextView(plain)));
    ASSERT_EQ(lowered(text), lowered(plain));
    auto at = std::uniform_int_distribution<std::size_t>(0, plain.size())(random);
    auto removed = std::uniform_int_distribution<std::size_t>(0, plain.size() - at)(random);
    Text spliced = text.spliced(at, removed, other);
    std::u32string expected = plain;
    expected.replace(at, removed, other);
    ASSERT_EQ(spliced.view().str(), expected);
    ASSERT_TRUE(spliced.view() == TextView(expected));
  }
}

TEST(Text, TakesNoMoreBytesThanItsWidestCharacterNeeds) {
  EXPECT_EQ(Text(U"“Déjà vu…” – he said; 5 €").view().width(), 1);
  EXPECT_EQ(Text(U"Слово").view().width(), 2);
  EXPECT_EQ(Text(U"\U0001F600").view().width(), 4);
  EXPECT_EQ(Text(U"a\U0001F600b").spliced(1, 1, {}).view().width(), 1) << "a line stays wide for ever";
}

}  // namespace
}  // namespace brenlow
