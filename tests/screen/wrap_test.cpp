#include "screen/wrap.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace brenlow {
namespace {

std::vector<std::u32string> rows_of(std::u32string_view text, int width) {
  std::vector<Chunk> chunks;
  _chunks_for_line(text, width, chunks);
  std::vector<std::u32string> rows;
  for (const Chunk& c : chunks)
    rows.emplace_back(text.substr(static_cast<std::size_t>(c.start), static_cast<std::size_t>(c.length)));
  return rows;
}

using Rows = std::vector<std::u32string>;

TEST(Wrap, ListItemsHangTwoColumnsIn) {
  EXPECT_EQ(rows_of(U"- one two three", 7), (Rows{U"- one", U"two", U"three"}));
  EXPECT_EQ(rows_of(U"- ", 1), (Rows{U"-", U""})) << "a dash and a blank alone are plain text";
  EXPECT_EQ(rows_of(U"- x", 1), Rows{U"- x"});
}

TEST(Wrap, ShowsEveryCharacterButTheBlanksBrokenAt) {
  std::mt19937 random(3);
  for (int round = 0; round < 2000; ++round) {
    std::u32string text = round % 3 == 0 ? U"- " : U"";
    for (auto i = random() % 40; i > 0; --i) text += random() % 3 == 0 ? U' ' : U'a';
    int width = 1 + static_cast<int>(random() % 12);
    std::vector<Chunk> chunks;
    _chunks_for_line(text, width, chunks);
    int at = 0;
    for (const Chunk& chunk : chunks) {
      if (chunk.start == at + 1) {
        EXPECT_EQ(text[static_cast<std::size_t>(at)], U' ');
        ++at;
      }
      ASSERT_EQ(chunk.start, at);
      bool item = is_list_item(text) && text.size() >= 3;
      EXPECT_LE(chunk.length, item ? std::max(width, 3) : width);
      at += chunk.length;
    }
    EXPECT_EQ(at, static_cast<int>(text.size()));
  }
}

}  // namespace
}  // namespace brenlow
