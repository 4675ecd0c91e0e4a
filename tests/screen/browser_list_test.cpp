#include "screen/browser_list.h"

#include <gtest/gtest.h>

namespace brenlow {
namespace {

TEST(BrowserList, RowsStayAlignedWhateverTheName) {
  EXPECT_EQ(size_text(1023), "1023B");
  EXPECT_EQ(size_text(1536), "1.5K");
  EXPECT_EQ(size_text(5ULL << 40), "5.0T");
  EXPECT_EQ(size_text(5000ULL << 40), "5000.0T");
  BrowserEntry entry{std::string(60, 'n'), false, "1.5K", "2026-01-02 03:04"};
  EXPECT_EQ(browser_row(entry, 50), std::u32string(19, U'n') + U"…     1.5K  2026-01-02 03:04");
  entry.name = "short";
  EXPECT_EQ(browser_row(entry, 12), U"short          1.5K  2026-01-02 03:04") << "the name column is at least ten wide";
}

}  // namespace
}  // namespace brenlow
