#include "screen/char_table.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

namespace brenlow {
namespace {

// A wrong row would make a user type the code of another character.
TEST(CharTable, EveryRowGivesTheCodeOfItsOwnCharacterAndAName) {
  std::set<char32_t> distinct;
  for (const UnicodeRow& row : _UNICODE_TABLE) {
    SCOPED_TRACE(std::string(row.code));
    ASSERT_EQ(row.code.size(), 4u);
    EXPECT_EQ(row.code.find_first_not_of("0123456789ABCDEF"), std::string_view::npos);
    EXPECT_EQ(std::strtoul(std::string(row.code).c_str(), nullptr, 16), row.character);
    EXPECT_FALSE(row.name.empty());
    distinct.insert(row.character);
  }
  EXPECT_EQ(_UNICODE_TABLE.size(), 292u);
  EXPECT_EQ(distinct.size(), 287u);
}

TEST(CharTable, FilterFindsByNameAndCodeAndShowsEveryCharacterOnce) {
  const auto codes = [](std::u32string_view filter) {
    std::multiset<std::string> found;
    for (const UnicodeRow* row : filter_unicode_table(filter)) found.emplace(row->code);
    return found;
  };
  using Codes = std::multiset<std::string>;
  EXPECT_EQ(codes(U"2014"), Codes{"2014"});
  EXPECT_EQ(codes(U" 20aC "), Codes{"20AC"});
  EXPECT_EQ(codes(U"DASH"), (Codes{"2013", "2014"}));
  EXPECT_EQ(codes(U"macron"), (Codes{"0100", "0101"}));
  EXPECT_EQ(codes(U"superscript").size(), 10u);
  EXPECT_EQ(codes(U"superscript").count("00B2"), 1u);
  EXPECT_EQ(codes(U"   ").size(), 287u);
  EXPECT_TRUE(codes(U"no such sign").empty());
}

TEST(CharTable, FooterCountsInPlainEnglish) {
  EXPECT_EQ(unicode_count_text(1, true), "1 match");
  EXPECT_EQ(unicode_count_text(0, true), "0 matches");
  EXPECT_EQ(unicode_count_text(287, false), "287 characters");
}

TEST(CharTable, HintNamesTheInputOfTheTerminalInUse) {
  EXPECT_NE(unicode_input_hint("kitty").find("Kitty"), std::string_view::npos);
  EXPECT_NE(unicode_input_hint("alacritty").find("no native Unicode input"), std::string_view::npos);
  for (const char* kind : {"xterm", "none", "macos_terminal", "macos_generic", ""})
    EXPECT_NE(unicode_input_hint(kind).find("press Ctrl+Shift+U, type the hex code"), std::string_view::npos) << kind;
}

}  // namespace
}  // namespace brenlow
