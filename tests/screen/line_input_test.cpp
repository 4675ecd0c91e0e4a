#include "screen/line_input.h"

#include <gtest/gtest.h>

#include "core/keys.h"

namespace brenlow {
namespace {

std::u32string after(std::u32string_view prefill, std::initializer_list<int> keys) {
  LineInput input(prefill);
  std::string partial;
  for (int key : keys) input.take_key(key, partial);
  std::u32string text = input.text();
  text.insert(static_cast<std::size_t>(input.position()), U"|");
  return text;
}

TEST(LineInput, AnUntouchedPrefillIsReplacedAndAnEditedOneKept) {
  EXPECT_EQ(after(U"name", {'x'}), U"x|");
  EXPECT_EQ(after(U"name", {0xC3, 0xA9}), U"é|");
  EXPECT_EQ(after(U"name", {127}), U"|");
  EXPECT_EQ(after(U"name", {KEY_LEFT, 'x'}), U"namx|e");
  EXPECT_EQ(after(U"name", {KEY_HOME, 'x', KEY_END, 'y', 8}), U"xname|");
  EXPECT_EQ(after(U"name", {KEY_RIGHT, 'x'}), U"namex|");
}

TEST(LineInput, BytesThatAreNoCharacterAreDropped) {
  EXPECT_EQ(after(U"", {0x80, 0x80, 0x80, 0x80, 0xE2, 0x82, 0xAC, 'a'}), U"€a|");
  EXPECT_EQ(after(U"ab", {KEY_LEFT, KEY_LEFT, KEY_LEFT, 127}), U"|ab");
  LineInput input(U"ab");
  std::string partial;
  EXPECT_FALSE(input.take_key(KEY_UP, partial)) << "a key that means nothing is told apart";
  input.delete_under_cursor();
  EXPECT_EQ(input.text(), U"ab");
}

}  // namespace
}  // namespace brenlow
