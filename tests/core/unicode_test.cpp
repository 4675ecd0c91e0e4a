#include "core/unicode.h"

#include <gtest/gtest.h>

#include <clocale>

namespace brenlow {
namespace {

TEST(Unicode, WrongBytesBecomeReplacementsAndTheRestStays) {
  EXPECT_EQ(decode_utf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), U"aé€😀");
  EXPECT_EQ(decode_utf8("\xC3(\xFF\xE2\x82z"), U"\uFFFD(\uFFFD\uFFFDz") << "a cut character is one replacement";
  EXPECT_EQ(decode_utf8("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD") << "a surrogate is none";
  EXPECT_EQ(decode_utf8("\xC0\xAF\xF4\x90\x80\x80"), std::u32string(6, U'\uFFFD'));
  EXPECT_FALSE(decode_utf8_strict("\xE2\x82"));
  EXPECT_EQ(encode_utf8(std::u32string(U"aé€😀") + char32_t{0xD800}),
            "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD");
}

TEST(Unicode, LettersWordsAndExtensionsAreToldInAnyScript) {
  std::setlocale(LC_ALL, "C.UTF-8");
  EXPECT_EQ(lowered(U"ÉCOLE Straße×"), U"école straße×");
  EXPECT_EQ(lowered(U"İstanbul ΣΑΣ").size(), 12U) << "offsets in the text stay";
  EXPECT_EQ(count_words(U"  one\ttwo\u00A0three\u2003four— five "), 5);
  EXPECT_EQ(trimmed(U"\u3000 a b\t").str(), U"a b");
  EXPECT_EQ(one_line(U"a\r\nb\nc\rd\n"), U"a b c d ");
  EXPECT_EQ(path_extension("/a.b/x.tar.ODT"), ".odt");
  EXPECT_EQ(path_extension("/a.b/novel") + path_extension(".odt"), "");
}

}  // namespace
}  // namespace brenlow
