#include "customise/escape_map.h"

#include <gtest/gtest.h>

#include "core/keys.h"

using namespace brenlow;

TEST(EscapeMap, EveryRowIsReachedByteByByteAndOnlyUnfinishedSequencesAreWaitedFor) {
  const EscapeMap map = default_escape_map();
  EXPECT_EQ(map.size(), 86U + 42U);
  for (const auto& [bytes, token] : map) {
    for (std::size_t n = 0; n < bytes.size(); ++n)
      EXPECT_TRUE(is_escape_prefix(map, bytes.substr(0, n)) && !map.contains(bytes.substr(0, n))) << bytes;
    EXPECT_FALSE(is_escape_prefix(map, bytes)) << bytes;
  }
  for (const char* open : {"[?1;2", "[99999999", "[1 ", "[["}) EXPECT_TRUE(is_escape_prefix(map, open)) << open;
  for (const char* ended : {"x", "[Z", "[1;9Q", "OZ", "[[A", "[\x1b", "x["}) EXPECT_FALSE(is_escape_prefix(map, ended));
}

TEST(EscapeMap, KeysOfTheKittyProtocolAreTakenOnlyInTheirExactForms) {
  for (const auto& [bytes, key] : {std::pair("[97u", 97), {"[97;1u", 97}, {"[0032u", 32}, {"[126u", 126}})
    EXPECT_EQ(plain_kitty_key(bytes), key);
  for (const char* other : {"[127u", "[31u", "[97;2u", "[97;1", "[u", "[-97u", "[97uu", "[65633u", "[+97u", ""})
    EXPECT_FALSE(plain_kitty_key(other)) << other;
  for (const char* other : {"", "a", "\x1b", "[97;5u", "[64;7u", "[91;7u", "[123;7u", "[27;7;~", "[97;7~", "[65633;7u"})
    EXPECT_FALSE(ctrl_alt_letter(other)) << other;
}

TEST(EscapeMap, ATerminalsOwnCursorKeysAreAddedAndNothingBuiltInIsReplaced) {
  EXPECT_EQ(unescape_terminfo(R"(\E\e[\n\r\t\b\f\s\\\^\,\x\1012\7\777^[^A)"),
            "\x1b\x1b[\n\r\t\b\f \\^,xA2\7\xFF\x1b\x01");
  EXPECT_EQ(unescape_terminfo("a\\") + unescape_terminfo("b^"), "ab");
  const auto sequences = _parse_terminfo_sequences(
      "#\tReconstructed via infocmp\nsomething|a terminal,\n\tam,\n\tkLFT5=\\E[1;5D,\n\tkRIT5 = \\EOc5 ,,\n"
      "\tkUP=\\E[%p1%dA,\n\tkDN=^B,\n\tkLFT6=\\E,\n\tkRIT6=\\E\\001\\177,\n\tcuu1=\\E[Q,\n\tkLFT=\\E[A,\n");
  EscapeMap map = default_escape_map();
  const EscapeMap before = map;
  const std::vector<std::string> report = {"kRIT5=Oc5→0x1000c", "kRIT6=\\x01\\x7f→0x10010"};
  EXPECT_EQ(_patch_esc_map_from_terminfo(map, sequences), report);
  EXPECT_EQ(map.at("Oc5"), _KEY_CTRL_RIGHT);
  EXPECT_EQ(map.size(), before.size() + 2);
  for (const auto& [bytes, token] : before) EXPECT_EQ(map.at(bytes), token) << bytes;
}
