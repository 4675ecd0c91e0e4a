#include "documents/plain_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/support/temporary_folder.h"

namespace brenlow::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> lines_of(std::string_view bytes) {
  TemporaryFolder folder;
  DocumentTriple document = txt_to_lines(folder.write("a.txt", bytes));
  EXPECT_EQ(document.fmt_lines, std::vector<SpanList>(document.lines.size()));
  EXPECT_TRUE(document.pagebreak_lines.empty());
  std::vector<std::string> lines;
  for (const Text& line : document.lines) lines.push_back(encode_utf8(line));
  return lines;
}

TEST(PlainText, EveryLineBoundaryDividesAndTheLastAddsNoLine) {
  EXPECT_THAT(lines_of(""), ElementsAre(""));
  EXPECT_THAT(lines_of("\n"), ElementsAre(""));
  EXPECT_THAT(lines_of("\r\n\r\n"), ElementsAre("", ""));
  EXPECT_THAT(lines_of("a\r\nb\n"), ElementsAre("a", "b"));
  EXPECT_THAT(lines_of("a\n\rb\r"), ElementsAre("a", "", "b"));
  for (std::string boundary :
       {"\n", "\r", "\r\n", "\v", "\f", "\x1C", "\x1D", "\x1E", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"})
    EXPECT_THAT(lines_of("é a" + boundary + "b" + boundary + boundary + "c" + boundary),
                ElementsAre("é a", "b", "", "c"));
  EXPECT_THAT(lines_of("a\tb\x1F\x7F\xC2\x84\xE2\x80\xA7z"), ElementsAre("a\tb\x1F\x7F\xC2\x84\xE2\x80\xA7z"));
}

TEST(PlainText, WrongBytesBecomeReplacementCharacters) {
  EXPECT_THAT(lines_of("\xEF\xBB\xBF#"), ElementsAre("\uFEFF#"));
  EXPECT_THAT(lines_of("caf\xE9 \xFFz"), ElementsAre("caf\uFFFD \uFFFDz"));
  EXPECT_THAT(lines_of("\xE1\xC2\x85"
                       "b\xE2\x80"),
              ElementsAre("\uFFFD", "b\uFFFD"));
  EXPECT_THAT(lines_of(std::string("a\0b", 3)), ElementsAre(std::string("a\0b", 3)));
}

TEST(PlainText, WhatIsSavedIsReadBackAndHasNoFinalLineBreak) {
  TemporaryFolder folder;
  std::string path = folder.file("a.md");
  lines_to_txt({Text(U"# é漢😀"), Text(), Text(U"**b**")}, path);
  EXPECT_EQ(read_bytes(path), "# é漢😀\n\n**b**");
  lines_to_txt(txt_to_lines(path).lines, path);
  EXPECT_EQ(read_bytes(path), "# é漢😀\n\n**b**");
  lines_to_txt({Text()}, path);
  EXPECT_EQ(read_bytes(path), "");
}

}  // namespace
}  // namespace brenlow::test
