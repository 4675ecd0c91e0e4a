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

}  // namespace
}  // namespace brenlow
