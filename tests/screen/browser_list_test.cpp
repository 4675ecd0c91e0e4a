#include "screen/browser_list.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace brenlow {
namespace {

std::vector<std::string> names(const std::vector<BrowserEntry>& entries) {
  std::vector<std::string> out;
  for (const BrowserEntry& entry : entries) out.push_back(entry.name + (entry.is_directory ? "/" : ""));
  return out;
}

using Names = std::vector<std::string>;

TEST(BrowserList, ShowsFoldersAndDocumentsInTheirOrder) {
  test::TemporaryFolder folder;
  for (const char* name : {"b.ODT", "A.txt", "c.md", "d.fountain", "e.pdf", ".hidden.txt", "bad\xFF.txt"})
    folder.write(name, "x");
  folder.folder("Zoo");
  folder.folder("ant");
  std::string path = folder.path().string();
  EXPECT_EQ(names(list_directory(path, true)),
            (Names{"../", "ant/", "Zoo/", "A.txt", "b.ODT", "bad\xFF.txt", "c.md", "d.fountain"}));
  EXPECT_EQ(list_directory(path, false).size(), 9U);
  EXPECT_EQ(names(list_directory(path + "/nowhere", true)), Names{"../"});
  EXPECT_NE(names(list_directory("/", true)).front(), "../");
}

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
