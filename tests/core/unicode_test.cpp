#include "core/unicode.h"

#include <gtest/gtest.h>

#include <clocale>

namespace brenlow {
namespace {

TEST(Unicode, WrongBytesBecomeReplacementsAndTheRestStays) {
  EXPECT_EQ(decode_utf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), U"aé€😀");
  EXPECT_EQ(decode_utf8("\xC3(\xFF"), U"\uFFFD(\uFFFD");
  EXPECT_EQ(decode_utf8("\xE2\x82z"), U"\uFFFDz") << "a cut character is one replacement";
  EXPECT_EQ(decode_utf8("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD") << "a surrogate is none";
  EXPECT_EQ(decode_utf8("\xC0\xAF\xF4\x90\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_FALSE(decode_utf8_strict("\xE2\x82"));
  EXPECT_EQ(encode_utf8(U"aé€😀"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(encode_utf8({U"\xD800", 1}), "\xEF\xBF\xBD");
}

TEST(Unicode, LowerCaseKeepsEveryOffset) {
  std::setlocale(LC_ALL, "C.UTF-8");
  std::u32string text = U"ÉCOLE Straße İstanbul ΣΑΣ";
  std::u32string low = lowered(text);
  EXPECT_EQ(low.size(), text.size());
  EXPECT_TRUE(low.starts_with(U"école straße "));
  EXPECT_EQ(lowered(U"×÷ß"), U"×÷ß");
}

TEST(Unicode, WordsAreDividedByAnyWhiteSpace) {
  EXPECT_EQ(count_words(U""), 0);
  EXPECT_EQ(count_words(U"  one\ttwo\u00A0three\u2003four— five "), 5);
  EXPECT_EQ(trimmed(std::u32string_view(U"\u3000 a b\t")), U"a b");
  EXPECT_EQ(one_line(U"a\r\nb\nc\rd\n"), U"a b c d ");
}

TEST(Unicode, TheExtensionTellsTheKindOfADocument) {
  EXPECT_EQ(path_extension("/a.b/Novel.ODT"), ".odt");
  EXPECT_EQ(path_extension("/a.b/novel"), "");
  EXPECT_EQ(path_extension(".odt"), "");
  EXPECT_EQ(path_extension("x.tar.md"), ".md");
  EXPECT_EQ(path_base_name("/a/b.txt"), "b.txt");
}

}  // namespace
}  // namespace brenlow
