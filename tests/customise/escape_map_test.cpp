#include "customise/escape_map.h"

#include <gtest/gtest.h>

#include "core/keys.h"

using namespace brenlow;

TEST(EscapeMapTest, EveryRowCanBeReachedByteByByte) {
  const EscapeMap map = default_escape_map();
  EXPECT_EQ(map.size(), 86U + 42U);
  for (const auto& [bytes, token] : map) {
    EXPECT_FALSE(bytes.empty());
    EXPECT_LE(bytes.size(), 24U);
    for (std::size_t n = 0; n < bytes.size(); ++n) {
      EXPECT_TRUE(is_escape_prefix(map, bytes.substr(0, n))) << bytes;
      EXPECT_FALSE(map.contains(bytes.substr(0, n))) << bytes << " is hidden by a shorter row";
    }
    EXPECT_FALSE(is_escape_prefix(map, bytes)) << bytes;
  }
  EXPECT_EQ(map.at("[57362u"), _KEY_F[18]);
  EXPECT_EQ(map.at("\x08"), _KEY_CTRL_ALT_H);
  EXPECT_EQ(map.at("Od"), _KEY_CTRL_LEFT);
}

TEST(EscapeMapTest, OnlyUnfinishedSequencesAreWaitedFor) {
  const EscapeMap map = default_escape_map();
  for (const char* open : {"[", "O", "[?1;2", "[99999999", "[1 ", "[["})
    EXPECT_TRUE(is_escape_prefix(map, open)) << open;
  for (const char* finished : {"x", "[Z", "[1;9Q", "OZ", "[[A", "[\x1b", "x[", "\x1b"})
    EXPECT_FALSE(is_escape_prefix(map, finished)) << finished;
}

TEST(EscapeMapTest, PlainKeysOfTheKittyProtocolArePrintableAsciiWithoutModifiers) {
  EXPECT_EQ(plain_kitty_key("[97u"), 97);
  EXPECT_EQ(plain_kitty_key("[97;1u"), 97);
  EXPECT_EQ(plain_kitty_key("[0032u"), 32);
  EXPECT_EQ(plain_kitty_key("[126u"), 126);
  for (const char* other : {"[128u", "[127u", "[31u", "[97;2u", "[97;1", "[u", "[;1u", "[-97u", "[97uu", "97u",
                            "[97;1;1u", "[4294967393u", "[65633u", "[ 97u", "[+97u", "", "["})
    EXPECT_FALSE(plain_kitty_key(other)) << other;
}

TEST(EscapeMapTest, OtherKeysAreNoCtrlAltLetters) {
  for (const char* other : {"", "a", "\x1b", "\x1c", "[97;5u", "[64;7u", "[91;7u", "[96;7u", "[123;7u", "[27;7;97u",
                            "[27;7;~", "[27;5;97~", "[97;7~", "[65633;7u", "[97;7ux"})
    EXPECT_FALSE(ctrl_alt_letter(other)) << other;
  EXPECT_FALSE(ctrl_alt_letter(std::string_view("\0", 1)));
  EXPECT_EQ(ctrl_alt_letter("\r"), _KEY_CTRL_ALT_LETTER_BASE + 'M');
}

TEST(EscapeMapTest, TerminfoStringsAreUnescaped) {
  EXPECT_EQ(unescape_terminfo(R"(\E\e[1;5D)"), "\x1b\x1b[1;5D");
  EXPECT_EQ(unescape_terminfo(R"(\n\r\t\b\f\s\\\^\,\x)"), "\n\r\t\b\f \\^,x");
  EXPECT_EQ(unescape_terminfo(R"(\1012\7\777)"), "A2\7\xFF");
  EXPECT_EQ(unescape_terminfo("^[^A"), "\x1b\x01");
  EXPECT_EQ(unescape_terminfo("a\\"), "a");
  EXPECT_EQ(unescape_terminfo("a^"), "a");
}

TEST(EscapeMapTest, ATerminalsOwnCursorKeysAreAddedAndNothingBuiltInIsReplaced) {
  const auto sequences = _parse_terminfo_sequences(
      "#\tReconstructed via infocmp\nsomething|a terminal,\n\tam,\n\tkLFT5=\\E[1;5D,\n\tkRIT5 = \\EOc5 ,,\n"
      "\tkUP=\\E[%p1%dA,\n\tkDN=^B,\n\tkLFT6=\\E,\n\tkRIT6=\\E\\001\\177,\n\tcuu1=\\E[A,\n\tkLFT=\\E[A,\n");
  EXPECT_EQ(
      sequences,
      (std::map<std::string, std::string>{
          {"kLFT5", "[1;5D"}, {"kRIT5", "Oc5"}, {"kLFT6", ""}, {"kRIT6", "\x01\x7F"}, {"cuu1", "[A"}, {"kLFT", "[A"}}));
  EscapeMap map = default_escape_map();
  const EscapeMap before = map;
  const std::vector<std::string> report = {"kRIT5=Oc5→0x1000c", "kRIT6=\\x01\\x7f→0x10010"};
  EXPECT_EQ(_patch_esc_map_from_terminfo(map, sequences), report);
  EXPECT_EQ(map.size(), before.size() + 2);
  EXPECT_EQ(map.at("Oc5"), _KEY_CTRL_RIGHT);
  for (const auto& [bytes, token] : before) EXPECT_EQ(map.at(bytes), token) << bytes;
  EXPECT_TRUE(_patch_esc_map_from_terminfo(map, sequences).empty());
}
