#include "customise/pattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "core/unicode.h"

namespace brenlow {
namespace {

// The matches as the texts they cover, each followed by "|"; "refused" for a pattern that does not compile.
std::string matches(std::u32string_view pattern, std::u32string_view line) {
  auto compiled = Pattern::compile(pattern);
  if (!compiled) return "refused";
  std::u32string found;
  PatternScan scan(*compiled, line);
  while (scan.next())
    found.append(line, static_cast<std::size_t>(scan.start()), static_cast<std::size_t>(scan.end() - scan.start()))
        .append(U"|");
  return scan.gave_up() ? "gave up" : encode_utf8(found);
}

// The expectations are what Python's own module finds.
TEST(Pattern, MeansWhatItMeansInPython) {
  struct Case {
    std::u32string_view pattern, line;
    std::string_view found;
  };
  for (const Case& c : {Case{U"(?P<q>['\"]).*?(?P=q)", U"say 'a' or \"b'c\"", "'a'|\"b'c\"|"},
                        {U"(?P<tag>x)?(?(tag)y|z)", U"xy z", "xy|z|"},
                        {U"(a)(b)?(?(2)c|d)", U"abc ad", "abc|ad|"},
                        {U"(.)\\1", U"hello aa", "ll|aa|"},
                        {U"a{,2}b", U"aaab b", "aab|b|"},
                        {U"a{,}b", U"aaab", "aaab|"},
                        {U"x{a}{1", U"x{a}{1", "x{a}{1|"},
                        {U"[[:alpha:]]+", U"z l] :]", "l]|:]|"},
                        {U"[]a]+[^]]", U"]a]b", "]a]b|"},
                        {U"[a\\-z]+", U"a-z b", "a-z|"},
                        {U"\\u00e9\\x41\\U0001F600\\101", U"éA\U0001F600A", "éA\U0001F600A|"},
                        {U"end\\Z", U"end end", "end|"},
                        {U"a\\vb", U"a\vb a\nb", "a\vb|"},
                        {U"\\s", U"a\u001Cb\u00A0c", "\x1C|\u00A0|"},
                        {U"[^\\S]", U"a\u001Cb", "\x1C|"},
                        {U"\\w+\\b", U"naïve Ж1_", "naïve|Ж1_|"},
                        {U"(?a)\\w+", U"naïve", "na|ve|"},
                        {U"(?a:\\bna)[\\w]", U"naï", "naï|"},
                        {U"(?i:éa)b", U"ÉAb ÉAB", "ÉAb|"},
                        {U"(?x) a b # (c [d\n c", U"abc", "abc|"},
                        {U"(?x:a b)[ ]c d", U"ab c d", "ab c d|"},
                        {U"a(?#one (two)b", U"ab", "ab|"},
                        {U"a++b", U"aab", "aab|"},
                        {U"x*|b", U"abxx", "b|xx|"},
                        {U"(?<=a)b", U"ab b", "b|"},
                        {U"", U"abc", ""}})
    EXPECT_EQ(matches(c.pattern, c.line), c.found) << encode_utf8(c.pattern);
}

TEST(Pattern, WhatPythonDoesNotCompileColoursNothing) {
  for (std::u32string_view pattern :
       {U"(",           U")",         U"[a",        U"*a",       U"a**",
        U"a{2}{3}",     U"^*",        U"(*ACCEPT)", U"\\h",      U"\\K",
        U"\\Qa\\E",     U"\\p{L}",    U"\\x4",      U"\\ud800",  U"\\400",
        U"\\U00110000", U"(a\\1)",    U"\\1(a)",    U"(?R)",     U"(?1)",
        U"(?&a)",       U"(?P>a)",    U"(?C)",      U"(?|a|b)",  U"(?<n>a)",
        U"(?'n'a)",     U"(?P<1>a)",  U"(?P=n)",    U"[\\w-z]",  U"(?P<n>a)(?P<n>b)",
        U"(?L)a",       U"(?(n)a|b)", U"(?(1)a|b)", U"(?i-i:a)", U"a(?i)",
        U"(?-i)",       U"[z-a]",     U"[\\8]",     U"\\",       U"(((a{99}){99}){99}){99}"})
    EXPECT_EQ(matches(pattern, U"aaa"), "refused") << encode_utf8(pattern);
}

TEST(Pattern, ACostlyPatternGivesUpAndALongLineDoesNot) {
  const std::u32string run(100'000, U'a');
  std::u32string alternatives;
  for (int i = 0; i < 40; ++i) alternatives += U"(a|aa)";
  const auto begin = std::chrono::steady_clock::now();
  for (const std::u32string& pattern :
       {std::u32string(U"(a+)+b"), std::u32string(U"a*a*a*a*b"), std::u32string(U"(a|a)*b"), alternatives + U"b",
        std::u32string(U"(.*)\\1\\1b"), std::u32string(U"\\w+(?=.*!b)")})
    EXPECT_EQ(matches(pattern, run + U" b"), "gave up") << encode_utf8(pattern);
  // Unbounded, the first of them alone would outlive the universe.
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  const std::u32string megabyte(1'000'000, U'a');
  EXPECT_EQ(matches(U"\\[\\[.*?\\]\\]", U"x [[" + megabyte + U"]] y").size(), megabyte.size() + 5);
  EXPECT_EQ(matches(U"a", megabyte).size(), 2 * megabyte.size());
  EXPECT_EQ(matches(U"a+b", megabyte), "");
}

}  // namespace
}  // namespace brenlow
